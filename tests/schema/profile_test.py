# SPDX-License-Identifier: Apache-2.0
"""The schema of profiles takes what trellant check takes, and refuses what it refuses."""
import json
import os
import re
import subprocess
import tempfile
import unittest
from pathlib import Path

import jsonschema

from schemas import FOLDER, parse

SCHEMA = parse((FOLDER / "profile.schema.json").read_bytes())
VALIDATOR = jsonschema.Draft202012Validator(SCHEMA)
PAGE = (FOLDER.parent / "docs" / "check.md").read_text()

VALUES = {"number": (5, 0, 0.5), "numbers": ([1], [24, 23.976]),
          "timecode": ("01:00:00:00", "23:59:59;29"), "patterns": (["*"], ["a", "b?"])}
WRONG = (None, True, "text", -1, 1e16, [], [-1], ["a", 1], {}, "24:00:00:00", "1:00:00:00")


def with_rule(name, settings):
    return {"profileVersion": 1, "rules": {name: settings}}


def accepting(**keys):
    return {"profileVersion": 1, "accept": [keys]}


def settings_of_rules():
    """Each rule with each of its keys, and what may stand there."""
    for name, rule in SCHEMA["properties"]["rules"]["properties"].items():
        for key, part in rule["properties"].items():
            if key == "severity":
                yield name, key, ("off", "info", "warning", "error")
            elif "enum" in part:
                yield name, key, part["enum"]
            else:
                yield name, key, (part["default"], *VALUES[part["$ref"].rpartition("/")[2]])


class Profiles(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="trellant-profile-")
        self.addCleanup(folder.cleanup)
        self.file = Path(folder.name) / "house.json"

    def taken(self, document):
        self.file.write_text(json.dumps(document))
        run = subprocess.run([os.environ["TRELLANT_COMMAND"], "check", "--list-rules", "--profile",
                              self.file], stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
        self.assertIn(run.returncode, (0, 1))
        self.assertEqual(run.returncode == 0, not run.stderr)
        return run.returncode == 0

    def agree(self, document, expected):
        with self.subTest(json.dumps(document)):
            self.assertEqual((VALIDATOR.is_valid(document), self.taken(document)),
                             (expected, expected))

    def test_the_schema_is_one(self):
        jsonschema.Draft202012Validator.check_schema(SCHEMA)

    def test_every_key_takes_its_values(self):
        for name, key, values in settings_of_rules():
            for value in values:
                self.agree(with_rule(name, {key: value}), True)

    def test_no_key_takes_others(self):
        for name, key, values in settings_of_rules():
            for value in WRONG:
                if value not in values:
                    self.agree(with_rule(name, {key: value}), False)

    def test_documents_that_make_sense(self):
        for document in ({"profileVersion": 1}, {"profileVersion": 1.0, "$schema": "x", "name": "n"},
                         {"profileVersion": 1, "extends": "film", "audio": True, "rules": {}},
                         {"profileVersion": 1, "accept": []}, {"profileVersion": 1, "accept": None},
                         accepting(rule="handles", reason="r"),
                         accepting(rule="handles", reason="r", file="a", track="b", clip="c",
                                   audioFile="d")):
            self.agree(document, True)

    def test_documents_that_make_none(self):
        for document in ({}, [], {"profileVersion": 2}, {"profileVersion": "1"},
                         {"profileVersion": 1, "rule": {}}, {"profileVersion": 1, "rules": []},
                         {"profileVersion": 1, "name": 1}, {"profileVersion": 1, "audio": "yes"},
                         {"profileVersion": 1, "name": "n" * 1025},
                         {"profileVersion": 1, "accept": {}}, with_rule("handels", {}),
                         with_rule("handles", {"secnds": 8}), with_rule("handles", 8),
                         accepting(rule="handles"), accepting(reason="r"),
                         accepting(rule="handles", reason=""), accepting(rule="x", reason="r"),
                         accepting(rule="handles", reason="r", why="w"),
                         accepting(rule="handles", reason="r", clip=1)):
            self.agree(document, False)

    def test_those_of_the_page_make_sense(self):
        documents = re.findall(r"```json\n(.*?)```", PAGE, re.DOTALL)
        self.assertEqual(len(documents), 2)
        for document in documents:
            self.agree(json.loads(document), True)


if __name__ == "__main__":
    unittest.main(verbosity=2)
