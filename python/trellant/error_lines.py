# SPDX-License-Identifier: Apache-2.0
"""What a worker writes to its standard error: progress for the host, the rest kept for the case that the worker
fails."""

from __future__ import annotations

import collections
from typing import Callable, Deque

from .decoding import decode_progress
from .errors import JsonDecodingError
from .messages import Progress

#: What a line begins with that carries one progress record.
PROGRESS_MARKER = b"TRELLANT-AAF-PROGRESS "
#: Lines kept; the oldest go first.
KEPT_LINES = 60
#: Bytes of a line; a longer one counts as several.
LONGEST_LINE = 65_536


class ErrorLines:
    """The lines so far. `add` gets the progress records."""

    def __init__(self, add: Callable[[Progress], None]) -> None:
        self._add = add
        self._lines: Deque[str] = collections.deque(maxlen=KEPT_LINES)
        #: A line whose end has not come yet.
        self._begun = b""

    def take(self, piece: bytes) -> None:
        """What one read gave."""
        *whole, self._begun = (self._begun + piece).split(b"\n")
        for line in whole:
            self._take_line(line)
        while len(self._begun) >= LONGEST_LINE:
            self._take_line(self._begun[:LONGEST_LINE])
            self._begun = self._begun[LONGEST_LINE:]

    def taken(self) -> tuple[str, ...]:
        """All that are kept, the one without an end too."""
        self._take_line(self._begun)
        self._begun = b""
        return tuple(self._lines)

    def last(self, count: int) -> str:
        """The last lines, at most `count`, joined by line feeds."""
        return "\n".join(self.taken()[-count:])

    def _take_line(self, line: bytes) -> None:
        if line.startswith(PROGRESS_MARKER):
            try:
                self._add(decode_progress(line[len(PROGRESS_MARKER):]))
            except JsonDecodingError:
                # A broken progress line is not worth a failure.
                pass
        elif line:
            self._lines.append(line.decode("utf-8", "replace"))
