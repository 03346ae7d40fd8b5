# SPDX-License-Identifier: Apache-2.0
"""scripts/spdx over a tree of one file of each kind. Argument: the script."""

import pathlib
import subprocess
import sys
import tempfile
import unittest

SCRIPT = sys.argv.pop(1)
LINE = "SPDX-License-Identifier: Apache-2.0\n"

# Name, text before, text afterwards.
FILES = [
    ("src/box.h", "// A box.\n", "// " + LINE + "// A box.\n"),
    ("src/box.cpp", "", "// " + LINE),
    ("src/CMakeLists.txt", "project(box)\n", "# " + LINE + "project(box)\n"),
    ("cmake/box.h.in", "int size;\n", "// " + LINE + "int size;\n"),
    ("cmake/box.pc.in", "prefix=/\n", "# " + LINE + "prefix=/\n"),
    ("run.py", '"""Runs."""\n', "# " + LINE + '"""Runs."""\n'),
    ("scripts/run", "#!/bin/sh\nexit\n", "#!/bin/sh\n# " + LINE + "exit\n"),
    ("completions/_trellant", "#compdef box\n:\n", "#compdef box\n# " + LINE + ":\n"),
    ("man/box.1", ".Dd today\n", '.\\" ' + LINE + ".Dd today\n"),
    ("po/de.po", 'msgid ""\n', "# " + LINE + 'msgid ""\n'),
    ("named.py", "# " + LINE + "\n", "# " + LINE + "\n"),
]
EXEMPT = [
    ("README.md", "# Box\n"),
    ("schema/box.schema.json", "{}\n"),
    ("expected.txt", "box\n"),
    ("build/made.cpp", "int box;\n"),
]


def spdx(root, *options):
    return subprocess.run([SCRIPT, "--root", root, *options], capture_output=True, text=True,
                          check=False)


class Spdx(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = pathlib.Path(folder.name)
        for name, text, *_ in FILES + EXEMPT:
            (self.root / name).parent.mkdir(exist_ok=True)
            (self.root / name).write_text(text, encoding="utf-8")

    def check_texts(self, expected):
        for name, text in expected:
            with self.subTest(name):
                self.assertEqual((self.root / name).read_text(encoding="utf-8"), text)

    def test_check_lists_the_files_and_changes_none(self):
        checked = spdx(self.root, "--check")
        missing = sorted(name for name, before, after in FILES if before != after)
        self.assertEqual(sorted(checked.stdout.splitlines()), missing)
        self.assertEqual(checked.stderr, "10 files do not name their licence. Run scripts/spdx.\n")
        self.assertEqual(checked.returncode, 1)
        self.check_texts([(name, before) for name, before, _ in FILES])

    def test_adds_the_line_once(self):
        for _ in range(2):
            self.assertEqual(spdx(self.root).returncode, 0)
            self.check_texts([(name, after) for name, _, after in FILES] + EXEMPT)
        checked = spdx(self.root, "--check")
        self.assertEqual((checked.stdout, checked.stderr, checked.returncode), ("", "", 0))


unittest.main()
