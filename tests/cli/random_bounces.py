# SPDX-License-Identifier: GPL-3.0-or-later
"""random_bounces.py COMMAND... [--seed N] [--bounces N]: random small files played through `bounce` with random
settings, and once more the plain way, sample after sample; every float must be the same."""
import argparse
import math
import os
import random
import struct
import subprocess
import sys
import tempfile

from plain_model import f32, read_wav
from random_chains import wav


def gain(points, length, n):
    """Twice the curve, but exactly at a point its own value; nothing beyond the file."""
    if n >= length:
        return 0.0
    for (p0, y0, kind), (p1, y1, _) in zip(points, points[1:]):
        if n == p0:
            return y0
        if p0 < n < p1:
            t = (n - p0) / (p1 - p0)
            return 2 * f32([y0 + (y1 - y0) * t, y0 + (y1 - y0) * (1 - math.cos(math.pi * t)) / 2, y0,
                            y0 + (y1 - y0) * t * t][kind])
    return points[-1][1]


class Player:
    def __init__(self, wave, active, ends, cursor, o):
        self.wave, self.active, self.o = wave, active, o
        self.lo, self.hi = min(ends), max(ends)
        self.p = 0 if o["whole"] else self.lo if self.lo != self.hi else cursor
        if o["loop"] and not o["whole"] and self.lo == self.hi:
            self.lo, self.hi = 0, max(len(wave.frames) - 1, 0)
        self.playing = True

    def sample(self, output):
        """What an output hears at the present position; None beyond the file."""
        n = int(self.p)
        if n >= len(self.wave.frames):
            return None
        source = self.o["route"][output] if output < len(self.o["route"]) else -1
        if self.wave.channels == 1 and source == 1:
            source = 0
        if not 0 <= source < self.wave.channels or not self.active[source]:
            return 0.0
        x = self.wave.frames[n][source]
        if self.o["automation"] and self.wave.envelope:
            x = f32(x * gain(self.wave.envelope[source], len(self.wave.frames), n))
        return max(-f32(0.999), min(f32(0.999), x))

    def advance(self):
        convert = self.o["resampling"] and self.wave.rate != self.o["rate"]
        self.p += self.wave.rate / self.o["rate"] if convert else 1
        if self.o["whole"] or self.lo == self.hi or int(self.p) <= self.hi:
            return
        if self.o["loop"]:
            self.p = self.lo
        else:
            self.playing, self.p = False, self.hi

    def play(self):
        """Up to the last frame heard, or as many frames as asked for; a block that has begun is played to its end."""
        out, silence = [], [0.0] * self.o["channels"]
        while self.o["frames"] is None or len(out) < self.o["frames"]:
            alive = self.playing
            for _ in range(self.o["buffer"]):
                heard = [self.sample(k) for k in range(self.o["channels"])] if alive else silence
                if None in heard:
                    self.playing, heard = False, silence
                    if self.o["frames"] is None:
                        return out
                out.append([f32(x * f32(self.o["volume"])) for x in heard])
                if alive:
                    self.advance()
                if self.o["frames"] is None and not self.playing:
                    return out
        return out[:self.o["frames"]]


def options(rng, n):
    o = {"rate": rng.choice([8000, 44100, 11025, 5000, 16000]), "buffer": rng.choice([1, 7, 64, 2048]),
         "channels": rng.choice([1, 2, 2, 3, 16]), "loop": rng.random() < 0.5, "whole": rng.random() < 0.3,
         "volume": rng.choice([1.0, 0.3, 2.5, 0.0]), "automation": rng.random() < 0.7,
         "resampling": rng.random() < 0.7, "frames": rng.choice([None, rng.randint(0, 3 * n)]),
         "route": [rng.randint(-1, 5) for _ in range(rng.randint(1, 5))] if rng.random() < 0.6 else [0, 1]}
    if o["loop"] and not o["whole"] and o["frames"] is None:
        o["frames"] = rng.randint(1, 4 * n)
    return o


def words_of(o):
    words = {bool: lambda v: "on" if v else "off", list: lambda v: ",".join(map(str, v))}
    return [f"{key}={words.get(type(value), str)(value)}" for key, value in o.items() if value is not None]


def fault(rng, command, folder):
    content = bytearray(wav(rng))
    struct.pack_into("<I", content, 24, rng.choice([8000, 8000, 44100, 22050, 96000, 7919]))
    with open(os.path.join(folder, "a.wav"), "wb") as file:
        file.write(content)
    wave = read_wav(bytes(content))
    n, active = len(wave.frames), [True] * wave.channels
    cursor, ends = rng.randrange(n), rng.choice([(0, 0), (rng.randrange(n), rng.randrange(n))])
    steps = ["open", "a.wav", "select", *map(str, ends), "cursor", str(cursor)]
    if rng.random() < 0.4:
        muted = rng.randrange(wave.channels)
        active[muted] = False
        steps += ["active", f"off={muted}"]
    o = options(rng, n)
    steps += ["bounce", "b.wav", *words_of(o)]
    subprocess.run([*command, "--home", "home", "edit", *steps], cwd=folder, check=True, timeout=120)
    with open(os.path.join(folder, "b.wav"), "rb") as file:
        its = read_wav(file.read())
    expected = Player(wave, active, ends, cursor, o).play()
    if (its.rate, its.channels, its.bits, its.tag) != (o["rate"], o["channels"], 32, 3):
        return " ".join(steps) + ": the format is wrong"
    if its.frames != expected:
        at = next((i for i, (a, b) in enumerate(zip(its.frames, expected)) if a != b), "the end")
        return f"{' '.join(steps)}: {len(its.frames)} frames, expected {len(expected)}; they part at {at}"
    return None


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("command", nargs="+")
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--bounces", type=int, default=150)
    args = parser.parse_args()
    with tempfile.TemporaryDirectory() as folder:
        for number in range(args.bounces):
            if wrong := fault(random.Random(f"{args.seed}/{number}"), args.command, folder):
                print(f"bounce {number} of seed {args.seed}: {wrong}")
                return 1
    print(f"{args.bounces} bounces agree")
    return 0


if __name__ == "__main__":
    sys.exit(main())
