# SPDX-License-Identifier: GPL-3.0-or-later
"""Plays through an ASIO driver that writes down what it is given, registered in Wine's registry for the time of the
test: play_through_driver.py WINE_RUN CLI TEST_DRIVER.  What it was given is compared bit by bit with the offline
playback of the same file, in the form that a model of its own gives each sample type."""
import os
import shutil
import struct
import subprocess
import sys
import tempfile
import unittest

WINE_RUN, CLI, DRIVER = sys.argv[1:4]
NAME = "Plumetta test driver"
CLASS = "{5C0E1F5A-7B1D-4C53-9E55-0D3A5B9C6A11}"
KEYS = ["HKLM\\software\\asio\\plumetta-test", f"HKCR\\clsid\\{CLASS}"]
UNTOUCHED, FRAMES, OUTPUTS = 0xEE, 20000, 16


def windows_path(path):
    return "Z:" + os.path.abspath(path).replace("/", "\\")


def float32(value):
    return struct.unpack("<f", struct.pack("<f", value))[0]


def stored(code, x):
    """One frame in the form of the sample type; None where nothing is written."""
    x = max(-float32(0.999), min(float32(0.999), x))
    whole = round(x * 2**31)  # to even
    sounding = {16: lambda: struct.pack("<h", round(x * 2**15)), 17: lambda: struct.pack("<i", int(x * 2**31))[1:],
                18: lambda: struct.pack("<i", whole), 19: lambda: struct.pack("<f", x),
                20: lambda: struct.pack("<d", x)}
    silent = {0: 2, 1: 3, 2: 4, 3: 4, 4: 8, 11: 4, 27: 4}
    if code in sounding:
        return sounding[code]()
    return bytes(silent[code]) if code in silent else None


def rendered(code, samples):
    pieces = [stored(code, x) for x in samples]
    return b"".join(bytes([UNTOUCHED] * 4) if piece is None else piece for piece in pieces)


def write_wave(path, frames, rate=44100):
    data = b"".join(struct.pack("<2f", *frame) for frame in frames)
    head = struct.pack("<4sI4s4sIHHIIHH4sI", b"RIFF", 36 + len(data), b"WAVE", b"fmt ", 16, 3, 2, rate, rate * 8, 8, 32,
                       b"data", len(data))
    with open(path, "wb") as file:
        file.write(head + data)


def read_wave(path, channels):
    with open(path, "rb") as file:
        data = file.read()
    at = data.index(b"data")
    size = struct.unpack_from("<I", data, at + 4)[0]
    values = struct.unpack_from(f"<{size // 4}f", data, at + 8)
    return [values[c::channels] for c in range(channels)]


def signal():
    state = 7
    for _ in range(FRAMES):
        frame = []
        for _ in range(2):
            state = (state * 1664525 + 1013904223) % 2**32
            # Beyond full scale now and then, and down to the last bits of 24.
            frame.append(((state >> 8) / 2**23 - 1) * (1.5 if state % 7 else 2**-18))
        yield [float32(value) or 0.25 for value in frame]


