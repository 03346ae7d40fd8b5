# SPDX-License-Identifier: Apache-2.0
"""The man page is well formed, names all that the command takes, and its examples work."""
import json
import os
import re
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

from command_help import COMMAND, COMMANDS, TREE, choices, options, subcommands

PAGE = TREE / "man" / "trellant.1"
SESSION = TREE / "examples" / "session.omf"


def part(heading):
    """The source between a heading and the next one of its kind or above."""
    kind = heading.split()[0]
    closing = r"\.Sh " if kind == ".Sh" else r"\.S[hs] "
    found = re.search(rf"^{re.escape(heading)}\n(.*?)^(?={closing})", PAGE.read_text(),
                      re.DOTALL | re.MULTILINE)
    return found.group(1)


def flags(source):
    """The options that lines of the source name: {"-o", "--output"}."""
    lines = [line for line in source.splitlines() if "Fl " in line]
    names = re.findall(r"(?:Fl|\|) (-?[a-z][a-z-]*)", "\n".join(lines))
    return {"-" + name for name in names}


def listed(source):
    """The options that have an item of their own."""
    return flags("\n".join(re.findall(r"^\.It Fl .*$", source, re.MULTILINE)))


def code_blocks():
    """As a reader copies them from the page."""
    blocks = re.findall(r"^\.Bd -literal.*?\n(.*?)^\.Ed$", PAGE.read_text(),
                        re.DOTALL | re.MULTILINE)
    return [block.replace(r"\-", "-").replace(r"\(aq", "'") for block in blocks]


