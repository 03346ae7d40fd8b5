# SPDX-License-Identifier: Apache-2.0
"""Every command over files below a megabyte that were made to cost much: none takes more than 512 MiB in
one process, and none more processor time than a limit far above the ten seconds that are promised, which
an optimised program keeps to."""
import os
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

COMMAND = os.environ["TRELLANT_COMMAND"]
SMALL_FILES = os.environ["TRELLANT_SMALL_FILES"]
LIMITER = os.environ["TRELLANT_LIMITER"]

# Seconds of processor time of one process; what the tests run may not be optimised.
PROCESSOR_SECONDS = 600
PEAK_KIBIBYTES = 512 * 1024
# What a signal would be told as by the limiter.
NONE = -1
# The status of a command over a file that cannot be read.
REFUSED = 2
LISTS = ("clips", "tracks", "sources", "losses")


def looks(omf):
    """Name and arguments of the calls that show what the worker has read."""
    yield "info --json", ["info", "--json", omf]
    for what in LISTS:
        yield f"list {what}", ["list", what, omf]
        yield f"list {what} --json", ["list", what, omf, "--json"]
        yield f"list {what} --csv", ["list", what, omf, "--csv"]


def dumps(omf):
    for options in ([], ["--all"], ["--toc"], ["--toc", "--all"], ["--object", "1"],
                    ["--object", "1", "--all"]):
        yield " ".join(["dump", *options]), ["dump", omf, *options]
        yield " ".join(["dump --json", *options]), ["dump", omf, *options, "--json"]


def extractions(omf, work):
    yield "extract", ["extract", omf, "--to", str(work / "plain")]
    yield "extract again", ["extract", omf, "--to", str(work / "plain")]
    yield "validate", ["validate", str(work / "plain" / "timeline.json")]
    yield "validate --json", ["validate", "--json", str(work / "plain" / "timeline.json")]
    yield "extract --wav --json", ["extract", omf, "--to", str(work / "wav"), "--wav", "--json"]
    yield "extract --store", ["extract", omf, "--to", str(work / "kept"), "--store", str(work / "store")]
    yield "extract --bag", ["extract", omf, "--bag", str(work / "bag")]


def onward(omf, work):
    """What is made of a file for other programs and for people's eyes and ears."""
    yield "check", ["check", omf]
    yield "check --audio", ["check", omf, "--audio"]
    yield "page", ["page", omf, "-o", str(work / "page.html")]
    for form in ("aaf", "otio", "reaper", "dawproject", "markers"):
        yield f"export {form}", ["export", omf, "--to", str(work / form), "--format", form]
    for number, options in enumerate(([], ["--raw"], ["--mix"], ["--clips", "--json"])):
        yield (" ".join(["render", *options]),
               ["render", omf, "--to", str(work / f"rendered-{number}"), *options])


def measured(arguments):
    """Status, signal, peak in KiB and milliseconds of the command and all that it waits for."""
    with tempfile.NamedTemporaryFile("r") as report, open(os.devnull, "r+b") as nowhere:
        # The limiter reports on descriptor 3.
        subprocess.run(["/bin/sh", "-c", 'exec 3> "$0"; exec "$@"', report.name, LIMITER, "0",
                        str(PROCESSOR_SECONDS), "", COMMAND, *arguments],
                       stdin=nowhere, stdout=nowhere, stderr=nowhere, check=False)
        return tuple(int(number) for number in report.read().split())


class SmallFiles(unittest.TestCase):
    def setUp(self):
        self.folder = Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.folder)
        subprocess.run([SMALL_FILES, str(self.folder)], check=True)

    def test_cost_every_command_little(self):
        files = sorted(self.folder.glob("*.omf"))
        self.assertGreater(len(files), 10)
        for omf in files:
            self.assertLessEqual(omf.stat().st_size, 1_048_576)
            work = self.folder / "work"
            work.mkdir()
            # A file that the worker refuses costs all that ask it the same.
            if self.status_within_bounds(omf, "info", ["info", str(omf)]) != REFUSED:
                for name, arguments in [*looks(str(omf)), *extractions(str(omf), work),
                                        *onward(str(omf), work)]:
                    self.status_within_bounds(omf, name, arguments)
            self.status_within_bounds(omf, "extract --salvage",
                                      ["extract", str(omf), "--salvage", "--to", str(work / "rescued")])
            shard = str(work / "shard.ndjson")
            self.status_within_bounds(omf, "scan", ["scan", str(omf), "--profile", "post", "-o", shard])
            for name, arguments in dumps(str(omf)):
                self.status_within_bounds(omf, name, arguments)
            shutil.rmtree(work)

    def status_within_bounds(self, omf, name, arguments):
        status, signal, peak, milliseconds = measured(arguments)
        if os.environ.get("TRELLANT_SHOW_COSTS"):
            print(f"{omf.stem:30} {name:28} {status:2} {milliseconds:7} ms {peak:8} KiB", flush=True)
        with self.subTest(file=omf.stem, command=name):
            self.assertEqual(signal, NONE)
            self.assertIn(status, (0, 1, REFUSED, 3))
            self.assertLessEqual(peak, PEAK_KIBIBYTES)
        return status


if __name__ == "__main__":
    unittest.main()
