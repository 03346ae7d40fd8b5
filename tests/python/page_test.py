# SPDX-License-Identifier: Apache-2.0
"""The programs of docs/python.md, run as they stand there, print what the page shows."""
import re
import shlex
import shutil
import subprocess
import sys
import unittest

import trellant
from support import EXAMPLES, SOURCE, FolderTest

PAGE = (SOURCE / "docs/python.md").read_text(encoding="utf-8")
PROGRAMS = dict(re.findall(r"`(\w+\.py)`:\n\n```python\n(.*?)```", PAGE, re.DOTALL))
RUNS = re.findall(r"```console\n\$ python3 ([^\n]+)\n(.*?)```", PAGE, re.DOTALL)


class Page(FolderTest):
    def test_every_program_is_run_and_prints_what_it_shows(self):
        self.assertEqual([shlex.split(command)[0] for command, _ in RUNS], list(PROGRAMS))
        self.assertEqual(len(PROGRAMS), PAGE.count("```python"))
        for name, text in PROGRAMS.items():
            (self.folder / name).write_text(text, encoding="utf-8")
        for example in EXAMPLES.glob("*.omf"):
            shutil.copy(example, self.folder)
        for command, expected in RUNS:
            with self.subTest(command):
                self.assertEqual(self.printed(command, expected), (expected, 0))

    def printed(self, command, expected):
        """On a busy machine a worker may have ended before the program comes to cancel its call, which it then
        does not show."""
        for _ in range(5):
            shutil.rmtree(self.folder / "audio", ignore_errors=True)
            run = subprocess.run([sys.executable, "-B", *shlex.split(command)], cwd=self.folder, text=True,
                                 stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False)
            if run.stdout == expected:
                break
        return run.stdout, run.returncode

    def test_it_names_every_error(self):
        named = set(re.findall(r"^\| `(\w+)` \|", PAGE, re.MULTILINE))
        raised = {"HelperMissing", "LaunchFailed", "NonZeroExit", "InvalidResponse", "CancellationError",
                  "TimeLimitError"}
        self.assertEqual(named, raised)
        # The others are bases, or of the functions that decode and validate.
        self.assertEqual({name for name in dir(trellant) if name in raised}, raised)


if __name__ == "__main__":
    unittest.main(verbosity=2)
