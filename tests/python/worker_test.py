# SPDX-License-Identifier: Apache-2.0
"""Where the worker is looked for, in which order."""
import json
import os
import shutil
import subprocess
import sys
import unittest

import trellant
from support import PACKAGE, FolderTest

NAME = "trellant-omf"


class Places(FolderTest):
    def installed(self):
        """A copy of the package in PREFIX/lib/python3/dist-packages; nothing else in the environment."""
        self.packages = self.folder / "prefix/lib/python3/dist-packages"
        shutil.copytree(PACKAGE, self.packages / "trellant", ignore=shutil.ignore_patterns("__pycache__"))
        (self.folder / "on-path").mkdir()
        self.environment = {"PYTHONPATH": str(self.packages), "PATH": f"relative:{self.folder}/on-path"}

    def ask(self, expression):
        """The value of `expression` in a host that imports that copy."""
        host = f"import json, trellant\ntry:\n    said = {expression}\nexcept trellant.HelperMissing as error:\n" \
               "    said = [str(error), error.searched]\nprint(json.dumps(said))"
        run = subprocess.run([sys.executable, "-B", "-c", host], env=self.environment, cwd=self.folder, check=True,
                             stdout=subprocess.PIPE)
        return json.loads(run.stdout)

    def lay(self, place):
        file = self.folder / place / NAME
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_text("")
        return str(file)

    def expected_places(self):
        prefix = self.folder / "prefix"
        interpreter = os.path.dirname(sys.executable)
        folders = [self.packages / "trellant/AAFTools", prefix / "libexec/trellant/AAFTools", prefix / "bin",
                   f"{interpreter}/AAFTools", os.path.normpath(f"{interpreter}/../libexec/trellant/AAFTools"),
                   os.path.normpath(f"{interpreter}/../bin"), self.folder / "on-path"]
        return [f"{folder}/{NAME}" for folder in folders]

    def test_in_this_order(self):
        self.installed()
        self.assertEqual(self.ask("trellant.worker_places()"), self.expected_places())

    def test_the_first_that_holds_a_file(self):
        self.installed()
        last = self.lay("on-path")
        if not any(os.path.exists(place) for place in self.expected_places()[3:6]):
            self.assertEqual(self.ask("trellant.find_worker()"), last)
        beside = self.lay("prefix/bin")
        self.assertEqual(self.ask("trellant.find_worker()"), beside)
        within = self.lay("prefix/lib/python3/dist-packages/trellant/AAFTools")
        self.assertEqual(self.ask("trellant.find_worker()"), within)

    def test_a_folder_of_that_name_is_passed_over(self):
        self.installed()
        (self.folder / "prefix/libexec/trellant/AAFTools" / NAME).mkdir(parents=True)
        beside = self.lay("prefix/bin")
        self.assertEqual(self.ask("trellant.find_worker()"), beside)

    def test_what_the_environment_names_goes_first_there_or_not(self):
        self.installed()
        self.lay("prefix/bin")
        self.environment["TRELLANT_WORKER"] = "/no/such/worker"
        self.assertEqual(self.ask("trellant.find_worker()"), "/no/such/worker")
        self.environment["TRELLANT_WORKER"] = ""
        self.assertEqual(self.ask("trellant.find_worker()"), str(self.folder / "prefix/bin" / NAME))

    def test_none_is_told_with_the_places(self):
        self.installed()
        expected = self.expected_places()
        if any(os.path.exists(place) for place in expected):
            self.skipTest("a worker is installed beside the interpreter")
        self.assertEqual(self.ask("trellant.find_worker()"), [
            "trellant-omf was not found, looked for at" + "".join(f"\n  {place}" for place in expected), expected])

    def test_a_call_says_so(self):
        self.installed()
        if any(os.path.exists(place) for place in self.expected_places()):
            self.skipTest("a worker is installed beside the interpreter")
        self.assertEqual(self.ask("trellant.Client().inspect('a.omf')")[1], self.expected_places())


class Named(FolderTest):
    def test_a_worker_that_is_not_there(self):
        with self.assertRaises(trellant.LaunchFailed) as caught:
            trellant.Client(worker="/no/such/worker").inspect("a.omf")
        self.assertEqual((caught.exception.reason, caught.exception.cause),
                         ('cannot start "/no/such/worker": No such file or directory',
                          trellant.LaunchCause.WORKER_NOT_FOUND))

    def test_a_worker_that_cannot_be_run(self):
        for worker in (str(self.folder), self.program("#!/bin/sh\n", mode=0o644), self.program("\0\0\0")):
            with self.subTest(worker), self.assertRaises(trellant.LaunchFailed) as caught:
                trellant.Client(worker=worker).inspect("a.omf")
            self.assertEqual(caught.exception.cause, trellant.LaunchCause.WORKER_NOT_EXECUTABLE)

    def test_a_script_whose_interpreter_is_missing(self):
        with self.assertRaises(trellant.LaunchFailed) as caught:
            trellant.Client(worker=self.program("#!/no/such/interpreter\n")).inspect("a.omf")
        self.assertEqual(caught.exception.cause, trellant.LaunchCause.WORKER_NOT_FOUND)

    def test_a_path_with_a_nul(self):
        with self.assertRaises(trellant.LaunchFailed) as caught:
            trellant.Client(worker="/a\0b").inspect("a.omf")
        self.assertEqual(caught.exception.cause, trellant.LaunchCause.OTHER)


if __name__ == "__main__":
    unittest.main(verbosity=2)
