# SPDX-License-Identifier: GPL-3.0-or-later
"""A sound server of a test's own, with a sink that leads nowhere, and tries on a machine that may be too busy for it."""
import os
import signal
import subprocess
import sys
import threading
import time

SUPPRESSIONS = os.path.join(os.path.dirname(os.path.abspath(__file__)), "libpulse.supp")

TRIES = 6
LATE = 0.03  # seconds; the least that is buffered anywhere on the way


class Gap(AssertionError):
    """Something is missing, or came too late, as it does where processes don't get their turn."""


class Witness:
    """How late a thread wakes up that has nothing else to do."""
    def __enter__(self):
        self.worst, self.over = 0, threading.Event()
        self.thread = threading.Thread(target=self.watch)
        self.thread.start()
        return self

    def __exit__(self, *_):
        self.over.set()
        self.thread.join()

    def watch(self):
        pause = 0.002
        before = time.monotonic()
        while not self.over.wait(pause):
            self.worst = max(self.worst, time.monotonic() - before - pause)
            before = time.monotonic()


def without_gap(test, attempt):
    """One of some tries has to be without a gap, unless the machine was busy with something else in all of them."""
    busy = 0
    for number in range(TRIES):
        with Witness() as witness:
            try:
                return attempt(number)
            except Gap as gap:
                busy += witness.worst > LATE
                print(f"{gap}; the machine was late by {witness.worst * 1000:.0f} ms", file=sys.stderr)
                if number == TRIES - 1 and busy < TRIES:
                    raise
    return test.skipTest("the machine is too busy to play without a gap")


class Server:
    def __init__(self, folder, rate=44100, sample="s16le"):
        self.environment = {"PATH": os.environ["PATH"], "HOME": folder, "XDG_RUNTIME_DIR": folder,
                            "PULSE_RUNTIME_PATH": folder, "PULSE_SERVER": f"unix:{folder}/native", "LC_ALL": "C",
                            "TSAN_OPTIONS": f"suppressions={SUPPRESSIONS}"}
        self.daemon = subprocess.Popen(
            ["pulseaudio", "-n", "--daemonize=no", "--exit-idle-time=-1", "--log-target=stderr",
             "-L", f"module-native-protocol-unix auth-anonymous=1 socket={folder}/native",
             "-L", f"module-null-sink sink_name=nowhere format={sample} rate={rate} channels=2 "
                   "sink_properties=device.description=Nowhere"],
            env=self.environment, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
        deadline = time.time() + 60
        while self.call("pactl", "info").returncode != 0:
            if time.time() > deadline:
                raise RuntimeError("the sound server does not start")
            time.sleep(0.05)

    def call(self, *command):
        return subprocess.run(command, env=self.environment, capture_output=True, text=True, timeout=120,
                              stdin=subprocess.DEVNULL)

    def listen(self, sample="s16le", rate=44100):
        """A recorder of the sink's monitor that already hears something. It also keeps the sink from rendering two
        seconds of silence at a time."""
        recorder = self.start("parec", "-d", "nowhere.monitor", "--raw", f"--format={sample}", f"--rate={rate}",
                              "--channels=2", "--latency-msec=5")
        recorder.stdout.read(4)
        os.set_blocking(recorder.stdout.fileno(), False)
        return recorder

    def start(self, *command, **kwargs):
        return subprocess.Popen(command, env=self.environment, stdout=subprocess.PIPE, **kwargs)

    def end(self):
        if self.daemon.poll() is None:
            self.daemon.send_signal(signal.SIGCONT)
            self.daemon.kill()
        self.daemon.wait()
        self.daemon.stderr.close()
