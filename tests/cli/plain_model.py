# SPDX-License-Identifier: GPL-3.0-or-later
"""The editor once more, the slow and plain way: a document is a list of frames, a frame a list of numbers, an undo
step a deep copy.  random_chains.py holds plumetta-cli against it."""
import copy
import json
import math
import struct
from array import array
from functools import reduce

FADES = ["linear", "exponential", "sinus", "square", "cubic"]
QUICK = [f"Fade {way} {curve}" for curve in FADES for way in ("in", "out")] + [
    "Mute", "Reverse", "Invert", "DC remover", "Normalize 0 dB", "Normalize -0.3 dB", "Normalize -1 dB",
    "Normalize -3 dB", "Normalize -6 dB", "Vocal remover", "Volume -6 dB", "Volume +6 dB", "Truncate -6 dB",
    "Truncate -12 dB", "Interpolate", "Swap channel", "Crossfade loop 100", "Crossfade loop 50",
    "Set dirac at cursor", "Set step at cursor", "Synthesis: impulse train", "Synthesis: frequency sweep exp",
    "Synthesis: frequency sweep linear", "Volume envelop applied"]
CHANNEL = ["Convert to mono: mix active channels", "Convert to mono: mix all channels"] + [
    f"Convert to mono: {which}" for which in (
        "left only", "right only", "center only", "none", "back left only", "back right only",
        "auxiliary left only", "auxiliary right only")] + [
    "Convert to stereo", "Channel insertion", "Channel deleted", "Channel inserted", "Channel cloned",
    "Channel swapped"]


def f32(x):
    return array("f", [x])[0]


def sum32(values):
    return reduce(lambda total, value: f32(total + value), values, 0.0)


def half_up(x):
    return math.floor(x + 0.5)


def gain_of(level):
    return f32(10 ** (level / 20))


class Refused(Exception):
    """A step that can't be done; its text, if any, is shown as a message."""


class Buffer:
    def __init__(self, rate=44100, channels=1, bits=16, frames=0, tag=1):
        self.rate, self.channels, self.bits, self.tag = rate, channels, bits, tag
        self.frames = [[0.0] * channels for _ in range(frames)]
        self.markers, self.loops, self.note = [], [], 0  # [id, position, label] · [start, end, type, play count]
        self.envelope, self.length = [], 0  # a list of [position, value, kind] a channel; empty when inactive

    def add_marker(self, position, label=None):
        self.markers.append([len(self.markers) + 1, position, label])

    def set_loop(self, a, b):
        if not self.loops:
            self.loops, self.note = [[0, 0, 0, 0]], 60
        self.loops[0][:2] = [min(a, b), max(a, b)]

    def flat(self):
        return [[0, 0.5, 0], [self.length - 1, 0.5, 0]]

    def reset_envelope(self):
        self.length = len(self.frames)
        self.envelope = [self.flat() for _ in range(self.channels)]

    def stretch_envelope(self):
        if self.envelope:
            self.length = len(self.frames)
            for points in self.envelope:
                points[-1][0] = self.length - 1

    def become(self, other):
        """A whole copy; what isn't content (name, selection, active channels) stays."""
        for name in ("rate", "channels", "bits", "tag", "frames", "markers", "loops", "envelope", "length"):
            setattr(self, name, copy.deepcopy(getattr(other, name)))
        self.note = other.note

    def delete(self, a, b):
        n = b - a + 1
        follow = lambda p: p if p < a else p - n if p > b else None
        moved = [[follow(start), follow(end), kind, count] for start, end, kind, count in self.loops]
        first_cut = moved and None in moved[0][:2]
        self.loops = [] if first_cut else [loop for loop in moved if None not in loop[:2]]
        self.markers = [[i, follow(p), label] for i, p, label in self.markers if follow(p) is not None]
        del self.frames[a:b + 1]
        if self.envelope:
            self.length = len(self.frames)
            for c, (first, *middle, last) in enumerate(self.envelope):
                middle = [[follow(p), value, kind] for p, value, kind in middle if follow(p) is not None]
                last[0] = self.length - 1
                # Positions stay distinct: a point that would meet the first or the last one goes.
                self.envelope[c] = [first, *(p for p in middle if 0 < p[0] < last[0]), last]

    def make_room(self, frames, at):
        """at may be the frame count, as silence may go to the very end."""
        self.frames[at:at] = frames
        follow = lambda p: p + len(frames) if p > at else p
        self.markers = [[i, follow(p), label] for i, p, label in self.markers]
        self.loops = [[follow(start), follow(end), kind, count] for start, end, kind, count in self.loops]
        self.envelope = [[[follow(p), value, kind] for p, value, kind in points] for points in self.envelope]
        self.stretch_envelope()

    def insert(self, other, at):
        if not self.frames:
            return self.become(other)
        wide = self.channels if other.channels == 1 else 1
        self.make_room([frame * wide for frame in other.frames], at)
        self.take_annotations(other, at)

    def take_annotations(self, other, at):
        for _, position, label in other.markers:
            self.add_marker(position + at, label)
        if other.loops and not self.loops:
            self.loops = [[start + at, end + at, kind, count] for start, end, kind, count in other.loops]
            self.note = other.note

    def mix(self, other, at):
        at = max(0, min(at, len(self.frames) - 1))
        missing = at + len(other.frames) - len(self.frames)
        self.frames += [[0.0] * self.channels for _ in range(missing)]
        for i, frame in enumerate(other.frames):
            self.frames[at + i] = [f32(a + b) for a, b in zip(self.frames[at + i], frame)]
        self.stretch_envelope()
        self.take_annotations(other, at)


