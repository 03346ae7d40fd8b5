# SPDX-License-Identifier: Apache-2.0
"""Rows about archives: scans of many small files and of large ones, and catalogues of rows of archives
that are not there."""
import os
import shutil
import subprocess

from measuring import Command
from table import Row, seconds, size

# What a worker is asked for by a scan without digests.
EXTENSIONS = '"extensions":["lossPlaces","compositions","contents","provenance","omf1"]'


def _copies(bench, content, count):
    """So many files of this content, in folders of a hundred."""
    folder = bench.folder / f"archive-{count}"
    for number in range(count):
        place = folder / f"{number // 100:04}"
        if number % 100 == 0:
            place.mkdir(parents=True)
        (place / f"mix {number}.omf").write_bytes(content)
    return folder


def _requests(bench, archive):
    """A request for each file, and the list of them for xargs."""
    folder = bench.folder / "requests"
    folder.mkdir()
    names = []
    for number, path in enumerate(sorted(archive.rglob("*.omf"))):
        name = folder / f"{number}.json"
        name.write_text('{"protocolVersion":1,"operation":"inspect","aafPath":"%s","workDirectory":".",'
                        '"recoverProToolsTrueFades":false,"removeProToolsSampleAccurateEditFragments":false,'
                        '%s}' % (path, EXTENSIONS))
        names.append(f"{name}\n")
    listed = bench.folder / "requests.txt"
    listed.write_text("".join(names))
    return listed


def _scan(bench, *arguments, jobs=None):
    shard = bench.folder / "shard" / "rows.ndjson"
    more = ("--jobs", jobs) if jobs else ()
    return Command(bench.command, "scan", *arguments, "-o", shard, "--quiet", *more, fresh=shard.parent)


def small_files(bench):
    """Ten thousand files on all cores, against bare starts of the worker on all cores."""
    count = bench.size(10_000)
    archive = _copies(bench, bench.generate("real", 10).read_bytes(), count)
    cores = len(os.sched_getaffinity(0))
    starts = Command("xargs", "-a", _requests(bench, archive), "-n", "1", "-P", cores, "sh", "-c",
                     'exec "$0" < "$1"', bench.worker)
    scanned, hashed, bare = bench.processes(
        bench.runs(3), _scan(bench, archive, "--no-hash"), _scan(bench, archive), starts)
    details = {"scan": scanned.record(), "scanWithDigests": hashed.record(), "starts": bare.record(),
               "cores": cores}
    rows = [
        Row(f"scan of {count:,} small files: files a second", f"{count / scanned.wall:,.0f}",
            f"bare starts by xargs -P{cores}, {count / bare.wall:,.0f} a second",
            bare.wall / scanned.wall, 0.85, at_least=True, details=details),
        Row("the same with digests", f"{count / hashed.wall:,.0f}",
            f"without, {count / scanned.wall:,.0f} a second", scanned.wall / hashed.wall, details=details),
    ]
    shutil.rmtree(archive)
    shutil.rmtree(bench.folder / "requests")
    return rows


def large_file(bench):
    clips = bench.size(100_000)
    omf = bench.generate("real", clips)
    scanned, alone = bench.processes(bench.runs(9), _scan(bench, omf, "--no-hash", jobs=1),
                                     Command(bench.command, "info", omf))
    return [Row(f"{clips:,} clips within a scan: CPU", seconds(scanned.cpu),
                f"info of the same file, {seconds(alone.cpu)}", scanned.cpu / alone.cpu, 1.05,
                details={"scan": scanned.record(), "info": alone.record()})]


def memory(bench):
    """A hundred thousand files, and the same once more, when all have rows: what the scan keeps of each."""
    count = bench.size(100_000)
    archive = _copies(bench, bench.generate("real", 1).read_bytes(), count)
    shard = bench.folder / "kept.ndjson"
    scan = Command(bench.command, "scan", archive, "-o", shard, "--quiet", "--no-hash")
    fresh, known = bench.processes(0, scan, scan)
    shutil.rmtree(archive)
    shard.unlink()
    peak = max(known.peak, fresh.peak)
    return [Row(f"scan of {count:,} files: peak memory", size(peak), "", peak / 1e6, 64, figure=" MB",
                details={"again": known.record(), "fresh": fresh.record()})]


QUESTIONS = (("unreadable",), ("missing-media",), ("duplicate-files",), ("duplicate-audio",), ("programs",),
             ("rates",), ("plays", "Kick"), ("saved",))


def catalogue(bench):
    rows = bench.size(1_000_000)
    shard = bench.folder / "million.ndjson"
    with open(shard, "wb") as file:
        subprocess.run([bench.build / "bench/generate/bench_rows", str(rows)], check=True, stdout=file)
    bench.warm(shard)
    made = bench.folder / "catalogue"
    built, = bench.processes(0, Command(bench.command, "catalogue", "build", made / "archive.sqlite", shard,
                                        "--quiet", fresh=made))
    per_row = shard.stat().st_size / rows, (made / "archive.sqlite").stat().st_size / rows
    shard.unlink()
    table = [Row(f"catalogue of {rows:,} rows: rows a second", f"{rows / built.wall:,.0f}",
                 f"{per_row[0]:,.0f} bytes a row, {per_row[1]:,.0f} in the catalogue", rows / built.wall,
                 20_000, at_least=True, figure=" rows/s", details={"build": built.record()})]
    samples = bench.processes(bench.runs(3), *(
        Command(bench.command, "catalogue", "query", made / "archive.sqlite", *question, "--csv")
        for question in QUESTIONS))
    for question, sample in zip(QUESTIONS, samples):
        table.append(Row(f"asked of {rows:,} rows: {question[0]}", seconds(sample.wall), "", sample.wall, 1,
                         figure=" s", details={"question": sample.record()}))
    shutil.rmtree(made)
    return table


def scan_rows(bench):
    return small_files(bench) + large_file(bench) + memory(bench) + catalogue(bench)
