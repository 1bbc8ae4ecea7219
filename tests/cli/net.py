#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Asks and fetches through the command line from a server on this machine: net.py COMMAND..."""
import http.server
import json
import os
import pathlib
import subprocess
import sys
import tempfile
import threading
import unittest

from own_words import own_words

COMMAND = sys.argv[1:]
WAV = (b"RIFF\x2c\0\0\0WAVEfmt \x10\0\0\0\1\0\1\0\x40\x1f\0\0\x80\x3e\0\0\2\0\x10\0data\x08\0\0\0" + bytes(8))


class Handler(http.server.BaseHTTPRequestHandler):
    asked = []

    def do_GET(self):
        Handler.asked.append((self.path, self.headers["User-Agent"]))
        body = self.server.pages.get(self.path)
        self.send_response(200 if body is not None else 404)
        self.end_headers()
        self.wfile.write(body or b"")

    def log_message(self, *_):
        pass


class Net(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        self.path = pathlib.Path(self.folder.name)
        self.server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Handler)
        self.server.pages = {}
        self.url = f"http://127.0.0.1:{self.server.server_port}"
        threading.Thread(target=self.server.serve_forever, daemon=True).start()
        self.addCleanup(self.server.server_close)
        self.addCleanup(self.server.shutdown)
        Handler.asked = []

    def call(self, *words, status=0):
        environment = {**os.environ, "no_proxy": "127.0.0.1"}
        ran = subprocess.run([*COMMAND, "--home", "home", *words], cwd=self.path, env=environment,
                             stdin=subprocess.DEVNULL, capture_output=True, text=True, timeout=120)
        self.assertEqual(ran.returncode, status, ran.stdout + ran.stderr)
        self.said = own_words(ran.stderr)
        return ran.stdout

    def test_no_request_without_server_and_consent(self):
        self.call("--yes", "update-check", status=1)
        self.assertTrue(self.said.startswith("message: No update server is set."), self.said)
        for address in ("file:///version.txt", "ftp://127.0.0.1", "127.0.0.1"):
            self.call("settings", "set", "General", "UpdateServer", address, status=1)
        self.call("settings", "set", "General", "UpdateServer", self.url)
        self.call("update-check", status=1)
        self.assertTrue(self.said.startswith(f"question: May Plumetta ask {self.url}"), self.said)
        self.assertEqual(Handler.asked, [])
        self.server.pages["/version.txt"] = b"1.10\n"
        self.assertEqual(self.call("--yes", "update-check"), "newer 1.10\n")
        for page, answer in [(b"1.5.0.1\r\n", "same 1.5.0.1\n"), (b"1.5", "older 1.5\n")]:
            self.server.pages["/version.txt"] = page
            self.assertEqual(self.call("update-check"), answer)
            self.assertEqual(self.said, "", "asked once")
        self.server.pages["/version.txt"] = b"<html>"
        self.call("update-check", status=3)
        self.assertIn("no version", self.said)
        self.assertEqual(Handler.asked, [("/version.txt", "Plumetta/1.5.0.1")] * 4)

    def test_an_address_opens_like_a_file_and_a_file_named_so_still_does(self):
        self.server.pages["/a.wav"] = self.server.pages["/a.wav?x=1"] = WAV
        self.server.pages["/none.wav"] = b"no sound"
        state = json.loads(self.call("edit", "open-url", self.url + "/a.wav?x=1", "state"))
        self.assertEqual([state[key] for key in ("title", "file", "frames", "modified")], ["a.wav", "a.wav", 4, True])
        for address, status, said in [("/none.wav", 3, "No format"), ("/404", 3, "no such file")]:
            self.call("edit", "open-url", self.url + address, status=status)
            self.assertTrue(self.said.startswith("message: Unable to ") and said in self.said, self.said)
            self.assertIn(self.url + address, self.said)
        self.call("edit", "open-url", "file:///etc/passwd", status=2)
        self.assertEqual([path.name for path in (self.path / "home").iterdir()], [])
        if os.name == "posix" and len(COMMAND) == 1:
            (self.path / "http:").mkdir()
            (self.path / "http:" / "a.wav").write_bytes(WAV)
            self.call("edit", "open", "http://a.wav", "state")

    def test_what_a_crash_has_left_goes_at_the_next_start(self):
        left = self.path / "home" / "~plumetta_undo_1234567"
        left.mkdir(parents=True)
        for name in ("lock", "fetched1.wav"):
            (left / name).write_bytes(b"")
        self.call("edit", "new", "8000", "1", "16", "5")
        self.assertFalse(left.exists())


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0]])
