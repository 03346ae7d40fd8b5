# SPDX-License-Identifier: Apache-2.0
"""Rows about whole processes: reading, memory, start, extraction, external media."""
import json
import random
import shutil
import subprocess
import wave

from measuring import Command
from table import Row, seconds, size

MEBI = 1 << 20


def reading(bench, parts_file, positioned_read):
    """CPU of a clip, growth, memory; the file of the middle size was used for the parts too."""
    counts = [bench.size(n) for n in (10_000, 100_000, 1_000_000)]
    small, middle, large = (bench.generate("real", n) if n != counts[1] else parts_file
                            for n in counts)
    samples = {}
    samples[0], = bench.processes(bench.runs(30), bench.inspection(small))
    samples[1], = bench.processes(bench.runs(9), bench.inspection(middle))
    samples[2], = bench.processes(bench.runs(3), bench.inspection(large))
    per_clip = samples[1].cpu / counts[1]
    details = {str(n): samples[i].record() for i, n in enumerate(counts)}
    return [
        Row(f"inspect, {counts[1]:,} clips of real layout: CPU of a clip", seconds(per_clip),
            f"one positioned read of 16 cached bytes, {seconds(positioned_read)}",
            per_clip / positioned_read, 5, details=details),
        Row(f"growth: CPU of {counts[2]:,} clips against {counts[0]:,}", seconds(samples[2].cpu),
            seconds(samples[0].cpu), samples[2].cpu / samples[0].cpu, 220, details=details),
        Row(f"memory: peak for each of {counts[2]:,} clips", size(samples[2].peak), "a clip",
            samples[2].peak / counts[2] / 1e3, 1.6, figure=" KB", details=details),
    ]


def start(bench):
    """The smallest example against programs that only read their input."""
    example = min((bench.source / "examples").glob("*.omf"), key=lambda path: path.stat().st_size)
    request = bench.request(example)
    worker, static, dynamic = bench.processes(
        bench.runs(300), Command(bench.worker, given=request), Command(bench.floor, given=request),
        Command(bench.dynamic_floor, given=request))
    details = {"worker": worker.record(), "static": static.record(), "dynamic": dynamic.record()}
    return [
        Row("smallest example, start to end: wall clock", seconds(worker.wall),
            f"static program that reads its input, {seconds(static.wall)}",
            worker.wall / static.wall, 1.6, details=details),
        Row("the same", seconds(worker.wall), f"dynamic program, {seconds(dynamic.wall)}",
            worker.wall / dynamic.wall, 1, details=details),
        Row("smallest example: peak memory", size(worker.peak),
            f"static program, {size(static.peak)}", worker.peak / 1e6, 4, figure=" MB",
            details=details),
    ]


def _against_copy(bench, what, omf, copied, target, runs):
    """Extraction of `omf` against the copying of what it takes out, which `copied` makes."""
    out, copy = bench.folder / "work", bench.folder / "copy"
    extraction = Command(bench.worker, given=bench.request(omf, extract=True), fresh=out)
    first, = bench.processes(1, extraction)
    originals = bench.folder / "originals"
    shutil.rmtree(originals, ignore_errors=True)
    shutil.move(out, originals)
    worker, cp = bench.processes(runs, extraction, copied(originals, copy))
    for folder in (out, copy, originals):
        shutil.rmtree(folder)
    return worker, Row(what, seconds(worker.wall), f"cp of the same bytes, {seconds(cp.wall)}",
                       worker.wall / cp.wall, target,
                       details={"worker": worker.record(), "cp": cp.record()})


def extraction(bench):
    big = bench.size(256 * MEBI)

    def one_file(originals, copy):
        return Command("cp", next(originals.iterdir()), copy / "copy.wav", fresh=copy)

    def folder(originals, copy):
        return Command("cp", "-r", f"{originals}/.", copy, fresh=copy)

    rows = []
    for remainder, name, target in ((0, "at a 4 KiB boundary", 1.05), (1, "elsewhere", 1.2)):
        omf = bench.generate("embedded", 1, "--media-bytes", big, "--alignment", 4096,
                             "--remainder", remainder)
        inspected, = bench.processes(bench.runs(9), bench.inspection(omf))
        worker, row = _against_copy(bench, f"extraction of {big // MEBI} MiB, {name}: wall clock",
                                    omf, one_file, target, bench.runs(15))
        above = worker.peak - inspected.peak
        rows += [row, Row(f"the same: peak memory above inspect", size(worker.peak),
                          f"inspect, {size(inspected.peak)}", above / 1e6, 8, figure=" MB")]
        omf.unlink()
    count = bench.size(500)
    omf = bench.generate("embedded", count, "--media-bytes", 100_000)
    _, row = _against_copy(bench, f"extraction of {count} values of 100 KB: wall clock", omf,
                           folder, 1.05, bench.runs(15))
    omf.unlink()
    return rows + [row]


