# SPDX-License-Identifier: Apache-2.0
"""What errors say, and that they come whole out of another process."""
import os
import pickle
import shutil
import subprocess
import sys
import unittest
import unittest.mock

import trellant
from support import PACKAGE, SOURCE, FolderTest
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

    @unittest.mock.patch.dict(os.environ, LANGUAGE="C")
    def test_faults_of_the_worker_have_a_sentence_for_people(self):
        for error, _ in ERRORS:
            if isinstance(error, trellant.HelperMissing):
                self.assertIn("Please install", error.description)
            elif isinstance(error, trellant.WorkerClientError):
                self.assertIn("could not be read", error.description)


class Languages(FolderTest):
    def said(self, **environment):
        """What a host says that imports an installed copy of the package, beside which there is German."""
        host = "import trellant\nprint(trellant.NonZeroExit(2, '').description)\n" \
               "print(trellant.HelperMissing('x').description)"
        run = subprocess.run([sys.executable, "-B", "-c", host], cwd=self.folder, check=True, encoding="utf-8", env={
            "PYTHONPATH": str(self.folder / "prefix/lib/python3/dist-packages"), "PYTHONIOENCODING": "utf-8",
            **environment}, stdout=subprocess.PIPE)
        return run.stdout.splitlines()

    def setUp(self):
        super().setUp()
        shutil.copytree(PACKAGE, self.folder / "prefix/lib/python3/dist-packages/trellant")
        texts = self.folder / "prefix/share/locale/de/LC_MESSAGES"
        texts.mkdir(parents=True)
        subprocess.run(["msgfmt", SOURCE / "po/de.po", "-o", texts / "trellant.mo"], check=True)

    def test_sentences_are_in_the_language_of_the_environment(self):
        german = ["Die Austauschdatei konnte nicht gelesen werden. Einzelheiten stehen im Protokoll.",
                  "Der Programmteil, der Austauschdateien liest, fehlt. Bitte installieren Sie die Anwendung neu."]
        self.assertEqual(self.said(LANGUAGE="de"), german)
        self.assertEqual(self.said(LANG="de_AT.UTF-8"), german)

    def test_and_in_english_where_there_is_no_catalogue_for_it(self):
        english = ["The interchange file could not be read. The log has the details.",
                   "The part that reads interchange files is missing. Please install the application again."]
        self.assertEqual(self.said(LANG="C"), english)
        self.assertEqual(self.said(LANGUAGE="xx"), english)


if __name__ == "__main__":
    unittest.main(verbosity=2)
