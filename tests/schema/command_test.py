# SPDX-License-Identifier: Apache-2.0
"""Whatever the command writes for programs is what its schemas say, and they take nothing else."""
import collections
import math
import re
import tempfile
import unittest
from fractions import Fraction

import jsonschema

from command_lines import FORMATS, all_calls
from command_schemas import NAMES, SCHEMAS, Part, all_keys, keys_of, walk
from mutations import CANDIDATES, UNKNOWN_KEY, changed, json_types, removal, replacement
from schemas import FOLDER

VALIDATORS = {name: jsonschema.Draft202012Validator(schema) for name, schema in SCHEMAS.items()}
SHOWN_PROBLEMS = 10

PAN = {"pan", "panPosition"}
FADES = {f"fade{side}{what}" for side in ("In", "Out") for what in ("", "Seconds", "SecondsExact",
                                                                    "Curve")}
LENGTH = {"lengthSeconds", "lengthSecondsExact"}
RATE = {"sampleRate", "sampleRateExact"}

OF_A_LOSS = {"track", "trackNumber", "clip", "clipNameFrom", "in", "out", "objectPath", "startSeconds",
             "startSecondsExact", "durationSeconds", "durationSecondsExact"}

# The keys that a line may lack, by schema and record; every other key is always there.
OPTIONAL = {
    ("info", ""): {"omfVersion", "composition", "length", "firstAudible", "firstAudibleSeconds",
                   "firstAudibleSecondsExact", "driftSecondsPerHour", "rateDisagreement"} | LENGTH,
    ("info", "composition"): {"name"},
    ("info", "change"): {"track", "clip", "audioFile", "timecode", "startSeconds",
                         "startSecondsExact"},
    ("list-tracks", ""): {"omfVersion", "name", "gainDb"} | PAN,
    ("list-clips", ""): {"omfVersion", "track", "clip", "clipNameFrom", "sourceInTimecode",
                         "sourceOutTimecode", "reel", "sourceChannel", "gainDb", "automationPoints",
                         "gainPoints", "lossNumbers"} | PAN | FADES,
    ("list-sources", ""): {"omfVersion", "bitDepth", "codec", "timecode", "timecodeRate", "reel", "path",
                           "recordedPath"},
    ("list-losses", ""): OF_A_LOSS | {"omfVersion"},
    ("extract", ""): {"notPlayed", "omfVersion", "store", "bag"},
    ("extract", "audio"): {"name", "nameFrom", "path", "fileURL", "frames", "bitDepth", "channels", "codec",
                           "recordedPath", "sha256", "notConverted", "stored", "storeHadIt", "linked"} | LENGTH,
    ("extract", "candidate"): {"frames", "channels", "bitDepth", "misfit"} | LENGTH | RATE,
    ("salvage", ""): {"record", "table"},
    ("salvage", "table"): {"claimedBytes"},
    ("salvage", "sound"): {"claimedBytes", "sampleRate", "channels", "bitDepth", "codec", "frames"},
    ("export", ""): {"mediaFolder", "omfVersion"},
    ("export-losses", "loss"): OF_A_LOSS,
    ("render", ""): {"omfVersion"},
    ("render", "renderedFile"): {"track", "trackName", "clip", "clipNameFrom"},
    ("check", ""): {"omfVersion"},
    ("check", "finding"): {"track", "trackNumber", "clip", "clipNameFrom", "audioFile", "in", "out", "startSeconds",
                           "startSecondsExact", "durationSeconds", "durationSecondsExact",
                           "objectPath", "foundNumber", "wantedNumber", "unit",
                           "acceptedBecause"},
    ("check", "entry"): {"filePattern", "trackPattern", "clipPattern", "audioFilePattern"},
    ("dump-overview", ""): {"looksLike", "header"},
    ("dump-overview", "table"): {"blockBytes"},
    ("dump-object", ""): {"steps", "class"},
    ("dump-object", "step"): {"by"},
    ("dump-object", "property"): {"property", "typeNumber", "type", "bytes", "listing", "cut"},
    ("dump-table", ""): {"leavesFile"},
    ("validate", ""): {"place"},
}


