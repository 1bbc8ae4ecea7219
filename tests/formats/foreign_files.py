#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Usage: foreign_files.py plumetta-cli  Opens what other programs write, in each format, depth and number of channels that
they know, and has them open what the editor writes. Prints a line for each file that differs, and how many there were."""
import array
import math
import os
import struct
import subprocess
import sys
import tempfile

SECONDS = 1.3
FAILED = []
COUNT = 0


def run(*command):
    done = subprocess.run(command, capture_output=True, stdin=subprocess.DEVNULL, timeout=120)
    return done.returncode == 0, done.stdout, (done.stderr.decode(errors="replace").strip().splitlines() or [""])[-1]


def check(what, good, detail=""):
    global COUNT
    COUNT += 1
    if not good:
        FAILED.append(what)
        print(f"{what}: {detail}", flush=True)


def floats(data):
    values = array.array("f")
    values.frombytes(data[:len(data) // 4 * 4])
    return values


def opened(cli, file, *options):
    """What the editor has of a file: its state, and its samples as floats."""
    import json
    ok, out, error = run(cli, "--home", "home", "edit", "open", file, *options, "state", "dump", "dump.f32")
    if not ok:
        return None, error
    with open("dump.f32", "rb") as dump:
        return json.loads(out), floats(dump.read())


def decoded(file, gapless=False):
    """The same by another program, full scale at 2^(bits-1). gapless: without the delay of an MP3 encoder."""
    if file.endswith(".ogg"):  # channels in the order of the stream
        run("oggdec", "-Q", "-R", "-b", "16", "-o", "decoded.raw", file)
        command = "sox -t s16 -r 44100 -c 1 decoded.raw -t f32 -"
    elif file.endswith((".voc", ".8svx")):  # others lose their last bytes
        command = f"sox {file} -t f32 -"
    elif file.endswith(".wv"):  # others know fewer channels
        run("wvunpack", "-q", "-y", "-w", "-o", "decoded.wav", file)
        command = "sox -D decoded.wav -t f32 -"
    else:
        delay = "-flags2 +skip_manual" if file.endswith(".mp3") and not gapless else ""
        command = f"ffmpeg -v error {delay} -i {file} -f f32le -c:a pcm_f32le -"
    ok, out, error = run(*command.split())
    return floats(out) if ok else error


def differs(ours, theirs, tolerance, slack, channels):
    """Why two sounds are not the same. tolerance: of a sample, 1 is full scale; or, below 0, dB of the difference's power
    beside the sound's. slack: frames by which lengths may differ; below 0, only by one
    frame of MPEG audio ahead."""
    if isinstance(theirs, str):
        return "not readable by the other: " + theirs
    if slack < 0 and len(ours) - len(theirs) in (576 * channels, 1152 * channels):
        ours = ours[len(ours) - len(theirs):]  # the frame that holds the encoder's notes is silent
    if abs(len(ours) - len(theirs)) > max(slack, 0) * channels:
        return f"{len(ours) // channels} frames, not {len(theirs) // channels}"
    count = min(len(ours), len(theirs))
    if count == 0:
        return "nothing" if slack == 0 and len(ours) != len(theirs) else None
    if tolerance >= 0:
        worst = max(abs(a - b) for a, b in zip(ours, theirs))
        return f"differs by {worst:.3g}" if worst > tolerance else None
    power = sum(b * b for b in theirs)
    error = sum((a - b) ** 2 for a, b in zip(ours, theirs))
    db = 10 * math.log10(max(error, 1e-30) / max(power, 1e-30))
    return f"difference at {db:.1f} dB" if db > tolerance else None


def one_step(bits):
    """Our full scale is one step below theirs, and either side may round."""
    return 2.1 / 2 ** (bits - 1)


def source(name, rate, channels, bits):
    """A tone of another pitch in each channel, with a click at the start that shows a shift."""
    tones = [word for c in range(channels) for word in ("sine", str(300 + 77 * c))]
    width = whole(bits)
    encoding = "unsigned-integer" if width == 8 else "signed-integer"
    run("sox", "-R", "-n", "-r", str(rate), "-b", str(width), "-e", encoding, "-c", str(channels), name, "synth",
        str(SECONDS), *tones, "gain", "-3", "fade", "0", str(SECONDS), "0.2")
    if bits < width:
        narrow(name, bits, rate, channels)
    return name


def whole(bits):
    return (bits + 7) // 8 * 8


def narrow(name, bits, rate, channels):
    """Takes the lower bits of each sample away and says so in the header."""
    width = whole(bits) // 8
    with open(name, "rb") as file:
        data = bytearray(file.read().split(b"data", 1)[1][4:])
    for low in range(0, len(data), width):  # little-endian: what goes is in the first byte
        data[low] &= 0x100 - (1 << 8 * width - bits)
    head = struct.pack("<HHIIHHHHIH14s", 0xFFFE, channels, rate, rate * channels * width, channels * width, 8 * width,
                       22, bits, 0, 1, bytes.fromhex("000000001000800000AA00389B71"))
    body = b"WAVEfmt " + struct.pack("<I", len(head)) + head + b"data" + struct.pack("<I", len(data)) + data
    with open(name, "wb") as file:
        file.write(b"RIFF" + struct.pack("<I", len(body)) + body)


# Program and words that make {out} of {in}, a WAV; rates, channels, bits of it; extension; tolerance; slack of frames.
LOSSLESS = [
    ("flac -s -f --lax --channel-map=none -o {out} {in}", (8000, 44100, 96000), (1, 2, 5, 8), (8, 16, 24), "flac"),
    ("flac -s -f --lax --channel-map=none -o {out} {in}", (44100,), (1, 2, 8), (4, 12, 20, 28, 32), "flac"),
    ("flac -s -f --lax --ogg -o {out} {in}", (44100,), (1, 2), (12, 16, 20, 24, 32), "oga"),
    ("wavpack -q -y -o {out} {in}", (8000, 44100, 192000), (1, 2, 6, 16), (8, 16, 24, 32), "wv"),
    ("wavpack -q -y -x3 -o {out} {in}", (44100,), (2,), (16, 24), "wv"),
    ("sox {in} {out}", (8000, 22050, 44100), (1, 2, 16), (8, 16, 24, 32), "aiff"),
    ("sox {in} {out}", (44100,), (1, 2), (8, 16, 24, 32), "aifc"),
    ("sox {in} {out}", (8000, 44100), (1, 2, 16), (8, 16, 24, 32), "au"),
    ("sox {in} -t sndfile -e signed-integer {out}", (44100,), (1, 2, 6), (16, 24, 32), "caf"),
    ("sox {in} {out}", (44100,), (1, 2, 6), (8, 16, 24, 32), "w64"),
    ("sox {in} {out}", (22050, 44100), (1, 2), (16,), "voc"),
    ("sox {in} {out}", (8000,), (1, 2), (8,), "voc"),  # other rates of 8 bits are rounded there
    ("sox {in} -b 8 {out}", (8000, 22050), (1, 2), (8,), "8svx"),
    ("sox {in} {out}", (44100,), (1, 2, 3, 16), (8, 16, 24, 32), "wav"),
    ("ffmpeg -v error -y -i {in} -c:a pcm_s16be {out}", (44100,), (1, 2, 6), (16,), "caf"),
    ("ffmpeg -v error -y -i {in} -c:a pcm_f32le {out}", (44100,), (2,), (24,), "caf"),
    ("ffmpeg -v error -y -i {in} -c:a alac -sample_fmt s16p {out}", (44100,), (1, 2, 6), (16,), "caf"),
    ("ffmpeg -v error -y -i {in} -c:a alac -sample_fmt s32p {out}", (44100,), (1, 2, 6), (24,), "caf"),
    ("ffmpeg -v error -y -i {in} -c:a pcm_s24be {out}", (44100,), (1, 2, 6), (24,), "aiff"),
    ("ffmpeg -v error -y -i {in} -c:a pcm_s16le -rf64 always {out}", (44100,), (1, 2, 6), (16,), "wav"),
    ("ffmpeg -v error -y -i {in} -c:a pcm_s24le {out}", (44100,), (1, 2, 6), (24,), "w64"),
    ("ffmpeg -v error -y -i {in} -c:a pcm_f64le {out}", (44100,), (2,), (24,), "wav"),
    ("ffmpeg -v error -y -i {in} -c:a pcm_f64be {out}", (44100,), (2,), (24,), "au"),
    ("ffmpeg -v error -y -i {in} -c:a wavpack {out}", (44100,), (1, 2, 6), (16, 24), "wv"),
    ("ffmpeg -v error -y -i {in} -c:a flac {out}", (44100, 48000), (1, 2, 6), (16, 24), "flac"),
    ("ffmpeg -v error -y -i {in} -id3v2_version 3 -write_id3v2 1 -metadata title=A {out}", (44100,), (2,), (16,), "aiff"),
]
SCALE = {"wv": 2e-5}  # 24 bits have a scale of their own there
LOST = {"voc": 4}  # frames that other programs lose at the end
# The last column: dB of the difference; slack in frames.
LOSSY = [
    ("lame --quiet -b 128 {in} {out}", (44100, 48000, 32000), (1, 2), "mp3", -60, -1),
    ("lame --quiet -b 64 {in} {out}", (16000, 22050, 24000), (1, 2), "mp3", -60, -1),
    ("lame --quiet -b 32 {in} {out}", (8000, 11025, 12000), (1, 2), "mp3", -60, -1),
    ("lame --quiet -V 2 --tt A --add-id3v2 {in} {out}", (44100,), (1, 2), "mp3", -60, -1),
    ("lame --quiet -t -b 128 {in} {out}", (44100,), (2,), "mp3", -60, -1),
    ("ffmpeg -v error -y -i {in} -c:a mp2 -b:a 128k -f mp2 {out}", (44100, 22050), (1, 2), "mp3", -60, -1),
    ("oggenc -Q -q 5 -o {out} {in}", (8000, 22050, 44100, 96000), (1, 2, 6, 8), "ogg", -25, 0),
    ("ffmpeg -v error -y -i {in} -c:a libvorbis {out}", (44100,), (1, 2, 6), "ogg", -25, 0),
    ("opusenc --quiet --bitrate 256 {in} {out}", (48000,), (1, 2), "opus", -20, 960),
    ("ffmpeg -v error -y -i {in} -c:a libopus -b:a 128k {out}", (48000,), (1, 2), "opus", -20, 960),
    ("wavpack -q -y -b256 -o {out} {in}", (44100,), (1, 2), "wv", -30, 0),
    ("sox {in} -e mu-law {out}", (8000, 44100), (1, 2), "wav", -25, 0),
    ("sox {in} -e a-law {out}", (8000,), (1, 2), "wav", -25, 0),
    ("sox {in} -e mu-law {out}", (8000,), (1, 2), "au", -25, 0),
    ("sox {in} -e a-law {out}", (8000,), (1,), "au", -25, 0),
    ("sox {in} -e ms-adpcm {out}", (44100,), (1, 2), "wav", -20, 2048),
]


def made(command, given, extension):
    out = "made." + extension
    if os.path.exists(out):
        os.remove(out)
    ok, _, error = run(*[word.format(**{"in": given, "out": out}) for word in command.split()])
    return (out, "") if ok and os.path.exists(out) else (None, error)


def compare(cli, what, file, rate, channels, tolerance, slack, same=None):
    """same: a file of the same samples, where others can't open this one."""
    state, samples = opened(cli, file)
    if state is None:
        return check(what, False, samples)
    if (state["rate"], state["channels"]) != (rate, channels):
        return check(what, False, f"opens with {state['rate']} Hz, {state['channels']} channels")
    reason = differs(samples, decoded(same or file), tolerance, slack, channels)
    check(what, reason is None, reason)


