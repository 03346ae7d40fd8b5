# SPDX-License-Identifier: Apache-2.0
"""The schemas of what the command writes for programs. Each stands alone: a definition that several
need is in each of them, word for word."""
from schemas import FOLDER, parse

COMMAND_FOLDER = FOLDER / "command"
NAMES = ("info", "list-tracks", "list-clips", "list-sources", "list-losses", "extract", "salvage", "export",
         "export-losses", "render", "check", "check-rules", "peaks", "validate", "dump-overview", "dump-object", "dump-table", "failure")
SCHEMAS = {name: parse((COMMAND_FOLDER / f"{name}.schema.json").read_bytes()) for name in NAMES}


class Part:
    """A schema within a schema, behind its reference. `record` names the object that it describes:
    the key in $defs, or nothing for the line itself."""

    def __init__(self, schema, part, record=""):
        self.schema = schema
        self.record = record
        if "$ref" in part:
            self.record = part["$ref"].rpartition("/")[2]
            part = {**schema["$defs"][self.record], **part}
        self.part = part

    def member(self, key):
        return Part(self.schema, self.part["properties"][key])

    def items(self):
        return Part(self.schema, self.part["items"])

    def values(self):
        return Part(self.schema, self.part["additionalProperties"])

    @property
    def is_record(self):
        return "properties" in self.part

    @property
    def is_map(self):
        return isinstance(self.part.get("additionalProperties"), dict)

    @property
    def types(self):
        """The JSON types that fit."""
        if "enum" in self.part:
            return {"string"}
        return {"boolean"} if "const" in self.part else {self.part["type"]}


def walk(value, part, path=()):
    """Every value of the line beside its part of the schema, outermost first; what lies under a key
    that the schema does not know is left out."""
    yield path, value, part
    if isinstance(value, list):
        for index, element in enumerate(value):
            yield from walk(element, part.items(), path + (index,))
    elif isinstance(value, dict) and part.is_record:
        for key in value.keys() & part.part["properties"].keys():
            yield from walk(value[key], part.member(key), path + (key,))
    elif isinstance(value, dict) and part.is_map:
        for key in value:
            yield from walk(value[key], part.values(), path + (key,))


def keys_of(name, line):
    """What the line holds of the schema: {(record, key)}."""
    return {(part.record, key)
            for _, value, part in walk(line, Part(SCHEMAS[name], SCHEMAS[name])) if part.is_record
            for key in value.keys() & part.part["properties"].keys()}


def all_keys(name):
    """Every key of every record of the schema: {(record, key)}."""
    records = {"": SCHEMAS[name], **SCHEMAS[name].get("$defs", {})}
    return {(record, key) for record, part in records.items() for key in part.get("properties", ())}
