#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Chains, presets, banks, scans and the list through the command line.
Usage: plugin_files.py PLUGIN_FOLDER ENDING [EMULATOR] PLUMETTA_CLI"""
import json
import os
import pathlib
import shutil
import struct
import subprocess
import sys
import tempfile
import unittest

from own_words import own_words

FOLDER, ENDING, *PROGRAM = sys.argv[1:]


class PluginFiles(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        self.path = pathlib.Path(self.folder.name)
        (self.path / "p").mkdir()
        for name in ["bank", "delay", "gain", "misbehaving", "synth"]:
            shutil.copy(pathlib.Path(FOLDER) / (name + ENDING), self.path / "p")

    def call(self, *words, status=0, fault="none", options=()):
        """Standard output; what is said is kept in self.said."""
        environment = {**os.environ, "PLUMETTA_TEST_FAULT": fault}
        ran = subprocess.run([*PROGRAM, "--home", "home", *options, *words], cwd=self.path, env=environment,
                             stdin=subprocess.DEVNULL, capture_output=True, text=True, timeout=120)
        self.assertEqual(ran.returncode, status, ran.stdout + ran.stderr)
        self.said = own_words(ran.stderr).splitlines()
        return ran.stdout

    def edit(self, chain, **kwargs):
        return self.call("edit", *chain.split(), **kwargs)

    def rack(self, chain, **kwargs):
        return json.loads(self.edit(chain + " rack-state", **kwargs))["positions"]

    def test_a_scan_fills_the_list(self):
        self.call("vst", "scan", "p", fault="crash-open")
        self.assertEqual(self.said[-1], "message: 3 plugs detected in p")
        self.assertIn("misbehaving", self.said[-2])
        names = [plugin["name"] for plugin in json.loads(self.call("vst", "list", "--json"))]
        self.assertEqual(names, ["Test bank", "Test delay", "Test gain"])
        self.call("vst", "scan", "p", "--instruments", "--add")
        self.assertEqual(self.said, ["message: 7 plugs detected in p"])
        self.assertEqual(len(self.call("vst", "list").splitlines()), 7)
        self.assertEqual(json.loads(self.call("vst", "info", "6", "--json"))["uid"], "PtSy")
        self.call("vst", "info", "test gain")
        self.call("vst", "info", "p/none" + ENDING, status=1)
        self.call("vst", "scan", "none", status=3)
        for words in ["vst", "vst scan", "vst scan p q", "vst scan p --json", "vst list x", "vst info", "vst what"]:
            self.call(*words.split(), status=2)
        self.assertEqual([p["name"] for p in self.rack("rack-add 0 rack-add 1")], ["Test bank", "Test delay"])

    def test_a_chain_is_saved_and_loaded(self):
        library = "p/gain" + ENDING
        before = self.rack(f"rack-add {library} rack-add {library} rack-remove 0 rack-add p/bank{ENDING} rack-program 0 2 "
                           "rack-param 1 0 0.75 rack-mute 1 on rack-save c.sor")
        after = self.rack("rack-load c.sor")
        self.assertTrue(self.said[0].startswith("message: The chain loads plug-ins"), self.said)
        for plugin in [*before, *after]:
            del plugin["slot"]
        self.assertEqual(after, before)
        chain = (self.path / "c.sor").read_bytes()
        (self.path / "cut.sor").write_bytes(chain[:-1])
        (self.path / "later.sor").write_bytes(chain[:8] + struct.pack("<i", 2) + chain[12:])
        (self.path / "missing.sor").write_bytes(chain.replace(b"gain" + ENDING.encode(), b"none" + ENDING.encode()))
        keep = "rack-load c.sor "
        for name, status, loaded in [("cut", 1, 2), ("none", 1, 2), ("later", 0, 2), ("missing", 0, 1)]:
            self.assertEqual(len(self.rack(f"{keep} rack-load {name}.sor", status=status,
                                           options=["--keep-going"])), loaded, name)
        self.assertTrue(self.said[-1].startswith("message: Unable to load: "), self.said)
        self.assertEqual(len(self.rack(f"{keep} rack-load {library}")), 2)
        self.assertEqual(self.said[-1], "question: File format seems to be old one, do you want to continue?")
        self.edit(f"rack-load {library}", options=["--yes"], status=1)
        self.edit("rack-save missing/c.sor", status=3)
        self.edit("new 44100 2 16 100 save s.wav")
        self.call("play", "s.wav", "--chain", "none.sor", status=1)
        self.call("play", "s.wav", "--chain", status=2)

    def test_presets_and_banks(self):
        two = f"rack-add p/bank{ENDING} rack-add p/gain{ENDING} "
        self.edit(two + "rack-param 0 1 1 preset-save 0 a.fxp bank-save 0 b.fxb")
        self.assertEqual(len((self.path / "a.fxp").read_bytes()), 68)
        self.assertEqual(len((self.path / "b.fxb").read_bytes()), 156 + 4 * 68)
        loaded = self.rack(two + "rack-program 0 3 preset-load 0 a.fxp")[0]
        self.assertEqual([p["value"] for p in loaded["parameters"]], [0, 1, 0.5])
        loaded = self.rack(two + "bank-load 0 b.fxb rack-program 0 0")[0]
        self.assertEqual(loaded["parameters"][1]["value"], 1)
        for step, status, said in [("preset-load 1 a.fxp", 1, []), ("bank-load 1 b.fxb", 1, ["message: Wrong identifier"]),
                                   ("preset-load 5 a.fxp", 1, []), ("preset-load -1 a.fxp", 1, []),
                                   ("preset-save 0 no/a.fxp", 1, ["message: Unable to save fxp file"]),
                                   ("bank-save 0 no/b.fxb", 1, ["message: Unable to save fxb file"])]:
            self.edit(two + step, status=status)
            self.assertEqual(self.said, said, step)
        self.edit(two + "preset-load 0 none.fxp", status=3)
        self.assertIn("none.fxp", self.said[0])


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0]])