def external(bench, omf, tree, files, sources, open_found):
    """Every source of the composition stands somewhere in the tree. `open_found`: CPU seconds of
    opening, reading and closing these files, which their headers ask for."""
    worker, find = bench.processes(bench.runs(9), bench.inspection(omf, search=tree),
                                   Command("find", tree))
    without, = bench.processes(bench.runs(9), bench.inspection(omf))
    details = {"worker": worker.record(), "find": find.record(),
               "withoutSearch": without.record(), "openFoundCpuSeconds": open_found}
    search = worker.cpu - without.cpu
    both = find.cpu + open_found
    return [
        Row(f"{sources:,} sources in a folder of {files:,} files: CPU", seconds(worker.cpu),
            f"find over it, {seconds(find.cpu)}", worker.cpu / find.cpu, 1.2, details=details),
        Row("the same, what the search adds to inspect: CPU", seconds(search),
            f"find, and the files found opened and read, {seconds(both)}", search / both,
            details=details),
    ]


def _export(bench, omf):
    out = bench.folder / "exported"
    return out, Command(bench.command, "export", omf, "--to", out, "--format", "aaf", "--quiet",
                        fresh=out)


def _exports(bench):
    """The command from start to end: a session with a line of automation on each clip against
    `info` of the same file, and a large file of audio against its copy."""
    clips = bench.size(10_000)
    omf = bench.generate("automation", clips)
    out, export = _export(bench, omf)
    written, info = bench.processes(bench.runs(9), export, Command(bench.command, "info", omf))
    details = {"export": written.record(), "info": info.record()}
    rows = [
        Row(f"AAF of {clips:,} clips and ten times the points, by the command: CPU",
            seconds(written.cpu), f"info of the same file, {seconds(info.cpu)}",
            written.cpu / info.cpu, 2, details=details),
        Row("the same: peak memory above info", size(written.peak), size(info.peak),
            (written.peak - info.peak) / 1e6, 64, figure=" MB", details=details),
    ]
    few, many = bench.size(10_000), bench.size(1_000_000)
    each = []
    for count in (few, many):
        omf = bench.generate("plain", count)
        out, export = _export(bench, omf)
        sample, = bench.processes(0, export)
        each.append(sample)
        shutil.rmtree(out)
    least, most = each
    rows.append(Row(f"AAF of {many:,} plain clips: CPU a clip", f"{most.cpu / many * 1e6:.1f} us",
                    f"that of {few:,}, {least.cpu / few * 1e6:.1f} us",
                    (most.cpu / many) / (least.cpu / few), 1.5,
                    details={"few": least.record(), "many": most.record()}))
    big = bench.size(256 * MEBI)
    omf = bench.generate("embedded", 1, "--media-bytes", big)
    out, export = _export(bench, omf)
    bench.processes(1, export)
    audio, copy = bench.folder / "audio", bench.folder / "copy"
    shutil.move(next(out.glob("*.media")), audio)
    written, cp = bench.processes(bench.runs(15), export,
                                  Command("cp", next(audio.iterdir()), copy / "copy.wav",
                                          fresh=copy))
    for folder in (out, copy, audio):
        shutil.rmtree(folder)
    omf.unlink()
    return rows + [Row(f"AAF with {big // MEBI} MiB of audio beside it: wall clock",
                       seconds(written.wall), f"cp of the same bytes, {seconds(cp.wall)}",
                       written.wall / cp.wall, 1.1,
                       details={"export": written.record(), "cp": cp.record()})]


def _profile(bench):
    """Every rule holds and none ends a run with a status: what is measured is the looking."""
    rules = subprocess.run([bench.command, "check", "--list-rules", "--json"], check=True,
                           capture_output=True, text=True).stdout.splitlines()
    path = bench.folder / "profile.json"
    path.write_text(json.dumps({"profileVersion": 1, "rules": {
        json.loads(line)["rule"]: {"severity": "info"} for line in rules}}))
    return path


def checks(bench):
    """The command's verdict: on many clips against `info` of the same file, and with all audio
    listened to against a copy of it."""
    clips = bench.size(100_000)
    omf = bench.generate("real", clips)
    profile = _profile(bench)

    def check(file, *more):
        return Command(bench.command, "check", file, "--profile", profile, "--quiet", "--json",
                       "--force", "-o", bench.folder / "verdict.json", *more)

    verdict, info = bench.processes(bench.runs(9), check(omf), Command(bench.command, "info", omf))
    rows = [Row(f"verdict on {clips:,} clips, without audio: CPU", seconds(verdict.cpu),
                f"info of the same file, {seconds(info.cpu)}", verdict.cpu / info.cpu, 1.5,
                details={"check": verdict.record(), "info": info.record()})]
    big = bench.size(256 * MEBI)
    omf = bench.generate("embedded", 1, "--media-bytes", big)
    copy = bench.folder / "copy"
    heard, cp = bench.processes(bench.runs(9), check(omf, "--audio"),
                                Command("cp", omf, copy / "copy.omf", fresh=copy))
    shutil.rmtree(copy)
    omf.unlink()
    return rows + [Row(f"verdict with {big // MEBI} MiB of audio listened to: wall clock",
                       seconds(heard.wall), f"cp of the same bytes, {seconds(cp.wall)}",
                       heard.wall / cp.wall, details={"check": heard.record(), "cp": cp.record()})]


