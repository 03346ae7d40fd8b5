# SPDX-License-Identifier: Apache-2.0
"""Calls of the built worker: the examples, extensions, progress, limits, cancellation, and real files."""
import asyncio
import concurrent.futures
import json
import os
import shutil
import struct
import subprocess
import threading
import time
import unittest
from fractions import Fraction
from pathlib import Path

import trellant
from support import EXAMPLES, WORKER, FolderTest
from trellant import LaunchCause, LossKind, Operation

SESSION = EXAMPLES / "session.omf"
ARCHIVE = EXAMPLES / "archive.omf"
EXTERNAL = EXAMPLES / "external.omf"
REAL = os.environ.get("TRELLANT_REAL_FILES")
SANITIZED = os.environ.get("TRELLANT_SANITIZED")


def same_but_for_folders(name, work_directory):
    """The accepted answer of an example, its folders put in."""
    text = (EXAMPLES / f"{name}.accepted.json").read_text(encoding="utf-8")
    for word, folder in (("EXAMPLES", EXAMPLES), ("WORK", work_directory)):
        text = text.replace(f"file:\\/\\/{word}", folder.as_uri()).replace(f"file:\\/\\/\\/{word}", folder.as_uri())
    return trellant.decode_result(text.encode())


class Answers(FolderTest):
    def test_extracting_gives_the_accepted_answers(self):
        for name in ("session", "archive", "external"):
            with self.subTest(name):
                work = self.folder / name
                answer = trellant.Client().extract(
                    EXAMPLES / f"{name}.omf", work, media_search_directory=EXAMPLES)
                self.assertEqual(answer.result, same_but_for_folders(name, work))
                for source in answer.timeline.essences:
                    if source.embedded:
                        self.assertEqual(Path(source.path).parent, work)
                        self.assertGreater(Path(source.path).stat().st_size, 0)

    def test_inspecting_writes_nothing(self):
        before = {path: path.stat().st_mtime_ns for path in EXAMPLES.iterdir()}
        timeline = trellant.Client().inspect(SESSION).timeline
        self.assertEqual(timeline.composition_name, "Scene 12")
        self.assertEqual([source.path for source in timeline.essences], [None] * 4)
        self.assertEqual({path: path.stat().st_mtime_ns for path in EXAMPLES.iterdir()}, before)

    def test_media_outside_are_found_in_the_search_directory(self):
        def found(**options):
            timeline = trellant.Client().inspect(EXTERNAL, **options).timeline
            return [source.path for source in timeline.essences if source.path]

        # What lies where the file says is found too; the copy lies where nothing but the search looks.
        (self.folder / "deep").mkdir()
        shutil.copy(EXAMPLES / "media/Door.wav", self.folder / "deep")
        self.assertEqual(found(media_search_directory=self.folder), [str(self.folder / "deep/Door.wav")])

    def test_relative_paths_count_from_the_current_directory(self):
        shutil.copy(SESSION, self.folder)
        before = os.getcwd()
        self.addCleanup(os.chdir, before)
        os.chdir(self.folder)
        timeline = trellant.Client().extract("x/../session.omf", "audio").timeline
        self.assertEqual(timeline.source_aaf, (self.folder / "session.omf").as_uri())
        self.assertEqual(Path(timeline.essences[0].path), self.folder / "audio/Voice_Anna.wav")

    def test_extensions(self):
        names = trellant.ExtensionName
        extensions = trellant.Client().inspect(SESSION, extensions=names).result.extensions
        # The effect nobody knows lasts from 3/2 to 19/10, the lost clip from 21/10 to 23/10.
        self.assertEqual([(place.kind, place.start, place.duration) for place in extensions.loss_places.places[1:]],
                         [(LossKind.EFFECT_NOT_RENDERED, Fraction(3, 2), Fraction(2, 5)),
                          (LossKind.CLIP_SOURCE_MISSING, Fraction(21, 10), Fraction(1, 5))])
        self.assertEqual([(each.name, each.slot_count) for each in extensions.compositions.compositions],
                         [("Scene 12", 7)])
        self.assertEqual([length.frames for length in extensions.contents.media_lengths],
                         [36_000, 24_000, 22_050, 22_050])
        self.assertEqual(extensions.embedded_media, trellant.EmbeddedMedia(0, (), ()))
        self.assertEqual(extensions.dates, trellant.Dates())
        self.assertEqual(extensions.reels, trellant.Reels(()))
        # One for each event, which has its own among the four that the session's sources belong to.
        masters = extensions.master_mobs
        self.assertEqual([masters.master_mobs[place].name for place in masters.of_events[:4]],
                         ["Anna", "Ben", "Anna", "Ben"])
        self.assertEqual(len(masters.of_events), 11)
        some = trellant.Client().inspect(SESSION, extensions=["dates", "unheard of"]).result.extensions
        self.assertEqual(some, trellant.Extensions(dates=trellant.Dates()))
        one = trellant.Client().inspect(SESSION, extensions="dates").result.extensions
        self.assertEqual(one, some)
        self.assertIsNone(trellant.Client().inspect(SESSION).result.extensions)

    def test_a_tape_is_a_reel(self):
        reels = trellant.Client().inspect(ARCHIVE, extensions=[trellant.ExtensionName.REELS]).result.extensions.reels
        self.assertEqual([(reel.name, reel.essence_id) for reel in reels.reels],
                         [("Reel 7", "omf-essence-0000A2C4-00000001-00000011")])

    def test_a_file_that_fails(self):
        with self.assertRaises(trellant.NonZeroExit) as caught:
            trellant.Client().inspect("/no/such/place.omf")
        error = caught.exception
        self.assertEqual((error.status, error.signal, error.log_lines), (
            2, None,
            'trellant-omf: unexpected failure: cannot open "/no/such/place.omf": No such file or directory'))

    def test_a_path_that_is_no_utf8(self):
        for file in (os.fsencode(str(self.folder)) + b"/\xff.omf", ):
            with self.assertRaises(trellant.LaunchFailed) as caught:
                trellant.Client().inspect(os.fsdecode(file))
            self.assertEqual(caught.exception.cause, LaunchCause.UNSENDABLE_REQUEST)

    def test_a_relative_path_where_the_current_directory_is_gone(self):
        gone = self.folder / "gone"
        gone.mkdir()
        self.addCleanup(os.chdir, os.getcwd())
        os.chdir(gone)
        gone.rmdir()
        with self.assertRaises(trellant.LaunchFailed) as caught:
            trellant.Client().inspect("a.omf")
        self.assertEqual(caught.exception.cause, LaunchCause.NO_CURRENT_DIRECTORY)
        self.assertEqual(trellant.Client().inspect(SESSION).timeline.composition_name, "Scene 12")

    def test_any_request(self):
        request = trellant.Request(Operation.VERIFY_EXPORT, str(SESSION), "", protocol_version=2)
        with self.assertRaises(trellant.NonZeroExit) as caught:
            trellant.Client().start(request).result()
        self.assertEqual((caught.exception.status, caught.exception.log_lines),
                         (1, "trellant-omf: unsupported protocol version 2"))


