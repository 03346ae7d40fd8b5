# SPDX-License-Identifier: Apache-2.0
"""Results from JSON: values, what must be there, what is refused and where."""
import json
import sys
import unittest
from fractions import Fraction

import trellant
from support import EXAMPLES, SMALLEST_RESULT
from trellant import ResponseFault


def smallest():
    return json.loads(SMALLEST_RESULT)


def decoded(document, checked=True):
    return trellant.decode_result(json.dumps(document).encode(), checked=checked)


def of_text(text):
    return trellant.decode_result(text if isinstance(text, bytes) else text.encode())


def with_number(text):
    """The smallest result, its edit rate's numerator being `text`."""
    return SMALLEST_RESULT.replace('"editRate":{"numerator":25', '"editRate":{"numerator":' + text, 1)


def with_curve(curve):
    """A result with a track whose gain moves as `curve` says, in JSON."""
    document = smallest()
    document["timeline"]["tracks"] = [{
        "id": "t", "index": 0, "fixedGain": 1, "muted": False, "solo": False,
        "gainAutomation": {"interpolation": curve, "points": []}}]
    return document


class Refusals(unittest.TestCase):
    def refuse(self, text, kind, key_path, reason):
        with self.assertRaises(trellant.JsonDecodingError) as caught:
            of_text(text)
        error = caught.exception
        self.assertEqual((error.kind, error.key_path, error.reason), (kind, key_path, reason))

    def test_text_that_is_no_json_names_its_place(self):
        self.refuse("", ResponseFault.CORRUPT, "", "syntax error at line 1, column 1: Expecting value")
        self.refuse("{}x", ResponseFault.CORRUPT, "", "syntax error at line 1, column 3: Extra data")
        self.refuse(b"\xff{}", ResponseFault.CORRUPT, "", "syntax error at byte 1: not UTF-8")

    def test_what_other_readers_of_python_take_and_json_has_not(self):
        self.refuse("[NaN]", ResponseFault.CORRUPT, "", "NaN is no number of JSON")
        self.refuse("[-Infinity]", ResponseFault.CORRUPT, "", "-Infinity is no number of JSON")
        # The words are those of the interpreter.
        with self.assertRaisesRegex(trellant.JsonDecodingError, "^syntax error at line 1, .*control character"):
            of_text('"a\tb"')

    def test_a_key_that_stands_twice(self):
        self.refuse('{"a":1,"b\\n":2,"b\\n":3}', ResponseFault.CORRUPT, "",
                    'the key "b\\u000a" stands twice in one object')

    def test_half_of_a_surrogate_pair(self):
        self.refuse('["\\ud83d"]', ResponseFault.CORRUPT, "", "a string holds half of a surrogate pair")

    def test_missing_keys_are_named_with_their_path(self):
        document = smallest()
        del document["timeline"]["clock"]["timelineZero"]["rate"]["exactRate"]["numerator"]
        self.refuse(json.dumps(document), ResponseFault.MISSING_KEY,
                    "timeline.clock.timelineZero.rate.exactRate.numerator", "missing key")
        document = smallest()
        document["timeline"]["tracks"] = [{"id": "t"}]
        self.refuse(json.dumps(document), ResponseFault.MISSING_KEY, "timeline.tracks[0].index", "missing key")

    def test_types_that_do_not_fit_are_named(self):
        for value, found in ((None, "null"), (True, "a boolean"), (1, "a number"), (1.5, "a number"), ([], "an array"),
                             ({}, "an object")):
            document = smallest()
            document["diagnostics"] = ["fits", value]
            self.refuse(json.dumps(document), ResponseFault.WRONG_TYPE, "diagnostics[1]",
                        f"expected a string, found {found}")
        document = smallest()
        document["timeline"] = "x"
        self.refuse(json.dumps(document), ResponseFault.WRONG_TYPE, "timeline", "expected an object, found a string")
        self.refuse("[]", ResponseFault.WRONG_TYPE, "", "expected an object, found an array")

    def test_a_boolean_is_no_integer(self):
        self.refuse(with_number("true"), ResponseFault.WRONG_TYPE, "timeline.clock.editRate.numerator",
                    "expected an integer, found a boolean")

    def test_a_denominator_of_zero(self):
        text = SMALLEST_RESULT.replace('"denominator":1', '"denominator":0', 1)
        self.refuse(text, ResponseFault.CORRUPT, "timeline.clock.editRate.denominator", "the denominator is zero")

    def test_an_empty_url(self):
        self.refuse(SMALLEST_RESULT.replace("file:///a.omf", ""), ResponseFault.CORRUPT, "timeline.sourceAAF",
                    "the URL is empty")

    def test_a_word_that_is_no_case(self):
        document = smallest()
        document["timeline"]["unsupportedFeatures"] = [
            {"id": "a", "severity": "informational", "description": ""},
            {"id": "b", "severity": "grave\x1b", "description": ""}]
        self.refuse(json.dumps(document), ResponseFault.CORRUPT, "timeline.unsupportedFeatures[1].severity",
                    'unknown value "grave\\u001b"')

    def test_curves_have_exactly_one_key_which_is_known(self):
        path = "timeline.tracks[0].gainAutomation.interpolation"
        several = "Invalid number of keys found, expected one."
        self.refuse(json.dumps(with_curve({})), ResponseFault.WRONG_TYPE, path, several)
        self.refuse(json.dumps(with_curve({"linear": {}, "power": {}})), ResponseFault.WRONG_TYPE, path, several)
        self.refuse(json.dumps(with_curve({"bent": {}})), ResponseFault.CORRUPT, path,
                    "the key is none of the known cases")
        self.refuse(json.dumps(with_curve({"linear": 1})), ResponseFault.WRONG_TYPE, path + ".linear",
                    "expected an object, found a number")
        self.refuse(json.dumps(with_curve({"unsupported": {}})), ResponseFault.MISSING_KEY,
                    path + ".unsupported.identifier", "missing key")


