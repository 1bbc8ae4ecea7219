# SPDX-License-Identifier: GPL-3.0-or-later
"""Records from the monitor of a sink that leads nowhere, on a sound server of its own, and takes the sink, the server
and the program itself away in mid-recording: record_from_pulse.py CLI.  Ends with 77 where there is no server."""
import array
import glob
import os
import random
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest
import wave

from pulse_server import Gap, Server, without_gap

CLI = sys.argv[1]


class Record(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.mkdtemp()
        self.server = Server(self.folder)
        self.target = os.path.join(self.folder, "take.wav")
        self.home = os.path.join(self.folder, "home")

    def tearDown(self):
        self.server.end()
        shutil.rmtree(self.folder)

    def start(self, *words):
        return self.server.start(CLI, "--home", self.home, "record", self.target, *words, text=True,
                                 stdin=subprocess.DEVNULL, stderr=subprocess.PIPE)

    def files(self, ending):
        return glob.glob(os.path.join(self.home, "~plumetta_*" + ending))

    def wait_for_frames(self, count=20000):
        deadline = time.time() + 60
        while not any(os.path.getsize(path) > 8 * count for path in self.files(".rec")):
            self.assertLess(time.time(), deadline, "nothing is recorded")
            time.sleep(0.02)

    def end(self, recorder, status):
        began = time.time()
        _, err = recorder.communicate(timeout=120)
        print(f"ended after {time.time() - began:.2f} s", file=sys.stderr)
        self.assertEqual(recorder.returncode, status, err)
        return err

    def samples(self):
        with wave.open(self.target) as file:
            self.assertEqual(file.getnchannels(), 2)
            samples = array.array("h", file.readframes(file.getnframes()))
            return samples, file.getframerate()

    def check_signal(self, rate, seed):
        """Noise that is played arrives whole, in order and without a gap."""
        generator = random.Random(seed)
        noise = array.array("h", (generator.randrange(-30000, 30000) for _ in range(3 * rate)))
        recorder = self.start("--seconds", "4", "--rate", str(rate))
        self.wait_for_frames(rate // 4)
        player = self.server.start("pacat", "--raw", "--format=s16le", f"--rate={rate}", "--channels=2",
                                   stdin=subprocess.PIPE)
        # The server lays the begin of a stream into what the monitor has already heard: that may be silence.
        player.communicate(bytes(rate) + noise.tobytes(), timeout=60)
        self.end(recorder, 0)
        samples, stored_rate = self.samples()
        self.assertEqual((len(samples), stored_rate), (8 * rate, rate))
        self.assertEqual(self.files(""), [])
        first = next((i for i, sample in enumerate(samples) if sample != 0), len(samples))
        heard = samples[first - first % 2:][:len(noise)]
        if len(heard) < len(noise):
            raise Gap("the recording ended too early")
        if max(abs(a - b) for a, b in zip(heard, noise)) > 1:
            raise Gap("something is missing")

    def test_every_sample_arrives_and_none_is_missing(self):
        without_gap(self, lambda seed: self.check_signal(44100, seed))
        self.server.end()
        self.server = Server(self.folder, 96000)
        without_gap(self, lambda seed: self.check_signal(96000, seed))

    def test_source_or_server_gone_ends_with_a_message_and_the_take(self):
        cases = [("source", lambda: self.server.call("pactl", "unload-module", "module-null-sink"),
                  "The sound device has gone."),
                 ("server hung", lambda: self.server.daemon.send_signal(signal.SIGSTOP),
                  "The sound device does not answer."),
                 ("server killed", lambda: self.server.daemon.kill(), "The sound server has gone.")]
        for name, take_away, reason in cases:
            with self.subTest(name):
                recorder = self.start("--seconds", "60")
                self.wait_for_frames()
                take_away()
                err = self.end(recorder, 1)
                self.assertIn(f"message: The recording has stopped.\n{reason}\n", err)
                self.assertGreater(len(self.samples()[0]), 2 * 20000)
                self.server.end()
                self.server = Server(self.folder)

    def test_nothing_to_record_from_is_an_error(self):
        self.server.daemon.send_signal(signal.SIGSTOP)
        err = self.end(self.start("--seconds", "1"), 1)
        self.assertIn("message: Unable to start audio driver in\n", err)
        self.assertEqual((os.path.exists(self.target), self.files("")), (False, []))

    def test_interrupt_keeps_what_there_is_and_a_kill_leaves_it_for_the_next_start(self):
        recorder = self.start("--seconds", "60")
        self.wait_for_frames()
        recorder.send_signal(signal.SIGINT)
        self.end(recorder, 0)
        self.assertGreater(len(self.samples()[0]), 2 * 20000)
        recorder = self.start("--seconds", "60", "--bits", "24")
        self.wait_for_frames()
        recorder.kill()
        recorder.communicate()
        (path,) = self.files(".rec")
        with open(path + ".info", encoding="ascii") as info:
            self.assertEqual(info.read(), "rate=44100\nchannels=2\nbits=24\nkept=0\n")

    def test_take_survives_a_target_that_cannot_be_written(self):
        self.target = os.path.join(self.folder, "missing", "take.wav")
        err = self.end(self.start("--seconds", "0.5"), 3)
        (path,) = self.files(".rec")
        self.assertIn(f"message: The recording is kept in\n{path}\n", err)
        self.assertGreaterEqual(os.path.getsize(path), 8 * 22050)

    def test_inputs_are_listed(self):
        self.assertIn("Wave-in devices:\n  0  Monitor of Nowhere\n", self.server.call(CLI, "devices").stdout)


if __name__ == "__main__":
    if not all(shutil.which(tool) for tool in ("pulseaudio", "pactl", "pacat")):
        sys.exit(77)
    unittest.main(argv=sys.argv[:1] + sys.argv[2:])