class Limits(FolderTest):
    def test_a_memory_limit_beyond_64_bits(self):
        with self.assertRaises(trellant.LaunchFailed) as caught:
            trellant.Client(memory_limit=2**63).inspect(SESSION)
        self.assertEqual(caught.exception.cause, LaunchCause.UNSENDABLE_REQUEST)

    def test_the_answer(self):
        size = len(trellant_answer())
        self.assertEqual(len(trellant.Client(result_limit=size).inspect(SESSION).timeline.tracks), 5)
        with self.assertRaises(trellant.InvalidResponse) as caught:
            trellant.Client(result_limit=size - 1).inspect(SESSION)
        self.assertEqual((caught.exception.kind, caught.exception.reason),
                         (trellant.ResponseFault.TOO_LONG, f"longer than {size - 1} bytes"))

    @unittest.skipIf(SANITIZED, "sanitizers need more memory than any limit leaves")
    def test_memory(self):
        """A table of a million entries takes more than the smallest limit that a worker can keep, which is
        some megabytes; without a limit it is read, and found to be no OMF file."""
        path = self.folder / "large.omf"
        count = 1_000_000
        # Entries of the older form: object, property, type, offset, length, generation, flags.
        table = b"".join(struct.pack("<5I2H", 100 + number, 9, 9, 0, 4, 0, 0) for number in range(count))
        label = bytes.fromhex("a4434da5486472d7") + struct.pack("<4H2I", 0, 0, 1, 0, 4, len(table))
        path.write_bytes(b"data" + table + label)
        with self.assertRaises(trellant.NonZeroExit) as caught:
            trellant.Client(memory_limit=1).inspect(path)
        self.assertEqual(caught.exception.status, 2)
        self.assertIn("composition needs more than 1 bytes of memory", caught.exception.log_lines)
        with self.assertRaises(trellant.NonZeroExit) as caught:
            trellant.Client().inspect(path)
        self.assertNotIn("memory", caught.exception.log_lines)

    def test_time(self):
        with self.assertRaises(trellant.TimeLimitError):
            trellant.Client(time_limit=0).inspect(SESSION)
        self.assertEqual(len(trellant.Client(time_limit=60.0).inspect(SESSION).timeline.tracks), 5)