# Byte orders, roles of channels, object models: their words speak for themselves.
UNNAMED_WORDS = {"littleEndian", "bigEndian", "mono", "left", "right", "center", "lfe",
                 "leftSurround", "rightSurround", "unknown", "omf1", "omf2", "dropped",
                 "soundsDifferent", "changed", "error", "warning", "info", "off",
                 "file", "timeline", "sound"}

CALLS = []
LINES = []


def setUpModule():
    with tempfile.TemporaryDirectory(prefix="trellant-lines-") as folder:
        CALLS.extend(all_calls(folder))
    LINES.extend((schema_of(call, line), line) for call in CALLS for line in call.lines)


def schema_of(call, line):
    return "failure" if "error" in line and "valid" not in line else call.schema


def subschemas(part):
    yield part
    for keyword in ("properties", "$defs"):
        for inner in part.get(keyword, {}).values():
            if isinstance(inner, dict):
                yield from subschemas(inner)
    for keyword in ("items", "additionalProperties", "propertyNames"):
        if isinstance(part.get(keyword), dict):
            yield from subschemas(part[keyword])
    for inner in part.get("oneOf", ()):
        yield from subschemas(inner)


class CommandSchemas(unittest.TestCase):
    KEYWORDS = {"$schema", "$id", "$ref", "$defs", "title", "description", "type", "enum", "const",
                "required", "dependentRequired", "properties", "additionalProperties",
                "propertyNames", "items", "minItems", "maxItems", "minimum", "pattern", "oneOf"}

    def test_each_is_a_schema_of_2020_12_named_like_its_file(self):
        for name, schema in SCHEMAS.items():
            with self.subTest(name):
                self.assertEqual(schema["$schema"], "https://json-schema.org/draft/2020-12/schema")
                self.assertEqual(schema["$id"], f"{name}.schema.json")
                jsonschema.Draft202012Validator.check_schema(schema)

    def test_no_keyword_is_misspelt(self):
        for name, schema in SCHEMAS.items():
            for part in subschemas(schema):
                self.assertLessEqual(set(part), self.KEYWORDS, name)

    def test_every_record_is_closed_and_every_key_described(self):
        for name, schema in SCHEMAS.items():
            for record, part in {"": schema, **schema.get("$defs", {})}.items():
                with self.subTest(name, record=record):
                    self.assertTrue(part["title"])
                    if "properties" in part:
                        self.assertIs(part["additionalProperties"], False)
                        self.assertLessEqual(set(part["required"]), set(part["properties"]))
                        undescribed = [key for key, value in part["properties"].items()
                                       if "description" not in value and "$ref" not in value]
                        self.assertEqual(undescribed, [])

    def test_what_several_define_they_define_alike(self):
        defined = collections.defaultdict(list)
        for schema in SCHEMAS.values():
            for name in ("fraction", "timecode", "sourceState"):
                if name in schema.get("$defs", {}):
                    defined[name].append(schema["$defs"][name])
        for name, definitions in defined.items():
            self.assertEqual(definitions, [definitions[0]] * len(definitions), name)

    def test_an_export_lists_its_losses_in_the_records_of_the_list_of_losses(self):
        listed, exported = SCHEMAS["list-losses"], SCHEMAS["export-losses"]["$defs"]["loss"]
        for keyword in ("type", "required", "dependentRequired", "additionalProperties"):
            self.assertEqual(exported[keyword], listed[keyword], keyword)
        of_exports, of_lists = dict(exported["properties"]), dict(listed["properties"])
        # Of a session the line of its export says it, once.
        of_lists.pop("omfVersion")
        # A format may hold a thing as something else that sounds the same, which no reading does.
        self.assertEqual(of_exports.pop("effect")["enum"],
                         [*of_lists.pop("effect")["enum"], "changed"])
        self.assertEqual(of_exports, of_lists)


