# SPDX-License-Identifier: Apache-2.0
"""Rows of the table: a figure, the unit that it is held against, a target."""
import dataclasses
import json
import typing


@dataclasses.dataclass
class Row:
    """`ratio` is what the target bounds; the two texts say what it is made of."""

    what: str
    measured: str
    unit: str
    ratio: float
    target: typing.Optional[float] = None
    # Some targets are lower bounds, or bounds of plain figures ("MB", "us").
    at_least: bool = False
    figure: str = ""
    details: dict = dataclasses.field(default_factory=dict)

    def target_text(self):
        if self.target is None:
            return ""
        return f"{'at least' if self.at_least else 'at most'} {self.target:g}{self.figure}"

    def met(self):
        if self.target is None:
            return None
        return self.ratio >= self.target if self.at_least else self.ratio <= self.target

    def verdict(self):
        return {None: "", True: "yes", False: "NO"}[self.met()]

    def cells(self):
        return [self.what, self.measured, self.unit, f"{self.ratio:.3g}{self.figure}",
                self.target_text(), self.verdict()]

    def record(self):
        return {"what": self.what, "measured": self.measured, "unit": self.unit,
                "ratio": self.ratio, "figure": self.figure.strip(), "target": self.target,
                "targetIs": "lower bound" if self.at_least else "upper bound",
                "met": self.met(), "details": self.details}


HEAD = ["What", "Measured", "Unit in the same run", "Ratio", "Target", "Met"]


def text(rows):
    cells = [HEAD] + [row.cells() for row in rows]
    widths = [max(len(line[i]) for line in cells) for i in range(len(HEAD))]
    lines = ["  ".join(cell.ljust(width) for cell, width in zip(line, widths)).rstrip()
             for line in cells]
    return "\n".join([lines[0], "-" * len(lines[0])] + lines[1:])


def write(path, rows, machine):
    path.parent.mkdir(parents=True, exist_ok=True)
    document = {"machine": machine, "rows": [row.record() for row in rows]}
    path.write_text(json.dumps(document, indent=1) + "\n")


def seconds(value):
    for unit, factor in (("s", 1), ("ms", 1e3), ("us", 1e6)):
        if value * factor >= 1:
            return f"{value * factor:.3g} {unit}"
    return f"{value * 1e9:.3g} ns"


def size(value):
    for unit, factor in (("GB", 1e9), ("MB", 1e6)):
        if value >= factor:
            return f"{value / factor:.3g} {unit}"
    return f"{value / 1e3:.3g} KB"