def trellant_answer():
    """The bytes that the worker writes for the session."""
    request = {"protocolVersion": 1, "operation": "inspect", "aafPath": str(SESSION), "workDirectory": "/",
               "recoverProToolsTrueFades": False, "removeProToolsSampleAccurateEditFragments": False}
    return subprocess.run([WORKER], input=json.dumps(request).encode(), stdout=subprocess.PIPE,
                          stderr=subprocess.DEVNULL, check=True).stdout


class ProgressRecords(FolderTest):
    def test_come_in_order_on_one_thread_and_end_with_the_call(self):
        records, threads = [], set()

        def take(record):
            records.append(record)
            threads.add(threading.get_ident())

        trellant.Client().inspect(SESSION, progress=take)
        count = len(records)
        self.assertEqual([records[0].phase, records[-2].phase, records[-1].phase], ["opening", "finishing", "done"])
        fractions = [record.fraction for record in records]
        self.assertEqual(fractions, sorted(fractions))
        self.assertEqual((fractions[0], fractions[-1]), (0.05, 1.0))
        # One before each of the seven slots, and four more.
        self.assertEqual(count, 11)
        self.assertEqual(len(threads - {threading.get_ident()}), 1)

    def test_what_the_callback_raises_comes_out_of_the_call(self):
        def refuse(record):
            raise LookupError(record.phase)

        with self.assertRaisesRegex(LookupError, "opening"):
            trellant.Client().inspect(SESSION, progress=refuse)

    def test_none_begins_once_the_call_is_done(self):
        records = []

        def take(record):
            time.sleep(0.3)
            records.append(record)

        trellant.Client().inspect(SESSION, progress=take)
        count = len(records)
        time.sleep(0.7)
        self.assertLessEqual(len(records) - count, 1)


class ManyAtOnce(FolderTest):
    def test_one_client_serves_many_threads(self):
        client = trellant.Client()
        calls = [client.start(client.request(Operation.INSPECT, SESSION)) for _ in range(20)]
        done, _ = concurrent.futures.wait(calls, timeout=60)
        self.assertEqual(len(done), 20)
        self.assertEqual({call.result().timeline for call in calls}, {client.inspect(SESSION).timeline})

    def test_no_descriptor_and_no_thread_is_left(self):
        trellant.Client().inspect(SESSION)
        descriptors, threads = os.listdir("/proc/self/fd"), threading.active_count()
        for _ in range(5):
            trellant.Client().inspect(SESSION, progress=lambda record: None)
            with self.assertRaises(trellant.LaunchFailed):
                trellant.Client(worker="/no/such/worker").inspect(SESSION)
            with self.assertRaises(trellant.TimeLimitError):
                trellant.Client(time_limit=0).inspect(SESSION)
        time.sleep(0.2)
        self.assertEqual((os.listdir("/proc/self/fd"), threading.active_count()), (descriptors, threads))

    def test_asyncio_takes_a_call_like_any_other_future(self):
        client = trellant.Client()

        async def both():
            calls = [client.start(client.request(Operation.INSPECT, file)) for file in (SESSION, ARCHIVE)]
            return await asyncio.gather(*map(asyncio.wrap_future, calls))

        names = [answer.timeline.composition_name for answer in asyncio.run(both())]
        self.assertEqual(names, ["Scene 12", "Café"])

    def test_a_callback_is_called_at_the_end(self):
        client, ended = trellant.Client(), threading.Event()
        call = client.start(client.request(Operation.INSPECT, SESSION))
        call.add_done_callback(lambda future: ended.set())
        self.assertTrue(ended.wait(60))
        self.assertTrue(call.done())
        self.assertFalse(call.cancel())
        self.assertEqual(len(call.result().timeline.tracks), 5)


@unittest.skipUnless(REAL, "TRELLANT_REAL_FILES names no folder")
class RealFiles(FolderTest):
    def test_every_one_is_read_or_refused_with_a_reason(self):
        files = sorted(path for path in Path(REAL).rglob("*") if path.suffix.lower() in (".omf", ".omfi"))
        self.assertGreater(len(files), 0)
        for number, file in enumerate(files):
            with self.subTest(file.name):
                work = self.folder / str(number)
                try:
                    answer = trellant.Client().extract(file, work, extensions=trellant.ExtensionName)
                except trellant.NonZeroExit as error:
                    self.assertEqual(error.status, 2)
                    self.assertRegex(error.log_lines, "^trellant-omf: (Unsupported|Malformed) OMF/Bento")
                    continue
                self.assertGreater(len(answer.timeline.events), 0)
                for source in answer.timeline.essences:
                    if source.embedded:
                        self.assertTrue(Path(source.path).is_file())


if __name__ == "__main__":
    unittest.main(verbosity=2)
