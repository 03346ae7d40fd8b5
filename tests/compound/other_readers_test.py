# SPDX-License-Identifier: Apache-2.0
"""Compound files in the hands of readers that are no part of this project, where they are there."""
import os
import shutil
import subprocess
import sys
import tempfile
import unittest

try:
    import olefile
except ImportError:
    olefile = None

GSF = shutil.which("gsf")
SKIPPED = 77
LENGTHS = (0, 1, 63, 64, 65, 4095, 4096, 4097, 10_000, 300_000)


def content_of(length):
    return bytes((7 * index + length) % 256 for index in range(length))


class OtherReaders(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.path = os.path.join(cls.folder.name, "sample")
        subprocess.run([os.environ["TRELLANT_COMPOUND_SAMPLES"], cls.path], check=True)

    @classmethod
    def tearDownClass(cls):
        cls.folder.cleanup()

    @unittest.skipUnless(olefile, "needs python3-olefile")
    def test_olefile_objects_to_nothing(self):
        with olefile.OleFileIO(self.path, raise_defects=olefile.DEFECT_POTENTIAL) as ole:
            self.assertEqual(ole.parsing_issues, [])
            for length in LENGTHS:
                with ole.openstream(["lengths", f"of {length}"]) as stream:
                    self.assertEqual(stream.read(), content_of(length))
            with ole.openstream([f"depth {depth}" for depth in range(1, 6)] + ["bottom"]) as stream:
                self.assertEqual(stream.read(), content_of(10))
            names = [path[1] for path in ole.listdir() if path[0] == "names"]
            self.assertCountEqual(names, ["äÖ", "Жж", "🎵 one", "_a", "B", "a"])
            many = [path[1] for path in ole.listdir() if path[0] == "many"]
            self.assertCountEqual(many, [f"stream {index}" for index in range(5000)])
            for index in (0, 99, 4321, 4999):
                with ole.openstream(["many", f"stream {index}"]) as stream:
                    self.assertEqual(stream.read(), content_of(index % 100))

    @unittest.skipUnless(GSF, "needs libgsf-bin")
    def test_gsf_reads_every_stream(self):
        listed = subprocess.run([GSF, "list", self.path], check=True, capture_output=True, text=True)
        self.assertEqual(listed.stderr, "")
        sizes = {}
        for line in listed.stdout.splitlines():
            words = line.split(maxsplit=2)
            if words[0] == "f":
                sizes[words[2]] = int(words[1])
        for length in LENGTHS:
            self.assertEqual(sizes[f"lengths/of {length}"], length)
        self.assertEqual(sum(path.startswith("many/") for path in sizes), 5000)
        for length in LENGTHS:
            read = subprocess.run([GSF, "cat", self.path, f"lengths/of {length}"], check=True,
                                  capture_output=True)
            self.assertEqual(read.stdout, content_of(length))


if __name__ == "__main__":
    if not olefile and not GSF:
        sys.exit(SKIPPED)
    unittest.main()
