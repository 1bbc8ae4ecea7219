# SPDX-License-Identifier: GPL-3.0-or-later
"""Plays and records with the Windows program, whose devices end in a sound server of this test's own:
sound_through_pulse.py WINE_RUN CLI.EXE.  Ends with 77 where there is no server."""
import array
import os
import random
import shutil
import subprocess
import sys
import tempfile
import time
import unittest
import wave

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "audio", "pulse"))
from pulse_server import Gap, Server, without_gap  # noqa: E402

WINE, CLI = sys.argv[1:3]
RATE = 44100
SECONDS = 2


def noise(seed):
    generator = random.Random(seed)
    return array.array("h", (generator.randrange(-30000, 30000) for _ in range(2 * SECONDS * RATE)))


def stretches(heard, source):
    """Where runs of the source's frames stand in what was heard: (source frame, frames), frames of silence left out.
    Samples may differ by one."""
    places = {}
    for i in range(len(source) // 2):
        left, right = source[2 * i], source[2 * i + 1]
        for a in (left - 1, left, left + 1):
            for b in (right - 1, right, right + 1):
                places.setdefault((a, b), i)
    found, i, frames = [], 0, len(heard) // 2
    while i < frames:
        at = places.get((heard[2 * i], heard[2 * i + 1]))
        if at is None:
            if heard[2 * i] or heard[2 * i + 1]:
                raise AssertionError(f"frame {i} was never played: {heard[2 * i], heard[2 * i + 1]}")
            i += 1
            continue
        length = 0
        while (i + length < frames and at + length < len(source) // 2
               and abs(heard[2 * (i + length)] - source[2 * (at + length)]) <= 1
               and abs(heard[2 * (i + length) + 1] - source[2 * (at + length) + 1]) <= 1):
            length += 1
        found.append((at, length))
        i += length
    return found


class Sound(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.mkdtemp()
        self.server = Server(self.folder)
        self.server.environment["PLUMETTA_WINEPREFIX"] = os.path.abspath(os.environ["PLUMETTA_WINEPREFIX"])

    def tearDown(self):
        self.server.end()
        shutil.rmtree(self.folder)

    def program(self, *words):
        return self.server.start(WINE, CLI, "--quiet", "--home", os.path.join(self.folder, "home"), *words,
                                 stdin=subprocess.DEVNULL, stderr=subprocess.STDOUT)

    def check(self, passed_on, seed):
        """The layer between the program and the server has buffers of some milliseconds, which a busy machine
        overruns; that costs whole stretches, never single samples."""
        source = noise(seed)
        found = stretches(passed_on(source), source)
        starts = [start for start, _ in found]
        self.assertEqual(starts, sorted(starts), "out of order")
        longest = max((length for _, length in found), default=0)
        # The first milliseconds may go into a stream that is only starting.
        if longest < SECONDS * RATE - RATE // 20:
            raise Gap(f"longest stretch without a gap: {longest} of {SECONDS * RATE} frames")

    def play(self, source):
        path = os.path.join(self.folder, "noise.wav")
        with wave.open(path, "wb") as file:
            file.setnchannels(2)
            file.setsampwidth(2)
            file.setframerate(RATE)
            file.writeframes(source.tobytes())
        listener = self.server.listen()
        player, heard, ends = self.program("play", path), b"", None
        while ends is None or time.time() < ends:
            heard += listener.stdout.read() or b""
            if ends is None and player.poll() is not None:
                ends = time.time() + 1
            time.sleep(0.002)
        listener.kill()
        listener.wait()
        listener.stdout.close()
        text = player.stdout.read()
        player.stdout.close()
        self.assertEqual(player.returncode, 0, text)
        return array.array("h", heard[:len(heard) // 4 * 4])

    def record(self, source):
        path = os.path.join(self.folder, "take.wav")
        recorder = self.program("record", path, "--seconds", str(SECONDS + 4))
        deadline = time.time() + 60
        home = os.path.join(self.folder, "home")
        while not any(name.endswith(".rec") and os.path.getsize(os.path.join(home, name)) > RATE
                      for name in (os.listdir(home) if os.path.isdir(home) else [])):
            self.assertLess(time.time(), deadline, "nothing is recorded")
            time.sleep(0.02)
        player = self.server.start("pacat", "--raw", "--format=s16le", f"--rate={RATE}", "--channels=2",
                                   stdin=subprocess.PIPE)
        player.communicate(source.tobytes(), timeout=120)
        text, _ = recorder.communicate(timeout=120)
        self.assertEqual(recorder.returncode, 0, text)
        with wave.open(path) as file:
            return array.array("h", file.readframes(file.getnframes()))

    def test_every_sample_that_is_played_arrives(self):
        without_gap(self, lambda seed: self.check(self.play, seed))

    def test_every_sample_that_is_recorded_was_there(self):
        without_gap(self, lambda seed: self.check(self.record, seed))


if __name__ == "__main__":
    if not all(shutil.which(tool) for tool in ("pulseaudio", "pactl", "pacat")):
        sys.exit(77)
    unittest.main(argv=sys.argv[:1] + sys.argv[3:])
