# SPDX-License-Identifier: GPL-3.0-or-later
"""random_chains.py COMMAND... [--seed N] [--chains N]: random chains of edit steps over random small files, through
plumetta-cli and through plain_model.py; whatever either prints must be the other's.  A chain that fails is made as
short as it still fails, and printed."""
import argparse
import json
import os
import random
import struct
import subprocess
import sys
import tempfile

from plain_model import Model, QUICK, f32

# Factors over exp, sin, cos and pow and the sum of DC removal may differ in their last place by the C library and the
# order of adding; that is up to two last places of a sample.  All other steps are compared to the bit.
ROUNDED = {"volume", "normalize", "truncate", *map(str, [*range(2, 6), *range(13, 19), 22, 23, 33])}
ROUNDED |= {QUICK[int(number)] for number in ROUNDED if number.isdigit()}

# Faults of the program that are known and not mended yet; a chain leaves them out.
KNOWN_FAULTS = [
    # The peak of fewer than 32 samples comes out as 1000.
    lambda doc, step: (step[0] == "normalize" or step[0] == "quick" and "Normalize" in
                       (step[1] if step[1] in QUICK else QUICK[int(step[1])])) and
    doc.channels * (doc.ordered()[1] - doc.ordered()[0] + 1 if doc.selected() else len(doc.frames)) < 32]


