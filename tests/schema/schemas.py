# SPDX-License-Identifier: Apache-2.0
"""The four schemas, and JSON read without losing a digit.

A definition is a part of a schema that describes one record; `Definition` follows references and
lets a test walk a document beside its description.
"""
import json
import os
from decimal import Decimal
from pathlib import Path

import jsonschema

FOLDER = Path(__file__).resolve().parents[2] / "schema"
NAMES = ("request", "progress", "result", "timeline")


def exact(text):
    """A JSON number: whole ones as integers of any size, whatever their form, others as doubles."""
    number = Decimal(text)
    if abs(number.adjusted()) < 400 and number == number.to_integral_value():
        return int(number)
    return float(text)


def refuse_constant(text):
    raise ValueError(f"{text} is no JSON")


def parse(text):
    """The value of a JSON text, given as bytes (a byte-order mark is skipped) or as a string."""
    if isinstance(text, bytes):
        text = text.decode("utf-8-sig")
    return json.loads(text, parse_float=exact, parse_constant=refuse_constant)


SCHEMAS = {name: parse((FOLDER / f"{name}.schema.json").read_bytes()) for name in NAMES}
FILES = {schema["$id"]: schema for schema in SCHEMAS.values()}


def validator(kind):
    """A validator for "timeline", or for a record within a schema: "timeline.event"."""
    name, _, record = kind.partition(".")
    schema = SCHEMAS[name]
    start = {"$ref": f"{schema['$id']}#/$defs/{record}"} if record else schema
    resolver = jsonschema.RefResolver(base_uri=schema["$id"], referrer=schema, store=dict(FILES))
    return jsonschema.Draft202012Validator(start, resolver=resolver)


class Definition:
    """A part of a schema with its references followed; what stands beside a reference holds too."""

    def __init__(self, part, file, name=None):
        self.name = name
        self.file = file
        self.part = dict(part)
        while "$ref" in self.part:
            other_file, _, pointer = self.part.pop("$ref").partition("#")
            self.file = other_file or self.file
            target = FILES[self.file]
            self.name = target["$id"].partition(".")[0]
            for step in pointer.split("/")[1:]:
                target, self.name = target[step], step
            self.part = {**target, **self.part}

    def member(self, key):
        return Definition(self.part["properties"][key], self.file)

    def items(self):
        return Definition(self.part["items"], self.file)

    def values(self):
        return Definition(self.part["additionalProperties"], self.file)

    @property
    def is_record(self):
        return "properties" in self.part

    @property
    def is_map(self):
        return isinstance(self.part.get("additionalProperties"), dict)

    @property
    def keys(self):
        return set(self.part["properties"])

    @property
    def required(self):
        return set(self.part.get("required", ()))

    @property
    def types(self):
        """The JSON types that fit: those that the schema names, or those of its values."""
        if "enum" in self.part:
            return {"string"}
        if "const" in self.part:
            return {"integer"}
        named = self.part["type"]
        return {named} if isinstance(named, str) else set(named)


def root(kind):
    name, _, record = kind.partition(".")
    schema = SCHEMAS[name]
    part = schema["$defs"][record] if record else schema
    return Definition(part, schema["$id"], record or name)


def walk(value, definition, path=()):
    """Every value of the document beside its definition, outermost first; what lies under a key
    that the schema does not know has none and is left out."""
    yield path, value, definition
    if isinstance(value, list):
        for index, element in enumerate(value):
            yield from walk(element, definition.items(), path + (index,))
    elif isinstance(value, dict) and definition.is_record:
        for key in value.keys() & definition.keys:
            yield from walk(value[key], definition.member(key), path + (key,))
    elif isinstance(value, dict) and definition.is_map:
        for key in value:
            yield from walk(value[key], definition.values(), path + (key,))


def probe_path():
    return os.environ["TRELLANT_SCHEMA_PROBE"]
