# SPDX-License-Identifier: GPL-3.0-or-later
"""The check of the levels finds each kind of fault, and no fault where there is none."""
import pathlib
import subprocess
import sys
import tempfile
import unittest

CHECK = pathlib.Path(__file__).resolve().parents[2] / "tools" / "check_includes"
LICENCE = "// SPDX-License-Identifier: GPL-3.0-or-later\n"


class CheckIncludes(unittest.TestCase):
    def check(self, files):
        with tempfile.TemporaryDirectory() as root:
            for name, text in files.items():
                path = pathlib.Path(root, name)
                path.parent.mkdir(parents=True, exist_ok=True)
                path.write_text(text)
            done = subprocess.run([sys.executable, CHECK, root], capture_output=True, text=True, timeout=120)
            return done.returncode, done.stdout

    def test_faults(self):
        cases = [
            ("src/core/a.cpp", '#include "doc/document.h"', "core may not include doc"),
            ("src/audio/a.h", '#include "vst/rack.h"', "audio may not include vst"),
            ("src/ui/a.h", '#  include "cli/call.h"', "ui may not include cli"),
            ("src/core/a.cpp", '#include "wave.h"', "does not begin with a folder"),
            ("src/doc/a.cpp", "#include <unistd.h>", "belongs to platform"),
            ("src/app/a.cpp", "#include <wx/wx.h>", "belongs to ui"),
            ("src/dsp/a.cpp", "#if defined(_WIN32)", "operating system"),
            ("src/odd/a.cpp", "", "no such floor"),
        ]
        for name, line, fault in cases:
            with self.subTest(line or name):
                status, out = self.check({name: LICENCE + line + "\n"})
                self.assertEqual(status, 1)
                self.assertIn(name, out)
                self.assertIn(fault, out)

    def test_licence(self):
        for name, text in [("src/core/a.h", "int a;\n"), ("run", "#!/bin/sh\n"), ("cmake/a.cmake", "")]:
            with self.subTest(name):
                self.assertEqual(self.check({name: text}), (1, f"{name}: no licence line\n"))

    def test_sound(self):
        source = LICENCE + '#include "core/wave.h"\n#include "formats/format.h"\n#include <vector>\n// _WIN32\n'
        status, out = self.check({
            "src/formats/a.cpp": source,
            "src/platform/windows/b.cpp": LICENCE + "#include <windows.h>\n#ifdef _WIN32\n#endif\n",
            "README.md": "words\n",
        })
        self.assertEqual(status, 0, out)


if __name__ == "__main__":
    unittest.main()
