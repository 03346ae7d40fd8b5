# SPDX-License-Identifier: Apache-2.0
"""Documents of every kind, right and wrong, are judged as the client for C++ judges them: both read a text or both
refuse it, for the same reason at the same place."""
import copy
import json
import os
import random
import subprocess
import unittest
from dataclasses import dataclass

import trellant
from mutations import mutations
from schemas import parse

PROBE = os.environ["TRELLANT_SCHEMA_PROBE"]
SEED = 20_261_122
READERS = {
    "progress": trellant.decode_progress,
    "result": lambda text: trellant.decode_result(text, checked=False),
    "timeline": lambda text: trellant.decode_timeline(text, checked=False),
    "checkedTimeline": trellant.decode_timeline,
}
# Said of a fraction without a value, where the other says its own name for fractions.
SAME = {"AAFRational denominator must not be zero": "the denominator is zero"}


def samples():
    """A document of each kind with every field."""
    run = subprocess.run([PROBE, "samples"], check=True, stdout=subprocess.PIPE)
    lines = (line.split("\t", 1) for line in run.stdout.decode().splitlines())
    return {kind: parse(text) for kind, text in lines}


SAMPLES = samples()


def other_judgements(kind, texts):
    """What the C++ decoder says of each text, which holds no line feed."""
    lines = b"".join(kind.encode() + b"\t" + text + b"\n" for text in texts)
    run = subprocess.run([PROBE, "decode"], input=lines, check=True, stdout=subprocess.PIPE)
    said = run.stdout.decode("utf-8", "replace").splitlines()
    for word, own in SAME.items():
        said = [line.replace(word, own) for line in said]
    return said


def own_judgement(kind, text):
    try:
        READERS[kind](text)
    except (trellant.JsonDecodingError, trellant.TimelineError) as error:
        return str(error)
    return "decoded"


@dataclass
class Place:
    """A value within a document: its owner and its key or index there."""

    owner: object
    step: object

    def places(self):
        value = self.owner[self.step]
        yield self
        steps = value if isinstance(value, dict) else range(len(value)) if isinstance(value, list) else ()
        for step in steps:
            yield from Place(value, step).places()


# Values at the edges of what fields take.
EDGES = [
    0, 1, -1, 2, 25, 30, 59, 60, 64, 384_000, 384_001, 2**32, 2**63 - 1, -2**63, 2**63, -2**63 - 1, 0.5, -0.5, 1.0,
    1e300, True, False, None, "", "t1", "linear", "fadeIn", "mono", [], {}, {"numerator": 1, "denominator": 0},
    {"numerator": 2**63 - 1, "denominator": 1}, {"numerator": 1, "denominator": 2**63 - 1},
    {"numerator": -1, "denominator": 3}, {"numerator": 0, "denominator": 7}, {"linear": {}}, {"unsupported": {}},
]


def changed(document, chance):
    """A copy with one to three values replaced, removed or doubled."""
    holder = [copy.deepcopy(document)]
    for _ in range(chance.randint(1, 3)):
        place = chance.choice(list(Place(holder, 0).places())[1:])
        kind = chance.randrange(4)
        if kind == 0:
            del place.owner[place.step]
        elif kind == 1 and isinstance(place.owner, list):
            place.owner.append(copy.deepcopy(place.owner[place.step]))
        else:
            place.owner[place.step] = copy.deepcopy(chance.choice(EDGES))
    return holder[0]


class Judgements(unittest.TestCase):
    def judge_alike(self, kind, documents, enough):
        texts = [json.dumps(document).encode() for document in documents]
        others = other_judgements(kind, texts)
        self.assertEqual(len(others), len(texts))
        own = [own_judgement(kind, text) for text in texts]
        differing = [(mine, other, text[:3_000]) for mine, other, text in zip(own, others, texts) if mine != other]
        self.assertEqual(differing[:3], [], f"{len(differing)} of {len(texts)}")
        # Not all of one kind.
        self.assertGreater(own.count("decoded"), enough)
        self.assertGreater(len(set(own)), enough)

    def test_of_every_key_taken_away_and_every_value_of_another_type(self):
        for kind, enough in (("progress", 2), ("result", 50), ("timeline", 40)):
            with self.subTest(kind):
                cases = list(mutations(kind, SAMPLES[kind]))
                self.judge_alike(kind, [case.document for case in cases], enough)

    def test_of_shapes_changed_by_chance(self):
        chance = random.Random(SEED)
        for kind in ("result", "timeline"):
            with self.subTest(kind):
                self.judge_alike(kind, [changed(SAMPLES[kind], chance) for _ in range(2_000)], 100)

    def test_of_rules_of_a_timeline(self):
        chance = random.Random(SEED)
        self.judge_alike("checkedTimeline", [changed(SAMPLES["timeline"], chance) for _ in range(3_000)], 100)


class Texts(unittest.TestCase):
    """Of texts that are no JSON each reader has words of its own."""

    def test_flipped_bytes_and_texts_cut_short_are_read_by_both_or_by_none(self):
        chance = random.Random(SEED)
        whole = json.dumps(SAMPLES["timeline"], separators=(",", ":"), ensure_ascii=False).encode()
        texts = [whole[:length] for length in range(0, len(whole), 7)]
        for _ in range(3_000):
            text = bytearray(whole)
            for _ in range(chance.randint(1, 2)):
                text[chance.randrange(len(text))] = chance.choice(b'{}[]",:0123456789eE+-.\\untfalsr \xff\xc3\x01x')
            texts.append(bytes(text))
        others = other_judgements("timeline", texts)
        self.assertEqual(len(others), len(texts))
        read = 0
        for text, other in zip(texts, others):
            mine = own_judgement("timeline", text)
            # On purpose: a key that stands twice is taken for the sign of a broken worker here.
            if mine.endswith("stands twice in one object"):
                continue
            self.assertEqual(mine == "decoded", other == "decoded", (mine, other, text))
            read += mine == "decoded"
        self.assertGreater(read, 200)


if __name__ == "__main__":
    unittest.main(verbosity=2)