class Nesting(unittest.TestCase):
    def test_deep_nesting_is_refused_whatever_recursion_the_host_allows(self):
        before = sys.getrecursionlimit()
        self.addCleanup(sys.setrecursionlimit, before)
        sys.setrecursionlimit(10**9)
        for deep in ("[" * 10**6, "[" * 10**6 + "]" * 10**6, '{"a":' * 10**6 + "1" + "}" * 10**6):
            with self.assertRaisesRegex(trellant.JsonDecodingError, "nest more than 64 deep"):
                of_text(deep)

    def test_64_levels_are_read_and_one_more_is_not(self):
        # The result itself is one of them.
        document = SMALLEST_RESULT[:-1] + ',"new":' + "[" * 63 + "]" * 63 + "}"
        self.assertEqual(of_text(document).diagnostics, ())
        with self.assertRaisesRegex(trellant.JsonDecodingError, "nest more than 64 deep"):
            of_text(SMALLEST_RESULT[:-1] + ',"new":' + "[" * 64 + "]" * 64 + "}")

    def test_brackets_and_quotes_within_strings_do_not_count(self):
        document = smallest()
        texts = ["[" * 1000, '"[' * 1000, "\\" * 999 + "[" * 100, "a]}", '\\"{']
        document["diagnostics"] = texts
        self.assertEqual(decoded(document).diagnostics, tuple(texts))


