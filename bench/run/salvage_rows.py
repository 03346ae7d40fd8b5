# SPDX-License-Identifier: Apache-2.0
"""Rows about the salvage of damaged files: what is honest, and what is made to be slow."""
import random
import shutil
import struct

from measuring import Command
from table import Row, seconds

MEBI = 1 << 20
RATE = 48_000


def _wave(sample_bytes):
    """A WAVE file of 16-bit mono silence."""
    return (b"RIFF" + struct.pack("<I", 36 + sample_bytes) + b"WAVEfmt "
            + struct.pack("<IHHIIHH", 16, 1, 1, RATE, 2 * RATE, 2, 16)
            + b"data" + struct.pack("<I", sample_bytes) + bytes(sample_bytes))


def _file(bench, name, unit, size):
    """`unit` again and again, then one sound, so that there is something to take out."""
    path = bench.folder / f"{name}.omf"
    piece = unit * max(1, MEBI // len(unit))
    with open(path, "wb") as file:
        for _ in range(max(1, size // len(piece))):
            file.write(piece)
        file.write(_wave(1000))
    bench.warm(path)
    return path


def _salvage(bench, path, out):
    return Command(bench.command, "extract", path, "--salvage", "--to", out, "--quiet", fresh=out)


def _against_cat(bench, what, path, target):
    out = bench.folder / "rescued"
    found, cat = bench.processes(bench.runs(9), _salvage(bench, path, out), Command("cat", path))
    shutil.rmtree(out)
    path.unlink()
    return Row(what, seconds(found.wall), f"cat of the same bytes, {seconds(cat.wall)}",
               found.wall / cat.wall, target,
               details={"salvage": found.record(), "cat": cat.record()})


def _taken_out(bench, what, path, target):
    """Against a copy of what is taken out, by as many files."""
    out, copy, originals = (bench.folder / name for name in ("rescued", "copy", "originals"))
    bench.processes(1, _salvage(bench, path, out))
    shutil.move(out, originals)
    found, cp = bench.processes(bench.runs(9), _salvage(bench, path, out),
                                Command("cp", "-r", f"{originals}/.", copy, fresh=copy))
    for folder in (out, copy, originals):
        shutil.rmtree(folder)
    path.unlink()
    return Row(what, seconds(found.wall), f"cp of the same files, {seconds(cp.wall)}",
               found.wall / cp.wall, target,
               details={"salvage": found.record(), "cp": cp.record()})


def salvage(bench):
    size = bench.size(256 * MEBI)
    shown = f"{size // MEBI} MiB of"
    mark = b"FORM" + struct.pack(">I", 0x7FFFFFFF)
    leading = mark + b"AIFFJUNK" + struct.pack(">I", 12)
    chunks = mark + b"AIFF" + (b"JUNK" + bytes(4)) * 63
    tiny = bench.size(10_000)
    whole = bench.folder / "whole.omf"
    whole.write_bytes(_wave(size))
    bench.warm(whole)
    many = bench.folder / "many.omf"
    many.write_bytes(_wave(1000) * tiny)
    bench.warm(many)
    return [
        _taken_out(bench, f"salvage of {shown} audio: wall clock", whole, 1.25),
        _taken_out(bench, f"salvage of {tiny:,} sounds of 1 KB: wall clock", many, 4),
        _against_cat(bench, f"salvage of {shown} noise: wall clock",
                     _file(bench, "noise", random.Random(1).randbytes(MEBI), size), 4),
        _against_cat(bench, f"salvage of {shown} marks in a row: wall clock",
                     _file(bench, "marks", mark + b"AIFC", size), 50),
        _against_cat(bench, f"salvage of {shown} headers that lead into one another: wall clock",
                     _file(bench, "headers", leading, size), 50),
        _against_cat(bench, f"salvage of {shown} empty chunks: wall clock",
                     _file(bench, "chunks", chunks, size), 50),
    ]
