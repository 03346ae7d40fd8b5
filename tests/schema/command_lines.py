# SPDX-License-Identifier: Apache-2.0
"""What the command writes for programs about many files: the examples, files that tests make, others
that nobody can read."""
import os
import shutil
import struct
import subprocess
import wave
from dataclasses import dataclass
from pathlib import Path

from schemas import FOLDER, parse

TREE = FOLDER.parent
LISTS = ("tracks", "clips", "sources", "losses")
FORMATS = ("aaf", "otio", "otioz", "reaper", "dawproject", "markers")


def wave_of(frames):
    """A WAVE file of 16-bit mono audio."""
    return (b"RIFF" + struct.pack("<I", 36 + 2 * frames) + b"WAVEfmt "
            + struct.pack("<IHHIIHH", 16, 1, 1, 48_000, 96_000, 2, 16)
            + b"data" + struct.pack("<I", 2 * frames) + bytes(range(1, 2 * frames + 1)))


@dataclass(frozen=True)
class Call:
    """A call of the command, what it wrote, and the schema of its lines."""
    schema: str
    arguments: tuple
    files: tuple
    status: int
    lines: list
    errors: str

    @property
    def failures(self):
        return [line for line in self.lines if "error" in line and "valid" not in line]


def write_wave(path, rate, frames):
    path.parent.mkdir(parents=True, exist_ok=True)
    with wave.open(str(path), "wb") as file:
        file.setnchannels(1)
        file.setsampwidth(2)
        file.setframerate(rate)
        file.writeframes(bytes(2 * frames))