def foreign(cli):
    for command, rates, counts, depths, extension in LOSSLESS:
        for rate in rates:
            for channels in counts:
                for bits in depths:
                    what = f"{command.split()[0]} .{extension} {rate} Hz {channels} ch {bits} bit ({command})"
                    file, error = made(command, source("in.wav", rate, channels, bits), extension)
                    if file is None:
                        print(f"not written by the other: {what}: {error}")
                        continue
                    tolerance = one_step(min(whole(bits), 24)) + SCALE.get(extension, 0)
                    same = "in.wav" if extension in ("flac", "oga") and bits not in (8, 16, 24) else None
                    compare(cli, what, file, rate, channels, tolerance, LOST.get(extension, 0), same)
    for command, rates, counts, extension, db, slack in LOSSY:
        for rate in rates:
            for channels in counts:
                what = f"{command.split()[0]} .{extension} {rate} Hz {channels} ch ({command})"
                file, error = made(command, source("in.wav", rate, channels, 16), extension)
                if file is None:
                    print(f"not written by the other: {what}: {error}")
                    continue
                compare(cli, what, file, rate, channels, db, slack)


# What the editor writes: extension, channels, bits; the tolerance; slack.
WRITTEN = [
    *[(extension, channels, bits, one_step(min(bits, 24)), 0)
      for extension in ("wav", "rf64", "w64", "aiff", "caf", "au")
      for channels in (1, 2, 6) for bits in (8, 16, 24, 32)],
    *[("flac", channels, bits, one_step(bits), 0) for channels in (1, 2, 8) for bits in (8, 16, 24)],
    *[("voc", channels, bits, one_step(bits), 0) for channels in (1, 2) for bits in (8, 16)],
    *[("iff", channels, 8, one_step(8), 0) for channels in (1,)],
    *[("ogg", channels, 16, -20, 0) for channels in (1, 2)],
    *[("opus", channels, 16, -20, 960) for channels in (1, 2)],
    *[("mp3", channels, 16, -20, 4000) for channels in (1, 2)],
]


def written(cli):
    for extension, channels, bits, tolerance, slack in WRITTEN:
        rate = 48000 if extension == "opus" else 44100
        what = f"saved .{extension} {channels} ch {bits} bit"
        ok, _, error = run(cli, "--yes", "--home", "home", "edit", "open",
                           source("in.wav", rate, channels, bits), "marker", "1000", "save", "saved." + extension)
        if not ok:
            check(what, False, error)
            continue
        theirs = decoded("saved." + extension, gapless=True)
        reason = differs(decoded("in.wav"), theirs, tolerance, slack, channels)
        check(what, reason is None, reason)


def main():
    cli = os.path.abspath(sys.argv[1])
    with tempfile.TemporaryDirectory() as folder:
        os.chdir(folder)
        foreign(cli)
        written(cli)
        os.chdir("/")
    print(f"{COUNT - len(FAILED)} files are the same, {len(FAILED)} are not")
    sys.exit(1 if FAILED else 0)


main()
