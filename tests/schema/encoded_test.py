# SPDX-License-Identifier: Apache-2.0
"""Everything that the tests encode is valid: their programs run once more with TRELLANT_ENCODED set
and leave each document that they write in a folder, in a file KIND-HASH.json."""
import collections
import os
import subprocess
import tempfile
import unittest
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

from schemas import FOLDER, NAMES, SCHEMAS, Definition, parse, root, validator, walk

EXAMPLES = FOLDER.parent / "examples"

# Of each kind at least so many: fewer, and the programs no longer leave what they encode.
FLOORS = {
    "request": 50,
    "refused": 15,
    "progress": 15,
    "result": 30,
    "timeline": 600,
    "timeline.event": 2,
    "timeline.essence": 1,
    "timeline.track": 1,
    "timeline.envelope": 5,
    "timeline.fade": 1,
}
SHOWN_PROBLEMS = 10


def run_and_keep(program, folder):
    environment = {**os.environ, "TRELLANT_ENCODED": folder}
    return subprocess.run([program, "--gtest_brief=1"], env=environment, stdin=subprocess.DEVNULL,
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT)


def read(path):
    """The document; absent when it nests deeper than Python's own reader goes."""
    try:
        return parse(path.read_bytes())
    except RecursionError:
        return None


class Checked:
    """What came of going through the documents of one kind."""

    def __init__(self, kind):
        self.kind = kind
        self.validate = validator(kind)
        self.root = root(kind)
        self.problems = []
        self.held = collections.defaultdict(set)

    def take(self, name, document):
        for error in self.validate.iter_errors(document):
            place = ".".join(map(str, error.absolute_path))
            self.problems.append(f"{name}: {place}: {error.message}")
        if not self.problems:
            for path, value, definition in walk(document, self.root):
                if definition.is_record:
                    self.hold(name, path, value, definition)

    def hold(self, name, path, value, definition):
        self.held[definition.name] |= set(value)
        # A host may add keys to its requests; what the worker writes is all described.
        if self.kind != "request" and not set(value) <= definition.keys:
            unknown = sorted(set(value) - definition.keys)
            self.problems.append(f"{name}: {'.'.join(map(str, path))}: not described: {unknown}")


class EncodedDocuments(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory(prefix="trellant-encoded-")
        cls.addClassCleanup(cls.folder.cleanup)
        programs = os.environ["TRELLANT_ENCODING_TESTS"].split(":")
        with ThreadPoolExecutor(max_workers=2) as pool:
            runs = pool.map(lambda program: run_and_keep(program, cls.folder.name), programs)
            cls.runs = dict(zip(programs, runs))
        cls.files = collections.defaultdict(list)
        for path in sorted(Path(cls.folder.name).iterdir()):
            cls.files[path.name.split("-")[0]].append(path)
        cls.checked = {kind: Checked(kind) for kind in cls.files if kind != "refused"}
        cls.refused = {}
        cls.too_deep = []
        for kind, path in ((kind, path) for kind in cls.files for path in cls.files[kind]):
            document = read(path)
            if document is None:
                cls.too_deep.append(kind)
            elif kind == "refused":
                cls.refused[path.name] = document
            else:
                cls.checked[kind].take(path.name, document)

    def test_the_programs_pass(self):
        for program, run in self.runs.items():
            with self.subTest(program):
                self.assertEqual(run.returncode, 0, run.stdout.decode(errors="replace")[-4000:])

    def test_there_are_enough_of_every_kind(self):
        counts = {kind: len(self.files[kind]) for kind in self.files}
        print("documents:", counts)
        for kind, floor in FLOORS.items():
            self.assertGreaterEqual(counts.get(kind, 0), floor, kind)

    def test_only_a_few_requests_nest_too_deep_to_be_checked(self):
        # Megabytes of brackets, which no encoder writes.
        self.assertLessEqual(set(self.too_deep), {"refused", "request"})
        self.assertLessEqual(len(self.too_deep), 5)

    def test_each_is_valid_and_described_to_the_last_key(self):
        for kind, checked in self.checked.items():
            with self.subTest(kind):
                self.assertEqual(checked.problems[:SHOWN_PROBLEMS], [])

    def test_together_they_hold_every_key_of_every_schema(self):
        held = collections.defaultdict(set)
        for checked in self.checked.values():
            for name, keys in checked.held.items():
                held[name] |= keys
        for schema in SCHEMAS.values():
            for name in schema.get("$defs", ()):
                definition = Definition({"$ref": f"#/$defs/{name}"}, schema["$id"])
                if definition.is_record:
                    self.assertLessEqual(definition.keys, held[name], name)
        for name in NAMES:
            self.assertLessEqual(root(name).keys, held[name], name)

    def test_what_the_worker_refuses_its_schema_refuses(self):
        validate = validator("request")
        for name, document in self.refused.items():
            with self.subTest(name):
                self.assertFalse(validate.is_valid(document), str(document)[:300])

    def test_every_phase_is_one_that_the_schema_names(self):
        named = SCHEMAS["progress"]["properties"]["phase"]["examples"]
        # The lines of the protocol's own tests show how odd texts are framed.
        odd = {"a\nb"}
        seen = {read(path)["phase"] for path in self.files["progress"]}
        self.assertEqual(seen - odd, set(named))


class ExampleDocuments(unittest.TestCase):
    def test_every_accepted_result_is_valid_and_described_to_the_last_key(self):
        accepted = sorted(EXAMPLES.glob("*.accepted.json"))
        self.assertEqual(len(accepted), len(list(EXAMPLES.glob("*.omf"))))
        self.assertGreater(len(accepted), 0)
        checked = Checked("result")
        for path in accepted:
            checked.take(path.name, parse(path.read_bytes()))
        self.assertEqual(checked.problems, [])


if __name__ == "__main__":
    unittest.main(verbosity=2)
