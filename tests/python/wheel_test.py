# SPDX-License-Identifier: Apache-2.0
"""The wheel: made without a network, the same bytes each time, whole, and of use where it is unpacked."""
import hashlib
import importlib.util
import os
import subprocess
import sys
import unittest
import zipfile

from support import EXAMPLES, PACKAGE, SOURCE, FolderTest

TOOLS = all(importlib.util.find_spec(name) for name in ("setuptools", "wheel"))
VERSION = os.environ["TRELLANT_VERSION"]


@unittest.skipUnless(TOOLS, "setuptools or wheel are not installed: see the group wheel of scripts/packages")
class Wheel(FolderTest):
    def make(self, folder, **environment):
        """The wheel, as a program with that umask and environment makes it."""
        run = subprocess.run(
            ["sh", "-c", f"umask {environment.pop('UMASK', '022')}; exec {SOURCE}/scripts/wheel {folder}"],
            env={**os.environ, "SOURCE_DATE_EPOCH": "1000000000", **environment}, check=True,
            stdout=subprocess.PIPE, text=True)
        return run.stdout.strip()

    def test_holds_the_package_and_its_licence(self):
        name = self.make(self.folder)
        self.assertEqual(name, str(self.folder / f"trellant-{VERSION}-py3-none-any.whl"))
        modules = {f"trellant/{path.name}" for path in PACKAGE.glob("*.py")} | {"trellant/py.typed"}
        papers = {f"trellant-{VERSION}.dist-info/{paper}"
                  for paper in ("LICENSE", "METADATA", "WHEEL", "RECORD", "top_level.txt")}
        with zipfile.ZipFile(name) as archive:
            self.assertEqual(set(archive.namelist()), modules | papers)
            for module in modules:
                self.assertEqual(archive.read(module), (PACKAGE.parent / module).read_bytes())
            metadata = archive.read(f"trellant-{VERSION}.dist-info/METADATA").decode()
            # 2001-09-09 01:46:40, in even seconds.
            self.assertEqual({entry.date_time for entry in archive.infolist()}, {(2001, 9, 9, 1, 46, 40)})
        self.assertIn(f"\nVersion: {VERSION}\n", metadata)
        self.assertIn("\nRequires-Python: >=3.9\n", metadata)
        self.assertNotIn("Requires-Dist", metadata)

    def test_is_the_same_bytes_whoever_makes_it(self):
        digests = set()
        for number, environment in enumerate(({}, {"UMASK": "077"}, {"TZ": "Asia/Kolkata", "LC_ALL": "C.UTF-8"})):
            with open(self.make(self.folder / str(number), **environment), "rb") as file:
                digests.add(hashlib.sha256(file.read()).hexdigest())
        self.assertEqual(len(digests), 1)

    def test_leaves_nothing_among_the_sources(self):
        def listed():
            return sorted(str(path) for path in PACKAGE.parent.rglob("*") if "__pycache__" not in path.parts)

        before = listed()
        self.make(self.folder)
        self.assertEqual(listed(), before)

    def test_serves_where_it_is_unpacked(self):
        with zipfile.ZipFile(self.make(self.folder)) as archive:
            archive.extractall(self.folder / "site")
        host = "import importlib.metadata, sys, trellant\n" \
               "print(trellant.__file__, importlib.metadata.version('trellant'))\n" \
               "print(trellant.Client().inspect(sys.argv[1]).timeline.composition_name)"
        run = subprocess.run([sys.executable, "-B", "-c", host, str(EXAMPLES / "session.omf")], check=True,
                             env={**os.environ, "PYTHONPATH": str(self.folder / "site")}, cwd=self.folder,
                             stdout=subprocess.PIPE, text=True)
        self.assertEqual(run.stdout, f"{self.folder}/site/trellant/__init__.py {VERSION}\nScene 12\n")


if __name__ == "__main__":
    unittest.main(verbosity=2)