class MachineOutputPage(unittest.TestCase):
    PAGE = (FOLDER.parent / "docs" / "machine-output.md").read_text()

    def test_names_every_key_and_every_word(self):
        named = set(re.findall(r"`([A-Za-z0-9_]+)`", self.PAGE))
        for name, schema in SCHEMAS.items():
            with self.subTest(name):
                self.assertLessEqual({key for _, key in all_keys(name)}, named)
                words = {word for part in subschemas(schema) for word in part.get("enum", ())}
                self.assertLessEqual(words - UNNAMED_WORDS, named)

    def test_has_a_part_for_each_schema(self):
        for name in set(NAMES) - {"failure"}:
            self.assertIn(f"`{name}", self.PAGE)

    def test_says_where_loss_numbers_end(self):
        most = SCHEMAS["list-clips"]["properties"]["lossNumbers"]["maxItems"]
        self.assertIn(f"**at most {most}**", self.PAGE)


class CommandLines(unittest.TestCase):
    def test_each_is_valid(self):
        problems = [f"{name}: {list(error.absolute_path)}: {error.message}"
                    for name, line in LINES for error in VALIDATORS[name].iter_errors(line)]
        self.assertEqual(problems[:SHOWN_PROBLEMS], [])

    def test_together_they_hold_every_key_of_every_schema(self):
        held = collections.defaultdict(set)
        for name, line in LINES:
            held[name] |= keys_of(name, line)
        for name in NAMES:
            self.assertEqual(all_keys(name) - held[name], set(), name)

    def test_the_file_is_named_first(self):
        for name, line in LINES:
            for record in line if isinstance(line, list) else [line]:
                # What a rule is says nothing of a file.
                first = "rule" if name == "check-rules" else "file"
                self.assertEqual(next(iter(record)), first, name)

    def test_times_are_given_twice_and_agree(self):
        compared = 0
        for name, line in LINES:
            for _, value, _ in walk(line, Part(SCHEMAS[name], SCHEMAS[name])):
                for key in (value if isinstance(value, dict) else ()):
                    if key.endswith("Exact"):
                        exact = float(Fraction(value[key]))
                        self.assertTrue(math.isclose(value[key.removesuffix("Exact")], exact,
                                                     rel_tol=1e-12), (name, key, value))
                        compared += 1
        self.assertGreater(compared, 500)

    def test_files_have_a_line_each_where_a_line_is_a_file(self):
        for call in CALLS:
            if call.schema in ("info", "extract", "export", "render", "check", "peaks", "validate", "dump-overview",
                               "dump-object"):
                self.assertEqual(len(call.lines), len(call.files), call.arguments)

    def test_whatever_is_listed_a_file_that_cannot_be_read_has_one_line(self):
        for call in CALLS:
            if call.schema.startswith("list-"):
                failed = [line["file"] for line in call.failures]
                others = {line["file"] for line in call.lines if line not in call.failures}
                self.assertEqual(len(failed), len(set(failed)))
                self.assertEqual(others & set(failed), set())
                self.assertEqual(bool(failed), len(call.files) > 1, call.arguments)

    def test_a_failure_is_a_status_of_its_own(self):
        for call in CALLS:
            if call.failures and call.schema == "dump-object":
                self.assertIn(call.status, (1, 2))
            elif call.failures and call.schema == "export" and len(call.files) == 1:
                # The one session whose name is taken.
                self.assertEqual(call.status, 1, call.arguments)
            elif call.failures:
                self.assertEqual(call.status, 2, call.arguments)

    def test_the_states_of_audio_files_are_reached(self):
        states = collections.defaultdict(set)
        for name, line in LINES:
            if name == "list-sources":
                states[name].add(line["state"])
            elif name == "list-clips":
                states[name].add(line["sourceState"])
            elif name == "extract":
                states[name] |= {entry["state"] for entry in line["audio"]}
        five = {"embedded", "located", "missing", "severalCandidates", "misfit"}
        self.assertEqual(states["list-sources"], five)
        self.assertEqual(states["list-clips"], five)
        # Audio that lies inside and cannot be taken out needs a worker that misbehaves.
        self.assertEqual(states["extract"],
                         {"takenOut", "converted", "found", "missing", "undecided"})

    def test_every_format_is_exported_with_its_losses(self):
        for format in FORMATS:
            with self.subTest(format):
                written = [line for name, line in LINES
                           if name == "export" and line["format"] == format]
                self.assertGreater(len(written), 6)
                counted = {line["file"]: line["losses"] for line in written}
                for call in CALLS:
                    if call.schema == "export-losses" and call.arguments[1] == format:
                        losses, = call.lines
                        counts = counted[call.files[0]]
                        self.assertEqual(len(losses), counts["reading"] + counts["export"])
                        self.assertEqual([loss["loss"] for loss in losses],
                                         list(range(1, len(losses) + 1)))

    def test_audio_of_exports_is_in_every_place(self):
        reached = {place for name, line in LINES if name == "export"
                   for place, count in line["media"].items() if count > 0}
        self.assertEqual(reached, {"files", "embedded", "linked", "offline"})

    def test_loss_numbers_are_a_hundred_at_most_and_all_are_counted(self):
        counted = [(line["losses"], len(line["lossNumbers"])) for name, line in LINES
                   if name == "list-clips" and "lossNumbers" in line]
        self.assertIn((120, 100), counted)
        self.assertTrue(all(numbers == min(losses, 100) for losses, numbers in counted))


