# SPDX-License-Identifier: Apache-2.0
"""What errors say, and that they come whole out of another process."""
import pickle
import unittest

import trellant
from trellant import LaunchCause, ResponseFault

ERRORS = [
    (trellant.LaunchFailed("no pipe", LaunchCause.SYSTEM_REFUSED), "helper launch failed: no pipe"),
    (trellant.NonZeroExit(2, "a\nb"), "helper exited with 2: a\nb"),
    (trellant.NonZeroExit(9, "", 9), "helper exited with 9: "),
    (trellant.InvalidResponse("timeline: missing key", ResponseFault.MISSING_KEY, "timeline"),
     "helper returned an invalid response: timeline: missing key"),
    (trellant.HelperMissing("trellant-omf"), "trellant-omf was not found"),
    (trellant.HelperMissing("trellant-omf", ("/a/trellant-omf", "/b/trellant-omf")),
     "trellant-omf was not found, looked for at\n  /a/trellant-omf\n  /b/trellant-omf"),
    (trellant.CancellationError(), "the call was cancelled"),
    (trellant.TimeLimitError(), "the time of the call is over"),
    (trellant.JsonDecodingError("missing key", ResponseFault.MISSING_KEY, "a.b"), "a.b: missing key"),
    (trellant.JsonDecodingError("NaN"), "NaN"),
    (trellant.TimelineError("empty-identity", "track[2]"), "AAF raw model: empty-identity (track[2])"),
]


class Errors(unittest.TestCase):
    def test_texts(self):
        for error, text in ERRORS:
            with self.subTest(repr(error)):
                self.assertEqual(str(error), text)

    def test_each_is_an_error_of_the_package(self):
        known = {value for value in vars(trellant).values()
                 if isinstance(value, type) and issubclass(value, Exception)}
        self.assertEqual(known, {type(error) for error, _ in ERRORS} |
                         {trellant.TrellantError, trellant.WorkerClientError})
        for error, _ in ERRORS:
            self.assertIsInstance(error, trellant.TrellantError)

    def test_each_is_the_same_behind_a_pickle(self):
        for error, text in ERRORS:
            with self.subTest(repr(error)):
                copy = pickle.loads(pickle.dumps(error))
                self.assertIs(type(copy), type(error))
                self.assertEqual((str(copy), vars(copy)), (text, vars(error)))

    def test_faults_of_the_worker_have_a_sentence_for_people(self):
        for error, _ in ERRORS:
            if isinstance(error, trellant.HelperMissing):
                self.assertIn("Please install", error.description)
            elif isinstance(error, trellant.WorkerClientError):
                self.assertIn("could not be read", error.description)


if __name__ == "__main__":
    unittest.main(verbosity=2)
