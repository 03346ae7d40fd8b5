# SPDX-License-Identifier: Apache-2.0
"""trellant catalogue from the command line: over rows of real scans and of archives that are not there,
killed in the middle, read only, out of space."""
import csv
import io
import json
import os
import resource
import shutil
import signal
import sqlite3
import subprocess
import tempfile
import time
import unittest
from pathlib import Path

from command_help import COMMAND, TREE

EXAMPLES = TREE / "examples"
TABLES = ("files", "compositions", "sources", "losses", "findings", "named")


class InFolder(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="trellant-catalogue-")
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        self.catalogue = self.folder / "archive.sqlite"

    def run_command(self, *arguments, **more):
        return subprocess.run([COMMAND, *map(str, arguments)], cwd=self.folder, stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE, **more)

    def done(self, *arguments):
        run = self.run_command(*arguments)
        self.assertEqual(run.returncode, 0, run.stderr)
        return run.stdout.decode()

    def answer(self, *arguments):
        return [json.loads(line) for line in
                self.done("catalogue", "query", self.catalogue, *arguments, "--json").splitlines()]

    def tables(self, path):
        """All rows, and that the search agrees with them."""
        with sqlite3.connect(path) as database:
            database.execute("INSERT INTO names(names, rank) VALUES ('integrity-check', 1)")
            database.rollback()
            self.assertEqual(database.execute("PRAGMA integrity_check").fetchall(), [("ok",)])
            self.assertEqual(database.execute("PRAGMA foreign_key_check").fetchall(), [])
            return {table: database.execute(f"SELECT * FROM {table} ORDER BY id").fetchall()
                    for table in TABLES}

    def row(self, number, **changes):
        return {"row": 1, "path": f"/archive/mix {number}.omf", "size": 1000,
                "modified": "2026-01-01T00:00:00.000000000Z", "program": "0.2.0", "status": "ok",
                "applications": [], "compositions": [{"object": 1, "name": f"Song {number}", "read": True}],
                "sources": [{"id": "e", "name": f"Kick {number % 97}", "state": "embedded", "clips": 1,
                             "sampleRate": 48000, "sampleRateExact": "48000", "channels": 1,
                             "sampleDigest": f"{number % 1000:064x}", "sampleBytes": 100}],
                "clipNames": [f"Take {number}"], "losses": [], "scanned": "2026-01-02T00:00:00.000000000Z",
                "seconds": 0.5, **changes}

    def shard(self, name, rows):
        path = self.folder / name
        path.write_text("".join(json.dumps(row) + "\n" for row in rows))
        return path


