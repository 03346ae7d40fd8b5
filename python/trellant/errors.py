# SPDX-License-Identifier: Apache-2.0
"""How a call of a worker fails: a fault between host and worker, a cancellation, or the end of its time.

Every error can be pickled, so it comes whole out of another process of a pipeline.
"""

from __future__ import annotations

import enum
from typing import Optional

from .localization import localized_text


class TrellantError(Exception):
    """Whatever this package raises of its own accord."""


class WorkerClientError(TrellantError):
    """A call that gave no result, through a fault of the worker or on the way to it.

    `str()` gives the technical detail, for logs; `description` is for the person in front of the host.
    """

    @property
    def description(self) -> str:
        """A sentence for people, in the language of the environment where there is a catalogue for it, else in
        English. Looked up each time."""
        return localized_text(
            "aaf.error.parserFailed", "The interchange file could not be read. The log has the details.")


class LaunchCause(enum.Enum):
    """Why a worker could not be started, or did not take its request."""

    OTHER = "other"
    #: Nothing lies where the worker should, or where what runs it should.
    WORKER_NOT_FOUND = "workerNotFound"
    #: What lies there may not or cannot be run.
    WORKER_NOT_EXECUTABLE = "workerNotExecutable"
    #: The request holds a text that is not UTF-8, or a number that the protocol has no room for.
    UNSENDABLE_REQUEST = "unsendableRequest"
    #: A relative path was given and the current directory is gone.
    NO_CURRENT_DIRECTORY = "noCurrentDirectory"
    #: The worker ended, or closed its input, before it had all of the request.
    REQUEST_NOT_TAKEN = "requestNotTaken"
    #: The system gave no thread, pipe or process.
    SYSTEM_REFUSED = "systemRefused"


class LaunchFailed(WorkerClientError):
    """The worker could not be started, or ended before its whole request was written to it."""

    def __init__(self, reason: str, cause: LaunchCause = LaunchCause.OTHER) -> None:
        super().__init__(reason, cause)
        #: What happened, for logs.
        self.reason = reason
        #: The same for programs.
        self.cause = cause

    def __str__(self) -> str:
        return f"helper launch failed: {self.reason}"


class NonZeroExit(WorkerClientError):
    """The worker ended with another status than 0.

    In a host that reaps all its children or ignores SIGCHLD no status is to be had: a worker that wrote
    nothing then counts as one that ended with -1, any other as one that ended well.
    """

    def __init__(self, status: int, log_lines: str, signal: Optional[int] = None) -> None:
        super().__init__(status, log_lines, signal)
        #: The exit status; of a worker that a signal ended, the signal's number.
        self.status = status
        #: The last of its log lines, at most 8, joined by line feeds.
        self.log_lines = log_lines
        #: The number of the signal that ended it; None when it ended by itself.
        self.signal = signal

    def __str__(self) -> str:
        return f"helper exited with {self.status}: {self.log_lines}"


class ResponseFault(enum.Enum):
    """What is wrong with an answer."""

    #: Longer than the client's `result_limit`.
    TOO_LONG = "tooLong"
    #: No JSON, or a value that means nothing in its place.
    CORRUPT = "corrupt"
    MISSING_KEY = "missingKey"
    WRONG_TYPE = "wrongType"
    #: A timeline that does not pass `trellant.validate`.
    INVALID_TIMELINE = "invalidTimeline"
    #: Of another protocol version.
    OTHER_VERSION = "otherVersion"


class InvalidResponse(WorkerClientError):
    """The worker ended well and what it wrote is no result."""

    def __init__(self, reason: str, kind: ResponseFault, key_path: str = "") -> None:
        super().__init__(reason, kind, key_path)
        #: What is wrong, for logs; the key path, where there is one, stands before it.
        self.reason = reason
        #: The same for programs.
        self.kind = kind
        #: "timeline.events[3].duration": where it does not decode; may be empty.
        self.key_path = key_path

    def __str__(self) -> str:
        return f"helper returned an invalid response: {self.reason}"


class HelperMissing(WorkerClientError):
    """No worker was found. `searched` are the places that were looked at, in that order."""

    def __init__(self, helper_name: str, searched: tuple[str, ...] = ()) -> None:
        super().__init__(helper_name, searched)
        self.helper_name = helper_name
        self.searched = searched

    def __str__(self) -> str:
        places = "".join(f"\n  {place}" for place in self.searched)
        return f"{self.helper_name} was not found" + (f", looked for at{places}" if places else "")

    @property
    def description(self) -> str:
        """A sentence for people, as of every WorkerClientError."""
        return localized_text(
            "aaf.error.parserMissing",
            "The part that reads interchange files is missing. Please install the application again.")


class CancellationError(TrellantError):
    """`Call.cancel` was called before there was a result. The worker is gone by then (one that is stuck in
    the system, where nothing can end it, was given up)."""

    def __str__(self) -> str:
        return "the call was cancelled"


class TimeLimitError(TrellantError):
    """The client's `time_limit` was over before there was a result. The worker is gone by then, as after a
    cancellation."""

    def __str__(self) -> str:
        return "the time of the call is over"


class JsonDecodingError(TrellantError):
    """A text that is not the JSON that was expected."""

    def __init__(self, reason: str, kind: ResponseFault = ResponseFault.CORRUPT, key_path: str = "") -> None:
        super().__init__(reason, kind, key_path)
        self.reason = reason
        self.kind = kind
        #: "timeline.events[3].duration"; may be empty.
        self.key_path = key_path

    def __str__(self) -> str:
        return f"{self.key_path}: {self.reason}" if self.key_path else self.reason


class TimelineError(TrellantError):
    """The first rule that a timeline breaks."""

    def __init__(self, code: str, place: str) -> None:
        super().__init__(code, place)
        #: The rule by what breaks it: "missing-track-reference".
        self.code = code
        #: The part at fault: "clock", "program-start", "composition", "track[2]", "essence[0]", "event[17]".
        self.place = place

    def __str__(self) -> str:
        return f"AAF raw model: {self.code} ({self.place})"
