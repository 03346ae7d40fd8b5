# SPDX-License-Identifier: Apache-2.0
"""Rows about single parts, each against its unit out of the same program."""
from table import Row, seconds


def part_rows(parts, files):
    def against(what, part, unit, unit_name, per_item=True, **more):
        mine = parts[part].per_item if per_item else parts[part].cpu
        other = parts[unit].per_item if per_item else parts[unit].cpu
        return Row(what, seconds(mine), f"{unit_name}, {seconds(other)}", mine / other, **more)

    encode, decode = parts["encode"], parts["decode_and_validate"]
    copied, read = parts["unit_copy_text"], parts["unit_read_text"]
    return [
        against("open and index the container", "open_and_index", "unit_read_table",
                "one read of the table", per_item=False),
        against("open the document: the same and every object's class", "open_document",
                "unit_read_table", "one read of the table", per_item=False),
        against("read a value of 12 bytes", "value_reads", "unit_values_from_memory",
                "the same bytes from memory"),
        against("flatten: a clip", "flatten", "unit_positioned_read", "one positioned read"),
        against("resolve: a clip", "resolve", "unit_positioned_read", "one positioned read"),
        against("map, all of it: a clip", "map", "unit_positioned_read", "one positioned read"),
        Row("JSON written", f"{encode.bytes_per_second / 1e9:.3g} GB/s",
            f"the same text copied, {copied.bytes_per_second / 1e9:.3g} GB/s",
            encode.bytes_per_second / 1e9, 1, at_least=True, figure=" GB/s",
            details={"againstCopy": encode.cpu / copied.cpu}),
        Row("JSON read back and validated: an event", seconds(decode.per_item),
            f"the same text read once, {seconds(read.per_item)}", decode.per_item * 1e6, 5,
            figure=" us", details={"againstOneRead": decode.cpu / read.cpu}),
        against(f"directory search over {files:,} files", "directory_search", "unit_walk_tree",
                "names of the same tree read", per_item=False),
    ]


def client_rows(bench):
    rows = []
    for host_bytes, name in ((0, "a small host"), (1 << 30, "a host of 1 GB")):
        bare, call = bench.client(bench.runs(300), host_bytes)
        rows.append(Row(f"client: start, pipes and end, from {name}: wall clock", seconds(call),
                        f"posix_spawn and wait, {seconds(bare)}", call / bare, 1.1,
                        details={"bareSeconds": bare, "callSeconds": call}))
    return rows
