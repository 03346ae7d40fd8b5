# SPDX-License-Identifier: Apache-2.0
"""What the documents show and name is there."""
import re
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

from command_help import COMMAND, TREE

README = (TREE / "README.md").read_text()
FOLDERS = ("", "src", "tests")


def shown_calls():
    """The calls of the command that the page shows with their output: {arguments: output}."""
    part = README.partition("## What it looks like\n")[2].partition("\n## ")[0]
    lines = [line.removeprefix("    ") for line in part.splitlines()
             if line.startswith("    ") or not line]
    calls = ("\n" + "\n".join(lines)).split("\n$ ")[1:]
    said = (call.partition("\n") for call in calls if call.startswith("trellant "))
    return {line.removeprefix("trellant "): output.strip("\n") for line, _, output in said}


class ReadMe(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="trellant-readme-")
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        shutil.copytree(TREE / "examples", self.folder / "examples")

    def test_shows_what_the_command_shows(self):
        calls = shown_calls()
        self.assertEqual([call.split()[0] for call in calls], ["info", "list", "list", "extract", "export", "check", "render"])
        for arguments, shown in calls.items():
            with self.subTest(arguments):
                run = subprocess.run([COMMAND, *arguments.split()], cwd=self.folder,
                                     stdout=subprocess.PIPE, stderr=subprocess.PIPE)
                said = run.stdout.decode().strip("\n")
                if arguments.startswith("list losses"):
                    # The page leaves out the first of three.
                    said = said.split("\n\n", 1)[1]
                # What is shown of check has findings.
                status = 3 if arguments.startswith("check") else 0
                self.assertEqual((run.returncode, run.stderr, said), (status, b"", shown))


class Documents(unittest.TestCase):
    def there(self, name):
        first, _, rest = name.partition("/")
        places = [TREE / folder / name for folder in FOLDERS]
        places.append(TREE / "src" / first / "include" / "trellant" / first / rest)
        return any(list(place.parent.glob(place.name)) for place in places)

    def test_name_files_that_exist(self):
        for page in ("docs/architecture.md", "CONTRIBUTING.md"):
            text = (TREE / page).read_text()
            named = set(re.findall(r"`([\w*.-]+/[\w/*.-]+\.(?:cpp|h|md|json|cmake))`", text))
            self.assertGreater(len(named), 10, page)
            self.assertEqual(sorted(name for name in named if not self.there(name)), [], page)

    def test_links_lead_somewhere(self):
        for page in (*TREE.glob("*.md"), *TREE.glob("docs/*.md"), *TREE.glob("examples/*.md")):
            # Indented lines are code.
            prose = re.sub(r"(?m)^    .*$", "", page.read_text())
            for link in re.findall(r"\]\((?!https?:|#)([^)#]+)", prose):
                with self.subTest(page.name, link=link):
                    self.assertTrue((page.parent / link).exists())


if __name__ == "__main__":
    unittest.main(verbosity=2)
