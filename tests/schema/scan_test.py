# SPDX-License-Identifier: Apache-2.0
"""The rows of a scan are what their schema says, and it takes nothing else."""
import collections
import copy
import json
import os
import subprocess
import tempfile
import unittest
from pathlib import Path

import jsonschema

from command_lines import Folder
from schemas import FOLDER, parse

SCHEMA = parse((FOLDER / "command" / "scan.schema.json").read_bytes())
VALIDATOR = jsonschema.Draft202012Validator(SCHEMA)
PAGE = (FOLDER.parent / "docs" / "machine-output.md").read_text()
# What no file of the examples has: more than 20,000 audio files.
UNREACHED = {("", "sourcesLeftOut")}

ROWS = []


def setUpModule():
    with tempfile.TemporaryDirectory(prefix="trellant-scan-") as place:
        folder = Folder(place)
        session = (folder.path / "session.omf").read_bytes()
        # The names of the older model, and a program that names itself.
        (folder.path / "older.omf").write_bytes(b"\0OMFI:ObjID\0" + session[-24:])
        shard = Path(place) / "shard.ndjson"
        scan = [os.environ["TRELLANT_COMMAND"], "scan", "--profile", "post", "-o", shard]
        run = subprocess.run([*scan, folder.path, folder.path / "none.omf"],
                             stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        assert run.returncode == 0, run.stderr
        ROWS.extend(parse(line) for line in shard.read_bytes().splitlines())


def records(value, part, name=""):
    """Every object of a row with the name of its record and its part of the schema."""
    if "$ref" in part:
        name = part["$ref"].rpartition("/")[2]
        part = SCHEMA["$defs"][name]
    if isinstance(value, dict):
        yield name, value, part
        for key in value.keys() & part["properties"].keys():
            yield from records(value[key], part["properties"][key], name)
    elif isinstance(value, list):
        for element in value:
            yield from records(element, part["items"], name)


def keys():
    return {(name, key) for name, part in {"": SCHEMA, **SCHEMA["$defs"]}.items()
            for key in part.get("properties", {})}


class Rows(unittest.TestCase):
    def test_each_is_valid(self):
        problems = [f"{row['path']}: {list(error.absolute_path)}: {error.message}"
                    for row in ROWS for error in VALIDATOR.iter_errors(row)]
        self.assertEqual(problems, [])
        self.assertGreater(len(ROWS), 8)

    def test_together_they_hold_every_key_but_those_of_programs(self):
        held = {(name, key) for row in ROWS for name, value, _ in records(row, SCHEMA)
                for key in value}
        programs = {("application", key) for key in ("company", "product", "version")}
        self.assertEqual(keys() - held - programs, UNREACHED)

    def test_a_key_that_is_always_there_cannot_be_missing_and_no_other_fits(self):
        tried = collections.Counter()
        for row in ROWS:
            other = copy.deepcopy(row)
            for name, value, part in records(other, SCHEMA):
                value["unknown"] = 1
                self.assertFalse(VALIDATOR.is_valid(other), name)
                del value["unknown"]
                for key in part["required"]:
                    if tried[name, key] == 0:
                        kept = value.pop(key)
                        self.assertFalse(VALIDATOR.is_valid(other), (name, key))
                        value[key] = kept
                    tried[name, key] += 1
        self.assertGreater(len(tried), 30)

    def test_statuses_are_told_apart(self):
        by_name = {Path(row["path"]).name: row["status"] for row in ROWS}
        self.assertEqual(by_name["session.omf"], "ok")
        self.assertEqual(by_name["damaged.omf"], "damaged")
        self.assertEqual(by_name["none.omf"], "refused")
        self.assertNotIn("text.omf", by_name)

    def test_the_page_names_every_key(self):
        missing = [key for _, key in sorted(keys()) if f"`{key}`" not in PAGE]
        self.assertEqual(missing, [])


if __name__ == "__main__":
    unittest.main(verbosity=2)