class InFolder(unittest.TestCase):
    """Each test has a folder of its own with a file mix.omf."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="trellant-man-")
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        shutil.copy(SESSION, self.folder / "mix.omf")

    def run_command(self, *arguments):
        return subprocess.run([COMMAND, *arguments], cwd=self.folder, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE)


class ManPage(unittest.TestCase):
    def test_has_no_warnings_of_any_level(self):
        lint = subprocess.run(["mandoc", "-T", "lint", "-W", "style", str(PAGE)],
                              stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        # Which other pages are installed on this machine says nothing about this one.
        said = [line for line in lint.stdout.decode().splitlines()
                if "referenced manual not found" not in line]
        self.assertEqual(said, [])

    def test_refers_to_the_page_of_the_worker(self):
        self.assertIn(".Xr trellant-omf 1\n", part(".Sh SEE ALSO"))
        self.assertTrue((PAGE.parent / "trellant-omf.1").is_file())

    def test_has_the_sections_that_a_reader_looks_for(self):
        sections = re.findall(r"^\.Sh (.*)$", PAGE.read_text(), re.MULTILINE)
        self.assertEqual(sections, ["NAME", "SYNOPSIS", "DESCRIPTION", "ENVIRONMENT", "FILES",
                                    "EXIT STATUS", "EXAMPLES", "SEE ALSO", "STANDARDS"])

    def test_has_a_part_for_each_command_of_the_help(self):
        parts = re.findall(r"^\.Ss trellant (.*)$", PAGE.read_text(), re.MULTILINE)
        self.assertEqual((tuple(parts), subcommands()), (COMMANDS, COMMANDS))

    def test_lists_the_options_of_every_command(self):
        self.assertEqual(listed(part(".Ss Options of every command")), options())

    def test_lists_the_options_of_each_command(self):
        for command in COMMANDS:
            with self.subTest(command):
                self.assertEqual(listed(part(f".Ss trellant {command}")),
                                 options(command) - {"-h", "--help"})

    def test_synopsis_shows_the_options_of_each_command(self):
        calls = part(".Sh SYNOPSIS").split(".Nm\n")[1:]
        self.assertEqual([call.split()[1] for call in calls], [*COMMANDS, "help", "h"])
        for command, call in zip(COMMANDS, calls):
            with self.subTest(command):
                # One name is enough there.
                self.assertEqual(flags(call), options(command) - {"-h", "--help", "--output"})

    def test_names_the_schemas_of_what_programs_read(self):
        self.assertIn(".Pa share/trellant/schema/command\n", part(".Ss Lines for programs"))
        self.assertTrue((TREE / "docs" / "machine-output.md").is_file())

    def test_names_the_variables_that_the_command_reads(self):
        sources = "".join(path.read_text() for folder in ("cli", "confine")
                          for path in (TREE / "src" / folder).rglob("*.cpp"))
        read = set(re.findall(r'\b(?:variable|getenv)\("([A-Z_]+)"\)', sources))
        named = set(re.findall(r"^\.It Ev (.*)$", part(".Sh ENVIRONMENT"), re.MULTILINE))
        self.assertEqual((named, read),
                         ({"NO_COLOR", "COLUMNS", "TERM", "TRELLANT_SANDBOX",
                           "SOURCE_DATE_EPOCH"}, named))


class ManPageFacts(InFolder):
    def test_statuses_are_those_of_the_command(self):
        named = re.findall(r"^\.It (\d)$", part(".Sh EXIT STATUS"), re.MULTILINE)
        calls = {
            "0": ["info", "mix.omf"],
            "1": ["list", "clips"],
            "2": ["info", "nothing.omf"],
            "3": ["info", "--fail-on=any", "mix.omf"],
        }
        self.assertEqual(named, list(calls))
        for status, call in calls.items():
            with self.subTest(call):
                self.assertEqual(self.run_command(*call).returncode, int(status))

    def test_a_file_that_cannot_be_read_outweighs_a_loss(self):
        run = self.run_command("info", "--fail-on=any", "mix.omf", "nothing.omf")
        self.assertEqual(run.returncode, 2)

    def test_effects_of_losses_are_those_that_are_listed(self):
        named = re.findall(r"^\.It (.*)$", part(".Ss Losses"), re.MULTILINE)
        run = self.run_command("list", "losses", "mix.omf", "--json")
        effects = {json.loads(line)["effect"] for line in run.stdout.splitlines()}
        self.assertEqual((named, effects),
                         (["dropped", "sounds different"], {"dropped", "soundsDifferent"}))
        text = self.run_command("list", "losses", "mix.omf").stdout
        for words in named:
            self.assertIn(words.encode(), text)

    def test_whatever_may_be_listed_is_named(self):
        named = re.findall(r"^\.It Cm ([a-z]+)$", part(".Ss trellant list"), re.MULTILINE)
        self.assertEqual(named, ["tracks", "clips", "sources", "losses"])
        for what in named:
            with self.subTest(what):
                self.assertEqual(self.run_command("list", what, "mix.omf").returncode, 0)

    def test_losses_that_may_fail_a_call_are_named(self):
        named = re.findall(r"^\.It Cm ([a-z]+)$", part(".Ss trellant info"), re.MULTILINE)
        self.assertEqual(named, ["missing", "render", "any"])
        for loss in named:
            with self.subTest(loss):
                run = self.run_command("info", "--fail-on", loss, "mix.omf")
                self.assertIn(run.returncode, (0, 3))
        self.assertEqual(self.run_command("info", "--fail-on=other", "mix.omf").returncode, 1)

    @staticmethod
    def files_of(command):
        """The files that the page says the command writes, but for the hidden folder."""
        parts = part(".Sh FILES").split("\n.Pp\n")
        items = next(part for part in parts if part.startswith(f".Cm {command}\n"))
        named = {name for line in re.findall(r"^\.It Pa (.*)$", items, re.MULTILINE)
                 for name in line.split(" , Pa ")}
        return named - {".trellant-XXXXXX"}

    def test_extraction_writes_the_files_that_are_named(self):
        self.assertEqual(self.run_command("extract", "mix.omf", "--to", "out").returncode, 0)
        written = {re.sub(r"^.*(?=\.(?:wav|aifc)$)", "NAME", path.name)
                   for path in (self.folder / "out").iterdir()}
        named = self.files_of("extract")
        self.assertEqual(named, {"NAME.wav", "NAME.aifc", "timeline.json", "MANIFEST.sha256"})
        self.assertEqual(written, named)

    def test_formats_and_modes_of_an_export_are_those_of_the_help(self):
        named = re.findall(r"^\.It Cm ([a-z]+)$", part(".Ss trellant export"), re.MULTILINE)
        self.assertEqual(named, [*choices("export", "--format"), *choices("export", "--media-mode")])

    def test_exports_write_the_files_that_are_named(self):
        for format in choices("export", "--format"):
            run = self.run_command("export", "mix.omf", "--to", "out", "--format", format,
                                   "--name", "NAME", "--force")
            self.assertEqual((run.returncode, run.stderr), (0, b""), format)
        written = {path.name for path in (self.folder / "out").iterdir()}
        self.assertEqual(written, self.files_of("export"))
        self.assertEqual(len(written), 10)

    def test_a_name_that_is_taken_is_wrong_use(self):
        (self.folder / "NAME.rpp").touch()
        run = self.run_command("export", "mix.omf", "--to", ".", "--format=reaper", "--name=NAME")
        self.assertEqual(run.returncode, 1)


class ManPageExamples(InFolder):
    def test_all_work_in_the_order_of_the_page(self):
        for disk in ("disk1", "disk2"):
            (self.folder / disk).mkdir()
        path = f"{Path(COMMAND).parent}:{os.environ['PATH']}"
        said = []
        for block in code_blocks():
            with self.subTest(block):
                run = subprocess.run(["sh", "-ec", block], cwd=self.folder,
                                     stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                                     env={**os.environ, "PATH": path})
                self.assertEqual((run.returncode, run.stderr), (0, b""))
                said.append(run.stdout.decode())
        self.assertEqual(len(said), 9)
        self.assertEqual(said[1], "complete\n")
        self.assertEqual(sorted(said[5].splitlines()),
                         ["Rain_ garden.wav: OK", "Theme.wav: OK", "Voice_Anna.wav: OK",
                          "Voice_Ben.wav: OK", "timeline.json: OK"])
        self.assertEqual(said[8], "mix-wav/timeline.json: valid, 5 tracks, 11 clips, 4 audio files\n")
        sheet = (self.folder / "mix.csv").read_bytes()
        self.assertEqual(sheet.count(b"\r\n"), 12)
        self.assertEqual((self.folder / "mix-clips.csv").read_bytes(), sheet)
        self.assertEqual(sorted(path.name for path in (self.folder / "mix-audio").iterdir()),
                         ["MANIFEST.sha256", "Rain_ garden.wav", "Theme.aifc", "Voice_Anna.wav",
                          "Voice_Ben.wav", "timeline.json"])
        # As they lie in the file, one behind the other.
        self.assertEqual(sorted(path.name for path in (self.folder / "rescued").iterdir()),
                         ["Sound 001.wav", "Sound 002.wav", "Sound 003.aifc", "Sound 004.wav",
                          "salvage.json"])
        self.assertEqual(sorted(path.name for path in (self.folder / "mix").iterdir()),
                         ["mix.aaf", "mix.losses.json", "mix.media"])
        self.assertEqual(sorted(path.name for path in (self.folder / "archive").iterdir()),
                         ["mix.losses.json", "mix.otioz"])


if __name__ == "__main__":
    unittest.main(verbosity=2)