def wrong_values(value, part):
    """(what, new value) that the schema must refuse in place of the value."""
    yield "null", None
    for candidate in CANDIDATES:
        if not json_types(candidate) & part.types:
            yield "wrong type", candidate
    if "minimum" in part.part:
        yield "too small", part.part["minimum"] - 1
    if "enum" in part.part:
        yield "unknown word", "text"
        yield "other case", value.swapcase()
    if "pattern" in part.part:
        yield "no such text", "7 / 2 s"
    if "const" in part.part:
        yield "other value", not part.part["const"]
    if "maxItems" in part.part:
        yield "too many", [1] * (part.part["maxItems"] + 1)


class MutatedLines(unittest.TestCase):
    """The same lines, changed in one place at a time: few of them hold every key."""

    @staticmethod
    def chosen():
        seen = collections.defaultdict(set)
        for name, line in LINES:
            # Of a list each record alone: a change is checked against all that stands beside it.
            for part in [[record] for record in line] if isinstance(line, list) else [line]:
                held = keys_of(name, part)
                if not held <= seen[name]:
                    seen[name] |= held
                    yield name, part

    def test_a_key_that_is_always_there_cannot_be_missing(self):
        removed = collections.defaultdict(set)
        for name, line in self.chosen():
            for path, value, part in walk(line, Part(SCHEMAS[name], SCHEMAS[name])):
                for key in (value if part.is_record else ()):
                    if key not in OPTIONAL.get((name, part.record), ()):
                        removed[name].add((part.record, key))
                        without = changed(line, path + (key,), removal)
                        self.assertFalse(VALIDATORS[name].is_valid(without), (name, path, key))
        for name in NAMES:
            optional = {(record, key) for (schema, record), keys in OPTIONAL.items()
                        for key in keys if schema == name}
            self.assertEqual(removed[name] | optional, all_keys(name), name)
            self.assertEqual(removed[name] & optional, set(), name)

    def test_no_other_key_fits(self):
        for name, line in self.chosen():
            for path, _, part in walk(line, Part(SCHEMAS[name], SCHEMAS[name])):
                if part.is_record:
                    more = changed(line, path + (UNKNOWN_KEY,), replacement(1))
                    self.assertFalse(VALIDATORS[name].is_valid(more), (name, path))

    def test_no_other_value_fits(self):
        tried = collections.Counter()
        for name, line in self.chosen():
            for path, value, part in walk(line, Part(SCHEMAS[name], SCHEMAS[name])):
                for what, new in (wrong_values(value, part) if path else ()):
                    other = changed(line, path, replacement(new))
                    self.assertFalse(VALIDATORS[name].is_valid(other), (name, path, what, new))
                    tried[what] += 1
        self.assertEqual(set(tried), {"null", "wrong type", "too small", "unknown word",
                                      "other case", "no such text", "other value", "too many"})


if __name__ == "__main__":
    unittest.main(verbosity=2)
