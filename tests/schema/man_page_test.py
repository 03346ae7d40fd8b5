# SPDX-License-Identifier: Apache-2.0
"""The man page is well formed, names everything that it should, and its examples work as printed."""
import os
import re
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

from schemas import FOLDER, SCHEMAS, parse, validator

PAGE = FOLDER.parent / "man" / "trellant-omf.1"
EXAMPLES = FOLDER.parent / "examples"
WORKER = os.environ["TRELLANT_WORKER"]
MARKER = b"TRELLANT-AAF-PROGRESS "


def rendered():
    """The page as plain text, its spaces folded."""
    shown = subprocess.run(["mandoc", "-T", "utf8", str(PAGE)], check=True, stdout=subprocess.PIPE)
    return " ".join(re.sub(".\b", "", shown.stdout.decode()).split())


def code_blocks():
    return re.findall(r"^\.Bd -literal.*?\n(.*?)^\.Ed$", PAGE.read_text(), re.DOTALL | re.MULTILINE)


def run_worker(request):
    return subprocess.run([WORKER], input=request, stdout=subprocess.PIPE, stderr=subprocess.PIPE)


class ManPage(unittest.TestCase):
    def test_has_no_warnings_of_any_level(self):
        lint = subprocess.run(["mandoc", "-T", "lint", "-W", "style", str(PAGE)],
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        self.assertEqual((lint.returncode, lint.stdout.decode()), (0, ""))

    def test_has_the_sections_that_a_reader_looks_for(self):
        sections = re.findall(r"^\.Sh (.*)$", PAGE.read_text(), re.MULTILINE)
        self.assertEqual(sections, ["NAME", "SYNOPSIS", "DESCRIPTION", "ENVIRONMENT", "FILES",
                                    "EXIT STATUS", "EXAMPLES", "DIAGNOSTICS", "SEE ALSO",
                                    "STANDARDS"])

    def test_names_every_key_of_the_request_every_operation_and_every_phase(self):
        words = set(re.split(r"[^A-Za-z0-9]+", rendered()))
        request = SCHEMAS["request"]
        for word in (*request["properties"], *request["$defs"]["operation"]["enum"],
                     *SCHEMAS["result"]["required"],
                     *SCHEMAS["progress"]["properties"]["phase"]["examples"]):
            self.assertIn(word, words)

    def test_names_every_schema(self):
        for schema in SCHEMAS.values():
            self.assertIn(schema["$id"], rendered())

    def test_messages_and_statuses_are_those_of_the_worker(self):
        said = re.findall(r"^\.It trellant-omf: (.*)\n(?:Status (\d))", PAGE.read_text(),
                          re.MULTILINE)
        self.assertEqual(len(said), 8)
        request = ('{"protocolVersion": %s, "operation": "inspect", "aafPath": "%s",'
                   ' "workDirectory": "", "recoverProToolsTrueFades": false,'
                   ' "removeProToolsSampleAccurateEditFragments": false}')
        runs = {
            "empty request on stdin": b"",
            "invalid request JSON: KEYPATH: REASON": b"{}",
            "unsupported protocol version N": (request % (2, "a.omf")).encode(),
            "Malformed OMF/Bento file: REASON": (request % (1, PAGE)).encode(),
            "unexpected failure: REASON": (request % (1, "/no/such/file")).encode(),
        }
        for message, text in runs.items():
            with self.subTest(message):
                status = next(status for words, status in said if words == message)
                run = run_worker(text)
                pattern = re.sub("KEYPATH|REASON|N$", ".+", re.escape(message))
                self.assertRegex(run.stderr.splitlines()[-1].decode(), f"^trellant-omf: {pattern}$")
                self.assertEqual(run.returncode, int(status))


class ManPageExamples(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="trellant-man-")
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        shutil.copy(EXAMPLES / "session.omf", self.folder)
        self.looking, self.extracting = code_blocks()

    def run_block(self, block):
        """As typed into a shell, with the worker in the search path."""
        path = f"{Path(WORKER).parent}:{os.environ['PATH']}"
        return subprocess.run(["sh", "-c", block], cwd=self.folder, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE, env={**os.environ, "PATH": path})

    def check_result(self, text):
        document = parse(text)
        self.assertEqual([error.message for error in validator("result").iter_errors(document)], [])
        self.assertEqual(document["timeline"]["compositionName"], "Scene 12")
        return document["timeline"]

    def check_lines(self, text):
        lines = text.splitlines()
        self.assertEqual([line for line in lines if not line.startswith(MARKER)], [])
        self.assertEqual(parse(lines[-1][len(MARKER):]), {"phase": "done", "fraction": 1})

    def test_looking_at_a_file_creates_nothing(self):
        run = self.run_block(self.looking)
        self.assertEqual(run.returncode, 0)
        timeline = self.check_result(run.stdout)
        self.assertEqual([e for e in timeline["essences"] if "fileURL" in e], [])
        self.check_lines(run.stderr)
        self.assertEqual([path.name for path in self.folder.iterdir()], ["session.omf"])

    def test_taking_the_audio_out_leaves_result_lines_and_audio_apart(self):
        run = self.run_block(self.extracting)
        self.assertEqual((run.returncode, run.stdout, run.stderr), (0, b"", b""))
        timeline = self.check_result((self.folder / "session.json").read_bytes())
        self.check_lines((self.folder / "session.log").read_bytes())
        self.assertEqual(len(list((self.folder / "audio").iterdir())), len(timeline["essences"]))


if __name__ == "__main__":
    unittest.main(verbosity=2)
