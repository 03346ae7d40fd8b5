# SPDX-License-Identifier: Apache-2.0
"""The completions offer what the command takes, in each place what fits there."""
import os
import re
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

from command_help import COMMAND, COMMANDS, TREE, choices, options

FOLDER = TREE / "completions"
BASH = FOLDER / "trellant.bash"
ZSH = FOLDER / "_trellant"
FISH = FOLDER / "trellant.fish"

COMPLETE = r"""
source "$1"
shift
COMP_WORDS=("$@")
COMP_CWORD=$(($# - 1))
_trellant
((${#COMPREPLY[@]} == 0)) || printf '%s\0' "${COMPREPLY[@]}"
"""

# What may stand first: "help" is no command of the help, but shows theirs.
WORDS = (*COMMANDS, "help")
# What `trellant catalogue query` with a catalogue alone lists.
QUESTIONS = [line.split()[0] for line in subprocess.run(
    [COMMAND, "catalogue", "query", "/none"], check=True, stdout=subprocess.PIPE).stdout.decode().splitlines()[1:]]
OPTIONS_OF_ALL = {"-h", "--help", "-q", "--quiet", "-v", "--verbose"}


def expected_options(command):
    """The command's own ones and those that may stand anywhere."""
    return options(command) | OPTIONS_OF_ALL


