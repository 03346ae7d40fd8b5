# SPDX-License-Identifier: Apache-2.0
"""Runs all measurements, prints one table and writes it down. Started by scripts/bench."""
import argparse
import datetime
import pathlib
import sys
import tempfile

import machine
import measuring
import part_rows
import process_rows
import salvage_rows
import scan_rows
import table
import worst_rows


def arguments():
    parser = argparse.ArgumentParser(prog="scripts/bench", description="Runs all measurements.")
    parser.add_argument("--source", type=pathlib.Path, required=True, help=argparse.SUPPRESS)
    parser.add_argument("--build", type=pathlib.Path, required=True, help=argparse.SUPPRESS)
    parser.add_argument("--quick", action="store_true",
                        help="a tenth of every size and fewer runs: a look, no verdict")
    parser.add_argument("--only", choices=GROUPS, action="append",
                        help="only this group (may be given again)")
    parser.add_argument("--name", help="of the file in bench/results (default: the time)")
    return parser.parse_args()


def start_group(bench, shared):
    rows = process_rows.start(bench)
    shared["base"] = rows[0].details["worker"]["cpuSeconds"]
    return rows


def parts_group(bench, shared):
    files, sources = bench.size(100_000), bench.size(10_000)
    tree = bench.folder / "tree"
    external = bench.generate("external", sources, "--tree", tree, "--tree-files", files)
    omf = bench.generate("real", bench.size(100_000))
    parts = bench.parts(omf, tree)
    shared["positioned read"] = parts["unit_positioned_read"].per_item
    return (process_rows.reading(bench, omf, shared["positioned read"])
            + process_rows.external(bench, external, tree, files, sources,
                                   parts["unit_open_found"].cpu)
            + part_rows.part_rows(parts, files))


def worst_group(bench, shared):
    if "base" not in shared:
        start_group(bench, shared)
    return worst_rows.worst_shapes(bench, shared["base"])


GROUPS = {
    "start": start_group,
    "reading": parts_group,
    "extraction": lambda bench, shared: process_rows.extraction(bench),
    "client": lambda bench, shared: part_rows.client_rows(bench),
    "export": lambda bench, shared: process_rows.sessions(bench),
    "render": lambda bench, shared: process_rows.renders(bench),
    "audio": lambda bench, shared: process_rows.audio(bench),
    "check": lambda bench, shared: process_rows.checks(bench),
    "salvage": lambda bench, shared: salvage_rows.salvage(bench),
    "scan": lambda bench, shared: scan_rows.scan_rows(bench),
    "worst": worst_group,
}


def main():
    given = arguments()
    rows, shared = [], {}
    with tempfile.TemporaryDirectory(prefix="bench-", dir=given.build) as folder:
        bench = measuring.Bench(given.source, given.build, pathlib.Path(folder), given.quick)
        described = machine.description(given.source, given.build, folder, given.quick)
        for name in given.only or GROUPS:
            print(f"measuring: {name}", file=sys.stderr)
            rows += GROUPS[name](bench, shared)
    print(table.text(rows))
    name = given.name or datetime.datetime.now(datetime.timezone.utc).strftime("%Y-%m-%d-%H%M")
    place = given.source / "bench/results" / f"{name}.json"
    table.write(place, rows, described)
    missed = [row.what for row in rows if row.met() is False]
    print(f"\nWritten to bench/results/{name}.json."
          + (" Quick: sizes are not those of the targets." if given.quick else "")
          + (f" {len(missed)} target(s) not met." if missed else ""))


if __name__ == "__main__":
    main()