class RealFiles(InFolder):
    def setUp(self):
        super().setUp()
        archive = self.folder / "archive"
        archive.mkdir()
        for name in ("session.omf", "archive.omf", "external.omf"):
            shutil.copy(EXAMPLES / name, archive / name)
        shutil.copy(EXAMPLES / "session.omf", archive / "session again.omf")
        session = (EXAMPLES / "session.omf").read_bytes()
        (archive / "damaged.omf").write_bytes(session[:-2000] + bytes(1900) + session[-100:])
        self.done("scan", archive, "-o", "all.ndjson")
        self.done("catalogue", "build", self.catalogue, "all.ndjson")

    def test_every_question_is_answered(self):
        unreadable, = self.answer("unreadable")
        self.assertTrue(unreadable["path"].endswith("/damaged.omf"))
        self.assertEqual(unreadable["status"], "damaged")
        # Without the folder "media" neither file of external.omf is found.
        self.assertEqual([row["state"] for row in self.answer("missing-media")], ["missing"] * 2)
        twice, = self.answer("duplicate-files")
        self.assertEqual((twice["files"], twice["size"]), (2, (EXAMPLES / "session.omf").stat().st_size))
        sources = self.answer("--sql", "SELECT count(*) AS n FROM sources JOIN files ON files.id = file"
                              " WHERE files.path LIKE '%/session.omf' AND sample_digest IS NOT NULL")[0]["n"]
        audio = self.answer("duplicate-audio")
        self.assertEqual(sum(row["sources"] for row in audio), 2 * sources)
        self.assertEqual({row["files"] for row in audio}, {2})
        saved, = self.answer("saved")
        self.assertEqual(saved["saved"], sum(row["sample_bytes"] * (row["sources"] - 1) for row in audio))
        self.assertEqual(sum(row["files"] for row in self.answer("programs")), 5)
        self.assertEqual(sum(row["sources"] for row in self.answer("rates")),
                         self.answer("--sql", "SELECT count(*) AS n FROM sources")[0]["n"])
        name = self.answer("--sql", "SELECT sources.name FROM sources JOIN files ON files.id = file"
                           " WHERE files.path LIKE '%/archive.omf' LIMIT 1")[0]["name"]
        self.assertTrue(any(row["file"].endswith("/archive.omf") for row in self.answer("plays", name)))

    def test_forms_say_the_same(self):
        rows = self.answer("rates")
        text = self.done("catalogue", "query", self.catalogue, "rates", "--csv")
        sheet = list(csv.DictReader(io.StringIO(text.lstrip("\ufeff"), newline="")))
        self.assertEqual([int(row["sources"]) for row in sheet], [row["sources"] for row in rows])
        screen = self.done("catalogue", "query", self.catalogue, "rates")
        self.assertIn("sample_rate", screen)
        self.assertIn("damaged", self.done("catalogue", "stats", self.catalogue))

    def test_what_equal_audio_saves_is_true_after_each_build(self):
        def saved(catalogue):
            self.catalogue = catalogue
            return self.answer("saved")
        # Three of 100 bytes are one, a fourth another: two of 100 are saved.
        rows = [self.row(1), self.row(1001, path="/b"), self.row(2001, path="/c"), self.row(7)]
        self.done("catalogue", "build", "s.sqlite", self.shard("s.ndjson", rows))
        told = [{"sources": 4, "different": 2, "bytes": 400, "saved": 200}]
        self.assertEqual(saved("s.sqlite"), told)
        self.assertIn("200 bytes", self.done("catalogue", "stats", "s.sqlite"))
        # A fifth that equals the fourth.
        self.done("catalogue", "build", "s.sqlite", self.shard("t.ndjson", [self.row(1007)]))
        self.assertEqual(saved("s.sqlite"), [{"sources": 5, "different": 2, "bytes": 500, "saved": 300}])
        # A build that ended before its end has left no sum.
        with sqlite3.connect(self.folder / "s.sqlite") as database:
            database.execute("DELETE FROM equal_audio")
        self.assertEqual(saved("s.sqlite"), [{"sources": 5, "different": 2, "bytes": 500, "saved": 300}])

    def test_rates_and_counts_read_as_people_write_them(self):
        rows = [self.row(1), self.row(2)]
        rows[1]["sources"][0].update(sampleRate=47952.04795204795, sampleRateExact="48000000/1001")
        one = self.run_command("catalogue", "build", "one.sqlite", self.shard("one.ndjson", rows[:1]))
        self.assertIn("one.ndjson: 1 row, 1 of them new", one.stderr.decode())
        two = self.run_command("catalogue", "build", "one.sqlite", self.shard("two.ndjson", rows))
        self.assertIn("two.ndjson: 2 rows, 1 of them new", two.stderr.decode())
        stats = self.done("catalogue", "stats", "one.sqlite")
        self.assertIn(" 48000 Hz ", stats)
        self.assertIn(" 47952.04795 Hz ", stats)

    def test_asking_writes_nothing(self):
        self.catalogue.chmod(0o444)
        before = (self.catalogue.read_bytes(), sorted(os.listdir(self.folder)))
        for question in ("unreadable", "missing-media", "duplicate-files", "duplicate-audio", "programs",
                         "rates", "saved"):
            self.answer(question)
        self.answer("plays", "Kick")
        self.done("catalogue", "stats", self.catalogue)
        for sql in ("DELETE FROM files", "ATTACH 'other' AS o", "PRAGMA user_version = 7",
                    "CREATE TEMP TABLE t (a)", "SELECT 1; SELECT 2"):
            self.assertEqual(self.run_command("catalogue", "query", self.catalogue, "--sql", sql).returncode, 2)
        self.assertEqual((self.catalogue.read_bytes(), sorted(os.listdir(self.folder))), before)

    def test_wrong_questions_are_told(self):
        listed = self.done("catalogue", "query", self.catalogue).splitlines()
        questions = ["unreadable", "missing-media", "duplicate-files", "duplicate-audio", "programs", "rates",
                     "plays", "saved"]
        self.assertEqual([line.split()[0] for line in listed if line.split()[0] in questions], questions)
        run = self.run_command("catalogue", "query", self.catalogue, "completely else")
        self.assertEqual((run.returncode, run.stderr.decode()),
                         (1, 'trellant: there is no question "completely else"; there are ' +
                          ", ".join(questions) + "\n"))
        run = self.run_command("catalogue", "query", self.catalogue, "missing-medi")
        self.assertEqual(run.returncode, 1)
        self.assertIn(b'did you mean "missing-media"?', run.stderr)
        self.assertEqual(self.run_command("catalogue", "query", self.catalogue, "plays").returncode, 1)
        self.assertEqual(self.run_command("catalogue", "build", self.catalogue).returncode, 1)

    def test_hostile_names_move_no_cursor(self):
        evil = "/archive/\x1b[2J\nmix.omf"
        self.done("catalogue", "build", self.catalogue,
                  self.shard("evil.ndjson", [self.row(1, path=evil, status="refused", message="a\x1b[2Jb")]))
        screen = self.done("catalogue", "query", self.catalogue, "unreadable")
        self.assertNotIn("\x1b", screen)
        self.assertIn(evil, [row["path"] for row in self.answer("unreadable")])