def read_wav(data):
    """A document's content from a WAV file: the chunks one after the other, in any order of the annotations."""
    wave, at = Buffer(), 12
    while at + 8 <= len(data):
        name, size = data[at:at + 4], struct.unpack_from("<I", data, at + 4)[0]
        body, at = data[at + 8:at + 8 + size], at + 8 + size + size % 2
        if name == b"fmt ":
            wave.tag, wave.channels, wave.rate, _, _, wave.bits = struct.unpack_from("<HHIIHH", body)
        elif name == b"data":
            step, values = wave.bits // 8, []
            for i in range(0, len(body), step):
                whole = int.from_bytes(body[i:i + step], "little", signed=step > 1)
                values.append(struct.unpack_from("<f", body, i)[0] if wave.tag == 3 else f32(
                    (whole - 128) / 127 if step == 1 else whole / (32767 if step == 2 else 2**(8 * step - 1))))
            wave.frames = [values[i:i + wave.channels] for i in range(0, len(values), wave.channels)]
        elif name == b"cue ":
            wave.markers = [[*struct.unpack_from("<II", body, i), None] for i in range(4, size, 24)]
        elif name == b"smpl":
            wave.note = struct.unpack_from("<I", body, 12)[0]
            loops = [struct.unpack_from("<6I", body, i) for i in range(36, size, 24)]
            wave.loops = [[start, end, kind, count] for _, kind, start, end, _, count in loops]
        elif name == b"otom":
            wave.length, i = len(wave.frames), 24
            for _ in range(wave.channels):
                n, i = struct.unpack_from("<I", body, i + 4)[0], i + 14
                points = [list(struct.unpack_from("<ifB", body, i + 10 * k)) for k in range(n)]
                wave.envelope, i = wave.envelope + [points], i + 10 * n
    return wave