def sessions(bench):
    """An AAF session out of a plan, written to nowhere."""
    automated = bench.size(10_000)
    few, many = bench.size(10_000), bench.size(1_000_000)
    points, = bench.processes(bench.runs(30), Command(bench.sessions, automated, 10))
    small, = bench.processes(bench.runs(30), Command(bench.sessions, few, 0))
    large, = bench.processes(bench.runs(3), Command(bench.sessions, many, 0))
    details = {"automated": points.record(), str(few): small.record(), str(many): large.record()}
    return _exports(bench) + [
        Row(f"AAF session of {automated:,} clips and ten times the points: CPU",
            seconds(points.cpu), "", points.cpu, 0.15, figure=" s", details=details),
        Row(f"growth: CPU of a session of {many:,} clips against {few:,}", seconds(large.cpu),
            seconds(small.cpu), large.cpu / small.cpu, 220, details=details),
        Row(f"memory: peak for each of {many:,} clips", size(large.peak), "a clip",
            large.peak / many / 1e3, 4, figure=" KB", details=details),
    ]


def _write_noise(path, seconds, seed):
    """One channel of 24 bits at 48 kHz, a second of noise over and over."""
    second = random.Random(seed).randbytes(48_000 * 3)
    with wave.open(str(path), "wb") as file:
        file.setnchannels(1)
        file.setsampwidth(3)
        file.setframerate(48_000)
        for _ in range(seconds):
            file.writeframes(second)


def renders(bench):
    """An hour of sound in 24 tracks of clips that fade in, a quarter of them with a gain, against
    `cat` of the same bytes: how much of its speed is left."""
    tracks, length = 24, bench.size(150)
    media, copy = bench.folder / "reels", bench.folder / "copy"
    media.mkdir()
    for number in range(tracks):
        _write_noise(media / f"Take {number}.wav", length, number)
        bench.warm(media / f"Take {number}.wav")
    omf = bench.generate("reels", tracks, "--media-bytes", 44 + 48_000 * 3 * length)
    out = bench.folder / "rendered"

    def render(*more):
        return Command(bench.command, "render", omf, "--to", out, "--media", media, "--quiet",
                       *more, fresh=out)

    files, edits, mix, cat = bench.processes(
        bench.runs(9), render(), render("--raw"), render("--mix"),
        Command("sh", "-c", f"cat '{media}'/*.wav > '{copy}/all'", fresh=copy))
    for folder in (out, copy, media):
        shutil.rmtree(folder)
    what = f"{tracks} tracks of {length / 60:g} minutes"
    unit = f"cat of the same bytes, {seconds(cat.wall)}"
    details = {"tracks": files.record(), "edits": edits.record(), "mix": mix.record(),
               "cat": cat.record()}
    peak = max(files.peak, edits.peak, mix.peak)
    return [
        Row(f"{what} rendered: speed", seconds(files.wall), unit, cat.wall / files.wall, 0.6,
            at_least=True, details=details),
        Row("the same, edits only: speed", seconds(edits.wall), unit, cat.wall / edits.wall, 0.6,
            at_least=True),
        Row("the same as a mix: speed", seconds(mix.wall), unit, cat.wall / mix.wall),
        Row("the largest peak of memory of the three", size(peak), "", peak / 1e6, 64,
            figure=" MB"),
    ]


def audio(bench):
    """Ten minutes of one channel of 24 bits, measured and made small: what an hour would take."""
    minutes = bench.size(10)
    source = bench.folder / "noise.wav"
    _write_noise(source, 60 * minutes, 1)
    bench.warm(source)
    out = bench.folder / "sound"
    measured, small = bench.processes(
        bench.runs(9), Command(bench.converter, "--measure", source, out / "m", 8192, fresh=out),
        Command(bench.converter, "--preview", source, out / "p", 64_000, 0, 0, fresh=out))
    details = {"measures": measured.record(), "preview": small.record()}
    hours = minutes / 60
    return [
        Row("audio measured: CPU of an hour of a channel", seconds(measured.cpu / hours), "",
            measured.cpu / hours, 3, figure=" s", details=details),
        Row("preview in Opus: CPU of an hour of a channel", seconds(small.cpu / hours), "",
            small.cpu / hours, 40, figure=" s", details=details),
        Row("audio measured, and a preview: the larger peak of memory",
            size(max(measured.peak, small.peak)), "", max(measured.peak, small.peak) / 1e6, 16,
            figure=" MB", details=details),
    ]
