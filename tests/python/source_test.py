# SPDX-License-Identifier: Apache-2.0
"""The package's source: its types, the oldest Python that reads it, its words, its version."""
import ast
import importlib
import inspect
import os
import shutil
import subprocess
import sys
import tempfile
import unittest

import trellant
from support import PACKAGE

OLDEST = (3, 9)
# Where PATH may have another one, the distribution's is meant.
MYPY = shutil.which("mypy", path="/usr/bin:" + os.environ.get("PATH", ""))
MODULES = sorted(path.stem for path in PACKAGE.glob("*.py"))
# A program of a host, which a checker takes only when the package has its types.
HOST = '''
from fractions import Fraction
from typing import Optional
import trellant

def shown(record: trellant.Progress) -> None:
    print(record.phase)

answer = trellant.Client(time_limit=5.0).inspect("a.omf", extensions=trellant.ExtensionName, progress=shown)
start: Fraction = answer.timeline.events[0].timeline_start
path: Optional[str] = answer.timeline.essences[0].path
with trellant.Client().start(trellant.Client.request(trellant.Operation.INSPECT, "a.omf")) as call:
    length: Optional[Fraction] = call.result().timeline.composition_length
'''


class Types(unittest.TestCase):
    def check(self, *arguments, folder):
        return subprocess.run(
            [MYPY, "--strict", "--python-version", ".".join(map(str, OLDEST)), "--cache-dir", folder, *arguments],
            cwd=folder, env={**os.environ, "MYPYPATH": str(PACKAGE.parent)}, stdout=subprocess.PIPE,
            stderr=subprocess.STDOUT, text=True, check=False)

    @unittest.skipUnless(MYPY, "mypy is not installed: see the group test of scripts/packages")
    def test_are_strict(self):
        with tempfile.TemporaryDirectory() as folder:
            run = self.check(str(PACKAGE), folder=folder)
            self.assertEqual(run.stdout, f"Success: no issues found in {len(MODULES)} source files\n")

    @unittest.skipUnless(MYPY, "mypy is not installed: see the group test of scripts/packages")
    def test_serve_a_host(self):
        with tempfile.TemporaryDirectory() as folder:
            host = os.path.join(folder, "host.py")
            for text, status in ((HOST, 0), (HOST.replace("start: Fraction", "start: float"), 1)):
                with open(host, "w", encoding="utf-8") as file:
                    file.write(text)
                run = self.check(host, folder=folder)
                self.assertEqual(run.returncode, status, run.stdout)

    def test_are_announced(self):
        self.assertEqual((PACKAGE / "py.typed").read_bytes(), b"")


class Source(unittest.TestCase):
    def trees(self):
        for name in MODULES:
            text = (PACKAGE / f"{name}.py").read_text(encoding="utf-8")
            yield name, ast.parse(text, feature_version=OLDEST)

    def test_is_read_by_the_oldest_python(self):
        self.assertEqual([name for name, _ in self.trees()], MODULES)
        with self.assertRaises(SyntaxError):
            ast.parse("match x:\n    case 1: pass\n", feature_version=OLDEST)

    def test_needs_nothing_but_the_standard_library(self):
        for name, tree in self.trees():
            for node in ast.walk(tree):
                names = []
                if isinstance(node, ast.Import):
                    names = [each.name for each in node.names]
                elif isinstance(node, ast.ImportFrom) and node.level == 0:
                    names = [node.module]
                for imported in names:
                    self.assertIn(imported.partition(".")[0], sys.stdlib_module_names | {"__future__"}, name)

    def test_has_no_types_that_only_newer_pythons_evaluate(self):
        # Decoders are made from the types of fields, which are evaluated then: `X | None` needs 3.10.
        for name, tree in self.trees():
            for node in ast.walk(tree):
                if isinstance(node, ast.AnnAssign):
                    unions = [part for part in ast.walk(node.annotation) if isinstance(part, ast.BinOp)]
                    self.assertEqual(unions, [], f"{name}, line {node.lineno}")

    def test_everything_public_has_its_words(self):
        for name in MODULES:
            module = importlib.import_module(f"trellant.{name}" if name != "__init__" else "trellant")
            self.assertTrue(module.__doc__, name)
            for key, value in vars(module).items():
                is_ours = getattr(value, "__module__", "").startswith("trellant")
                if key.startswith("_") or not is_ours or not (inspect.isclass(value) or inspect.isfunction(value)):
                    continue
                # A dataclass without words gets its signature for them.
                self.assertFalse((value.__doc__ or f"{key}(").startswith(f"{key}("), f"{name}.{key}")
                for member, function in vars(value).items():
                    if inspect.isfunction(function) and not member.startswith("_"):
                        self.assertTrue(function.__doc__, f"{name}.{key}.{member}")

    def test_all_that_is_exported_is_there_and_nothing_else_is_public(self):
        public = {key for key, value in vars(trellant).items()
                  if not key.startswith("_") and not inspect.ismodule(value)}
        self.assertEqual(set(trellant.__all__), public)
        self.assertEqual(len(trellant.__all__), len(public))

    def test_the_version_is_that_of_the_project(self):
        self.assertEqual(trellant.__version__, os.environ["TRELLANT_VERSION"])


if __name__ == "__main__":
    unittest.main(verbosity=2)
