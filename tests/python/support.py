# SPDX-License-Identifier: Apache-2.0
"""What the tests of the Python package share: the built worker, the examples, and workers that misbehave."""
import os
import sys
import tempfile
import textwrap
import unittest
from pathlib import Path

SOURCE = Path(__file__).resolve().parents[2]
PACKAGE = SOURCE / "python" / "trellant"
EXAMPLES = SOURCE / "examples"
# The environment that the package itself looks at.
WORKER = os.environ["TRELLANT_WORKER"]

# A result that holds all that must be there and nothing else.
SMALLEST_RESULT = (
    '{"protocolVersion":1,"diagnostics":[],"timeline":{"sourceAAF":"file:///a.omf","essences":[],'
    '"tracks":[],"events":[],"unsupportedFeatures":[],"clock":{"editRate":{"numerator":25,'
    '"denominator":1},"timecodeRate":{"exactRate":{"numerator":25,"denominator":1},'
    '"nominalFramesPerSecond":25,"dropFrame":false},"timelineZero":{"hours":0,"minutes":0,'
    '"seconds":0,"frames":0,"rate":{"exactRate":{"numerator":25,"denominator":1},'
    '"nominalFramesPerSecond":25,"dropFrame":false}}}}}')


class FolderTest(unittest.TestCase):
    """Each test has a folder of its own, `folder`."""

    def setUp(self):
        made = tempfile.TemporaryDirectory(prefix="trellant-python-")
        self.addCleanup(made.cleanup)
        self.folder = Path(made.name).resolve()

    def worker(self, script):
        """A worker that runs `script`, in Python; `read_request()` waits for its request."""
        prologue = """
            import os, signal, subprocess, sys, time
            def read_request():
                return sys.stdin.buffer.read().decode()
            def answer():
                sys.stdout.write(RESULT)
            RESULT = """ + repr(SMALLEST_RESULT)
        return self.program(f"#!{sys.executable} -B\n{textwrap.dedent(prologue)}\n{textwrap.dedent(script)}")

    def program(self, text, mode=0o755):
        path = self.folder / f"worker-{len(list(self.folder.iterdir()))}"
        path.write_text(text, encoding="utf-8")
        path.chmod(mode)
        return str(path)
