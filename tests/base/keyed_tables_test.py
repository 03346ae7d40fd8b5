# SPDX-License-Identifier: Apache-2.0
"""Every table of the program hashes by the secret of the process: its keys may come from a file."""
import re
import unittest
from pathlib import Path

SOURCES = Path(__file__).resolve().parents[2] / "src"
KEYED = SOURCES / "base" / "include" / "trellant" / "base" / "keyed_hash.h"
TABLE = re.compile(r"\bstd::(?:pmr::)?unordered_\w+\s*<[^;{]*")


def tables(text):
    """The declarations of hashed tables of the library."""
    return TABLE.findall(text)


def is_keyed(declaration):
    return "KeyedHash" in declaration


class KeyedTables(unittest.TestCase):
    def test_tables_are_told_apart(self):
        unkeyed = "std::unordered_map<std::string,\n    int> names;"
        keyed = "std::pmr::unordered_map<std::string_view, Match, KeyedHash> names;"
        self.assertEqual([is_keyed(found) for found in tables(unkeyed + keyed)], [False, True])

    def test_no_table_of_the_sources_is_without_a_secret(self):
        files = [path for path in SOURCES.rglob("*") if path.suffix in (".h", ".cpp")]
        self.assertIn(KEYED, files)
        unkeyed = [f"{path.relative_to(SOURCES)}: {found}"
                   for path in files if path != KEYED
                   for found in tables(path.read_text()) if not is_keyed(found)]
        self.assertEqual(unkeyed, [])


if __name__ == "__main__":
    unittest.main()