class ManyRows(InFolder):
    COUNT = 6_000

    def build(self, *shards, catalogue=None):
        return self.done("catalogue", "build", catalogue or self.catalogue, *shards)

    def test_a_killed_build_ends_with_the_same_catalogue(self):
        shards = [self.shard(f"part{part}.ndjson",
                             [self.row(number) for number in range(part * self.COUNT, (part + 1) * self.COUNT)])
                  for part in range(2)]
        began = time.monotonic()
        whole = self.folder / "whole.sqlite"
        self.build(*shards, catalogue=whole)
        taken = time.monotonic() - began
        killed = 0
        for step in range(5):
            child = subprocess.Popen([COMMAND, "catalogue", "build", self.catalogue, *shards],
                                     stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
            time.sleep(taken * (step + 1) / 6)
            child.send_signal(signal.SIGKILL)
            killed += child.wait() == -signal.SIGKILL
            with sqlite3.connect(self.catalogue) as database:
                tables = database.execute("SELECT count(*) FROM sqlite_schema").fetchone()[0]
                # A shard is there whole or not at all.
                rows = database.execute("SELECT count(*) FROM files").fetchone()[0] if tables else 0
                self.assertIn(rows, (0, self.COUNT, 2 * self.COUNT))
        self.assertGreater(killed, 0)
        self.build(*shards)
        self.assertEqual(self.tables(self.catalogue), self.tables(whole))

    def test_rows_that_were_read_again_replace_the_older_ones(self):
        older = [self.row(number) for number in range(300)]
        younger = [self.row(number, scanned="2026-02-02T00:00:00.000000000Z", clipNames=["Boom"])
                   for number in range(0, 300, 3)]
        # One path twice in a shard, and the older row once more behind the younger.
        self.build(self.shard("older.ndjson", older))
        self.build(self.shard("younger.ndjson", younger + younger[:1] + older[:1] +
                              [self.row(0, scanned="2026-03-03T00:00:00.000000000Z", clipNames=["Bang"])]))
        tables = self.tables(self.catalogue)
        self.assertEqual(len(tables["files"]), 300)
        # 100 were replaced, the first of them once more.
        self.assertEqual(len(self.answer("--sql", "SELECT * FROM named WHERE name = 'Boom'")), 99)
        self.assertEqual(len(self.answer("plays", "Boom", "--limit", "0")), 99)
        self.assertEqual(len(self.answer("plays", "Bang")), 1)
        # "Take 0" went with its row, "Take 1" stayed.
        self.assertEqual(len(self.answer("plays", "Take 0")), 0)
        self.assertEqual(len(self.answer("plays", "Take 1")), 1)

    def test_torn_shards_give_their_whole_rows(self):
        lines = "".join(json.dumps(self.row(number)) + "\n" for number in range(3))
        torn = self.folder / "torn.ndjson"
        torn.write_text(lines[:-20])
        self.build(torn)
        self.assertEqual(len(self.tables(self.catalogue)["files"]), 2)

    def test_a_full_disk_leaves_the_catalogue_as_it_was(self):
        self.build(self.shard("first.ndjson", [self.row(0)]))
        before = self.tables(self.catalogue)
        size = self.catalogue.stat().st_size

        def nearly_full():
            resource.setrlimit(resource.RLIMIT_FSIZE, (size + 65_536, size + 65_536))
            signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
        run = self.run_command("catalogue", "build", self.catalogue,
                               self.shard("many.ndjson", [self.row(number) for number in range(3_000)]),
                               preexec_fn=nearly_full)
        self.assertEqual(run.returncode, 2)
        self.assertEqual(run.stdout, b"")
        self.assertEqual(self.tables(self.catalogue), before)


if __name__ == "__main__":
    unittest.main()