class Numbers(unittest.TestCase):
    def numerator(self, text):
        return trellant.decode_result(with_number(text).encode(), checked=False).timeline.clock.edit_rate.numerator

    def test_integers_are_exact_in_every_form(self):
        # A denominator of 1 leaves the numerator as it is.
        for text, value in (("1.0", 1), ("1e0", 1), ("10E-1", 1), ("0.5e1", 5), ("-0", 0), ("0e999999999", 0),
                            ("0.0", 0), ("9223372036854775807", 2**63 - 1), ("-9223372036854775808", -2**63),
                            ("9007199254740993.0", 2**53 + 1), ("922337203685477580.7e1", 2**63 - 1),
                            ("-9.223372036854775808e18", -2**63), ("1000e-3", 1),
                            ("0." + "0" * 500 + "7e501", 7), ("0" + ".0" + "0" * 400, 0)):
            with self.subTest(text):
                self.assertEqual(self.numerator(text), value)

    def test_what_is_no_integer_of_64_bits_is_refused(self):
        for text, reason in (("0.5", "not whole"), ("1e-1", "not whole"), ("9223372036854775808", "out of range"),
                             ("-9223372036854775809", "out of range"), ("1e19", "out of range"),
                             ("1e99999999999999999999", "out of range"), ("1e-99999999999999999999", "not whole"),
                             ("9" * 5000, "out of range")):
            with self.subTest(text[:30]):
                with self.assertRaises(trellant.JsonDecodingError) as caught:
                    self.numerator(text)
                self.assertIn(reason, caught.exception.reason)

    def test_a_long_run_of_digits_elsewhere_changes_nothing(self):
        answer = (EXAMPLES / "session.accepted.json").read_bytes()
        named = answer.replace(b"Scene 12", b"1" * 50)
        self.assertEqual(of_text(named).timeline.events, of_text(answer).timeline.events)
        self.assertEqual(of_text(named).timeline.composition_name, "1" * 50)

    def gain(self, text):
        document = smallest()
        document["timeline"]["tracks"] = [{"id": "t", "index": 0, "fixedGain": 271828, "muted": False, "solo": False}]
        return of_text(json.dumps(document).replace("271828", text)).timeline.tracks[0].fixed_gain

    def test_doubles_are_the_nearest(self):
        for text, value in (("1", 1.0), ("0.1", 0.1), ("1e-05", 0.00001), ("1e-999", 0.0),
                            ("9007199254740993", 2.0**53), ("1" * 300, float("1" * 300)), ("-0.5E+1", -5.0)):
            with self.subTest(text[:30]):
                self.assertEqual(self.gain(text), value)
                self.assertIs(type(self.gain(text)), float)
        for text in ("1e999", "1" * 310, "1" * 5000):
            with self.subTest(text[:30]), self.assertRaisesRegex(trellant.JsonDecodingError, "out of range"):
                self.gain(text)

    def test_denominators_may_be_negative_and_fractions_unreduced(self):
        text = SMALLEST_RESULT.replace('"numerator":25,"denominator":1', '"numerator":-50,"denominator":-4', 1)
        self.assertEqual(of_text(text).timeline.clock.edit_rate, Fraction(25, 2))


class Readings(unittest.TestCase):
    def test_the_smallest_result(self):
        result = of_text(SMALLEST_RESULT)
        rate = trellant.TimecodeRate(Fraction(25), 25, False)
        clock = trellant.ProgramClock(Fraction(25), rate, trellant.TimecodeAddress(0, 0, 0, 0, rate))
        self.assertEqual(result, trellant.Result(
            protocol_version=1, timeline=trellant.Timeline(trellant.Url("file:///a.omf"), clock, (), (), (), ()),
            diagnostics=()))

    def test_a_byte_order_mark_unknown_keys_and_nulls_are_passed_over(self):
        text = SMALLEST_RESULT[:-1] + ',"extensions":null,"later":{"numerator":[1e999,{"x":null}]}}'
        self.assertEqual(of_text(b"\xef\xbb\xbf" + text.encode()), of_text(SMALLEST_RESULT))

    def test_curves(self):
        for key in ("linear", "constant", "power", "logarithmic"):
            timeline = decoded(with_curve({key: {"x": 1}})).timeline
            self.assertEqual(timeline.tracks[0].gain_automation.interpolation,
                             trellant.Interpolation(trellant.Curve(key)))
        timeline = decoded(with_curve({"unsupported": {"identifier": "bezier"}})).timeline
        self.assertEqual(timeline.tracks[0].gain_automation.interpolation,
                         trellant.Interpolation(trellant.Curve.UNSUPPORTED, "bezier"))

    def test_digests_are_a_mapping(self):
        document = smallest()
        document["embeddedMediaSHA256"] = {"a.wav": "00"}
        self.assertEqual(decoded(document).embedded_media_sha256, {"a.wav": "00"})

    def test_a_timeline_that_breaks_a_rule_is_read_when_asked_without_checks(self):
        document = smallest()
        document["timeline"]["compositionLength"] = {"numerator": -1, "denominator": 1}
        with self.assertRaises(trellant.TimelineError) as caught:
            decoded(document)
        self.assertEqual(str(caught.exception), "AAF raw model: negative-composition-length (composition)")
        self.assertEqual(decoded(document, checked=False).timeline.composition_length, -1)

    def test_a_check_ends_the_decoding(self):
        document = smallest()
        document["diagnostics"] = ["a"] * 10
        calls = []

        def check():
            calls.append(1)
            if len(calls) == 5:
                raise KeyboardInterrupt

        with self.assertRaises(KeyboardInterrupt):
            trellant.decode_result(json.dumps(document).encode(), check=check)

    def test_records_do_not_change_and_compare_by_value(self):
        one, other = of_text(SMALLEST_RESULT), of_text(SMALLEST_RESULT)
        self.assertEqual(one, other)
        with self.assertRaises(AttributeError):
            one.timeline.clock.edit_rate = Fraction(1)

    def test_progress(self):
        self.assertEqual(trellant.decode_progress(b'{"fraction":0.5,"phase":"x","detail":"y"}'),
                         trellant.Progress("x", 0.5, "y"))


