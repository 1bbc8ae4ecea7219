#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""The rack through the command line. Usage: rack.py PLUGIN_FOLDER ENDING [EMULATOR] PLUMETTA_CLI"""
import json
import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

FOLDER, ENDING, *PROGRAM = sys.argv[1:]
SILENCE = ["new", "44100", "2", "32", "5000", "tag=3"]


def plugin(name):
    return str(pathlib.Path(FOLDER) / (name + ENDING))


class Rack(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)

    def edit(self, *steps, status=0, fault="none", options=()):
        """Standard output and standard error, as lines."""
        call = [*PROGRAM, "--home", self.folder.name + "/home", *options, "edit", *steps]
        environment = {**os.environ, "PLUMETTA_TEST_FAULT": fault}
        ran = subprocess.run(call, cwd=self.folder.name, env=environment, capture_output=True, text=True, timeout=120)
        self.assertEqual(ran.returncode, status, ran.stderr)
        return ran.stdout.splitlines(), ran.stderr.splitlines()

    def state(self, *steps):
        return json.loads(self.edit(*steps, "rack-state")[0][-1])["positions"]

    def test_state(self):
        self.assertEqual(self.state(), [])
        first, second = self.state("rack-add", plugin("gain"), "rack-add", plugin("swap"), "rack-add", plugin("bank"),
                                   "rack-remove", "1", "rack-program", "2", "3", "rack-param", "2", "1", "1",
                                   "rack-mute", "0", "on")
        self.assertEqual((first["position"], first["slot"], first["name"], first["uid"], first["muted"]),
                         (0, 0, "Test gain", "PtGn", True))
        self.assertEqual(first["parameters"], [{"name": "Gain", "value": 0.25, "display": "0.50", "label": "x"}])
        self.assertEqual((second["position"], second["slot"], second["program"]), (2, 2, 3))
        self.assertEqual([p["value"] for p in second["parameters"]], [0.375, 1, 0.875])

    def test_apply_and_bounce(self):
        out, _ = self.edit(*SILENCE, "select", "100", "4000", "rack-add", plugin("bank"), "rack-param", "0", "0", "0.5",
                           "rack-apply", "print", "99", "100", "print", "3999", "4000", "history", "undo", "print",
                           "100", "100", "bounce", "b.wav", "rack=on", "whole=on", "open", "b.wav", "print", "0", "0")
        self.assertEqual(out, ["0\t0", "0.5\t0.5", "0.5\t0.5", "0\t0", "VST effect applied", "0\t0", "0.5\t0.5"])

    def test_refusals(self):
        gain = ["rack-add", plugin("gain")]
        for steps, message in [
                (["rack-remove", "0"], ""), (["rack-mute", "0", "on"], ""), ([*gain, "rack-program", "0", "1"], ""),
                ([*gain, "rack-param", "0", "1", "0.5"], ""), ([*gain, "rack-param", "0", "0", "nan"], ""),
                ([*gain, "rack-remove", "-1"], ""), (["rack-add", plugin("no_entry")], "message: Unable to load: "),
                (["rack-add", ""], "message: Unable to load: "),
                ([*SILENCE, "rack-apply"], "message: There is no active plug-in"),
                ([*SILENCE, *gain, "rack-mute", "0", "on", "rack-apply"], "message: There is no active plug-in")]:
            with self.subTest(steps=steps):
                _, errors = self.edit(*steps, status=1)
                self.assertTrue("\n".join(errors).startswith(message) and bool(errors) == bool(message), errors)

    def test_relative_paths_are_the_callers(self):
        (pathlib.Path(self.folder.name) / ("own" + ENDING)).write_bytes(pathlib.Path(plugin("gain")).read_bytes())
        self.edit(*SILENCE, "rack-add", plugin("bank"), "rack-add", "own" + ENDING, "save", "here.wav")
        self.assertTrue((pathlib.Path(self.folder.name) / "here.wav").exists())

    def test_one_that_hangs_costs_two_seconds_and_no_sample(self):
        for step in (["rack-apply"], ["bounce", "b.wav", "rack=on"]):
            out, errors = self.edit(*SILENCE, "rack-add", plugin("bank"), "rack-param", "0", "0", "1", "rack-add",
                                    plugin("misbehaving"), *step, "print", "9", "9", "history", "rack-apply", "print",
                                    "9", "9", status=1, fault="hang-process", options=["--keep-going"])
            self.assertEqual(out, ["0\t0", "1\t1"])
            self.assertEqual(len(errors), 1, errors)
            self.assertIn("Test misbehaving does not answer", errors[0])

    def test_a_batch_makes_nothing_of_a_chain_that_has_lost_one(self):
        folder = pathlib.Path(self.folder.name)
        (folder / "in").mkdir()
        ones = ["new", "44100", "1", "16", "3000", "quick", "29"]
        self.edit(*ones, "save", "in/a.wav", "save", "in/b.wav", "rack-add", plugin("gain"), "rack-add",
                  plugin("misbehaving"), "rack-save", "two.sor", "rack-remove", "0", "rack-save", "one.sor")
        for chain in ("one.sor", "two.sor"):
            ran = subprocess.run([*PROGRAM, "--home", "home", "batch", "VST Chain", "in", "out", "--chain", chain],
                                 cwd=folder, env={**os.environ, "PLUMETTA_TEST_FAULT": "hang-process"},
                                 capture_output=True, text=True, timeout=60)
            self.assertEqual(ran.stdout.count("Unable to apply the function"), 2, ran.stdout)
            self.assertEqual(list((folder / "out").iterdir()), [])


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
