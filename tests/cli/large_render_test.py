# SPDX-License-Identifier: Apache-2.0
"""A rendering beyond 4 GiB: 2,990 clips of ten seconds of 24 bits are 4,305,600,000 bytes of samples, of which
all but the last are silent. The new file is read by another program, and as the audio of another rendering."""
import os
import shutil
import struct
import subprocess
import tempfile
import unittest
from pathlib import Path

COMMAND = os.environ["TRELLANT_COMMAND"]
GENERATOR = os.environ["TRELLANT_GENERATOR"]

FRAMES = 2_990 * 480_000
SAMPLE_BYTES = 3 * FRAMES
LAST_SAMPLE = b"\x56\x34\x12"


def sparse_source(path):
    """A file of the large form whose samples take no room on the disk."""
    head = (b"RF64\xff\xff\xff\xffWAVEds64" + struct.pack("<IQQQI", 28, SAMPLE_BYTES + 72, SAMPLE_BYTES, FRAMES, 0)
            + b"fmt " + struct.pack("<IHHIIHH", 16, 1, 1, 48_000, 144_000, 3, 24) + b"data\xff\xff\xff\xff")
    with open(path, "wb") as file:
        file.write(head)
        file.seek(len(head) + SAMPLE_BYTES - 3)
        file.write(LAST_SAMPLE)


def samples_at(path):
    """Where the samples of a file of the large form begin, and how many bytes it says they have."""
    with open(path, "rb") as file:
        head = file.read(65_536)
    assert head[:4] == b"RF64" and head[12:16] == b"ds64", head[:16]
    size, data, frames = struct.unpack_from("<QQQ", head, 20)
    assert size == path.stat().st_size - 8 and frames == FRAMES, (size, frames)
    return head.index(b"data\xff\xff\xff\xff") + 8, data


class LargeRendering(unittest.TestCase):
    def setUp(self):
        self.folder = Path(tempfile.mkdtemp(dir=os.environ.get("TRELLANT_LARGE_FOLDER")))
        self.addCleanup(shutil.rmtree, self.folder)
        self.omf = self.folder / "reel.omf"
        subprocess.run([GENERATOR, "reels", self.omf, "--count", "1", "--media-bytes", str(SAMPLE_BYTES + 44)],
                       check=True)

    def rendered(self, media, *options):
        out = self.folder / f"from {media.name}"
        subprocess.run([COMMAND, "render", self.omf, "--to", out, "--media", media, "--raw", "--quiet", *options],
                       check=True)
        return out / "01 Track 1.wav"

    def test_is_whole_and_read_again(self):
        source = self.folder / "source"
        source.mkdir()
        sparse_source(source / "Take 0.wav")
        large = self.rendered(source)
        first, size = samples_at(large)
        self.assertEqual(size, SAMPLE_BYTES)
        self.assertEqual(large.stat().st_size, first + SAMPLE_BYTES)
        with open(large, "rb") as file:
            file.seek(first + SAMPLE_BYTES - 6)
            self.assertEqual(file.read(), b"\0\0\0" + LAST_SAMPLE)
        if shutil.which("ffprobe"):
            told = subprocess.run(["ffprobe", "-v", "error", "-show_entries", "stream=duration_ts,sample_rate",
                                   "-of", "csv=p=0", large], check=True, capture_output=True, text=True).stdout
            self.assertEqual(told.strip(), f"48000,{FRAMES}")
        again = self.folder / "again"
        again.mkdir()
        large.rename(again / "Take 0.wav")
        # Two files of one name would leave open which is meant.
        shutil.rmtree(source)
        # 29,900 s are 8 h 18 min 20 s, and the session begins at 01:00:00:00.
        part = self.rendered(again, "--from", "09:18:19:00").read_bytes()
        self.assertEqual(part[-6:], b"\0\0\0" + LAST_SAMPLE)
        self.assertIn(b"data" + struct.pack("<I", 3 * 48_000), part)


if __name__ == "__main__":
    unittest.main()