class InFolder(unittest.TestCase):
    """Each test has a folder of its own with files of all kinds."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="trellant-completions-")
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        for name in ("mix.omf", "Reel 1.OMF", "old.Omfi", "mix.omf.txt", "omf", "notes.txt",
                     "result.json", "OTHER.JSON"):
            (self.folder / name).touch()
        for name in ("audio", "bundle.omf"):
            (self.folder / name).mkdir()


class Bash(InFolder):

    def replies(self, *words):
        """What is offered for the last of the words that follow `trellant`."""
        run = subprocess.run(["bash", "--norc", "--noprofile", "-c", COMPLETE, "bash", str(BASH),
                              "trellant", *words], cwd=self.folder, stdout=subprocess.PIPE,
                             stderr=subprocess.PIPE)
        self.assertEqual(run.stderr, b"")
        return sorted(run.stdout.decode().split("\0")[:-1])

    def test_is_well_formed(self):
        run = subprocess.run(["bash", "-n", str(BASH)], stdout=subprocess.PIPE,
                             stderr=subprocess.STDOUT)
        self.assertEqual((run.returncode, run.stdout), (0, b""))

    def test_is_registered_for_the_command(self):
        run = subprocess.run(["bash", "--norc", "--noprofile", "-c",
                              'source "$1"; complete -p trellant', "bash", str(BASH)],
                             stdout=subprocess.PIPE)
        self.assertEqual(run.stdout, b"complete -F _trellant trellant\n")

    def test_first_word_is_a_command(self):
        self.assertEqual(self.replies(""), sorted(WORDS))
        self.assertEqual(self.replies("ex"), ["export", "extract"])
        self.assertEqual(self.replies("-q", "l"), ["list"])
        self.assertEqual(self.replies("x"), [])

    def test_options_are_those_of_the_help(self):
        self.assertEqual(self.replies("-"), sorted(options()))
        for command in COMMANDS:
            with self.subTest(command):
                self.assertEqual(self.replies(command, "-"), sorted(expected_options(command)))

    def test_options_may_follow_files(self):
        self.assertEqual(self.replies("extract", "mix.omf", "--w"), ["--wav"])
        self.assertEqual(self.replies("list", "clips", "mix.omf", "--cs"), ["--csv"])

    def test_help_takes_a_command(self):
        self.assertEqual(self.replies("help", ""), sorted(COMMANDS))
        self.assertEqual(self.replies("help", "list", ""), [])

    def test_list_takes_what_and_then_files(self):
        self.assertEqual(self.replies("list", ""), ["clips", "losses", "sources", "tracks"])
        self.assertEqual(self.replies("list", "--json", "t"), ["tracks"])
        self.assertEqual(self.replies("list", "clips", "m"), ["mix.omf"])
        self.assertEqual(self.replies("list", "clips", "mix.omf", "o"), ["old.Omfi"])

    def test_files_end_in_omf_or_omfi_in_any_case_and_folders_lead_to_more(self):
        found = ["Reel 1.OMF", "audio", "bundle.omf", "mix.omf", "old.Omfi"]
        self.assertEqual(self.replies("info", ""), found)
        self.assertEqual(self.replies("info", "mix.omf", ""), found)
        self.assertEqual(self.replies("list", "clips", ""), found)
        self.assertEqual(self.replies("extract", ""), found)
        self.assertEqual(self.replies("extract", "mix.omf", ""), found)
        self.assertEqual(self.replies("export", ""), found)

    def test_files_in_a_folder_keep_their_folder(self):
        (self.folder / "audio" / "scene.omf").touch()
        self.assertEqual(self.replies("info", "audio/"), ["audio/scene.omf"])

    def test_dump_takes_any_files(self):
        self.assertEqual(self.replies("dump", "no"), ["notes.txt"])
        self.assertEqual(self.replies("dump", "--toc", "m"), ["mix.omf", "mix.omf.txt"])
        self.assertEqual(self.replies("dump", "mix.omf", "no"), ["notes.txt"])

    def test_validate_takes_json_files(self):
        self.assertEqual(self.replies("validate", ""),
                         ["OTHER.JSON", "audio", "bundle.omf", "result.json"])

    def test_peaks_takes_audio_files_and_a_size_of_values(self):
        for name in ("voice.WAV", "atmo.aif", "music.aiff", "tape.aifc", "voice.wav.txt"):
            (self.folder / name).touch()
        self.assertEqual(self.replies("peaks", ""),
                         ["atmo.aif", "audio", "bundle.omf", "music.aiff", "tape.aifc", "voice.WAV"])
        self.assertEqual(self.replies("peaks", "--bits", ""), ["16", "8"])
        self.assertEqual(self.replies("peaks", "--bits", "8", "voice.W"), ["voice.WAV"])
        self.assertEqual(self.replies("peaks", "--samples-per-pair", ""), [])

    def test_losses_are_offered_after_fail_on(self):
        for command in ("info", "list", "extract", "export", "page"):
            with self.subTest(command):
                self.assertEqual(self.replies(command, "--fail-on", ""),
                                 ["any", "missing", "render"])
        self.assertEqual(self.replies("info", "--fail-on", "=", "m"), ["missing"])
        self.assertEqual(self.replies("info", "--fail-on", "="), ["any", "missing", "render"])

    def test_folders_alone_are_offered_where_a_folder_is_meant(self):
        for command in ("extract", "export"):
            with self.subTest(command):
                self.assertEqual(self.replies(command, "mix.omf", "--to", ""),
                                 ["audio", "bundle.omf"])
        for command in ("info", "list", "extract", "export", "page"):
            with self.subTest(command):
                self.assertEqual(self.replies(command, "--media", "a"), ["audio"])
        self.assertEqual(self.replies("extract", "--to", "=", "a"), ["audio"])

    def test_any_file_is_offered_for_the_output(self):
        self.assertEqual(self.replies("info", "-o", "no"), ["notes.txt"])
        self.assertEqual(self.replies("list", "--output", "no"), ["notes.txt"])

    def test_a_scan_takes_files_and_folders_and_a_catalogue_its_questions(self):
        for name in ("part1.ndjson", "archive.sqlite"):
            (self.folder / name).touch()
        self.assertEqual(self.replies("scan", "no"), ["notes.txt"])
        self.assertEqual(self.replies("scan", "--list", "no"), ["notes.txt"])
        self.assertEqual(self.replies("scan", "--retry", ""), ["failed"])
        self.assertEqual(self.replies("scan", "--shard", ""), [])
        self.assertEqual(self.replies("scan", "--jobs", "4", "--shard", "1/8", "audi"), ["audio"])
        self.assertEqual(self.replies("catalogue", ""), ["build", "query", "stats"])
        self.assertEqual(self.replies("catalogue", "query", "arch"), ["archive.sqlite"])
        self.assertEqual(self.replies("catalogue", "build", "archive.sqlite", "part"), ["part1.ndjson"])
        self.assertEqual(self.replies("catalogue", "query", "archive.sqlite", ""), sorted(QUESTIONS))
        self.assertEqual(self.replies("catalogue", "query", "--limit", "5", "archive.sqlite", "dup"),
                         ["duplicate-audio", "duplicate-files"])
        self.assertEqual(self.replies("catalogue", "query", "archive.sqlite", "--sql", ""), [])

    def test_an_extraction_keeps_audio_in_folders(self):
        for option in ("--store", "--bag"):
            self.assertEqual(self.replies("extract", "mix.omf", option, ""), ["audio", "bundle.omf"])
        self.assertEqual(self.replies("extract", "--organization", ""), [])
        self.assertEqual(self.replies("extract", "--identifier", "a", "--bag", "audio", "m"), ["mix.omf"])

    def test_formats_and_modes_of_an_export_are_offered(self):
        self.assertEqual(self.replies("export", "--format", ""),
                         sorted(choices("export", "--format")))
        self.assertEqual(self.replies("export", "--format", "=", "o"), ["otio", "otioz"])
        self.assertEqual(self.replies("export", "--media-mode", ""),
                         sorted(choices("export", "--media-mode")))
        self.assertEqual(self.replies("render", "--format", ""), ["wav24", "wav32f"])

    def test_nothing_is_offered_for_what_only_the_person_knows(self):
        self.assertEqual(self.replies("dump", "--object", ""), [])
        self.assertEqual(self.replies("dump", "--path", ""), [])
        self.assertEqual(self.replies("export", "--rate", ""), [])
        self.assertEqual(self.replies("render", "--handles", ""), [])
        self.assertEqual(self.replies("render", "--from", ""), [])
        self.assertEqual(self.replies("export", "--name", ""), [])

    def test_values_of_options_are_no_commands_and_no_files(self):
        self.assertEqual(self.replies("list", "--fail-on", "any", "--media", "audio", "s"),
                         ["sources"])
        self.assertEqual(self.replies("list", "--media", "=", "audio", "s"), ["sources"])
        self.assertEqual(self.replies("extract", "--to", "audio", "m"), ["mix.omf"])
        self.assertEqual(self.replies("dump", "--object", "12", "mix.omf."), ["mix.omf.txt"])
        self.assertEqual(self.replies("list", "-o", "list.csv", "l"), ["losses"])
        self.assertEqual(self.replies("export", "--format", "aaf", "--rate", "48000", "--name",
                                      "mix", "--media-mode", "copy", "m"), ["mix.omf"])


def zsh_options(source):
    """The options in the arguments of `_arguments`, explanations and exclusions left out."""
    plain = re.sub(r"\[[^]]*\]|'\([^)]*\)", "", source)
    names = re.findall(r"(?<![\w-])--?[a-z][a-z-]*\+?=?(?=[,:}']|$)", plain, re.MULTILINE)
    return {name.rstrip("=+") for name in names}


class Zsh(unittest.TestCase):
    @unittest.skipUnless(shutil.which("zsh"), "there is no zsh on this machine")
    def test_is_well_formed(self):
        run = subprocess.run(["zsh", "-f", "-n", str(ZSH)], stdout=subprocess.PIPE,
                             stderr=subprocess.STDOUT)
        self.assertEqual((run.returncode, run.stdout), (0, b""))

    def test_is_registered_for_the_command(self):
        self.assertEqual(ZSH.read_text().splitlines()[0], "#compdef trellant")

    def test_options_are_those_of_the_help(self):
        text = ZSH.read_text()
        anywhere = zsh_options(re.search(r"anywhere=\((.*?)\n  \)", text, re.DOTALL).group(1))
        self.assertEqual(anywhere, OPTIONS_OF_ALL)
        first = re.search(r"_arguments -C -s -S \$anywhere(.*?)&& ret=0", text, re.DOTALL).group(1)
        self.assertEqual(anywhere | zsh_options(first), options())
        for command in COMMANDS:
            with self.subTest(command):
                case = re.search(rf"^ +{command}\)\n +_arguments -s -S \$anywhere (.*?)&& ret=0",
                                 text, re.DOTALL | re.MULTILINE).group(1)
                self.assertEqual(anywhere | zsh_options(case), expected_options(command))

    def test_commands_are_those_of_the_help(self):
        listed = re.search(r"commands=\((.*?)\n +\)", ZSH.read_text(), re.DOTALL).group(1)
        self.assertEqual(tuple(re.findall(r"'([a-z]+):", listed)), WORDS)
        self.assertIn(f"'1:command:({' '.join(COMMANDS)})'", ZSH.read_text())

    def test_values_are_all_there(self):
        text = ZSH.read_text()
        self.assertEqual(text.count(":loss:(missing render any)"), 6)
        self.assertEqual(text.count(":what:(tracks clips sources losses)"), 1)
        for option, name in (("--format", "format"), ("--media-mode", "mode")):
            words = " ".join(choices("export", option))
            self.assertEqual(text.count(f":{name}:({words})"), 1)

    def test_what_may_be_given_several_times_is_marked_so(self):
        text = ZSH.read_text()
        self.assertEqual(text.count("'*--media=["), text.count("--media=["))
        self.assertEqual(text.count('"*:OMF file:$omf"'), 7)


class Fish(unittest.TestCase):
    @unittest.skipUnless(shutil.which("fish"), "there is no fish on this machine")
    def test_is_well_formed(self):
        run = subprocess.run(["fish", "--no-config", "-n", str(FISH)], stdout=subprocess.PIPE,
                             stderr=subprocess.STDOUT)
        self.assertEqual((run.returncode, run.stdout), (0, b""))

    def lines(self, pattern):
        return [line for line in FISH.read_text().splitlines()
                if re.match(rf"complete -c trellant {pattern}", line)]

    @staticmethod
    def options_of(lines):
        plain = re.sub(r"'[^']*'|\"[^\"]*\"", "", "\n".join(lines))
        return ({"-" + name for name in re.findall(r" -s (\w)", plain)} |
                {"--" + name for name in re.findall(r" -l ([a-z-]+)", plain)})

    def test_options_are_those_of_the_help(self):
        anywhere = self.options_of(self.lines("-[sl] "))
        self.assertEqual(anywhere, OPTIONS_OF_ALL)
        first = self.options_of(self.lines("-n __trellant_in "))
        self.assertEqual(anywhere | first, options())
        for command in COMMANDS:
            with self.subTest(command):
                lines = self.lines(f"-n '__trellant_in {command}' ")
                self.assertEqual(anywhere | self.options_of(lines), expected_options(command))

    def test_commands_are_those_of_the_help(self):
        offered = [re.search(r" -a (\w+) ", line) for line in self.lines("-n __trellant_in -a ")]
        self.assertEqual(tuple(found.group(1) for found in offered), WORDS)
        self.assertIn(f"set -l commands {' '.join(COMMANDS)}", FISH.read_text().splitlines())

    def test_values_are_all_there(self):
        text = FISH.read_text()
        self.assertEqual(text.count("-l fail-on -x -a 'missing render any'"), 6)
        for option in ("format", "media-mode"):
            words = " ".join(choices("export", f"--{option}"))
            self.assertEqual(text.count(f"-l {option} -x -a '{words}'"), 1)
        self.assertIn("set -l contents tracks clips sources losses", text.splitlines())
        self.assertEqual(text.count(f"-a '{' '.join(QUESTIONS)}'"), 1)


@unittest.skipUnless(shutil.which("fish"), "there is no fish on this machine")
class FishOffers(InFolder):
    """What fish itself makes of the file."""

    def replies(self, line):
        """What is offered at the end of the line behind `trellant`, without descriptions."""
        run = subprocess.run(["fish", "--no-config", "-c", f"source {FISH}; complete -C $argv[1]",
                              f"trellant {line}"], cwd=self.folder, stdout=subprocess.PIPE,
                             stderr=subprocess.PIPE,
                             env={**os.environ, "HOME": str(self.folder / "audio")})
        self.assertEqual(run.stderr, b"")
        return sorted(reply.split("\t")[0] for reply in run.stdout.decode().splitlines())

    def test_first_word_is_a_command(self):
        self.assertEqual(self.replies(""), sorted(WORDS))
        self.assertEqual(self.replies("-q l"), ["list"])

    def test_help_takes_a_command(self):
        self.assertEqual(self.replies("help "), sorted(COMMANDS))
        self.assertEqual(self.replies("help list "), [])

    def test_options_are_those_of_the_help(self):
        for command in COMMANDS:
            with self.subTest(command):
                long = {name for name in expected_options(command) if name.startswith("--")}
                self.assertEqual(self.replies(f"{command} --"), sorted(long))

    def test_files_are_those_that_fit_and_nothing_else(self):
        found = ["Reel 1.OMF", "audio/", "bundle.omf/", "mix.omf", "old.Omfi"]
        for line in ("info ", "info mix.omf ", "list clips ", "list clips mix.omf ", "extract ",
                     "extract mix.omf ", "export ", "export mix.omf "):
            with self.subTest(line):
                self.assertEqual(self.replies(line), found)
        self.assertEqual(self.replies("validate "),
                         ["OTHER.JSON", "audio/", "bundle.omf/", "result.json"])
        self.assertEqual(self.replies("dump no"), ["notes.txt"])

    def test_list_takes_what_first(self):
        self.assertEqual(self.replies("list "), ["clips", "losses", "sources", "tracks"])
        self.assertEqual(self.replies("list --json t"), ["tracks"])

    def test_values_of_options_are_those_that_fit(self):
        self.assertEqual(self.replies("info --fail-on "), ["any", "missing", "render"])
        self.assertEqual(self.replies("extract mix.omf --to "), ["audio/", "bundle.omf/"])
        self.assertEqual(self.replies("export mix.omf --to "), ["audio/", "bundle.omf/"])
        self.assertEqual(self.replies("export --media-mode "), ["copy", "embed", "link"])
        self.assertEqual(self.replies("export --format o"), ["otio", "otioz"])
        self.assertEqual(self.replies("list --media a"), ["audio/"])
        self.assertEqual(self.replies("dump --object "), [])


if __name__ == "__main__":
    unittest.main(verbosity=2)