class Document(Buffer):
    def __init__(self, file="~tmp.wav", title="Untitled", **content):
        super().__init__(**content)
        self.file, self.title, self.modified = file, title, False
        self.active = [1] * 16
        self.selection, self.cursor, self.selected_marker = [0, 0], 0, None
        self.undo, self.redo = [], []

    def snapshot(self):
        step = Buffer()
        step.become(self)
        step.view = (list(self.selection), self.cursor)
        return step

    def restore(self, step):
        self.become(step)
        self.selection, self.cursor = list(step.view[0]), self.inside(step.view[1])

    def inside(self, p):
        return max(0, min(p, len(self.frames) - 1))

    def ordered(self):
        return sorted(map(self.inside, self.selection))

    def selected(self):
        return self.selection[0] != self.selection[1]

    def extent(self):
        return self.ordered() if self.selected() else [0, len(self.frames) - 1]

    def has_marker(self, i):
        return 0 <= i < len(self.markers)

    def drop_markers(self, a, b):
        del self.markers[a:b]
        self.selected_marker = None

    def can_add_point(self, p, value, c, kind="0"):
        free = p not in [point[0] for point in self.envelope[c]] if self.envelope and c < self.channels else \
            p < len(self.frames) - 1
        return 0 < p < len(self.frames) and c < self.channels and int(kind) < 4 and free

    def add_point(self, p, value, c, kind="0"):
        if not self.envelope:
            self.reset_envelope()
        self.envelope[c] = sorted([*self.envelope[c], [p, f32(value), int(kind)]])

    def has_point(self, i, c):
        return 0 <= c < len(self.envelope) and 0 <= i < len(self.envelope[c])

    def can_move_point(self, i, c, p, value):
        if not self.has_point(i, c):
            return False
        before, here, behind = [None, *(point[0] for point in self.envelope[c]), None][i:i + 3]
        return p == here if None in (before, behind) else before < p < behind

    def invert_envelope(self, c):
        self.envelope[c] = [[p, f32(1 - value), kind] for p, value, kind in self.envelope[c]]

    def trim(self):
        a, b = self.ordered()
        self.delete(b + 1, len(self.frames) - 1)
        self.delete(0, a - 1)
        self.selection, self.cursor = [0, 0], 0

    def insert_silence(self, at, n):
        self.make_room([[0.0] * self.channels for _ in range(n)], at)
        self.selection, self.cursor = [at, at + n - 1], at

    def live(self):
        return [c for c in range(self.channels) if self.active[c]]

    # The routines; a and b are an inclusive range.  Those that name a channel list take active channels only.
    def change(self, a, b, rule, channels=None):
        for frame in self.frames[a:b + 1]:
            for c in self.live() if channels is None else channels:
                frame[c] = f32(rule(frame[c]))

    def amplify(self, a, b, gain, channels=None):
        self.change(a, b, lambda s: s * gain, channels)

    def convert(self, bits, format="1", quantization="on", dithering="off"):
        quantize = {8: lambda s: (int(s * 127 + 128.5) - 128) / 127, 16: lambda s: int(s * 32767) / 32767}.get(bits)
        if quantization == "on" and quantize:
            self.change(0, len(self.frames), lambda s: quantize(max(-1.0, min(1.0, s))), range(self.channels))
        self.bits, self.tag = bits, int(format)

    def fade(self, a, b, curve, inward):
        if a == b:
            return
        for f in range(a, b + 1):
            y = (f - a if inward else b - f) / (b - a)
            curves = [y, (math.exp(y) - 1) / (f32(math.e) - 1), 1 - math.sin(math.pi / 2 * (1 - y)), y * y, y * y * y]
            self.amplify(f, f, f32(curves[curve]))

    def normalize(self, a, b, level):
        values = [frame[c] for frame in self.frames[a:b + 1] for c in self.live()]
        peak = max(max(values), -min(values)) if values else 0.0
        self.amplify(a, b, f32(gain_of(level) / peak) if peak else 0.0)

    def clip(self, level):
        top, last = gain_of(level), len(self.frames) - 1
        if last:
            self.change(0, last, lambda s: top if s > 0 and s >= top else -top if s < 0 and s <= -top else s)

    def remove_dc(self, a, b):
        for c in self.live() if a != b else []:
            mean = f32(math.fsum(frame[c] for frame in self.frames[a:b + 1]) / (b - a))
            self.change(a, b, lambda s: s - mean, [c])

    def reverse(self, a, b):
        old = copy.deepcopy(self.frames[a:b + 1])
        for frame, mirrored in zip(self.frames[a:b + 1], reversed(old)):
            for c in self.live():
                frame[c] = mirrored[c]

    def interpolate(self, a, b):
        for c in self.live() if a != b else []:
            start = self.frames[a][c]
            step = f32(f32(self.frames[b][c] - start) / (b - a))
            for k in range(b - a + 1):
                self.frames[a + k][c] = f32(start + f32(k * step))

    def crossfade_loop(self, fraction):
        if not self.loops or self.loops[0][0] == self.loops[0][1]:
            return
        start, end = sorted(self.loops[0][:2])
        n = math.floor(min(end - start, start) * fraction + 0.5)
        self.fade(end - n, end, 0, False)
        for k in range(n):
            target, source = self.frames[end - n + k], self.frames[start - n + k]
            gain = f32(k / max(1, n - 1))  # a single frame blends nothing in
            target[:] = [f32(t + f32(s * gain)) for t, s in zip(target, source)]

    def apply_envelope(self):
        for c, points in enumerate(self.envelope):
            for (p0, v0, kind), (p1, v1, _) in zip(points, points[1:]):
                for f in range(p0, min(p1, len(self.frames))):
                    t = (f - p0) / (p1 - p0)
                    bend = [t, (1 - math.cos(math.pi * t)) / 2, 0, t * t][kind]
                    self.amplify(f, f, f32(2 * (v0 + (v1 - v0) * bend)), [c])
            last = len(self.frames) - 1
            self.amplify(last, last, f32(2 * points[-1][1]), [c])

    def quick(self, number):
        a, b = self.extent()
        if number in (10, 20, 21, 25) and not self.selected():
            a = b = self.cursor
        if number < 10:
            self.fade(a, b, number // 2, number % 2 == 0)
        elif number in (10, 12, 20, 21):
            self.amplify(a, b, {10: 0.0, 12: -1.0, 20: 0.5, 21: 2.0}[number])
        elif 14 <= number <= 18:
            self.normalize(a, b, (0.0, -0.3, -1.0, -3.0, -6.0)[number - 14])
        elif number == 24:
            self.interpolate(a, b if self.selected() else a)
        elif number in (11, 13):
            (self.reverse if number == 11 else self.remove_dc)(a, b)
        elif number in (19, 25) and self.channels == 2:
            for frame in self.frames[a:b if number == 19 else b + 1]:
                frame[:] = [f32(frame[0] - frame[1])] * 2 if number == 19 else frame[::-1]
        elif number in (22, 23):
            self.clip(-6.0 if number == 22 else -12.0)
        elif number in (26, 27):
            self.crossfade_loop(1.0 if number == 26 else 0.5)
        elif number == 28:
            self.change(self.cursor, self.cursor, lambda s: 1.0)
        elif number == 29:
            self.change(0, self.cursor - 1, lambda s: 0.0)
            self.change(self.cursor, len(self.frames), lambda s: 1.0)
        elif number == 33:
            self.apply_envelope()

    # What a level parts from silence
    def loud(self, level, a, b):
        return [f for f in range(a, b + 1) if any(abs(x) >= gain_of(level) for x in self.frames[f])]

    def cut_out(self, ranges):
        for a, b in reversed(ranges):
            self.delete(a, b)
        if ranges:
            self.selection, self.cursor = [0, 0], 0

    def silences(self, level, a, b, shortest):
        edges = [a - 1, *self.loud(level, a, b), b + 1]
        return [(p + 1, q - 1) for p, q in zip(edges, edges[1:]) if q - p - 1 >= max(shortest, 1)]

    def outer_silences(self, level):
        last = len(self.frames) - 1
        return [(a, b) for a, b in self.silences(level, 0, last, 1) if a == 0 or b == last]

    def auto_regions(self, level, seconds, position="0"):
        a, b = self.extent()
        gap, loud = max(1, half_up(seconds * self.rate)), self.loud(level, a, b)
        for before, p, behind in zip([-math.inf, *loud], loud, [*loud[1:], math.inf]):
            self.mark([p] * (p - before > gap and position != "1") + [p] * (behind - p > gap and position != "0"))

    def mark(self, positions):
        for p in positions:
            if p not in [position for _, position, _ in self.markers]:
                self.add_marker(p)

    def set_regions(self, count):
        a, b = self.extent()
        starts = [a + (b - a + 1) * i // count for i in range(count + 1)]
        self.mark(p for p in starts if p < len(self.frames))

    def mark_beats(self, bpm, measure="1.0"):
        a, b = self.extent()
        spacing = float(measure) * 60 / bpm * self.rate
        beats = [a + half_up(i * spacing) for i in range(b - a + 1)]
        self.mark(p for p in beats if p <= b)

    def sine(self, _, hz="1000", seconds="1", volume="1.0", position="0", mix="0"):
        n = half_up(float(seconds) * self.rate)
        at = {"0": 0, "1": len(self.frames), "2": self.inside(self.cursor)}[position]
        if mix == "0":
            self.make_room([[0.0] * self.channels for _ in range(n)], at)
        else:
            self.frames += [[0.0] * self.channels for _ in range(at + n - len(self.frames))]
            self.stretch_envelope()
        for i in range(n):
            s = f32(f32(float(volume)) * f32(math.sin(2 * math.pi * (float(hz) * i / self.rate % 1))))
            self.change(at + i, at + i, lambda x: x + s if mix == "1" else s)
        self.selection, self.cursor = [at, at + n - 1], self.inside(at)

    def gate(self, type="-1", start="4", stop="8", fade_in="10", fade_out="10", **present):
        first, whole = float(start), len(self.frames) / self.rate
        bend = (float(stop) - first) / whole if present.get("stop_present") == "on" else 0
        edge = {"-1": lambda t: t, "0": lambda t: (1 - math.cos(math.pi * t)) / 2,
                "1": lambda t: math.expm1(t) / (math.e - 1), "2": lambda t: t * t}[type]
        for f in range(len(self.frames)):
            t = f / self.rate
            way, ms = (first * t + bend * t * t / 2) % 1 * 2, 0.001 * 2 * (first + bend * t)
            rise, fall = [min(1, max(float(fade) / 100, ms)) for fade in (fade_in, fade_out)]
            gain = 0.0 if way >= 1 else min(edge(min(1, way / rise)), edge(min(1, (1 - way) / fall)))
            self.change(f, f, lambda x: x * f32(gain) if gain else 0.0)

    def channel(self, op, index):
        frames, here = self.frames, self.envelope
        if op < 10:
            mixed = self.live() if op == 0 else range(self.channels)
            self.frames = [[f32(sum32(f[c] for c in mixed) / len(mixed)) if op < 2 else f[op - 2]] for f in frames]
            self.channels, self.envelope = 1, []
        elif op == 15:
            other = (index + 1) % self.channels
            for row in [*frames, here] if here else frames:
                row[index], row[other] = row[other], row[index]
        elif op == 12:
            self.channels -= 1
            for row in [*frames, here] if here else frames:
                del row[index]
        else:  # a new channel is silent, a cloned one follows its original
            at = {13: index, 14: index + 1}.get(op, self.channels)
            for f in frames:
                f.insert(at, f[index] if op in (10, 14) else 0.0)
            self.channels += 1
            if here and op == 10:
                self.reset_envelope()
            elif here:
                here.insert(at, copy.deepcopy(here[index]) if op == 14 else self.flat())


def truncate_name(level):
    return "Truncate %ddB" % struct.unpack_from("<i", struct.pack("<d", level))  # what %d finds of a double


NOTHING_LEFT = "Everything lies below this level: nothing would be left"


def can_remove(d, level, seconds):
    a, b = d.extent()
    left = len(d.frames) - sum(q - p + 1 for p, q in d.silences(level, a, b, half_up(seconds * d.rate)))
    return bool(d.frames) and (left > 0 or NOTHING_LEFT)


def can_part(d, count):
    a, b = d.extent()
    if not 1 <= count <= 10000:
        return "The number of regions must lie between 1 and 10000"
    return bool(d.frames) and (count <= b - a + 1 or "There are fewer frames than regions")


def can_beat(d, bpm, measure="1.0"):
    close = float(measure) * 60 / bpm * d.rate < 1
    return bool(d.frames) and (not close or "The markers would stand less than a frame apart")


def can_sound(d, _, hz="1000", seconds="1", **__):
    if float(hz) >= d.rate / 2:
        return "The frequency must lie between 0.001 Hz and half the sample rate"
    return half_up(float(seconds) * d.rate) > 0 or "At least one frame is needed"


# Steps that are one edit: history name, when it can be done, what it does.
EDITS = {
    "trim": ("Trim crop", lambda d: d.selected() or "Create selection first", Document.trim),
    "insert-silence": ("Insert silence", lambda d, at, n: 0 <= at <= len(d.frames) and n > 0, Document.insert_silence),
    "normalize": (lambda level: f"Normalize {level:2.2f}dB", lambda d, level: True,
                  lambda d, level: d.normalize(*d.extent(), level)),
    "volume": (lambda level: f"Volume {level:2.2f}dB", lambda d, level: True,
               lambda d, level: d.amplify(*d.ordered(), gain_of(level))),
    "truncate": (truncate_name, lambda d, level: True, lambda d, level: d.clip(level)),
    "sample": ("Sample moved", lambda d, p, c, value: 0 <= p < len(d.frames) and c < d.channels,
               lambda d, p, c, value: d.frames[p].__setitem__(c, f32(value))),
    "bit-depth": ("Bit depth convertion", lambda d, *_, **__: True, Document.convert),
    "marker": ("Marker point created", lambda d, p, **_: p >= 0 and d.frames,
               lambda d, p, label=None: d.add_marker(d.inside(p), label)),
    "marker-move": ("Marker moved", lambda d, i, p: d.has_marker(i) and p >= 0,
                    lambda d, i, p: d.markers[i].__setitem__(1, d.inside(p))),
    "marker-delete": ("Marker deleted", lambda d, i: d.has_marker(i), lambda d, i: d.drop_markers(i, i + 1)),
    "marker-clear": ("All marker removed", lambda d: True, lambda d: d.drop_markers(0, len(d.markers))),
    "loop": ("Loop points created", lambda d, a, b: a >= 0 and b >= 0 and d.frames,
             lambda d, a, b: d.set_loop(d.inside(a), d.inside(b))),
    "loop-clear": ("All loop points suppr", lambda d: True, lambda d: d.loops.clear()),
    "auto-trim": ("Auto trim", lambda d, level: bool(d.frames) and (bool(d.loud(level, 0, len(d.frames) - 1))
                                                                    or NOTHING_LEFT),
                  lambda d, level: d.cut_out(d.outer_silences(level))),
    "silence-remover": ("Silence remover", can_remove, lambda d, level, seconds: d.cut_out(
        d.silences(level, *d.extent(), half_up(seconds * d.rate)))),
    "auto-region": ("Auto detect region", lambda d, *_, **__: d.frames, Document.auto_regions),
    "set-region": ("Set region", can_part, Document.set_regions),
    "marker-bpm": ("Set marker as bpm", can_beat, Document.mark_beats),
    "synthesis": ("Synthesis", can_sound, Document.sine),
    "gapper": ("Gapper effect", lambda d, **_: d.frames, Document.gate),
    "envelope-point": ("Volume add", Document.can_add_point, Document.add_point),
    "envelope-remove": ("Volume point removed", lambda d, i, c: 0 <= c < len(d.envelope)
                        and 0 < i < len(d.envelope[c]) - 1, lambda d, i, c: d.envelope[c].pop(i)),
    "envelope-move": ("Volume point changed", Document.can_move_point,
                      lambda d, i, c, p, value: d.envelope[c][i].__setitem__(slice(2), [p, f32(value)])),
    "envelope-kind": (lambda i, c, kind: "Volume point " + ("linear", "smooth", "hold", "curve")[kind],
                      lambda d, i, c, kind: d.has_point(i, c), lambda d, i, c, kind: d.envelope[c][i].__setitem__(2, kind)),
    "envelope-point-reset": ("Volume point reset", Document.has_point,
                             lambda d, i, c: d.envelope[c][i].__setitem__(1, 0.5)),
    "envelope-create": ("Volume created", lambda d: d.frames and not d.envelope, Document.reset_envelope),
    "envelope-reset": ("Volume reset", lambda d: d.frames, Document.reset_envelope),
    "envelope-invert": ("Volume reverse", lambda d, c: 0 <= c < len(d.envelope), Document.invert_envelope),
}


class Model:
    def __init__(self, files, paste_replace, answer_yes):
        self.files, self.replace, self.yes = files, paste_replace, answer_yes
        self.documents, self.doc, self.clip = [], None, None
        self.names, self.out, self.err, self.status = [], [], "", 0

    def run(self, step):
        """One step as its words, under --keep-going."""
        name, words = step[0], [w for w in step[1:] if "=" not in w]
        options = dict(w.replace("-", "_", w.split("=")[0].count("-")).split("=", 1) for w in step[1:] if "=" in w)
        values = [w if name == "open" else QUICK.index(w) if w in QUICK else float(w) if "." in w else int(w)
                  for w in words if w != "all"]
        doc, markers = self.doc, len(self.doc.markers) if self.doc else 0
        try:
            if name in EDITS:
                title, able, routine = EDITS[name]
                able = able(self.doc, *values, **options)
                self.need(able and not isinstance(able, str), able)
                self.edit(title if isinstance(title, str) else title(*values), routine, self.doc, *values, **options)
            else:
                getattr(self, "do_" + name.replace("-", "_"))(*values, **options)
        except Refused as refusal:
            self.err += f"message: {refusal}\n" if str(refusal) else ""
            self.status = 1
        else:
            if doc and (len(doc.markers) < markers or name in ("undo", "redo")):
                doc.selected_marker = None  # its number may mean another one now

    def done(self, name):
        self.names.append(name)
        self.doc.modified = True

    def record(self):
        self.doc.undo.append(self.doc.snapshot())
        self.doc.redo.clear()

    def edit(self, name, routine, *args, **options):
        self.record()
        routine(*args, **options)
        self.done(name)

    def need(self, condition, text=None):
        if not condition:
            raise Refused(text or "")

    # Documents and what is selected in them
    def add(self, document):
        self.documents.append(document)
        self.doc = document

    def do_open(self, name):
        document = Document(self.files[name][0], name)
        document.become(read_wav(self.files[name][1]))
        self.add(document)

    def do_new(self, rate, channels, bits, frames):
        self.add(Document(rate=rate, channels=channels, bits=bits, frames=frames))

    def do_doc(self, n):
        self.need(n < len(self.documents))
        self.doc = self.documents[n]

    def do_select(self, *ends):
        self.doc.selection = [self.doc.inside(p) for p in ends]

    def do_select_all(self):
        self.do_select(0, len(self.doc.frames) - 1)

    def do_select_none(self):
        self.do_select(0, 0)

    def do_cursor(self, p):
        self.doc.cursor = self.doc.inside(p)

    def do_marker_select(self, i):
        self.need(self.doc.has_marker(i))
        self.doc.selected_marker = i

    def do_active(self, **options):
        if not options:
            self.doc.active = [1] * 16
        for how, c in options.items():
            c, flags = int(c), self.doc.active
            self.need(0 <= c < self.doc.channels)
            if how == "solo":
                flags[:] = [0] * 16
            flags[c] = {"solo": 1, "off": 0, "on": 1, "toggle": 1 - flags[c]}[how]

    # The clipboard, trim, delete, undo
    def do_copy(self):
        doc, (a, b) = self.doc, self.doc.ordered()
        self.need(doc.frames and doc.live())
        clip = self.clip = Buffer(doc.rate, len(doc.live()), doc.bits, 0, doc.tag)
        clip.frames = [[frame[c] for c in doc.live()] for frame in doc.frames[a:b + 1]]
        for start, end, kind, count in doc.loops:
            if a <= start <= b and a <= end <= b:
                clip.set_loop(start - a, end - a)
                clip.loops[0][2:], clip.note = [kind, count], doc.note
        for _, position, label in doc.markers:
            if a <= position <= b:
                clip.add_marker(position - a, label)
        self.names.append("Copy")

    def delete_selection(self, name):
        doc, (a, b) = self.doc, self.doc.ordered()
        self.edit(name, doc.delete, a, b)
        doc.cursor = max(0, a - 1)
        doc.selection = [doc.cursor] * 2

    def do_cut(self):
        self.do_copy()
        self.names.pop()
        self.delete_selection("Cut")

    def do_delete(self):
        doc, marker = self.doc, self.doc.selected_marker
        clicked = marker is not None and marker < len(doc.markers)
        self.need(clicked or doc.frames)
        doc.selected_marker = None
        if clicked:
            del doc.markers[marker]
            doc.modified = True
        else:
            self.delete_selection("Suppr")

    def fits(self, *widths):
        self.need(self.clip.channels in widths,
                  f"Clipboard channel number:{self.clip.channels}\nUnable to paste data")

    def do_paste(self):
        self.need(self.clip)
        doc, n = self.doc, len(self.clip.frames)
        if doc.frames:
            self.fits(1, doc.channels)
        self.record()
        if self.replace and doc.selected():
            start, last = doc.ordered()
            doc.delete(start, last)
            start = doc.inside(start)
            doc.insert(self.clip, start)
            doc.selection, doc.cursor = [start, doc.inside(start + n)], start
        else:
            doc.insert(self.clip, doc.cursor)
            doc.selection = [doc.cursor, doc.cursor + n]
            doc.cursor = doc.inside(doc.cursor + n)
        self.done("Paste")

    def mix_at(self, positions, name):
        self.need(self.clip and positions)
        self.fits(self.doc.channels)
        doc, start = self.doc, self.doc.cursor
        self.record()
        for position in positions:
            doc.mix(self.clip, position)
        doc.selection = [start, start + len(self.clip.frames)]
        doc.cursor = doc.inside(doc.selection[1])
        self.done(name)

    def do_paste_mix(self):
        self.mix_at([self.doc.cursor], "Paste and mix")

    def do_paste_mix_markers(self):
        self.mix_at([position for _, position, _ in self.doc.markers], "Paste and mix at marker")

    def do_paste_new(self):
        self.need(self.clip)
        self.add(Document("paste.wav", "paste.wav"))
        self.doc.become(self.clip)
        self.doc.modified = True

    def step_over(self, source, target, name):
        self.need(source)
        target.append(self.doc.snapshot())
        self.doc.restore(source.pop())
        self.done(name)

    def do_undo(self):
        self.step_over(self.doc.undo, self.doc.redo, "Undo")

    def do_redo(self):
        self.step_over(self.doc.redo, self.doc.undo, "Redo")

    # Processing
    def do_quick(self, number):
        if number >= 10 or self.doc.selected():
            self.edit(QUICK[number], self.doc.quick, number)

    def do_channel(self, op, index="0"):
        doc, index, n = self.doc, int(index), self.doc.channels
        if op < 10:
            self.need(n > 1, "File is already MONO")
            self.need(op < 2 or op - 2 < n, "Channel error")
            self.need(op or doc.live())
        elif op == 10:
            self.need(n == 1, "Conversion only for MONO file")
        else:
            self.need(op != 15 or n > 1, "Unable to swap MONO file")
            self.need(op == 11 or 0 <= index < n + (op == 13))
            self.need(n < 16 or op not in (11, 13, 14), "Channel number exceeded")
            self.need(op != 12 or n > 1)
        self.edit(CHANNEL[op], doc.channel, op, index if op > 11 else 0)

    def do_envelope_clear(self):
        self.need(self.doc.envelope)
        self.err += "question: Do you want to delete all the volume envelope?\n"
        self.need(self.yes)
        self.edit("Volume delete all", self.doc.envelope.clear)

    # What is printed
    def do_print(self, a, b):
        self.out += ["\t".join("%.9g" % s for s in frame) for frame in self.doc.frames[a:b + 1]]

    def do_history(self):
        self.out += self.names

    def do_state(self):
        d, clip = self.doc, self.clip
        named = lambda keys, rows: [dict(zip(keys.split(), row)) for row in rows]
        envelope = [named("position value kind", points) for points in d.envelope]
        self.out.append(json.dumps({
            "file": d.file, "title": d.title, "format_tag": d.tag, "channels": d.channels, "rate": d.rate,
            "bits": d.bits, "frames": len(d.frames), "selection": d.selection, "cursor": d.cursor,
            "active": d.active[:d.channels], "modified": d.modified, "can_undo": bool(d.undo),
            "can_redo": bool(d.redo), "markers": named("id position label", d.markers),
            "loops": named("start end type play_count", d.loops), "unity_note": d.note,
            "envelope": {"length": d.length, "channels": envelope} if envelope else None,
            "extra_chunks": [{"id": "ETTA", "size": 32}], "documents": len(self.documents),
            "clipboard": clip and {"channels": clip.channels, "rate": clip.rate, "bits": clip.bits,
                                   "frames": len(clip.frames)}}))

    def do_stats(self, levels="on"):
        self.out += statistics(self.doc, levels == "on")


def statistics(d, levels):
    """The report's lines, each closed by a carriage return."""
    a, b = sorted(d.selection) if d.selected() else (0, len(d.frames))
    frames = d.frames[a:b] or d.frames or [[0.0] * d.channels]
    line = ["Statistics:"] if levels else []
    rule = ["\t" + "-" * 35] if levels and d.channels > 2 else []
    figures = [("RMS power", "", "\t\t", lambda s: math.sqrt(math.fsum(x * x for x in s) / len(s))),
               ("Average value", " (DC offset)", "\t", lambda s: math.fsum(s) / len(s)),
               ("Min value", "", "\t\t", min), ("Max value", "", "\t\t", max)]
    for title, tail, tabs, figure in figures if levels else []:
        line += rule
        for c in range(d.channels):
            v = f32(figure([frame[c] for frame in frames]))
            decibels = "%2.2f" % (20 * math.log10(abs(v))) if v else "-inf"
            which = {1: f"{tail} ", 2: " " + "LR"[c % 2] + tail}.get(d.channels, f" {'' if tail else 'ch'}{c}{tail}")
            line.append(f"\t{title}{which}:{tabs}{v * 100.0:2.2f}%\t({decibels} dB)")
    line += rule
    ms = len(d.frames) * 1000 // d.rate
    line += ["General information:", f"\tSample name:\t\t{d.file}", f"\tChannel number:\t\t{d.channels}",
             f"\tSample number:\t\t{len(d.frames)}",
             "\tTotal duration:\t\t%02d:%02d:%02d:%03d" % (ms // 3600000, ms // 60000 % 60, ms // 1000 % 60, ms % 1000),
             f"\tFrequency:\t\t{d.rate}Hz", f"\tBits per sample:\t\t{d.bits}"]
    line += {1: ["\tFormat:\t\t\tPCM"], 3: ["\tFormat:\t\t\tFLOAT"]}[d.tag]
    if d.selected():
        line += ["Selection:", f"\tSelection start:\t\t{a}", f"\tSelection end:\t\t{b}", f"\tDelta:\t\t\t{b - a + 1}"]
    line += ["Loop points:", f"\tLoop start:\t\t{d.loops[0][0]}", f"\tLoop end:\t\t{d.loops[0][1]}"] \
        if d.loops else ["No loop points"]
    line += [f"Marker points: {len(d.markers)} markers"] if d.markers else ["No marker points"]
    line += ["\tMarker %02d:\t\t%d" % (i, p) for i, (_, p, _) in enumerate(d.markers)]
    line += ["Automation points:"] if d.envelope else ["No automation points"]
    line += ["\tChannel %02d:\t\t%d points" % (c, len(points)) for c, points in enumerate(d.envelope)]
    return [text + "\r" for text in line]
