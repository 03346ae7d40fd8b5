# SPDX-License-Identifier: Apache-2.0
"""The schemas say what the field tables of the code say: records, keys, presence, shapes, values."""
import copy
import subprocess
import unittest

import jsonschema

from schemas import FILES, NAMES, SCHEMAS, Definition, parse, probe_path, root

TABLES = parse(subprocess.run([probe_path(), "tables"], check=True, stdout=subprocess.PIPE).stdout)

# Definitions that narrow a kind of value and are no kind of their own.
NARROWED = {"identity": "string"}

KEYWORDS = {
    "$schema", "$id", "$ref", "$defs", "title", "description", "examples", "type", "enum", "const",
    "required", "properties", "additionalProperties", "minProperties", "maxProperties", "items",
    "minimum", "maximum", "minLength", "format",
}


def definitions():
    """Every record, enumeration and value that the schemas define, by name."""
    found = {name: root(name) for name in NAMES}
    for schema in SCHEMAS.values():
        for name, part in schema.get("$defs", {}).items():
            found[name] = Definition(part, schema["$id"], name)
    return found


def shape(definition):
    """As the tables spell it."""
    if definition.name:
        return NARROWED.get(definition.name, definition.name)
    if definition.types - {"null"} == {"array"}:
        return "array of " + shape(definition.items())
    if definition.is_map:
        return "map of " + shape(definition.values())
    return " or ".join(sorted(definition.types - {"null"}))


def parts(part):
    """Every schema within a schema."""
    yield part
    for keyword in ("properties", "$defs"):
        for inner in part.get(keyword, {}).values():
            yield from parts(inner)
    for keyword in ("items", "additionalProperties"):
        if isinstance(part.get(keyword), dict):
            yield from parts(part[keyword])


class SchemaFiles(unittest.TestCase):
    def test_each_is_a_schema_of_2020_12(self):
        for name, schema in SCHEMAS.items():
            with self.subTest(name):
                self.assertEqual(schema["$schema"], "https://json-schema.org/draft/2020-12/schema")
                jsonschema.Draft202012Validator.check_schema(schema)

    def test_a_schema_with_a_wrong_type_is_found(self):
        damaged = copy.deepcopy(SCHEMAS["timeline"])
        damaged["$defs"]["fade"]["required"] = "duration"
        with self.assertRaises(jsonschema.SchemaError):
            jsonschema.Draft202012Validator.check_schema(damaged)

    def test_no_keyword_is_misspelt(self):
        # Unknown keywords are legal and mean nothing, so a slip would go unseen.
        for name, schema in SCHEMAS.items():
            for part in parts(schema):
                self.assertLessEqual(set(part), KEYWORDS, name)

    def test_each_is_named_like_its_file(self):
        for name, schema in SCHEMAS.items():
            self.assertEqual(schema["$id"], f"{name}.schema.json")

    def test_every_reference_leads_to_a_definition(self):
        seen = set()
        for schema in SCHEMAS.values():
            for part in parts(schema):
                if "$ref" in part:
                    seen.add(Definition(part, schema["$id"]).name)
        defined = {name for schema in FILES.values() for name in schema.get("$defs", ())}
        self.assertEqual(seen, defined | {"timeline"})

    def test_what_needs_words_has_them(self):
        for name, schema in SCHEMAS.items():
            self.assertTrue(schema["title"] and schema["description"], name)
            for key, part in schema.get("$defs", {}).items():
                self.assertTrue(part.get("title"), key)


class FieldTables(unittest.TestCase):
    def test_every_record_has_a_definition_and_every_definition_a_record(self):
        described = {name for name, definition in definitions().items() if definition.is_record}
        # The fraction's two parts are private to its class and stand in no table.
        self.assertEqual(described - {"rational"}, set(TABLES["records"]))

    def test_keys_presence_and_shapes_are_those_of_the_tables(self):
        for name, fields in TABLES["records"].items():
            definition = definitions()[name]
            said = {
                key: ("required " if key in definition.required else "optional ")
                + shape(definition.member(key))
                for key in definition.keys
            }
            with self.subTest(name):
                self.assertEqual(said, fields)

    def test_nothing_is_required_that_is_no_key(self):
        for name, definition in definitions().items():
            if definition.is_record:
                self.assertLessEqual(definition.required, definition.keys, name)

    def test_enumerations_have_the_raw_values_in_their_order(self):
        said = {
            name: definition.part["enum"]
            for name, definition in definitions().items()
            if "enum" in definition.part
        }
        self.assertEqual(said, TABLES["enums"])


if __name__ == "__main__":
    unittest.main(verbosity=2)
