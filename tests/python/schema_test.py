# SPDX-License-Identifier: Apache-2.0
"""The records of the package are those of the schemas: keys, presence, shapes and words. A field that is added to a
schema and not here, or here and not there, fails."""
import collections.abc
import dataclasses
import enum
import typing
import unittest
from fractions import Fraction

import trellant
from schemas import SCHEMAS, Definition, root
from trellant.decoding import is_required, key_of

# Definitions that narrow a kind of value and are no kind of their own.
NARROWED = {"identity": "string"}
SCALARS = {bool: "boolean", int: "integer", float: "number", str: "string", trellant.Url: "url", Fraction: "rational"}
RECORDS = {
    trellant.Request: "request", trellant.Progress: "progress", trellant.Result: "result",
    trellant.Timeline: "timeline", trellant.TimecodeRate: "timecodeRate", trellant.TimecodeAddress: "timecodeAddress",
    trellant.ProgramClock: "clock", trellant.AutomationPoint: "point", trellant.AutomationEnvelope: "envelope",
    trellant.Fade: "fade", trellant.SourceEssence: "essence", trellant.TrackState: "track",
    trellant.SemanticDecision: "semanticDecision", trellant.ExportTrackNameOrigin: "exportTrackNameOrigin",
    trellant.ClipEvent: "event", trellant.UnsupportedFeature: "unsupportedFeature", trellant.LossPlace: "lossPlace",
    trellant.LossPlaces: "lossPlaces", trellant.Composition: "composition", trellant.Compositions: "compositions",
    trellant.SeparateFile: "separateFile", trellant.EmbeddedMedia: "embeddedMedia", trellant.Dates: "dates",
    trellant.ReelTimecode: "reelTimecode", trellant.Reel: "reel", trellant.Reels: "reels",
    trellant.MediaLength: "mediaLength", trellant.Contents: "contents",
    trellant.Application: "application", trellant.Provenance: "provenance",
    trellant.SamplePiece: "samplePiece", trellant.Samples: "samples", trellant.SampleData: "sampleData",
    trellant.MasterMob: "masterMob", trellant.MasterMobs: "masterMobs", trellant.OlderModel: "olderModel",
    trellant.Extensions: "extensions",
}
ENUMS = {
    trellant.Operation: "operation", trellant.StemRole: "stemRole", trellant.ChannelRole: "channelRole",
    trellant.FadeDirection: "fadeDirection", trellant.Severity: "severity", trellant.LossKind: "lossKind",
}
NAMES = {**SCALARS, **RECORDS, **ENUMS, trellant.Interpolation: "interpolation"}
# What has a form of its own here: a fraction, and a curve, whose cases are an enumeration.
OTHERWISE = {"rational", "interpolation", "unsupportedCurve"}


def definitions():
    found = {name: root(name) for name in ("request", "progress", "result", "timeline")}
    for schema in SCHEMAS.values():
        for name, part in schema.get("$defs", {}).items():
            found[name] = Definition(part, schema["$id"], name)
    return found


def shape(definition):
    if definition.name:
        return NARROWED.get(definition.name, definition.name)
    if definition.types - {"null"} == {"array"}:
        return "array of " + shape(definition.items())
    if definition.is_map:
        return "map of " + shape(definition.values())
    return " or ".join(sorted(definition.types - {"null"}))


def shape_of(hint):
    """The same of a type that a field has."""
    if hint in NAMES:
        return NAMES[hint]
    parts = typing.get_args(hint)
    if typing.get_origin(hint) is typing.Union and parts[1] is type(None):
        return shape_of(parts[0])
    if typing.get_origin(hint) is tuple and parts[1] is Ellipsis:
        return "array of " + shape_of(parts[0])
    if typing.get_origin(hint) is collections.abc.Mapping and parts[0] is str:
        return "map of " + shape_of(parts[1])
    raise AssertionError(f"a field of the type {hint}")


def fields_of(record):
    """Of each key whether it must be there, and its shape. A host need not name the protocol's version, which it
    always sends."""
    hints = typing.get_type_hints(record)
    return {
        key_of(field.name): (is_required(field) or key_of(field.name) in ALWAYS_SENT, shape_of(hints[field.name]))
        for field in dataclasses.fields(record)
    }


# They have a default for whoever makes a request, and go out with each.
ALWAYS_SENT = {"protocolVersion", "recoverProToolsTrueFades", "removeProToolsSampleAccurateEditFragments"}


class Records(unittest.TestCase):
    def test_every_definition_has_its_record_and_every_record_its_definition(self):
        described = {name for name, definition in definitions().items() if definition.is_record}
        self.assertEqual(described - OTHERWISE, set(RECORDS.values()))
        exported = {
            value for value in vars(trellant).values()
            if isinstance(value, type) and dataclasses.is_dataclass(value)
        }
        self.assertEqual(exported - {trellant.Client, trellant.Answer, trellant.Interpolation}, set(RECORDS))

    def test_keys_presence_and_shapes_are_those_of_the_schemas(self):
        for record, name in RECORDS.items():
            definition = definitions()[name]
            said = {
                key: (key in definition.required, shape(definition.member(key))) for key in definition.keys
            }
            with self.subTest(name):
                self.assertEqual(fields_of(record), said)

    def test_a_default_is_none_so_what_is_absent_is_none(self):
        for record in RECORDS:
            for field in dataclasses.fields(record):
                if not is_required(field) and key_of(field.name) not in ALWAYS_SENT:
                    self.assertIsNone(field.default, f"{record.__name__}.{field.name}")

    def test_enumerations_have_the_words_of_the_schemas_in_their_order(self):
        said = {name: definition.part["enum"] for name, definition in definitions().items()
                if "enum" in definition.part}
        self.assertEqual({name: [case.value for case in kind] for kind, name in ENUMS.items()}, said)

    def test_curves_have_the_words_of_the_schema(self):
        self.assertEqual({curve.value for curve in trellant.Curve}, definitions()["interpolation"].keys)

    def test_extensions_are_asked_for_by_the_keys_of_the_answer(self):
        self.assertEqual({name.value for name in trellant.ExtensionName}, definitions()["extensions"].keys)

    def test_each_enumeration_that_is_exported_is_known_here(self):
        exported = {value for value in vars(trellant).values()
                    if isinstance(value, type) and issubclass(value, enum.Enum)}
        of_the_package = {trellant.LaunchCause, trellant.ResponseFault, trellant.ExtensionName, trellant.Curve}
        self.assertEqual(exported - of_the_package, set(ENUMS))


if __name__ == "__main__":
    unittest.main(verbosity=2)
