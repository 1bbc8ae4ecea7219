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
ROUNDED = {"volume", "normalize", "truncate", "synthesis", "gapper", *(QUICK[q] for q in [*range(2, 6), *range(13, 19), 22, 23, 33])}


def title(step):
    """What a step is called, whether a quick effect is given by number or by name."""
    return (QUICK[int(step[1])] if step[1].isdigit() else step[1]) if step[0] == "quick" else step[0]


def wav(rng):
    channels, (bits, tag) = rng.randint(1, 5), rng.choice([(8, 1), (16, 1), (24, 1), (32, 1), (32, 3)])
    frames = rng.choice([1, 2, 3, rng.randint(4, 30), rng.randint(4, 30), rng.randint(30, 300)])
    top, shape = 2 ** (bits - 1), rng.choice(["noise", "ramp", "flat", "full"])
    data = b""
    for i in range(frames * channels):
        x = {"noise": rng.uniform(-1, 1), "ramp": i / frames / channels, "flat": 0.5,
             "full": rng.choice([-1, 1, 0])}[shape]
        whole = max(-top, min(top - 1, round(x * top)))
        data += struct.pack("<f", x * 1.25) if tag == 3 else bytes([whole + 128]) if bits == 8 else \
            whole.to_bytes(bits // 8, "little", signed=True)
    form = struct.pack("<HHIIHH", tag, channels, 8000, 1000 * bits * channels, bits // 8 * channels, bits)
    chunks = [(b"fmt ", form), (b"LIST", b"odd"), (b"data", data)]
    if rng.random() < 0.5:
        loops = [(i, i % 2, *sorted(rng.choices(range(frames), k=2)), 0, i) for i in range(rng.choice([1, 3, 3]))]
        head = struct.pack("<9I", 0, 0, 0, rng.randint(1, 99), 0, 0, 0, len(loops), 0)
        chunks.append((b"smpl", head + b"".join(struct.pack("<6I", *loop) for loop in loops)))
    if rng.random() < 0.3:
        cues = [struct.pack("<II4sIII", rng.randint(1, 9), rng.randrange(frames), b"data", 0, 0, 0) for _ in range(3)]
        chunks.append((b"cue ", struct.pack("<I", len(cues)) + b"".join(cues)))
    if rng.random() < 0.3 and frames > 1:
        body = b"\0\0\0\0PLUMETTA" + bytes(12)
        for c in range(channels):
            places = sorted({0, frames - 1, *rng.choices(range(frames), k=4)})
            body += struct.pack("<2sHIBBI", b"CH", c, len(places), 1, 0, 0) + b"".join(
                struct.pack("<ifBB", p, rng.random(), rng.randint(0, 3), 0) for p in places)
        chunks.append((b"otom", body))
    body = b"WAVE" + b"".join(name + struct.pack("<I", len(b)) + b + bytes(len(b) % 2) for name, b in chunks)
    return b"RIFF" + struct.pack("<I", len(body)) + body


def random_step(rng, model):
    doc, pick, upto = model.doc, rng.choice, rng.randint
    n = len(doc.frames)
    at = pick([upto(0, max(0, n - 1))] * 12 + [0, n, n + 3, -1])
    other = pick([upto(0, max(0, n - 1)), n + 1])
    channel = pick([rng.randrange(doc.channels)] * 9 + [doc.channels])
    marker = rng.randrange(max(1, len(doc.markers) + pick([0, 0, 0, 1])))
    level, quick = pick(["-3", "-0.5", "6", "0", "-12.25"]), pick([*range(30), 33])
    operation = pick([upto(0, 15), upto(0, 15), 0, *([11, 13, 14] if doc.channels == 16 else [])])
    weighted = [
        (12, ["select", at, other]), (1, ["select-all"]), (1, ["select-none"]), (8, ["cursor", at]),
        (2, ["active", "all"]), (5, ["active", f"{pick(['solo', 'off', 'on', 'toggle'])}={channel}"]),
        (6, ["copy"]), (4, ["cut"]), (8, ["paste"]), (5, ["paste-mix"]), (3, ["paste-mix-markers"]),
        (1, ["paste-new"]), (3, ["trim"]), (5, ["delete"]), (10, ["undo"]), (7, ["redo"]),
        (4, ["insert-silence", at, upto(0, 20)]), (25, ["quick", pick([quick, QUICK[quick]])]),
        (9, ["channel", operation, f"index={channel}"]), (5, ["normalize", level]), (5, ["volume", level]),
        (3, ["truncate", pick(["-6", "-3.3", "-0.25"])]),
        (4, ["bit-depth", *pick([(8,), (16,), (24,), (32,), (32, "format=3")]), "dithering=off",
             f"quantization={pick(['on', 'off'])}"]),
        (5, ["marker", at, *pick([[], ["label=x"]])]), (2, ["marker-move", marker, at]), (1, ["marker-clear"]),
        (2, ["marker-delete", marker]), (2, ["marker-select", marker]), (4, ["loop", at, other]), (1, ["loop-clear"]),
        (10, ["envelope-point", at, pick(["0.0", "0.3", "1.0"]), channel, f"kind={upto(0, 3)}"]),
        (2, ["envelope-remove", upto(0, 3), channel]), (2, ["envelope-invert", channel]), (1, ["envelope-reset"]),
        (1, ["envelope-clear"]), (1, ["envelope-create"]), (2, ["sample", at, channel, pick(["0.3", "-1.0"])]),
        (3, ["envelope-move", upto(0, 3), channel, at, pick(["0.0", "0.7"])]),
        (2, ["envelope-kind", upto(0, 3), channel, upto(0, 3)]), (1, ["envelope-point-reset", upto(0, 3), channel]),
        (2, ["new", 8000, pick([1, 2, 3, 16, 16]), 16, upto(0, 9)]),
        (1, ["open", pick(["a.wav", "b.wav"])]), (2, ["doc", upto(0, len(model.documents))]),
        (2, ["auto-trim", pick(["-40", "-6", "-1.5", "20"])]),
        (6, ["silence-remover", pick(["-40", "-6", "-1.5", "20"]), pick(["0.0", "0.0004", "0.002"])]),
        (2, ["auto-region", pick(["-40", "-6", "-1.5"]), pick(["0.0", "0.0004", "0.002"]), f"position={upto(0, 2)}"]),
        (2, ["set-region", upto(0, 9)]), (2, ["marker-bpm", pick(["10000", "7531.5"]),
                                              f"measure={pick(['1', '0.25', '0.01'])}"]),
        (3, ["synthesis", 0, f"hz={pick(['440', '1234.5', '3999', '4000'])}", f"volume={pick(['0.5', '1.25'])}",
             f"seconds={pick(['0.0', '0.001', '0.0042'])}", f"position={upto(0, 2)}", f"mix={upto(0, 2)}"]),
        (3, ["gapper", f"type={upto(-1, 2)}", f"start={pick(['90', '333.3'])}", f"stop={pick(['40', '700'])}",
             f"stop-present={pick(['on', 'off'])}", f"fade-in={pick(['0', '25'])}", f"fade-out={pick(['10', '80'])}"]),
        (1, ["stats", f"levels={pick(['on', 'off'])}"])]
    weights, steps = zip(*weighted)
    return [str(word) for word in rng.choices(steps, weights)[0]]


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
        """What is wrong, or None.  Rounding is forgiven step by step: the model goes on with the program's samples."""
        model, words = Model(self.files, self.replace, self.yes), []
        for step in self.script(model):
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
                if its != model.out and title(changer) in ROUNDED:
                    model.doc.frames = adopted(model.doc.frames, its)
                    model.out.clear()
                    model.run(step)
            else:
                changer = step
            for mine, theirs in zip(model.out, its):
                if not same(mine, theirs):
                    return f"after {changer}: the model says\n  {mine}\nthe program\n  {theirs}"
        if out != [""]:
            return f"lines missing or left over: {out}"
        if (err, done.returncode) != (model.err, model.status):
            return f"expected status {model.status} and\n{model.err}\nnot {done.returncode} and\n{err}"
        unlike = any(samples[0] != samples[-1] for samples in looks.values())
        return "undoing everything doesn't bring the first samples back" if unlike else None

    def shrunk(self, command, folder):
        chain = self
        for i in range(len(self.steps) - 1, 0, -1):
            steps = chain.steps[:i] + chain.steps[i + 1:]
            shorter = Chain(steps, self.files, self.replace, self.ram, self.yes)
            chain = shorter if shorter.fault(command, folder) else chain
        return chain


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


def random_chain(rng, folder):
    files = {name: (os.path.join(folder, name), wav(rng)) for name in ("a.wav", "b.wav")}
    for path, content in files.values():
        with open(path, "wb") as file:
            file.write(content)
    chain = Chain([["open", "a.wav"]], files, rng.randint(0, 1), rng.randint(0, 1), rng.random() < 0.5)
    model = Model(files, chain.replace, chain.yes)
    model.run(chain.steps[0])
    for _ in range(rng.randint(5, 60)):
        step = random_step(rng, model)
        chain.steps.append(step)
        model.run(step)
    return chain


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("command", nargs="+")
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--chains", type=int, default=150)
    args = parser.parse_args()
    with tempfile.TemporaryDirectory() as folder:
        folder = os.path.realpath(folder)
        for number in range(4):
            for key, value in (("PasteReplace", number // 2), ("Undo in RAM", number % 2)):
                subprocess.run([*args.command, "--home", f"home{number // 2}{number % 2}", "settings", "set",
                                "General", key, str(value)], cwd=folder, check=True)
        for number in range(args.chains):
            chain = random_chain(random.Random(f"{args.seed}/{number}"), folder)
            if chain.fault(args.command, folder):
                chain = chain.shrunk(args.command, folder)
                print(f"chain {number} of seed {args.seed}, PasteReplace={chain.replace}, Undo in RAM={chain.ram}:")
                print("  edit", " ".join(f'"{w}"' if " " in w else w for step in chain.steps for w in step))
                print(" ", chain.fault(args.command, folder))
                return 1
    print(f"{args.chains} chains agree")
    return 0


if __name__ == "__main__":
    sys.exit(main())
