#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Every plug-in of this machine through the host, each in a process of its own: real.py CLI EDITOR_PROBE [PATTERN...]
Scans the folders where Debian's packages put them; of each plug-in found, or of those whose path holds a PATTERN, it
works offline and in real time, saves and loads the state as chain, preset and bank, and opens the editor on the display
that there is. Prints a line a plug-in and ends with 1 when the program has crashed, hung or refused somewhere.

  scan    seconds are the whole scan's, on the first line
  apply   the loudest sample of what the chain makes of half a second of noise
  chain preset bank
          "same" when a second save after loading has the same bytes, "lives" when already two saves without any loading
          between them differ, "differs" otherwise, "empty" for a bank without programs; with the highest difference of a parameter's value
  play    half a second through a sound server of its own
  editor  what editor_probe says"""
import json
import math
import os
import pathlib
import random
import struct
import subprocess
import sys
import tempfile
import time

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "audio" / "pulse"))
from pulse_server import Server  # noqa: E402

CLI, PROBE = (os.path.abspath(word) for word in sys.argv[1:3])
FOLDERS = ["/usr/lib/vst", "/usr/lib/lxvst", "/usr/lib/x86_64-linux-gnu/vst"]
STATES = [("chain", "sor"), ("preset", "fxp"), ("bank", "fxb")]
PATIENCE = 90  # seconds for one call where nothing else is going on


class Failure(Exception):
    pass


def write_noise(path, frames=22050, rate=44100):
    chance = random.Random(1)
    samples = struct.pack(f"<{2 * frames}h", *(chance.randint(-8000, 8000) for _ in range(2 * frames)))
    head = struct.pack("<4sI4s4sIHHIIHH4sI", b"RIFF", 36 + len(samples), b"WAVE", b"fmt ", 16, 1, 2, rate, 4 * rate, 4, 16,
                       b"data", len(samples))
    path.write_bytes(head + samples)


class Bench:
    def __init__(self, folder):
        self.folder = pathlib.Path(folder)
        self.server = Server(folder)
        # The sound server's own surroundings, so that nothing of the person's is touched, and a display for editors.
        self.environment = {**self.server.environment, "DISPLAY": os.environ.get("DISPLAY", ""),
                            "XAUTHORITY": os.environ.get("XAUTHORITY", ""), "LIBGL_ALWAYS_SOFTWARE": "1"}
        write_noise(self.folder / "noise.wav")

    def run(self, *command, status=(0,)):
        """What it prints and says. Fails on a crash, on a hang, and on another status."""
        try:
            ran = subprocess.run(command, cwd=self.folder, env=self.environment, stdin=subprocess.DEVNULL,
                                 capture_output=True, timeout=PATIENCE * max(1, os.getloadavg()[0] / os.cpu_count()))
        except subprocess.TimeoutExpired:
            raise Failure("hangs") from None
        out, said = ran.stdout.decode(errors="replace"), ran.stderr.decode(errors="replace")
        if ran.returncode < 0:
            raise Failure(f"crash, signal {-ran.returncode}")
        if ran.returncode not in status:
            raise Failure(f"status {ran.returncode}: {said.strip().splitlines()[-1:] or ''}")
        return out, said

    def cli(self, *words, status=(0,)):
        return self.run(CLI, "--home", "home", "--yes", *words, status=status)

    def edit(self, *words):
        return self.cli("edit", *map(str, words))[0]

    # ---- What is tried --------------------------------------------------------------------------------------

    def apply(self, path):
        self.edit("open", "noise.wav", "rack-add", path, "rack-apply", "dump", "out.raw")
        raw = (self.folder / "out.raw").read_bytes()
        samples = struct.unpack(f"<{len(raw) // 4}f", raw)
        if not all(map(math.isfinite, samples)):
            raise Failure("no numbers")
        return f"{max(map(abs, samples)):.2f}"

    def play(self, path):
        self.edit("rack-add", path, "rack-save", "play.sor")
        _, said = self.cli("play", "noise.wav", "--chain", "play.sor")
        told = [line for line in said.splitlines() if "does not answer" in line or "no numbers" in line]
        return told[0] if told else "ok"

    def save_and_load(self, path):
        """One word a kind of state."""
        def values(line):
            return [p["value"] for p in json.loads(line)["positions"][0]["parameters"]]

        saves = ["rack-save", "{}.sor", "preset-save", "0", "{}.fxp", "bank-save", "0", "{}.fxb"]
        twice = [word.format(name) for name in ("first", "again") for word in saves]
        # A value that a switch or a choice can have too.
        change = ["rack-param", "0", str(self.parameters // 2), "1"] if self.parameters else []
        saved = self.edit("rack-add", path, *change, "rack-state", *twice)
        loaded = self.edit("rack-load", "first.sor", "rack-state", "rack-save", "second.sor",
                           "rack-clear", "rack-add", path, "preset-load", "0", "first.fxp", "rack-state",
                           "preset-save", "0", "second.fxp",
                           "rack-clear", "rack-add", path, "bank-load", "0", "first.fxb", "rack-state",
                           "bank-save", "0", "second.fxb").splitlines()
        words = []
        for (_, ending), line in zip(STATES, loaded, strict=True):
            first, again, second = ((self.folder / f"{name}.{ending}").read_bytes() for name in ("first", "again", "second"))
            word = "same" if second == first else "lives" if again != first else "differs"
            off = max((abs(a - b) for a, b in zip(values(saved), values(line), strict=True)), default=0)
            if ending == "fxb" and not self.programs:
                word, off = "empty", 0  # a bank holds programs, and there are none
            words.append(word + (f" {off:.2g}" if off > 1e-6 else ""))
        return words

    def editor(self, path):
        if not self.environment["DISPLAY"]:
            return "not tried"
        out, _ = self.run(PROBE, path, "1", status=(0, 77))
        lines = [line for line in out.splitlines() if line.endswith(" colours")]  # others are the plug-in's own talk
        return lines[0] if lines else "none"

    # ---- All of it ------------------------------------------------------------------------------------------

    def scan(self):
        started, said = time.time(), []
        for i, folder in enumerate(filter(os.path.isdir, FOLDERS)):
            words = ["--recurse", "--instruments"] + (["--add"] if i else [])
            said += self.cli("vst", "scan", folder, *words)[1].splitlines()
        plugins = json.loads(self.cli("vst", "list", "--json")[0])
        print(f"{len(plugins)} plug-ins in {time.time() - started:.1f} s", *said, sep="\n", flush=True)
        return plugins

    def row(self, plugin):
        path, cells, bad = plugin["path"], [], 0
        self.parameters, self.programs = plugin["parameters"], plugin["programs"]
        for trial in (self.apply, self.save_and_load, self.play, self.editor):
            try:
                cell = trial(path)
            except Failure as failure:
                cell, bad = f"FAILED ({failure})", bad + 1
            cells += cell if isinstance(cell, list) else [cell] if trial != self.save_and_load else [cell] * 3
        name = f"{plugin['name'] or pathlib.Path(path).name}{' [instrument]' if plugin['synth'] else ''}"
        pins = f"{plugin['inputs']}>{plugin['outputs']}"
        print(f"{name:36.36} {pins:>7} {plugin['parameters']:>4} " + " | ".join(f"{cell:9}" for cell in cells), flush=True)
        return bad


def main():
    with tempfile.TemporaryDirectory() as folder:
        bench = Bench(folder)
        try:
            plugins = bench.scan()
            patterns = sys.argv[3:]
            chosen = [p for p in plugins if not patterns or any(word in p["path"] for word in patterns)]
            print(f"{'plug-in':36} {'in>out':>7} {'par.':>4} "
                  + " | ".join(f"{word:9}" for word in ("apply", "chain", "preset", "bank", "play", "editor")))
            rows = [bench.row(plugin) for plugin in chosen]
            print(f"{rows.count(0)} of {len(rows)} plug-ins without a failure")
            return 1 if not rows or any(rows) else 0
        finally:
            bench.server.end()


if __name__ == "__main__":
    sys.exit(main())