class Asio(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.mkdtemp()
        cls.home = os.path.join(cls.folder, "home")
        cls.file = os.path.join(cls.folder, "signal.wav")
        write_wave(cls.file, list(signal()))
        # Two outputs of sixteen are silent, the others take turns.
        cls.route = [-1 if k % 8 == 5 else k % 2 for k in range(OUTPUTS)]
        for k, source in enumerate(cls.route):
            cls.cli("settings", "set", "Routing out", f"Channel{k:02d}", source, check=True)
        for key, name, value in [(KEYS[0], "CLSID", CLASS.lower()), (KEYS[0], "Description", NAME),
                                 (KEYS[1] + "\\InprocServer32", None, windows_path(DRIVER)),
                                 (KEYS[1] + "\\InprocServer32", "ThreadingModel", "Apartment")]:
            named = ["/v", name] if name else ["/ve"]
            cls.reg("add", key, *named, "/t", "REG_SZ", "/d", value, "/f")

    @classmethod
    def tearDownClass(cls):
        for key in KEYS:
            cls.reg("delete", key, "/f")
        gone = cls.cli("devices", check=True).stdout
        shutil.rmtree(cls.folder)
        assert NAME not in gone, gone

    @staticmethod
    def reg(*words):
        subprocess.run([WINE_RUN, "reg.exe", *words], check=True, stdout=subprocess.DEVNULL, timeout=300)

    @classmethod
    def cli(cls, *words, driver="", check=False):
        environment = dict(os.environ, PLUMETTA_TEST_DRIVER=driver)
        run = subprocess.run([WINE_RUN, CLI, "--home", cls.home, *map(str, words)], env=environment, check=check,
                             capture_output=True, text=True, timeout=300, stdin=subprocess.DEVNULL)
        # A machine without a sound card is the talk of its own library.
        run.stderr = "".join(line for line in run.stderr.splitlines(True) if not line.startswith("ALSA lib"))
        return run

    def record(self, plan):
        folder = tempfile.mkdtemp(dir=self.folder)
        return folder, f"{plan};record={windows_path(folder)}"

    def calls(self, folder):
        with open(os.path.join(folder, "calls"), encoding="ascii") as file:
            return file.read().split("\n")[:-1]

    def play(self, plan, *options):
        folder, driver = self.record(plan)
        run = self.cli("play", self.file, "--asio", "--device", 0, *options, driver=driver)
        return folder, run

    def bounced(self, rate=44100):
        path = os.path.join(self.folder, "bounced.wav")
        route = ",".join(map(str, self.route))
        self.cli("edit", "open", self.file, "bounce", path, f"rate={rate}", f"channels={OUTPUTS}", f"route={route}",
                 check=True)
        return read_wave(path, OUTPUTS)

    def check_outputs(self, folder, types, sound):
        """The first output, of 32-bit floats, tells where the sound begins."""
        with open(os.path.join(folder, "output0"), "rb") as file:
            values = [x for x, in struct.iter_unpack("<f", file.read())]
        start = next(i for i, x in enumerate(values) if x != 0)
        for k in range(32):
            with open(os.path.join(folder, f"output{k}"), "rb") as file:
                played = file.read()
            samples = [0.0] * len(values)
            if k < OUTPUTS:
                samples[start:start + len(sound[k])] = sound[k]
            code = types[k % len(types)]
            self.assertEqual(len(samples), len(values), "all of the file has come")
            self.assertTrue(played == rendered(code, samples), f"output {k} of type {code}")
        self.assertFalse(os.path.exists(os.path.join(folder, "output32")))

    def test_is_listed(self):
        self.assertIn(f"ASIO devices:\n  0  {NAME}\n", self.cli("devices", check=True).stdout)

    def test_every_sample_type_gets_what_bounce_gives(self):
        sound = self.bounced()
        for frames, types in [(512, [19, 0, 1, 2, 3, 4, 8, 9, 10, 11, 16, 17, 18, 20, 24, 25]),
                              (6000, [19, 26, 27, 33, 20, 18, 17, 16])]:
            plan = f"outputs=40;frames={frames};types={','.join(map(str, types))}"
            folder, run = self.play(plan)
            self.assertEqual((run.returncode, run.stderr), (0, ""))
            self.check_outputs(folder, types, sound)
            calls = self.calls(folder)
            self.assertIn("createBuffers 34", calls)
            self.assertEqual(calls[-3:], ["stop", "disposeBuffers", "Release"])

    def test_what_goes_wrong_in_the_driver(self):
        for fault, message in [("fail=getBufferSize", "static init"), ("throw=getChannels", "static init"),
                               ("hang=start", "start"), ("crash=getLatencies", "create buffer")]:
            with self.subTest(fault):
                folder, run = self.play(fault)
                self.assertEqual((run.returncode, run.stderr.strip()), (1, f"message: Unable to {message}"))
                self.assertEqual(self.calls(folder)[-1] == "Release", fault[0] in "ft")

    def test_driver_that_cannot_be_made_or_stops_asking(self):
        _, run = self.play("fail=create")
        self.assertEqual(run.returncode, 1)
        self.assertIn(f"message: Unable to start the audio output\nThe ASIO driver {NAME} can't be loaded", run.stderr)
        _, run = self.play("stall=5")
        self.assertEqual(run.returncode, 1)
        self.assertIn("message: The audio output was lost\nThe ASIO driver does not answer.", run.stderr)
        _, run = self.play("hang=stop")
        self.assertEqual((run.returncode, run.stderr), (0, ""))

    def test_driver_without_a_threading_model_is_made_all_the_same(self):
        server = KEYS[1] + "\\InprocServer32"
        self.reg("delete", server, "/v", "ThreadingModel", "/f")
        self.addCleanup(self.reg, "add", server, "/v", "ThreadingModel", "/t", "REG_SZ", "/d", "Apartment", "/f")
        folder, run = self.play("types=19")
        self.assertEqual((run.returncode, run.stderr, self.calls(folder)[-1]), (0, "", "Release"))

    def test_report(self):
        path = os.path.join(self.folder, "report.txt")
        _, driver = self.record("inputs=1;outputs=2;types=2,27;frames=256")
        self.cli("asio", "report", 0, path, driver=driver, check=True)
        with open(path, "rb") as file:
            report = file.read().decode()
        self.assertTrue(report.startswith("Plumetta ASIO test file:\r\nTest driver\r\nVersion:012A\r\n"), report)
        self.assertIn("\r\noutput 02 Out 2 Sample type: ASIOSTInt32LSB24 Group: 0\r\n", report)
        self.assertEqual(self.cli("asio", "report", 1, path, driver=driver).returncode, 1)


unittest.main(argv=sys.argv[:1] + sys.argv[4:])
