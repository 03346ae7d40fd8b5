# SPDX-License-Identifier: Apache-2.0
"""A document, changed in one place at a time, and who must take the outcome.

The schemas describe what is written, the decoder is what reads. Both refuse what has the wrong
shape; where the reader takes more on purpose, the mutation says so.
"""
import copy
from dataclasses import dataclass

from schemas import root, walk

INTEGER_LIMIT = 2**63
CANDIDATES = (True, 7, 7.5, "text", [], {})
UNKNOWN_KEY = "aKeyOfALaterVersion"


@dataclass(frozen=True)
class Mutation:
    what: str
    path: tuple
    document: object
    schema_takes: bool
    decoder_takes: bool


def json_types(value):
    """The JSON types that a value has in a schema: a whole number is a number too."""
    if isinstance(value, bool):
        return {"boolean"}
    if isinstance(value, int):
        return {"integer", "number"}
    if isinstance(value, float):
        return {"number"}
    if isinstance(value, str):
        return {"string"}
    return {"array"} if isinstance(value, list) else {"object"}


def changed(document, path, change):
    """A copy of the document with `change(owner, last step)` done at `path`."""
    holder = [copy.deepcopy(document)]
    owner, steps = holder, (0,) + path
    for step in steps[:-1]:
        owner = owner[step]
    change(owner, steps[-1])
    return holder[0]


def replacement(value):
    def change(owner, step):
        owner[step] = value

    return change


def removal(owner, step):
    del owner[step]


def values_at(kind, path, value, definition, is_optional):
    """(what, new value, whether the schema takes it, whether the decoder does)"""
    part = definition.part
    # The reader takes null for an absent field: a host may write it, the worker never does.
    yield "null", None, is_optional and kind == "request", is_optional
    for candidate in CANDIDATES:
        if not json_types(candidate) & definition.types:
            yield "wrong type", candidate, False, False
    if "enum" in part:
        yield "unknown value", "text", False, False
        yield "other case", value.swapcase(), False, False
        for known in part["enum"]:
            yield "known value", known, True, True
    if "const" in part:
        # The reader compares the version itself, after decoding.
        yield "other version", part["const"] + 1, False, True
    if definition.name == "url":
        yield "empty URL", "", False, False
    if "integer" in definition.types and "const" not in part:
        yield "beyond 64 bits", INTEGER_LIMIT, False, False
        yield "below 64 bits", -INTEGER_LIMIT - 1, False, False
        yield "largest", INTEGER_LIMIT - 1, part["maximum"] >= INTEGER_LIMIT - 1, True
        yield "smallest", -INTEGER_LIMIT, part["minimum"] <= -INTEGER_LIMIT, True
    if path and path[-1] == "denominator":
        yield "zero denominator", 0, False, False
        yield "negative denominator", -2, False, True
    if definition.name == "interpolation":
        for curve in ("linear", "constant", "power", "logarithmic"):
            yield "known curve", {curve: {}}, True, True
        yield "known curve", {"unsupported": {"identifier": ""}}, True, True
        yield "no curve", {}, False, False
        yield "two curves", {"linear": {}, "power": {}}, False, False
        yield "unknown curve", {"spline": {}}, False, False
        yield "curve and unknown key", {"linear": {}, UNKNOWN_KEY: 1}, False, False
        yield "curve without its object", {"linear": None}, False, False
        yield "curve without its identifier", {"unsupported": {}}, False, False


def mutations(kind, document):
    definitions = {path: definition for path, _, definition in walk(document, root(kind))}
    for path, value, definition in walk(document, root(kind)):
        owner = definitions.get(path[:-1]) if path else None
        in_record = owner is not None and owner.is_record
        is_optional = in_record and path[-1] not in owner.required
        if in_record and owner.name != "interpolation":
            yield Mutation("required key removed" if not is_optional else "optional key removed",
                           path, changed(document, path, removal), is_optional, is_optional)
        if definition.is_record and definition.name != "interpolation":
            yield Mutation("unknown key", path + (UNKNOWN_KEY,),
                           changed(document, path + (UNKNOWN_KEY,), replacement([{}])), True, True)
        if in_record and owner.name == "interpolation":
            is_optional = False
        for what, new, schema_takes, decoder_takes in values_at(kind, path, value,
                                                                definition, is_optional):
            yield Mutation(f"{what} {new!r}", path, changed(document, path, replacement(new)),
                           schema_takes, decoder_takes)
