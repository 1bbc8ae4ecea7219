# SPDX-License-Identifier: GPL-3.0-or-later
"""`plumetta-cli batch` over a tree of files, held against `plumetta-cli edit` on each of them: batch.py COMMAND..."""
import os
import random
import shutil
import signal
import struct
import subprocess
import sys
import tempfile
import time
import unittest

from own_words import own_words

COMMAND = []
BANNER = "\r\n\r\n" + "*" * 31 + "\r\nBatch processing finished\r\n" + "*" * 31 + "\r\n"
DONE = "\tExtract ok\tEffect ok\r\n"
UNKNOWN = "\tFormat not supported : file ignored\r\n"
QUIET_FRAMES = 100  # at both ends


def wav(channels, rate, frames, seed, bits=16):
    """Noise about an offset, between silent ends."""
    rng = random.Random(seed)
    values = [0 if i < QUIET_FRAMES or i >= frames - QUIET_FRAMES else rng.randint(-9000, 12000)
              for i in range(frames) for _ in range(channels)]
    data = b"".join(struct.pack("<i", v << 16)[4 - bits // 8:] for v in values)
    fmt = struct.pack("<HHIIHH", 1, channels, rate, rate * channels * bits // 8, channels * bits // 8, bits)
    loops = struct.pack("<9I6I", 0, 0, 0, 60, 0, 0, 0, 1, 0, 0, 0, 150, 250, 0, 0)
    body = b"WAVEfmt " + struct.pack("<I", 16) + fmt + b"smpl" + struct.pack("<I", len(loops)) + loops
    body += b"data" + struct.pack("<I", len(data)) + data
    return b"RIFF" + struct.pack("<I", len(body)) + body


# The steps of `edit` that come to the same as each function; MP3 files are compared where they can be written.
# {n} stands for the frames, {r} for the rate, {h} for half of it.
STEPS = {
    0: "quick 14", 1: "quick 15", 2: "quick 16", 3: "quick 17", 4: "quick 18", 5: "insert-silence 0 {r}",
    6: "insert-silence 0 {h}", 7: "insert-silence {n} {r}", 8: {1: "channel 10"}, 9: {2: "channel 2"},
    10: {2: "channel 3"}, 11: {2: "channel 1"}, 12: "select-all quick 10", 13: "quick 19", 14: "quick 12",
    15: "select-all quick 25", 17: "quick 13", 18: "resample 22050 interpolation=off filter=off",
    19: "resample 44100 interpolation=off filter=off", 20: "resample 96000 interpolation=off filter=off",
    21: "auto-trim -50", 22: "auto-trim -140", 23: "bit-depth 8 quantization=off", 24: "bit-depth 16 quantization=off",
    25: "bit-depth 24 quantization=off", 26: "bit-depth 32 quantization=off",
    27: "bit-depth 32 format=3 quantization=off", 28: "bit-depth 64 format=3 quantization=off", 29: "",
    34: "loop 0 {last}", 35: "loop-clear",
}
FILES = {"mono.wav": (1, 8000, 901), "stereo.wav": (2, 44100, 2000), "Größe 音.WAV": (2, 22050, 700)}


class Batch(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.path = os.path.realpath(self.folder.name)
        os.makedirs(self.at("in/a/b"))
        os.makedirs(self.at("in/empty"))
        for number, (name, values) in enumerate(FILES.items()):
            self.write("in/" + name, wav(*values, number))
        self.write("in/a/b/take.1.wav", wav(1, 8000, 400, 7, bits=24))
        self.write("in/a/README", wav(2, 8000, 400, 8))
        self.write("in/notes.txt", b"no sound")
        self.write("in/broken.wav", b"RIFF\xff\xff\xff\xffWAVEfmt ")

    def tearDown(self):
        self.folder.cleanup()

    def at(self, name):
        return os.path.join(self.path, *name.split("/"))

    def write(self, name, content):
        with open(self.at(name), "wb") as file:
            file.write(content)

    def read(self, name):
        with open(self.at(name), "rb") as file:
            return file.read()

    def tree(self, name):
        return {os.path.relpath(os.path.join(folder, file), self.at(name)).replace(os.sep, "/")
                for folder, _, files in os.walk(self.at(name)) for file in files}

    def assert_same_trees(self, one, two):
        self.assertEqual(self.tree(one), self.tree(two))
        for name in self.tree(one):
            self.assertEqual(self.read(f"{one}/{name}"), self.read(f"{two}/{name}"), name)

    def call(self, *words, status=0, options=()):
        done = subprocess.run([*COMMAND, "--home", "home", *options, *words], cwd=self.path, timeout=120,
                              stdin=subprocess.DEVNULL, capture_output=True)
        self.err = own_words(done.stderr.decode())
        self.assertEqual(done.returncode, status, done.stdout.decode() + self.err)
        return done.stdout.decode()

    def test_every_function_does_what_its_command_does(self):
        entries = [line.split("\t") for line in self.call("batch", "--list").splitlines()]
        self.assertEqual([int(number) for number, _ in entries], list(range(36)))
        for function, steps in STEPS.items():
            self.call("batch", entries[function][1], "in", f"out{function}")
            for name, (channels, rate, frames) in FILES.items():
                step = steps if isinstance(steps, str) else steps.get(channels, "")
                step = step.format(r=rate, h=rate // 2, n=frames, last=frames - 1)
                if step.startswith(f"resample {rate} "):
                    step = ""
                self.call("edit", "open", "in/" + name, *step.split(), "save", "expected.wav")
                result = name[:-3] + "wav"
                self.assertEqual(self.read(f"out{function}/{result}"), self.read("expected.wav"), (function, name))

    def test_the_log_is_written_in_order_and_results_mirror_the_tree(self):
        log = ("Größe 音.WAV" + DONE + "README" + DONE + "take.1.wav" + DONE + "broken.wav" + UNKNOWN + "mono.wav" + DONE +
               "notes.txt" + UNKNOWN + "stereo.wav" + DONE + BANNER)
        self.assertEqual(self.call("batch", "0", "in", "out", "--recurse", "--log", "log.txt"), log)
        self.assertEqual(self.read("log.txt").decode(), log)
        self.assertEqual(self.tree("out"), {"Größe 音.wav", "a/README.wav", "a/b/take.1.wav", "mono.wav", "stereo.wav"})
        self.assertTrue(os.path.isdir(self.at("out/empty")))
        flat = self.call("batch", "0", "in", "flat")
        self.assertIn("a" + UNKNOWN + "broken.wav" + UNKNOWN + "empty" + UNKNOWN, flat)
        for jobs in ["2", "5"]:
            self.assertEqual(self.call("batch", "0", "in", "out" + jobs, "--recurse", "--jobs", jobs), log)
            self.assert_same_trees("out", "out" + jobs)

    def test_shards_share_the_files_and_their_logs_merge(self):
        whole = self.call("batch", "3", "in", "whole", "--recurse")
        logs = []
        for shard in range(3):
            logs.append(f"log{shard}")
            self.call("batch", "3", "in", "parts", "--recurse", "--shard", f"{shard}/3", "--log", logs[-1], "--jobs", "2")
        self.assert_same_trees("whole", "parts")
        self.assertEqual(self.call("batch", "--merge-logs", *logs), whole)
        self.assertIn("All: 7 files, 5 done, 2 not supported\n", self.err)
        self.write("log0", self.read("log0").split(b"\r\n")[0] + b"\r\n")
        self.call("batch", "--merge-logs", *logs, status=1)
        self.assertIn("not finished", self.err)

    def test_two_files_with_one_result_get_names_of_their_own(self):
        for name in ["stereo.aif", "mono", "notes.wave", "stereo.aif.wav"]:
            self.write("in/" + name, wav(1, 8000, 300, name))
        log = self.call("batch", "29", "in", "out")
        self.assertIn("mono\tExtract ok\tSaved as mono (2).wav\r\n\tEffect ok\r\n", log)
        self.assertIn("stereo.aif\tExtract ok\tSaved as stereo.aif (2).wav\r\n\tEffect ok\r\n", log)
        self.assertIn("notes.wave" + DONE, log)  # nothing but its name speaks for notes.txt
        for name in ["mono.wav", "stereo.wav", "stereo.aif.wav"]:
            self.call("edit", "open", "in/" + name, "save", "expected.wav")
            self.assertEqual(self.read("out/" + name), self.read("expected.wav"))

    def test_results_in_the_input_folder_are_asked_about(self):
        before = self.read("in/mono.wav")
        for output in ["in", "in/.", "in/a/results"]:
            self.call("batch", "0", "in", output, "--recurse", status=1)
            self.assertTrue(self.err.startswith("question: "), self.err)
            self.assertEqual(self.read("in/mono.wav"), before)
        for _ in range(2):  # what lies in the output folder is never taken for input
            log = self.call("batch", "0", "in", "in/results", "--recurse", options=["--yes"])
            self.assertEqual(log.count("mono.wav"), 1)
        for _ in range(2):  # only a walk into subfolders would meet the results again
            log = self.call("batch", "0", "in", "in/a/results")
            self.assertEqual((self.err, log.count("mono.wav" + DONE)), ("", 1))
        self.call("batch", "0", "in", "in", options=["--yes"])
        self.assertNotEqual(self.read("in/mono.wav"), before)
        self.call("batch", "0", "in", "in", "--shard", "0/2", options=["--yes"], status=1)

    @unittest.skipIf(os.name == "nt" or "wine" in " ".join(sys.argv), "links")
    def test_links_are_followed_but_not_in_circles_nor_back_into_the_input(self):
        os.symlink("..", self.at("in/a/up"))
        os.symlink(self.at("in/a"), self.at("in/empty/again"))
        os.mkdir(self.at("out"))
        os.symlink(self.at("in/mono.wav"), self.at("out/mono.wav"))
        before = self.read("in/mono.wav")
        log = self.call("batch", "0", "in", "out", "--recurse")
        self.assertIn("up\tFolder walked already : link ignored\r\n", log)
        self.assertIn("mono.wav\tExtract ok\tUnable to save file " + self.at("out/mono.wav") + "\r\n\tEffect ok\r\n", log)
        self.assertEqual((log.count("take.1.wav"), log.count("stereo.wav")), (2, 1))
        self.assertEqual(self.read("in/mono.wav"), before)

    @unittest.skipIf("wine" in " ".join(sys.argv) or os.name == "nt" or os.geteuid() != 0, "another user")
    def test_what_may_not_be_read_or_written_costs_nothing_else(self):
        os.chmod(self.path, 0o755)
        os.mkdir(self.at("out"))
        os.chmod(self.at("out"), 0o777)
        os.mkdir(self.at("out/a"))
        os.chmod(self.at("in/empty"), 0o000)
        os.chmod(self.at("in/stereo.wav"), 0o000)
        program = shutil.copy(COMMAND[-1], self.path)  # to where that user may go
        done = subprocess.run(["setpriv", "--reuid=65534", "--regid=65534", "--clear-groups", *COMMAND[:-1], program,
                               "batch", "0", "in", "out", "--recurse"], cwd=self.path, capture_output=True, timeout=120,
                              check=True)
        log = done.stdout.decode()
        self.assertIn("stereo.wav" + UNKNOWN, log)
        self.assertIn("README\tExtract ok\tUnable to save file " + self.at("out/a/README.wav") + "\r\n\tEffect ok\r\n", log)
        self.assertIn("mono.wav" + DONE, log)
        self.assertEqual(self.tree("out"), {"Größe 音.wav", "mono.wav"})

    @unittest.skipIf(os.name == "nt", "signals")
    def test_interrupt_stops_after_the_file_in_work_and_a_second_gives_it_up(self):
        for number in range(400):
            self.write(f"in/n{number:03}.wav", wav(1, 8000, 300, 1))
        size = 1 << 28
        with open(self.at("in/0 long.wav"), "wb") as file:
            file.write(wav(1, 8000, 0, 1)[:-4] + struct.pack("<I", size))
            file.truncate(file.tell() + size)
        run = subprocess.Popen([*COMMAND, "batch", "20", "in", "out"], cwd=self.path, stdout=subprocess.PIPE,
                               stderr=subprocess.PIPE)
        self.assertEqual(run.stdout.read(10), b"0 long.wav")
        run.send_signal(signal.SIGINT)
        self.wait_until_watching_again(run.pid)
        run.send_signal(signal.SIGINT)
        rest, said = (part.decode() for part in run.communicate(timeout=300))
        self.assertEqual(said, "message: Stopped after 1 of 408 files\n")
        self.assertEqual(run.returncode, 0)
        self.assertTrue(rest.endswith("\tCancelled : file ignored\r\n" + BANNER), rest[-300:])
        self.assertEqual(self.tree("out"), set())

    @staticmethod
    def wait_until_watching_again(pid):
        """An interrupt that has come takes its handler away until the program has seen it; one more would end it."""
        if "wine" in " ".join(sys.argv):
            return time.sleep(1)  # where handlers stay
        bit, pending, caught = 1 << (signal.SIGINT - 1), True, False
        while pending or not caught:
            with open(f"/proc/{pid}/status", encoding="ascii") as file:
                lines = dict(line.split(":", 1) for line in file)
            pending, caught = (int(lines[name], 16) & bit for name in ("ShdPnd", "SigCgt"))
        return None

    def test_wrong_calls_and_missing_folders(self):
        for call in ["", "0 in", "36 in out", "Normalise in out", "0 in out more", "0 in out --jobs 0", "0 in out --shard 2/2",
                     "0 in out --shard x", "0 in out --log", "0 in out --what", "--merge-logs"]:
            self.call("batch", *call.split(), status=2)
        self.call("batch", "0", "", "out", status=1)
        self.assertEqual(self.err, "message: Select directories first\n")
        self.call("batch", "0", "none", "out", status=3)
        self.call("batch", "0", "in", "out", "--log", "none/log", status=3)
        self.assertFalse(os.path.exists(self.at("out")))


if __name__ == "__main__":
    COMMAND = [os.path.abspath(word) if os.path.exists(word) else word for word in sys.argv[1:]]
    unittest.main(argv=[sys.argv[0]])