def wav(rng):
    channels, (bits, tag) = rng.randint(1, 5), rng.choice([(8, 1), (16, 1), (24, 1), (32, 1), (32, 3)])
    frames = rng.choice([1, 2, 3, rng.randint(4, 30), rng.randint(4, 30), rng.randint(30, 300)])
    top, shape = 2 ** (bits - 1), rng.choice(["noise", "ramp", "flat", "full"])
    data = b""
    for i in range(frames * channels):
        x = {"noise": rng.uniform(-1, 1), "ramp": i / (frames * channels), "flat": 0.5,
             "full": rng.choice([-1, 1, 0])}[shape]
        whole = max(-top, min(top - 1, round(x * top)))
        data += struct.pack("<f", x * 1.25) if tag == 3 else bytes([whole + 128]) if bits == 8 else \
            whole.to_bytes(bits // 8, "little", signed=True)
    place = lambda: rng.randrange(frames)
    chunks = [(b"fmt ", struct.pack("<HHIIHH", tag, channels, 8000, 1000 * bits * channels, bits // 8 * channels, bits)),
              (b"LIST", b"odd"), (b"data", data)]
    if rng.random() < 0.3:
        loops = [(i, rng.randint(0, 1), *sorted([place(), place()]), 0, i) for i in range(rng.choice([1, 1, 1, 3]))]
        chunks.append((b"smpl", struct.pack("<9I", 0, 0, 0, rng.randint(1, 99), 0, 0, 0, len(loops), 0) +
                       b"".join(struct.pack("<6I", *loop) for loop in loops)))
    if rng.random() < 0.3:
        cues = [(rng.randint(1, 9), place()) for _ in range(rng.randint(1, 4))]
        chunks.append((b"cue ", struct.pack("<I", len(cues)) + b"".join(
            struct.pack("<II4sIII", i, p, b"data", 0, 0, p) for i, p in cues)))
    if rng.random() < 0.3 and frames > 1:
        body = b"\0\0\0\0PLUMETTA" + bytes(12)
        for c in range(channels):
            middle = sorted(rng.sample(range(1, frames - 1), min(frames - 2, rng.randint(0, 4))))
            body += struct.pack("<2sHIBBI", b"CH", c, len(middle) + 2, 1, 0, 0) + b"".join(
                struct.pack("<ifBB", p, rng.random(), rng.randint(0, 3), 0) for p in [0, *middle, frames - 1])
        chunks.append((b"otom", body))
    body = b"WAVE" + b"".join(name + struct.pack("<I", len(b)) + b + bytes(len(b) % 2) for name, b in chunks)
    return b"RIFF" + struct.pack("<I", len(body)) + body


def random_step(rng, model):
    doc = model.doc
    n = len(doc.frames)
    at = lambda: rng.choice([rng.randint(0, max(0, n - 1))] * 9 + [0, n, n + 3, -1])
    channel = lambda: rng.choice([rng.randrange(doc.channels)] * 9 + [doc.channels])
    level = lambda: rng.choice(["-3", "-0.5", "6", "0", "-12.25"])
    marker = lambda: rng.randint(0, len(doc.markers)) if rng.random() < 0.2 else rng.randrange(max(1, len(doc.markers)))
    quick = rng.choice([q for q in range(34) if q not in (30, 31, 32)])
    steps = [
        (12, lambda: ["select", at(), at()]), (1, lambda: ["select-all"]), (1, lambda: ["select-none"]),
        (8, lambda: ["cursor", at()]), (2, lambda: ["active", "all"]),
        (5, lambda: ["active", f"{rng.choice(['solo', 'off', 'on', 'toggle'])}={channel()}"]),
        (6, lambda: ["copy"]), (4, lambda: ["cut"]), (8, lambda: ["paste"]), (5, lambda: ["paste-mix"]),
        (3, lambda: ["paste-mix-markers"]), (1, lambda: ["paste-new"]), (3, lambda: ["trim"]), (5, lambda: ["delete"]),
        (10, lambda: ["undo"]), (7, lambda: ["redo"]), (4, lambda: ["insert-silence", at(), rng.randint(0, 20)]),
        (25, lambda: ["quick", rng.choice([quick, QUICK[quick]])]), (5, lambda: ["normalize", level()]),
        (9, lambda: ["channel", rng.randint(0, 15), f"index={channel()}"]),
        (5, lambda: ["volume", level()]), (3, lambda: ["truncate", rng.choice(["-6", "-3.3", "-0.25"])]),
        (4, lambda: ["bit-depth", *rng.choice([(8,), (16,), (24,), (32,), (32, "format=3")]), "dithering=off",
                     rng.choice(["quantization=on", "quantization=off"])]),
        (5, lambda: ["marker", at(), *rng.choice([[], ["label=x"]])]), (2, lambda: ["marker-move", marker(), at()]),
        (2, lambda: ["marker-delete", marker()]), (1, lambda: ["marker-clear"]), (4, lambda: ["loop", at(), at()]),
        (2, lambda: ["marker-select", marker()]), (1, lambda: ["loop-clear"]), (1, lambda: ["envelope-reset"]),
        (10, lambda: ["envelope-point", at(), rng.choice(["0.0", "0.3", "1.0"]), channel(),
                      f"kind={rng.randint(0, 3)}"]),
        (2, lambda: ["envelope-remove", rng.randint(0, 3), channel()]), (1, lambda: ["envelope-clear"]),
        (2, lambda: ["envelope-invert", channel()]), (1, lambda: ["new", "8000", rng.randint(1, 3), "16", rng.randint(0, 9)]),
        (1, lambda: ["open", rng.choice(sorted(model.files))]), (2, lambda: ["doc", rng.randint(0, len(model.documents))]),
        (1, lambda: ["stats"])]
    weights, makers = zip(*steps)
    while True:
        step = [str(word) for word in rng.choices(makers, weights)[0]()]
        if not any(fault(doc, step) for fault in KNOWN_FAULTS):
            return step


class Chain:
    def __init__(self, steps, files, replace, ram, yes):
        self.steps, self.files, self.replace, self.ram, self.yes = steps, files, replace, ram, yes

    def script(self, model):
        """The chain with a look after each step, then everything undone; the caller runs each step in the model."""
        def look():
            yield ["state"]
            if model.doc.frames:
                yield ["print", "0", str(len(model.doc.frames) - 1)]
        for step in self.steps:
            yield step
            yield from look()
        for i, document in enumerate(model.documents):
            yield ["doc", str(i)]
            yield from [["undo"]] * len(document.undo)
            yield from look()
        yield ["history"]

    def fault(self, command, folder):
        """What is wrong, or None.  Rounding is forgiven a step at a time: the model goes on with the program's samples."""
        model, words = Model(self.files, self.replace, self.yes), []
        for step in self.script(model):
            if any(known(model.doc, step) for known in KNOWN_FAULTS if model.doc):
                return None
            words += step
            model.run(step)
        done = subprocess.run([*command, "--home", f"home{self.replace}{self.ram}", "--keep-going",
                               "--yes" if self.yes else "--no", "edit", *words],
                              cwd=folder, stdin=subprocess.DEVNULL, capture_output=True, timeout=120)
        out, err = done.stdout.decode().split("\n"), done.stderr.decode()
        model, changer, looks = Model(self.files, self.replace, self.yes), None, {}
        for step in self.script(model):
            model.out.clear()
            model.run(step)
            its, out = out[:len(model.out)], out[len(model.out):]
            if step[0] == "state":
                looks.setdefault(id(model.doc), []).append([])
            elif step[0] == "print":
                looks[id(model.doc)][-1] = its
                if its != model.out and may_round(changer):
                    model.doc.frames = adopted(model.doc.frames, its)
                    model.out.clear()
                    model.run(step)
            else:
                changer = step
            for mine, theirs in zip(model.out, its):
                if not same(mine, theirs):
                    return f"after {changer}: the model says\n  {mine}\nthe program\n  {theirs}"
        if out != [""]:
            return f"lines left over: {out}"
        if (err, done.returncode) != (model.err, model.status):
            return f"expected status {model.status} and\n{model.err}\nnot {done.returncode} and\n{err}"
        unlike = any(samples[0] != samples[-1] for samples in looks.values())
        return "undoing everything doesn't bring the first samples back" if unlike else None


def may_round(step):
    return step[1] in ROUNDED if step[0] == "quick" else step[0] in ROUNDED


def adopted(frames, lines):
    """The program's samples where they are as near as rounding explains, else the model's."""
    theirs = [[f32(float(word)) for word in line.split("\t")] for line in lines]
    near = all(abs(a - b) <= max(abs(a), abs(b)) * 2**-22 for x, y in zip(frames, theirs) for a, b in zip(x, y))
    return theirs if near else frames


def same(mine, its):
    if mine != its and mine.startswith("{"):
        mine, its = json.loads(mine), json.loads(its)
        for points in (its["envelope"] or {"channels": []})["channels"]:
            for point in points:
                point["value"] = f32(point["value"])
    return mine == its


def shrink(chain, faulty):
    i = len(chain.steps) - 1
    while i > 0:
        shorter = Chain(chain.steps[:i] + chain.steps[i + 1:], chain.files, chain.replace, chain.ram, chain.yes)
        if faulty(shorter):
            chain = shorter
        i = min(i, len(chain.steps)) - 1
    return chain


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("command", nargs="+")
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--chains", type=int, default=150)
    parser.add_argument("--max-faults", type=int, default=1)
    args = parser.parse_args()
    faults = 0
    with tempfile.TemporaryDirectory() as folder:
        for replace in (0, 1):
            for ram in (0, 1):
                for key, value in (("PasteReplace", replace), ("Undo in RAM", ram)):
                    subprocess.run([*args.command, "--home", f"home{replace}{ram}", "settings", "set", "General", key,
                                    str(value)], cwd=folder, check=True)
        for number in range(args.chains):
            rng = random.Random(f"{args.seed}/{number}")
            files = {}
            for name in ("a.wav", "b.wav"):
                path = os.path.join(os.path.realpath(folder), name)
                files[name] = (path, wav(rng))
                with open(path, "wb") as file:
                    file.write(files[name][1])
            chain = Chain([["open", "a.wav"]], files, rng.randint(0, 1), rng.randint(0, 1), rng.random() < 0.5)
            model = Model(files, chain.replace, chain.yes)
            model.run(chain.steps[0])
            for _ in range(rng.randint(5, 60)):
                chain.steps.append(random_step(rng, model))
                model.run(chain.steps[-1])
            if chain.fault(args.command, folder):
                chain = shrink(chain, lambda c: c.fault(args.command, folder))
                print(f"chain {number} of seed {args.seed}, PasteReplace={chain.replace}, Undo in RAM={chain.ram}:")
                print("  edit", " ".join(f'"{w}"' if " " in w else w for step in chain.steps for w in step))
                print(" ", chain.fault(args.command, folder), flush=True)
                faults += 1
                if faults >= args.max_faults:
                    return 1
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
