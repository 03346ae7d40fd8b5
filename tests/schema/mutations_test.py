# SPDX-License-Identifier: Apache-2.0
"""Every key taken away and every value of another type: schema and decoder judge alike."""
import collections
import json
import subprocess
import unittest

from mutations import mutations
from schemas import NAMES, parse, probe_path, root, validator, walk


def samples():
    """A document of each kind with every field."""
    run = subprocess.run([probe_path(), "samples"], check=True, stdout=subprocess.PIPE)
    lines = (line.split("\t", 1) for line in run.stdout.decode().splitlines())
    return {kind: parse(text) for kind, text in lines}


def decoder_verdicts(kind, documents):
    lines = "".join(f"{kind}\t{json.dumps(document)}\n" for document in documents)
    run = subprocess.run([probe_path(), "decode"], input=lines.encode(), check=True,
                         stdout=subprocess.PIPE)
    return run.stdout.decode().splitlines()


SAMPLES = samples()
TABLES = parse(subprocess.run([probe_path(), "tables"], check=True, stdout=subprocess.PIPE).stdout)


def removals(kind):
    """How often a key must be taken away: once for each field of each record in the sample, as the
    code's tables count them. A fraction, which has no table, has two required parts."""
    count = collections.Counter()
    for _, value, definition in walk(SAMPLES[kind], root(kind)):
        if definition.name == "rational":
            count["required key"] += 2
        elif definition.is_record and definition.name != "interpolation":
            for key, text in TABLES["records"][definition.name].items():
                if key in value:
                    count[text.split(" ")[0] + " key"] += 1
    return count


class SampleDocuments(unittest.TestCase):
    def test_there_is_one_of_each_kind(self):
        self.assertEqual(set(SAMPLES), set(NAMES))

    def test_each_is_valid_and_decodes(self):
        for kind, document in SAMPLES.items():
            with self.subTest(kind):
                self.assertEqual([e.message for e in validator(kind).iter_errors(document)], [])
                self.assertEqual(decoder_verdicts(kind, [document]), ["decoded"])

    def test_together_they_hold_every_key(self):
        missing = collections.defaultdict(set)
        held = collections.defaultdict(set)
        for kind, document in SAMPLES.items():
            for _, value, definition in walk(document, root(kind)):
                if definition.is_record:
                    held[definition.name] |= set(value)
                    missing[definition.name] |= definition.keys
        for name in missing:
            missing[name] -= held[name]
        # One key each is all that an interpolation has; the mutations go through the others.
        missing.pop("interpolation")
        self.assertEqual({name: keys for name, keys in missing.items() if keys}, {})


class MutatedDocuments(unittest.TestCase):
    def judge(self, kind):
        cases = list(mutations(kind, SAMPLES[kind]))
        validate = validator(kind)
        verdicts = decoder_verdicts(kind, [case.document for case in cases])
        self.assertEqual(len(verdicts), len(cases))
        wrong = []
        for case, verdict in zip(cases, verdicts):
            place = ".".join(map(str, case.path))
            if validate.is_valid(case.document) != case.schema_takes:
                wrong.append(f"schema, {case.what} at {place}")
            if (verdict == "decoded") != case.decoder_takes:
                wrong.append(f"decoder, {case.what} at {place}: {verdict}")
        self.assertEqual(wrong, [])
        # Nothing was passed over.

        removed = collections.Counter(case.what.split(" removed")[0] for case in cases
                                      if case.what.endswith(" removed"))
        self.assertEqual(removed, removals(kind))

    def test_requests_are_judged_alike(self):
        self.judge("request")

    def test_progress_is_judged_alike(self):
        self.judge("progress")

    def test_results_are_judged_alike(self):
        self.judge("result")

    def test_timelines_are_judged_alike(self):
        self.judge("timeline")


if __name__ == "__main__":
    unittest.main(verbosity=2)
