# SPDX-License-Identifier: GPL-3.0-or-later
"""Plays through a sound server of its own into a sink that leads nowhere, listens to that sink's monitor, and takes
sink and server away in mid-play: play_through_pulse.py PLAY_SIGNAL CLI PLAY_WHILE_EDITING.  Ends with 77 where there is no server."""
import os
import shutil
import signal
import struct
import subprocess
import sys
import tempfile
import time
import unittest

from pulse_server import Gap, Server, without_gap

PLAY, CLI, EDIT = sys.argv[1:4]


def noise(frames, scale, offset):
    """The samples of play_signal as the device gets them: cut towards zero."""
    state, samples = 1, []
    for _ in range(frames * 2):
        state = (state * 1664525 + 1013904223) % 2**32
        samples.append(int((struct.unpack("f", struct.pack("f", (state >> 8) / 8388608 - 1))[0]) * scale + offset))
    return samples


class Pulse(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.mkdtemp()
        self.server = Server(self.folder)

    def tearDown(self):
        self.server.end()
        shutil.rmtree(self.folder)

    def record(self, *play, sample="s16le", rate=44100):
        """What the monitor hears of a run, in bytes, with play_signal's own words and the time of the first sound."""
        recorder = self.server.listen(sample, rate)
        player = self.server.start(PLAY, *map(str, play), text=True, stdin=subprocess.DEVNULL)
        heard, first, ends = b"", None, None
        silence = b"\x80" if sample == "u8" else b"\0"
        while ends is None or time.time() < ends:
            block = recorder.stdout.read() or b""
            heard += block
            if first is None and block.strip(silence):
                first = time.time()
            if player.poll() is not None and ends is None:
                ends = time.time() + 0.5
            time.sleep(0.001)
        self.close(recorder)
        words = self.words(player)
        self.assertEqual(player.returncode, 0, words)
        return heard, words, first

    def close(self, process):
        process.kill()
        process.wait()
        process.stdout.close()

    def words(self, player):
        text = player.stdout.read()
        player.stdout.close()
        return dict(line.split(" ", 1) for line in text.splitlines())

    def check_played(self, code, scale, offset, size, heard, frames):
        expected = noise(frames, scale, offset)
        packed = struct.pack(f"<{len(expected)}{code}", *expected)
        at = heard.find(packed[:64])
        if at < 0:
            raise Gap("the start is nowhere")
        same = next((i for i in range(len(packed)) if heard[at + i:at + i + 1] != packed[i:i + 1]), len(packed))
        if same < len(packed):
            raise Gap(f"differs after frame {same // (2 * size)}")

    def test_every_sample_arrives_and_none_is_missing(self):
        def attempt(_):
            heard, words, first = self.record(4)
            print(f"sound came {(first - float(words['started'])) * 1000:.0f} ms after Start", file=sys.stderr)
            self.assertEqual((words["devices"], words["stopped"]), ("1", "1"))
            if words["underruns"] != "0":
                raise Gap("underruns")
            self.check_played("h", 32766, 0, 2, heard, 3 * 44100)
        without_gap(self, attempt)

    def test_small_and_odd_buffers_of_eight_bits(self):
        def attempt(_):
            heard, words, _ = self.record(2, 48000, 8, 701, 5, sample="u8", rate=48000)
            self.assertEqual(words["stopped"], "1")
            self.check_played("B", 126, 127, 1, heard, 48000)
        self.server.end()
        self.server = Server(self.folder, 48000, "u8")
        without_gap(self, attempt)

    def test_device_or_server_gone_in_mid_play_is_an_error(self):
        def unload():
            self.server.call("pactl", "unload-module", "module-null-sink")
        cases = [("sink", unload, "The sound device has gone."),
                 ("server killed", self.server.daemon.kill, "The sound server has gone.")]
        for name, take_away, text in cases:
            self.check_lost(name, take_away, text)
            if name == "sink":
                self.server.call("pactl", "load-module", "module-null-sink", "sink_name=nowhere")

    def test_server_that_hangs_is_an_error_before_and_in_mid_play(self):
        self.check_lost("hung", lambda: self.server.daemon.send_signal(signal.SIGSTOP),
                        "The sound device does not answer.")
        began = time.time()
        done = self.server.call(CLI, "devices")
        self.report("listing with a hung server", began)
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertIn("The sound server does not answer.", done.stdout)

    def check_lost(self, name, take_away, text):
        recorder = self.server.listen()
        player = self.server.start(PLAY, "60", text=True, stdin=subprocess.DEVNULL)
        while not (recorder.stdout.read() or b"").strip(b"\0"):
            time.sleep(0.01)
        began = time.time()
        take_away()
        player.wait(timeout=120)
        self.report(name, began)
        self.close(recorder)
        self.assertEqual(player.returncode, 3)
        words = self.words(player)
        self.assertEqual((words["lost"], words["stopped"]), (text, "1"))

    def report(self, name, began):
        print(f"{name}: ended after {time.time() - began:.2f} s", file=sys.stderr)

    def test_plays_again_once_there_is_a_server(self):
        self.server.end()
        player = self.server.start(PLAY, "1", text=True, stdin=subprocess.PIPE)
        lines = [player.stdout.readline() for _ in range(3)]
        self.assertEqual(lines[0], "devices 0\n")
        self.assertEqual(lines[2], "refused There is no sound server.\n")
        self.server = Server(self.folder)
        player.stdin.write("\n")
        player.stdin.close()
        player.wait(timeout=120)
        self.assertEqual((player.returncode, self.words(player)["stopped"]), (0, "1"))

    def test_editing_what_is_played_leaves_no_gap(self):
        def attempt(_):
            done = self.server.call(EDIT, "6")
            print(done.stdout.replace("\n", "  "), file=sys.stderr)
            if done.returncode != 0:
                raise Gap(done.stdout)
        without_gap(self, attempt)

    def test_devices_are_listed_by_what_people_call_them(self):
        self.assertIn("  0  Nowhere\n", self.server.call(CLI, "devices").stdout)
        self.server.call("pactl", "load-module", "module-null-sink", "sink_name=second",
                         "sink_properties=device.description=Second")
        self.server.call("pactl", "set-default-sink", "second")
        self.assertIn('"wave_out":[{"index":0,"name":"Second"},{"index":1,"name":"Nowhere"}]',
                      self.server.call(CLI, "devices", "--json").stdout)


if __name__ == "__main__":
    if not all(shutil.which(tool) for tool in ("pulseaudio", "pactl", "parec")):
        sys.exit(77)
    unittest.main(argv=sys.argv[:1] + sys.argv[4:])
