# SPDX-License-Identifier: GPL-3.0-or-later
"""Calls plumetta-cli as a shell would: run.py COMMAND...  Files are named relatively, so that the same calls
serve a program under Wine."""
import json
import math
import os
import struct
import subprocess
import sys
import tempfile
import unittest

from own_words import own_words

COMMAND = []


def wav_bytes(frames, channels=1, rate=8000, sample=lambda i: (i * 7) % 2000 - 1000):
    data = b"".join(struct.pack("<h", sample(i)) for i in range(frames * channels))
    fmt = struct.pack("<HHIIHH", 1, channels, rate, rate * channels * 2, channels * 2, 16)
    body = b"WAVEfmt " + struct.pack("<I", 16) + fmt + b"data" + struct.pack("<I", len(data)) + data
    return b"RIFF" + struct.pack("<I", len(body)) + body


class Cli(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.path = self.folder.name
        self.write("a.wav", wav_bytes(1000, 2))

    def tearDown(self):
        self.folder.cleanup()

    def call(self, *words, status=0, options=()):
        done = subprocess.run([*COMMAND, "--home", "home", *options, *words], cwd=self.path, timeout=120,
                              stdin=subprocess.DEVNULL, capture_output=True)
        out, err = done.stdout.decode(), done.stderr.decode()
        self.assertEqual(done.returncode, status, out + err)
        self.err = own_words(err)
        return out

    def edit(self, chain, **kwargs):
        return self.call("edit", *chain.split(), **kwargs)

    def state(self, chain, **kwargs):
        return json.loads(self.edit(chain + " state", **kwargs))

    def write(self, name, content):
        with open(os.path.join(self.path, name), "wb") as file:
            file.write(content.encode() if isinstance(content, str) else content)

    def read(self, name):
        with open(os.path.join(self.path, name), "rb") as file:
            return file.read()

    def test_skins_and_keys(self):
        self.write("good.skin", "[Colors]\nLane=#101010\n")
        out = self.call("skin", "good.skin")
        self.assertIn("Lane\t#101010\tgiven\t", out)
        self.assertIn("Cursor\t#F4F6F8\tdefault\t", out)
        self.write("bad.skin", "[Colors]\nLane=#10\nMargin=#FFFFFF\nText=#FFFFF0\n")
        self.call("skin", "bad.skin", status=1)
        self.assertIn('Lane is no colour: "#10".', self.err)
        self.assertIn("Text can hardly be read on Margin", self.err)
        self.call("skin", "a.wav", status=1)
        self.call("skin", "missing.skin", status=3)
        self.assertIn("trim\tTrim crop\tCtrl+T\tCtrl+T\n", self.call("keys"))
        self.call("keys", "set", "trim", "ctrl+c", status=1)
        self.assertIn('Ctrl+C belongs to "Copy"', self.err)
        self.call("keys", "set", "trim", "ctrl+c", options=("--yes",))
        keys = self.call("keys")
        self.assertIn("trim\tTrim crop\tCtrl+T\tCtrl+C\n", keys)
        self.assertIn("copy\tCopy\tCtrl+C\t\n", keys)
        self.call("keys", "set", "trim", "Esc", status=1)
        self.call("keys", "set", "no-such", "F2", status=2)
        self.call("keys", "reset", "copy", options=("--yes",))
        self.assertIn("trim\tTrim crop\tCtrl+T\t\n", self.call("keys"))
        self.call("keys", "reset")
        self.assertIn("trim\tTrim crop\tCtrl+T\tCtrl+T\n", self.call("keys"))

    def test_opened_and_saved_again_keeps_every_byte_of_the_samples(self):
        self.edit("open a.wav save b.wav open b.wav save c.wav")
        original = self.read("a.wav")
        self.assertEqual(self.read("b.wav")[12:len(original)], original[12:])
        self.assertEqual(self.read("c.wav"), self.read("b.wav"))

    def test_mp3_opens_by_content_and_is_saved_at_a_bit_rate(self):
        self.write("wrong.wav", (b"\xFF\xF3\x80\xC0" + bytes(204)) * 5)  # silence, MPEG-2 at 22050 Hz
        state = self.state("open wrong.wav")
        self.assertEqual([state[key] for key in ("rate", "channels", "bits", "frames")], [22050, 1, 16, 5 * 576])
        self.edit("open a.wav save b.mp3 bitrate=fast", status=2)
        self.write("three.mp3", "old")
        for chain in ("new 44100 3 16 100 save three.mp3", "open a.wav save three.mp3 bitrate=0"):
            self.edit(chain, status=1)
            self.assertIn("message: Unable to export mp3 file. Make sure lame encoder is installed", self.err)
            self.assertEqual(self.read("three.mp3"), b"old")

    def test_filters_and_rates_refuse_with_the_dialogs_words(self):
        for step, message in [
                ("rc lowpass 1.5", "Constant error"), ("rc highpass nan", "Constant error"),
                ("chebyshev lowpass 100001 0.5 4", "Frequency error"), ("chebyshev lowpass 1000 1.1 4", "Ripple error"),
                ("chebyshev highpass 1000 0.5 17", "Pole error"), ("band pass -1 0.5", "Frequency error"),
                ("band reject 1000 -1", "Bandwidth error"), ("fir lowpass 0 100", "Frequency error"),
                ("fir lowpass inf 100", "Frequency error"), ("resample 0", "Sample rate error!"),
                ("resample 8000", "Sampling frequency is already 8000 Hz"),
                ("set-rate 8000", "Sampling frequency is already 8000 Hz"), ("set-rate -3", "Sample rate error!"),
                ("resample 9000 type=10", "Band limited is just for down sampling, not for up sampling")]:
            self.edit("open a.wav " + step, status=1)
            self.assertEqual(self.err, f"message: {message}\n", step)
        self.edit("open a.wav rc bandpass 1", status=2)

    def test_filters_and_rates_name_their_steps(self):
        done = self.edit("open a.wav moving-average 3 rc lowpass 0.5 chebyshev highpass 1000 0.5 4 band reject 1000 1 "
                         "fir lowpass 9999 100 fir lowpass 500 2000 moving-average -1 resample 6000 set-rate 8000 "
                         "pitch 1 -3 pitch 0 0 pitch-fft 1.25 size=64 overlap=4 resample 9000 type=10 interpolation=off "
                         "history")
        self.assertEqual(done.split("\n")[:-1], [
            "Moving average filter", "RC Filter effect", "Chebyshev Filter effect", "High performance filter effect",
            "High performance filter effect", "High performance filter effect", "Moving average filter",
            "Resample to 6000 Hz", "Set sample rate to 8000 Hz", "Pitch shift 1 semitone -3 cent", "Pitch shift 1.25",
            "Resample to 9000 Hz"])

    def test_settings_are_checked_and_keep_the_file(self):
        self.assertIn("\n[Routing out]\nChannel00=0\nChannel01=1\nChannel02=-1\n", self.call("settings"))
        self.assertFalse(os.path.exists(os.path.join(self.path, "home", "plumetta.cfg")), "printing writes nothing")
        os.makedirs(os.path.join(self.path, "home"), exist_ok=True)
        self.write("home/plumetta.cfg", "; mine\n[Other]\nkey=1\n[General]\nMRUCount=17\nVSTBPM=90.5\n")
        self.call("settings", "set", "general", "mrucount", "16")
        for words, status in [("General MRUCount 0", 1), ("General VSTBPM inf", 1), ("General SelectionMultDivFactor -1", 0),
                              ("General AudioInBufferSize(sample) 9000", 0), ("General Bogus 1", 2), ("Bogus Loop 1", 2),
                              ("General Loop", 2), ("General Loop 1 1", 2), ("MidiInCommand MidiCommandPan 256", 1)]:
            self.call("settings", "set", *words.split(), status=status)
        text = self.call("settings")
        for line in ["MRUCount=16", "VSTBPM=90.5000000", "SelectionMultDivFactor=2.0000000",
                     "AudioInBufferSize(sample)=8192", "MidiCommandPan=41"]:
            self.assertIn("\n" + line + "\n", text)
        self.assertTrue(self.read("home/plumetta.cfg").startswith(b"; mine"))
        self.assertIn(b"key=1", self.read("home/plumetta.cfg"))

    def test_whole_call_is_parsed_before_the_first_step_runs(self):
        for chain in ["open a.wav save b.wav bogus", "open a.wav save b.wav select 1", "open a.wav save b.wav cursor x",
                      "open a.wav save b.wav active", "open a.wav save b.wav active solo=x", "", "open",
                      "open a.wav save b.wav marker 1 colour=red", "open a.wav save b.wav cursor 1.5"]:
            self.edit(chain, status=2)
            self.assertNotEqual(self.err, "")
            self.assertFalse(os.path.exists(os.path.join(self.path, "b.wav")), chain)
        self.call("bogus", status=2)
        self.call("edit", "history", options=["--bogus"], status=2)

    def test_refusals_stop_the_chain_or_are_passed_over(self):
        out = self.edit("open a.wav trim history state", status=1)
        self.assertEqual((out, self.err), ("", "message: Create selection first\n"))
        out = self.edit("open a.wav trim undo paste delete history", status=1, options=["--keep-going"])
        self.assertEqual(out, "Suppr\n")
        self.edit("open none.wav", status=3)
        self.assertIn("none.wav", self.err)
        self.edit("open none.wav new 8000 1 16 5 undo", status=3, options=["--keep-going"])
        self.edit("state", status=1)
        self.edit("new 8000 17 16 5", status=1)
        self.edit("open a.wav doc 1", status=1)
        self.assertEqual(self.err, "")

    def test_devices_are_listed_whether_or_not_there_are_any(self):
        lists = json.loads(self.call("devices", "--json"))
        self.assertEqual(list(lists), ["wave_out", "wave_in", "midi_in", "asio"])
        text = self.call("devices")
        for device in lists["wave_out"]:
            self.assertIn(f"  {device['index']}  {device['name']}\n", text)
        self.assertEqual(text.count("  none"), sum(not devices for devices in lists.values()))
        self.call("asio", "report", "99", "report.txt", status=1)
        self.assertEqual(self.err, "message: There is no ASIO driver 99.\n")

    def test_wrong_calls_are_refused_and_write_nothing(self):
        before = self.read("a.wav")
        for command, calls in [
                ("devices", ["--bogus"]), ("info", ["", "a.wav --bogus"]), ("batch", ["--list a"]), ("asio", ["", "probe", "report", "report 0", "report -1 a", "report 0 a b"]),
                ("midi", ["", "talk", "listen now", "listen --device", "listen --device x", "listen --device -1",
                          "listen --seconds", "listen --seconds nan", "listen --seconds -1"]),
                ("record", ["", "a.wav", "--seconds 1", "a.wav --seconds 0", "a.wav --seconds nan", "a.xyz --seconds 1",
                            "a.wav --seconds 1 --rate 88200", "a.wav --seconds 1 --bits 32", "a.wav b.wav --seconds 1",
                            "a.wav --seconds 1 --device -1"]),
                ("spectrum", ["", "a.wav", "a.wav --out", "a.wav --size 1000 --out o.fft", "a.wav --size 8 --out o.fft",
                              "a.wav --size 131072 --out o.fft", "a.wav --window 10 --out o.fft",
                              "a.wav b.wav --out o.fft", "a.wav --window hann --out o.fft",
                              "a.wav --select 5 --out o.fft", "--show", "a.wav --show o.fft"]),
                ("sonogram", ["", "a.wav", "a.wav --hop 0 --out o.csv", "a.wav --hop", "a.wav --size 24 --out o.csv"]),
                ("window", ["10 8", "-1 8", "Unknown 8", "1 -1", "1 x", "1", "1 8 9"])]:
            for call in calls:
                self.call(command, *call.split(), status=2)
        self.assertEqual((os.listdir(self.path), self.read("a.wav")), (["a.wav"], before))
        self.call("midi", "listen", "--device", "250", "--seconds", "0", status=1)
        # Sound libraries below may have something to say of their own before.
        self.assertTrue(self.err.strip().endswith("message: Unable to start midi in driver"), self.err)

    def test_positions_are_frames_or_times_and_clamped_where_they_select(self):
        self.assertEqual(self.state("open a.wav select 250ms 0.0125s cursor 9999")["selection"], [999, 100])
        self.assertEqual(self.state("open a.wav cursor -5 select -3 +7")["selection"], [0, 7])
        self.assertEqual(self.state("open a.wav cursor 9999")["cursor"], 999)
        self.assertEqual(self.state("open a.wav select-all")["selection"], [0, 999])
        self.assertEqual(self.state("open a.wav insert-silence 1000 0.1s")["frames"], 1800)

    def test_tempo_signals_and_their_refusals(self):
        self.assertEqual(self.edit("open a.wav select 0 999 bpm 2"), "960\n")  # 1000 frames of 8000 a second
        self.edit("open a.wav bpm 2", status=1)
        self.assertEqual(self.err, "message: Select file part first\n")
        for kind in [*range(13), 14]:
            self.edit(f"new 8000 2 16 0 synthesis {kind} seconds=0.5 save s{kind}.wav")
        self.assertEqual(len({self.read(f"s{kind}.wav") for kind in [*range(13), 14]}), 14)
        self.edit("open a.wav synthesis", status=2)
        out = self.edit("open a.wav gapper type=2 start=50 stop=9 stop-present=on fade-in=0 set-region 4 history")
        self.assertEqual(out, "Gapper effect\nSet region\n")

    def test_samples_print_dump_and_export(self):
        printed = self.edit("open a.wav print 999 998")
        values = [[float(v) for v in line.split("\t")] for line in printed.splitlines()]
        expected = [struct.unpack_from("<2h", self.read("a.wav"), 44 + 4 * f) for f in (998, 999)]
        self.assertEqual([[round(v * 32767) for v in row] for row in values], [list(row) for row in expected])
        self.edit("open a.wav dump d.raw export-text t.txt save-range 1 2 r.wav marker 500 split part")
        floats = struct.unpack("<2000f", self.read("d.raw"))
        self.assertAlmostEqual(floats[1997], values[0][1])
        self.assertEqual(len(self.read("t.txt").splitlines()), 1000)
        self.assertEqual(struct.unpack_from("<I", self.read("r.wav"), 40)[0], 8)
        self.assertEqual(struct.unpack_from("<I", self.read("part_M001.wav"), 40)[0], 500 * 4)
        self.edit("open a.wav save-range 1 1000 r.wav", status=1)
        self.edit("open a.wav save missing/b.wav", status=3)

    def test_raw_takes_are_inserted_as_recordings_are(self):
        self.write("take.raw", struct.pack("<4f", 0.5, 0.25, -0.5, -0.25))
        self.write("damaged.raw", struct.pack("<4f", 0.5, 0.25, float("nan"), float("inf")) + b"12345")
        state = self.state("new 8000 1 16 4 marker 1 marker 3 loop 2 3 envelope-reset import-raw take.raw 2 2")
        self.assertEqual((state["channels"], state["frames"], state["modified"], state["can_undo"]),
                         (2, 6, True, True))
        self.assertEqual([marker["position"] for marker in state["markers"]], [1, 5, 2])
        self.assertEqual((state["loops"][0]["start"], state["loops"][0]["end"]), (2, 5))
        self.assertEqual([points[-1]["position"] for points in state["envelope"]["channels"]], [5, 5])
        for document, take, printed in [
                ("new 8000 2 16 1", "take.raw 2 1", "0\t0\n0.5\t0.25\n-0.5\t-0.25\n"),
                ("new 8000 2 16 0", "take.raw 1 0", "0.5\t0.5\n0.25\t0.25\n-0.5\t-0.5\n-0.25\t-0.25\n"),
                ("new 8000 3 16 1", "take.raw 2 0", "0.5\t0.25\t0\n-0.5\t-0.25\t0\n0\t0\t0\n"),
                ("new 8000 1 16 1", "damaged.raw 2 0", "0.5\t0.25\n0\t0\n0\t0\n")]:
            self.assertEqual(self.edit(f"{document} import-raw {take} print 0 9"), printed, take)
        self.assertIn("ends in the middle of a frame", self.err)
        self.assertIn("became silence: 2.", self.err)
        self.assertEqual(self.edit("new 8000 2 16 1 import-raw take.raw 2 0 undo print 0 9 history"),
                         "0\t0\nRecord : 0.0 seconds\nUndo\n")
        for take, status in [("none.raw 2 0", 3), (". 2 0", 3), ("take.raw 2 2", 1), ("take.raw 2 -1", 1),
                             ("take.raw 3 0", 1), ("take.raw 0 0", 1), ("take.raw 17 0", 1), ("take.raw 2", 2)]:
            self.edit(f"new 8000 2 16 1 import-raw {take} print 0 9", status=status)

    def test_undo_in_files_leaves_nothing_behind(self):
        self.call("settings", "set", "General", "Undo in RAM", "0")
        state = self.state("open a.wav select 1 5 cut cut cut undo undo undo redo undo")
        self.assertEqual((state["frames"], state["can_undo"], state["can_redo"]), (1000, False, True))
        self.assertEqual(os.listdir(os.path.join(self.path, "home")), ["plumetta.cfg"])

    def test_bounce_writes_what_playing_would_hand_to_a_device(self):
        changes = "open a.wav quick Invert select 10 19 cursor 500 "
        before, after = self.state(changes), self.state(changes + "bounce b.wav rate=16000 channels=3 route=1,,0")
        self.assertEqual(after, before)
        state = self.state("open b.wav")
        self.assertEqual((state["rate"], state["channels"], state["bits"], state["format_tag"], state["frames"]),
                         (16000, 3, 32, 3, 20))
        self.assertEqual(self.state("open a.wav bounce c.wav loop=on frames=1s open c.wav")["frames"], 8000)
        self.assertEqual(self.state("new 8000 1 16 0 bounce c.wav open c.wav")["frames"], 0)
        self.edit("open a.wav bounce missing/c.wav", status=3)
        self.edit("open a.wav bounce d.wav channels=16 frames=2147483647", status=3)
        self.assertIn("too long", self.err)
        for wrong in ["loop=on", "loop=on frames=-1", "rate=0", "buffer=0", "channels=17", "channels=0", "frames=-2",
                      "volume=nan", "route=0,x", "route=-2", "route=" + ",".join("0" * 17), "loop=yes"]:
            self.edit("open a.wav bounce c.wav save d.wav bounce d.wav " + wrong, status=2)
            self.assertFalse(os.path.exists(os.path.join(self.path, "d.wav")), wrong)

    def test_spectrum_is_saved_and_shown(self):
        # Left at line 32 of a block of 256, right at line 64 and half as loud.
        tone = wav_bytes(4096, 2, sample=lambda i: round((32767, 16384)[i % 2] * math.sin(
            math.pi / 4 * (i // 2) * (1, 2)[i % 2])))
        self.write("tone.wav", tone)
        self.call("spectrum", "tone.wav", "--size", "256", "--window", "blackmann-harris", "--out", "o.fft")
        head = self.read("o.fft").decode().splitlines()[:7]
        self.assertEqual(head, ["version=1", "channel=2", "number=129", "fe=8000.000000", "freqstart=0.000000",
                                "freqstop=4000.000000", "mult=1000.000000"])
        shown = json.loads(self.call("spectrum", "--show", "o.fft"))
        values = shown.pop("values")
        self.assertEqual(shown, {"channels": 2, "number": 129, "fe": 8000, "freqstart": 0, "freqstop": 4000})
        self.assertAlmostEqual(values[32][0], 1, places=3)
        self.assertAlmostEqual(values[64][1], 0.5, places=3)
        self.assertLess(values[64][0], 1e-3)
        self.call("spectrum", "tone.wav", "--select", "0", "0.125s", "--out", "all.fft")
        self.assertEqual(json.loads(self.call("spectrum", "--show", "all.fft"))["number"], 2049)
        long_line = "version=1\nchannel=40\nnumber=1\nfe=8\nfreqstart=0\nfreqstop=4\n\n" + "0.25000000 " * 40
        self.write("long.fft", long_line)
        self.assertEqual(json.loads(self.call("spectrum", "--show", "long.fft"))["values"], [[0.25] * 40])

    def test_sonogram_is_saved(self):
        # Left 1 kHz, right twice as high and half as loud; both silent from frame 4096 on.
        def sample(i):
            frame, channel = i // 2, i % 2
            return round((32767, 16384)[channel] * math.sin(math.pi / 4 * frame * (1, 2)[channel])) * (frame < 4096)
        self.write("tone.wav", wav_bytes(6144, 2, sample=sample))
        self.call("sonogram", "tone.wav", "--size", "256", "--hop", "512", "--select", "512", "5631", "--out", "o.csv")
        head, *lines = [line.split(",") for line in self.read("o.csv").decode().splitlines()]
        self.assertEqual(head, ["frame", "channel"] + [f"{31.25 * i:g}" for i in range(129)])
        self.assertEqual([line[:2] for line in lines], [[str(512 * i), str(c)] for i in range(1, 11) for c in (0, 1)])
        for frame, channel, *values in lines:
            values, line = [float(value) for value in values], (32, 64)[int(channel)]
            if int(frame) < 4096:
                self.assertEqual(max(range(129), key=values.__getitem__), line)
                self.assertAlmostEqual(values[line], (1, 0.5)[int(channel)], places=3)
            elif int(frame) > 4096:
                self.assertEqual(set(values), {0})
        self.call("sonogram", "tone.wav", "--out", "missing/o.csv", status=3)
        self.call("sonogram", "none.wav", "--out", "o.csv", status=3)

    def test_spectrum_refuses_wrong_files(self):
        self.call("spectrum", "none.wav", "--out", "o.fft", status=3)
        self.call("spectrum", "a.wav", "--out", "missing/o.fft", status=3)
        self.write("short.fft", "version=1\nchannel=2\nnumber=1\n\n\n\nmult=1\n5 \n")
        for name in ["none.fft", "a.wav", "short.fft"]:
            self.assertEqual(self.call("spectrum", "--show", name, status=3), "")
            self.assertIn(name, self.err)

    def test_window_prints_coefficients_by_index_or_name(self):
        bartlett = [0, 2 / 7, 4 / 7, 2 - 6 / 7, 2 - 8 / 7, 2 - 10 / 7, 2 - 12 / 7, 0]
        for kind in ["1", "Bartlett", "bartLETT"]:
            self.assertEqual([float(line) for line in self.call("window", kind, "8").splitlines()], bartlett)
        self.assertEqual(self.call("window", "Gaussian 2.5", "4").splitlines()[2], "1")
        self.assertEqual(self.call("window", "0", "0"), "")

    def test_info_goes_on_after_a_file_that_fails(self):
        out = self.call("info", "none.wav", "a.wav", "--json", status=3)
        self.assertEqual(json.loads(out)["frames"], 1000)
        self.assertIn("16-bit PCM", self.call("info", "a.wav"))

    def test_open_takes_the_layout_of_raw_samples(self):
        self.write("a.bin", b"head" + struct.pack(">4H", 65535, 32768, 1, 65535))
        raw = "open a.bin rate=11025 channels=2 order=big sign=unsigned offset=4"
        self.assertEqual(self.edit(raw + " print 0 1"), "1\t0\n-1\t1\n")
        self.assertEqual(self.state(raw)["rate"], 11025)
        self.assertEqual(self.state("open a.bin")["frames"], 6)
        self.assertEqual(self.state("open a.wav")["channels"], 2)
        self.assertEqual(self.state("open a.wav channels=1 offset=44")["frames"], 2000)
        self.edit("open a.bin offset=13", status=3)
        for wrong in ["bits=12", "bits=16 sign=float", "order=middle", "channels=17", "rate=0", "offset=-1"]:
            self.assertEqual(self.edit("open a.wav state open a.bin " + wrong, status=2), "")

    def test_a_missing_codec_library_is_named(self):
        if len(COMMAND) > 1 or os.name == "nt":
            self.skipTest("libraries of Windows lie beside the program")
        # What stands ahead of the system's own folders is no library at all.
        for name, start, message in [("libvorbisfile.so.3", b"OggS", "Unable to find vorbis.dll"),
                                     ("libwavpack.so.1", b"wvpk", "Unable to find wavpackdll.dll")]:
            self.write(name, b"")
            self.write("x.dat", start)
            os.environ["LD_LIBRARY_PATH"] = self.path
            try:
                self.edit("open x.dat", status=3)
            finally:
                del os.environ["LD_LIBRARY_PATH"]
            self.assertEqual(self.err, "message: " + message + "\n")

    def test_what_a_format_can_not_hold_is_told_once_and_the_step_goes_on(self):
        told = "message: Saving {} as FLAC audio does not keep: markers"
        self.edit("open a.wav marker 5 save b.flac save c.flac save d.wav")
        self.assertEqual(self.err.splitlines(), [told.format("b.flac")])
        self.edit("new 44100 9 16 10 save e.flac", status=3)
        self.assertIn("FLAC holds at most 8 channels", self.err)
        self.assertNotIn("does not keep", self.err)
        wav = self.read("a.wav") + b"LIST\x0e\0\0\0INFOIART\x02\0\0\0me"
        self.write("t.wav", wav[:4] + struct.pack("<I", len(wav) - 8) + wav[8:])
        self.call("settings", "set", "General", "KeepForeignChunks", "1")
        self.assertEqual([chunk["id"] for chunk in self.state("open t.wav save u.wav open u.wav")["extra_chunks"]],
                         ["LIST", "ETTA"])
        self.assertEqual(self.err, "")

    def test_help_names_every_step(self):
        text = self.call("edit", "--help")
        for step in ["open FILE", "marker FRAME [label=TEXT]", "envelope-point POSITION VALUE CHANNEL [kind=0]"]:
            self.assertIn(step, text)
        self.assertIn("1.5.0.1", self.call(options=["--version"]))


if __name__ == "__main__":
    COMMAND = sys.argv[1:]
    unittest.main(argv=[sys.argv[0]])
