# SPDX-License-Identifier: Apache-2.0
"""Rows about shapes that are worst for a reader: ten times as much costs ten times as much."""
from measuring import Command
from table import Row, seconds

# Ten times the work, with the same allowance for cache misses as a hundred times has: 220 / 100.
GROWTH = 22

# Shape, count of the larger size, further options, whether the media are taken out.
SHAPES = [
    ("sequence", 1_000_000, (), False),
    ("mobs", 1_000_000, (), False),
    ("pieces", 1_000_000, (), True),
    ("names", 2_000, (), True),
    ("inputs", 50_000, (), False),
    ("levels", 100_000, ("--levels", 48), False),
    ("tracks", 100_000, (), False),
    ("losses", 100_000, (), False),
    ("foreign", 100_000, (), False),
    ("together", 50_000, (), False),
    ("plain", 100_000, (), False),
    ("effects", 100_000, (), False),
    ("scopes", 100_000, (), False),
    ("chains", 100_000, ("--levels", 31), False),
]


def _sample(bench, shape, count, options, extract):
    omf = bench.generate(shape, count, *options)
    command = Command(bench.worker, given=bench.request(omf, extract=extract),
                      fresh=bench.folder / "work" if extract else None)
    sample, = bench.processes(bench.runs(5), command)
    omf.unlink()
    return sample


def worst_shapes(bench, base):
    """`base`: CPU seconds of the smallest example, which are no part of the growth."""
    rows = []
    for shape, full, options, extract in SHAPES:
        count = bench.size(full)
        small = _sample(bench, shape, count // 10, options, extract)
        large = _sample(bench, shape, count, options, extract)
        growth = (large.cpu - base) / max(small.cpu - base, 1e-6)
        what = f"{shape}{', extraction' if extract else ''}: CPU of {count:,} against {count // 10:,}"
        rows.append(Row(what, seconds(large.cpu), seconds(small.cpu), growth, GROWTH,
                        details={"small": small.record(), "large": large.record(),
                                 "cpuSecondsOfOne": large.cpu / count}))
    for table, order in (("v1", "little"), ("compressed", "big")):
        count = bench.size(100_000)
        options = ("--table", table, "--byte-order", order)
        other = _sample(bench, "real", count, options, False)
        usual = _sample(bench, "real", count, ("--table", "compressed"), False)
        rows.append(Row(f"{count:,} clips of real layout, {table} table, {order}-endian: CPU",
                        seconds(other.cpu), f"compressed, little-endian, {seconds(usual.cpu)}",
                        other.cpu / usual.cpu, details={"this": other.record(),
                                                        "usual": usual.record()}))
    return rows