class Examples(unittest.TestCase):
    """The accepted answers; the heads of the examples' sources have the tables that these values follow from."""

    def timeline(self, name):
        return trellant.decode_result((EXAMPLES / f"{name}.accepted.json").read_bytes()).timeline

    def test_archive(self):
        timeline = self.timeline("archive")
        self.assertEqual(timeline.composition_name, "Café")
        self.assertEqual(timeline.composition_length, Fraction(38, 25))
        # Tape from frame 2, then from 0; the file's zero lies 441 samples into its media at 22050 Hz.
        self.assertEqual(
            [(event.timeline_start, event.timeline_end, event.source_start_sample) for event in timeline.events],
            [(Fraction(2, 5), Fraction(6, 5), 2 * 22050 // 25 + 441), (Fraction(6, 5), Fraction(38, 25), 441)])
        self.assertEqual(timeline.events[0].fade_in, trellant.Fade(
            trellant.FadeDirection.FADE_IN, Fraction(2, 25), trellant.Interpolation(trellant.Curve.LINEAR), ()))
        self.assertEqual(timeline.essences[0].sample_rate, 22050)

    def test_session(self):
        timeline = self.timeline("session")
        self.assertEqual([track.name for track in timeline.tracks],
                         ["Dialog_L", "Dialog_R", "Music_L", "Music_R", "Atmo"])
        self.assertEqual([track.fixed_pan for track in timeline.tracks], [None, 1.0, 0.0, 1.0, None])
        dialog = [event for event in timeline.events if event.track_id == timeline.tracks[0].id]
        self.assertEqual([(event.clip_name, event.timeline_start, event.duration) for event in dialog], [
            ("Anna take 1", Fraction(1, 2), Fraction(1, 2)),
            # To where the dissolve begins and on to its end.
            ("Ben answers", Fraction(1), Fraction(3, 8)),
            ("Anna take 2", Fraction(51, 40), Fraction(41, 24) - Fraction(51, 40)),
            ("Ben leaves", Fraction(41, 24), Fraction(77, 40) - Fraction(41, 24))])
        calls = next(event for event in timeline.events if event.clip_name == "Anna calls")
        self.assertEqual(calls.fixed_clip_gain, 0.75)
        self.assertEqual(calls.clip_gain_automation, trellant.AutomationEnvelope(
            trellant.Interpolation(trellant.Curve.LINEAR),
            (trellant.AutomationPoint(Fraction(0), 0.25), trellant.AutomationPoint(Fraction(1, 2), 1.0),
             trellant.AutomationPoint(Fraction(1), 0.5))))
        self.assertEqual([loss.severity for loss in timeline.unsupported_features],
                         [trellant.Severity.RENDER_AFFECTING] * 2 + [trellant.Severity.INFORMATIONAL])
        self.assertEqual(str(timeline.clock.timeline_zero), "01:00:00;00")
        self.assertEqual(timeline.first_audible_event_start(), 0)

    def test_every_accepted_answer_decodes(self):
        names = sorted(path.name.partition(".")[0] for path in EXAMPLES.glob("*.accepted.json"))
        self.assertEqual(names, sorted(path.stem for path in EXAMPLES.glob("*.omf")))
        for name in names:
            self.assertGreater(len(self.timeline(name).events), 0, name)


if __name__ == "__main__":
    unittest.main(verbosity=2)