class Folder:
    """A folder full of files of all kinds, and calls of the command in it. Beside it lie folders of
    audio: what lies below the folder of an OMF file is found without being named."""

    def __init__(self, path):
        self.path = Path(path) / "files"
        self.path.mkdir()
        self.audio = Path(path)
        self.calls = []
        for name in ("session.omf", "archive.omf", "external.omf"):
            shutil.copy(TREE / "examples" / name, self.path / name)
        shutil.copytree(TREE / "examples" / "media", self.path / "media")
        subprocess.run([os.environ["TRELLANT_COMMAND_FILES"], self.path], check=True)
        self.readable = ("session.omf", "archive.omf", "external.omf", "unusual.omf", "losses.omf",
                         "beyond.omf", "media.omf", "older.omf")
        self.unreadable = self.make_unreadable()
        self.make_media()

    def make_unreadable(self):
        session = (self.path / "session.omf").read_bytes()
        (self.path / "cut.omf").write_bytes(session[:3000])
        (self.path / "damaged.omf").write_bytes(session[:-2000] + bytes(1900) + session[-100:])
        (self.path / "text.omf").write_text("no session")
        (self.path / "empty.omf").touch()
        (self.path / "folder.omf").mkdir()
        corpora = [path for name in ("container", "document", "mapping")
                   for path in sorted((TREE / "fuzz" / "corpus" / name).iterdir())]
        return ("cut.omf", "damaged.omf", "text.omf", "empty.omf", "folder.omf", "nothing.omf",
                b"bytes-\xff.omf", *map(str, corpora))

    def make_media(self):
        """Folders with files named as the one that external.omf lacks, of which it needs a second
        at 48000 Hz."""
        write_wave(self.audio / "one" / "Steps.wav", 48_000, 96_000)
        write_wave(self.audio / "several" / "a" / "Steps.wav", 48_000, 96_000)
        write_wave(self.audio / "several" / "b" / "Steps.wav", 48_000, 96_001)
        write_wave(self.audio / "misfit" / "Steps.wav", 44_100, 96_000)
        (self.audio / "misfit" / "deep").mkdir()
        (self.audio / "misfit" / "deep" / "Steps.wav").write_text("no audio")

    def call(self, schema, *arguments, files):
        run = subprocess.run([os.environ["TRELLANT_COMMAND"], *arguments, "--json", *files],
                             cwd=self.path, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                             stderr=subprocess.PIPE)
        lines = [parse(line) for line in run.stdout.splitlines()]
        self.calls.append(Call(schema, arguments, tuple(files), run.returncode, lines,
                               run.stderr.decode(errors="replace")))
        return self.calls[-1]

    def look(self):
        for schema, command in (("info", ["info"]),
                                *((f"list-{what}", ["list", what]) for what in LISTS)):
            for file in self.readable:
                self.call(schema, *command, files=[file])
            for media in ("../one", "../several", "../misfit"):
                self.call(schema, *command, "--media", media, files=["external.omf"])
            self.call(schema, *command, files=self.readable + self.unreadable)

    def extract(self):
        for extra in ([], [], ["--wav"], ["--media", "../several"],
                      ["--media", "../misfit", "--absolute"]):
            self.call("extract", "extract", "--to", "out", *extra, files=self.readable)
        for extra in ([], ["--references"]):
            for _ in range(2):
                self.call("extract", "extract", "--to", "kept", "--store", "store", *extra,
                          files=self.readable)
        for _ in range(2):
            self.call("extract", "extract", "--bag", "bags", "--organization", "Radio",
                      files=self.readable)
        self.call("extract", "extract", "--to", "none", files=self.unreadable)
        self.call("extract", "extract", "--bag", "no-bags", files=self.unreadable)

    def make_damaged(self):
        """Files that only a salvage reads: cut ones, and sounds that lie in pieces or do not say how
        long they are."""
        session = (self.path / "session.omf").read_bytes()
        (self.path / "short.omf").write_bytes(session[:200_000])
        (self.path / "labelless.omf").write_bytes((self.path / "archive.omf").read_bytes()[:-24])
        sound = wave_of(20)
        begin, end = 7, 7 + 60
        holder = bytes(begin) + sound[:60] + b"between" + sound[60:]
        # Entries of the older form: object, property, type, offset, length, generation, flags.
        table = struct.pack("<5I2H", 9, 9, 9, begin, 60, 0, 2)
        table += struct.pack("<5I2H", 9, 9, 9, end + 7, len(sound) - 60, 0, 0)
        # A value that is audio by its first twelve bytes only.
        mark = b"FORM" + struct.pack(">I", 80) + b"AIFF" + bytes(70)
        table += struct.pack("<5I2H", 8, 9, 9, len(holder), len(mark), 0, 0)
        holder += mark
        label = bytes.fromhex("a4434da5486472d7") + struct.pack("<4H2I", 0, 0, 1, 0, len(holder),
                                                                len(table))
        (self.path / "pieces.omf").write_bytes(holder + table + label)
        (self.path / "endless.omf").write_bytes(b"x" + sound[:4] + bytes(4) + sound[8:40] + bytes(4)
                                                + sound[44:])

    def salvage(self):
        self.make_damaged()
        files = ["session.omf", "short.omf", "labelless.omf", "pieces.omf", "endless.omf",
                 "external.omf", "text.omf", "nothing.omf"]
        call = self.call("salvage", "extract", "--salvage", "--to", "rescued", files=files)
        for line in call.lines:
            if "record" in line:
                record = self.path / "rescued" / Path(line["file"]).stem / line["record"]
                self.calls.append(Call("salvage", ("salvage.json",), (line["file"],), 0,
                                       [parse(record.read_bytes())], ""))

    def export(self):
        for format in FORMATS:
            call = self.call("export", "export", "--to", f"../{format}", "--format", format,
                             files=self.readable)
            for line in call.lines:
                self.read_losses(line)
        for extra in (["--media", "../one"], ["--media", "../several", "--media-mode", "link"]):
            self.call("export", "export", "--to", "../aaf", "--format", "aaf", "--force", *extra,
                      files=["external.omf"])
        self.call("export", "export", "--to", "../aaf", "--format", "aaf", files=["session.omf"])
        self.call("export", "export", "--to", "../none", "--format", "reaper",
                  files=self.unreadable)

    def render(self):
        for extra in (["--tracks"], ["--mix", "--format", "wav32f"],
                      ["--clips", "--raw", "--handles", "1"]):
            self.call("render", "render", "--to", "../rendered", "--resample", "--force", *extra,
                      files=self.readable)
        self.call("render", "render", "--to", "../none", files=self.unreadable)

    def read_losses(self, line):
        """The list of losses beside a session that was written, as a line of its own."""
        document = (self.path / line["directory"] / line["files"][-1]).read_bytes()
        self.calls.append(Call("export-losses", ("export", line["format"]), (line["file"],), 0,
                               [parse(document)], ""))

    def check(self):
        for profile in ("post", "archive"):
            self.call("check", "check", "--profile", profile, files=self.readable + self.unreadable)
        (self.path / "house.json").write_text(
            '{"profileVersion":1,"accept":[{"rule":"handles","track":"Dialog*","reason":"meant so"},'
            '{"rule":"muted","file":"*.omf","track":"a","clip":"b","audioFile":"c","reason":"r"}]}')
        self.call("check", "check", "--profile", "house.json", "--audio", files=["session.omf"])
        for rule in ("post", "music"):
            self.call("check-rules", "check", "--list-rules", "--profile", rule, files=[])

    def peaks(self):
        for extra in ([], ["--bits", "8", "--samples-per-pair", "24000"]):
            self.call("peaks", "peaks", *extra,
                      files=["../one/Steps.wav", "nothing.wav", "text.omf", "folder.omf",
                             b"bytes-\xff.wav"])

    def dump(self):
        files = self.readable + self.unreadable
        for extra in ([], ["--all"]):
            self.call("dump-overview", "dump", *extra, files=files)
            self.call("dump-object", "dump", "--object", "1", *extra, files=files)
        self.call("dump-table", "dump", "--toc", files=files)
        self.call("dump-object", "dump", "--object", "99999999", files=["session.omf"])
        for path in ("CMOB[161]/slot[160]/SCLP[157]", "CMOB[161]/slot[9]", "nonsense"):
            self.call("dump-object", "dump", "--path", path, files=["session.omf"])
        # An object with audio, of which a bounded part is shown.
        self.call("dump-object", "dump", "--path", "WAVE[13]", files=["session.omf"])

    def validate(self):
        timeline = (self.path / "out" / "session" / "timeline.json").read_bytes()
        document = parse(timeline)
        track = document["events"][0]["trackID"].encode()
        (self.path / "track.json").write_bytes(timeline.replace(b'"trackID":"' + track,
                                                                b'"trackID":"x' + track, 1))
        rate = b'"nominalFramesPerSecond":'
        (self.path / "clock.json").write_bytes(timeline.replace(rate, rate + b"-", 1))
        self.call("validate", "validate",
                  files=["out/session/timeline.json", "track.json", "clock.json", "text.omf",
                         "nothing.json", "folder.omf", b"bytes-\xff.json"])


def all_calls(path):
    folder = Folder(path)
    folder.look()
    folder.extract()
    folder.salvage()
    folder.export()
    folder.render()
    folder.check()
    folder.peaks()
    folder.dump()
    folder.validate()
    return folder.calls
