# SPDX-License-Identifier: Apache-2.0
"""Which test executables judge a fault in which room: those of the room itself and of the rooms
directly above it, the quickest first."""
from dataclasses import dataclass
from pathlib import Path


@dataclass(frozen=True)
class Test:
    """`target` is built, `program` (below the build folder) is run."""
    target: str
    program: str


def of_room(*names):
    return tuple(Test(f"{name}_test", f"tests/{name}/{name}_test") for name in names)


EXPORT = Test("export_test", "tests/cli/export_test")
EXTRACT = Test("extract_test", "tests/cli/extract_test")
RENDER = Test("render_command_test", "tests/cli/render_command_test")

TESTS = {
    "base": of_room("base", "json", "io", "model"),
    "json": of_room("json", "model", "protocol"),
    "model": of_room("model", "protocol"),
    "xml": of_room("xml", "audio", "sessions"),
    "audio": of_room("audio"),
    "io": of_room("io", "omf"),
    "compound": of_room("compound", "aaf"),
    "aaf": of_room("aaf"),
    "omf": of_room("omf", "omf1", "mapper"),
    "omf1": of_room("omf1"),
    "salvage": of_room("salvage"),
    "mapper": of_room("mapper", "examples"),
    "protocol": of_room("protocol", "helper", "client"),
    "confine": of_room("confine", "helper"),
    "helper": of_room("helper", "examples"),
    "client": of_room("client", "cli"),
    "handoff": (*of_room("handoff"), *of_room("cli")),
    "exchange": of_room("exchange", "sessions"),
    "check": of_room("check"),
    "sessions": of_room("sessions"),
    "extraction": (*of_room("extraction", "bag"), EXTRACT),
    "bag": (*of_room("bag"), EXTRACT),
    "exporter": (*of_room("exporter"), EXPORT),
    "render": (*of_room("render"), RENDER),
    "page": of_room("page"),
    "scan": of_room("scan", "catalogue"),
    "catalogue": of_room("catalogue"),
    "cli": (*of_room("cli"), EXTRACT, EXPORT),
    "listening": of_room("listening"),
    "wav": (*of_room("wav"), EXTRACT, EXPORT),
}


def rooms_in(tree):
    return sorted(folder.name for folder in Path(tree, "src").iterdir() if folder.is_dir())


def sources_of(tree, room):
    """Relative to `tree`, always in the same order."""
    folder = Path(tree, "src", room)
    return sorted(str(path.relative_to(tree)) for path in folder.rglob("*")
                  if path.suffix in (".cpp", ".h"))
