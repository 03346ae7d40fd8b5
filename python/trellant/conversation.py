# SPDX-License-Identifier: Apache-2.0
"""One call: a worker is started, fed, listened to and seen to its end on the calling thread, while the progress goes
out on another. One thread looks after all three pipes, so none of them blocks the others, and a stop is heeded at any
moment."""

from __future__ import annotations

import os
import selectors
import signal
import threading
import time
from dataclasses import dataclass
from typing import Callable, NoReturn, Optional

from .child_process import LOOK, ChildProcess
from .error_lines import ErrorLines
from .errors import (
    CancellationError,
    InvalidResponse,
    LaunchCause,
    LaunchFailed,
    NonZeroExit,
    ResponseFault,
    TimeLimitError,
)
from .progress_delivery import ProgressCallback, ProgressDelivery

#: What a pipe holds, so that one read takes all that is there.
PIPE_BYTES = 65_536
#: Reads that empty the largest pipe; more would come from somebody who outlived the worker.
LAST_READS = 17
#: Lines of the worker that an error carries.
REPORTED_LINES = 8


class Alarm:
    """Ends the wait of a call from another thread, or from a signal handler."""

    def __init__(self) -> None:
        """Raises LaunchFailed."""
        # A handler may run while its own thread is in here.
        self._lock = threading.RLock()
        self.descriptor, self._writing = _pipe()
        os.set_blocking(self._writing, False)
        self._has_rung = False

    def ring(self) -> None:
        """The descriptor is readable from now on."""
        with self._lock:
            if not self._has_rung and self._writing >= 0:
                self._has_rung = True
                os.write(self._writing, b"\0")

    def close(self) -> None:
        """A ring from now on does nothing."""
        with self._lock:
            os.close(self.descriptor)
            os.close(self._writing)
            self._writing = -1


@dataclass(frozen=True)
class WorkerCall:
    """What a call is given."""

    executable: str
    request: bytes
    progress: Optional[ProgressCallback]
    is_stopped: Callable[[], bool]
    alarm: Alarm
    #: Bytes of output that are taken at most.
    result_limit: int
    #: When the call is over, by `time.monotonic`; None: without end.
    ends: Optional[float]


def answer_to(call: WorkerCall) -> tuple[bytes, tuple[str, ...]]:
    """What a worker wrote that ended with status 0, and its log lines.

    Raises WorkerClientError, TimeLimitError, CancellationError and what the progress callback raises; the worker has
    ended and is reaped in each case. Leaves SIGPIPE blocked on this thread.
    """
    conversation = _Conversation(call)
    try:
        return conversation.answer()
    finally:
        conversation.close()


class _Conversation:
    def __init__(self, call: WorkerCall) -> None:
        self._call = call
        self._progress = ProgressDelivery(call.progress, call.alarm.ring)
        self._lines = ErrorLines(self._progress.add)
        # Asks for no descriptor of its own, so there is nothing that the system can refuse.
        self._selector = selectors.PollSelector()
        self._selector.register(call.alarm.descriptor, selectors.EVENT_READ)
        self._input = self._output = self._errors = -1
        self._unwritten = memoryview(call.request)
        self._answer = bytearray()
        self._worker: Optional[ChildProcess] = None
        self._worker_ended = False

    def answer(self) -> tuple[bytes, tuple[str, ...]]:
        self._start()
        while self._output >= 0 or not self._worker_ended:
            self._wait_for_news()
        assert self._worker is not None
        status = self._worker.reap()
        self._progress.finish(self._call.is_stopped)
        self._check_alarm()
        # Whether its end or the closed pipe is seen first is chance, and another process that is just being started
        # may hold the pipe open for a moment.
        if self._input >= 0:
            self._fail_write("Broken pipe")
        self._check_status(status)
        return bytes(self._answer), self._lines.taken()

    def close(self) -> None:
        """However it ends, no callback begins while the worker is seen to its end."""
        self._progress.close()
        if self._worker is not None:
            self._worker.end()
        self._progress.wait()
        self._selector.close()
        for end in (self._input, self._output, self._errors):
            if end >= 0:
                os.close(end)

    def _start(self) -> None:
        others: list[int] = []
        try:
            stdin, self._input = _pipe()
            others.append(stdin)
            self._output, stdout = _pipe()
            others.append(stdout)
            self._errors, stderr = _pipe()
            others.append(stderr)
            for own in (self._input, self._output, self._errors):
                os.set_blocking(own, False)
            # A request that fits the pipe is in it before the worker starts, so one that ends at once is judged by its
            # status and its last words, not by whether it was still there to be written to.
            self._write_request()
            self._worker = ChildProcess(self._call.executable, stdin, stdout, stderr)
        finally:
            for other in others:
                os.close(other)
        # A write to a worker that is gone must not end the host, whatever it has SIGPIPE do. Only now, lest the worker
        # inherits it.
        signal.pthread_sigmask(signal.SIG_BLOCK, {signal.SIGPIPE})
        self._selector.register(self._output, selectors.EVENT_READ)
        self._selector.register(self._errors, selectors.EVENT_READ)
        if self._unwritten:
            self._selector.register(self._input, selectors.EVENT_WRITE)
        else:
            self._end_input()
        if self._worker.end_notice is not None:
            self._selector.register(self._worker.end_notice, selectors.EVENT_READ)

    def _wait_for_news(self) -> None:
        assert self._worker is not None
        is_told = self._worker_ended or self._worker.end_notice is not None
        try:
            ready = {key.fd for key, _ in self._selector.select(self._patience(None if is_told else LOOK))}
        except OSError as error:
            raise LaunchFailed(
                f"cannot wait for the helper: {os.strerror(error.errno or 0)}",
                LaunchCause.SYSTEM_REFUSED) from None
        self._check_alarm()
        if self._call.ends is not None and time.monotonic() >= self._call.ends:
            raise TimeLimitError()
        if self._input >= 0 and self._input in ready:
            self._write_request()
            if not self._unwritten:
                self._selector.unregister(self._input)
                self._end_input()
        if self._output >= 0 and self._output in ready:
            self._read_output()
        if self._errors >= 0 and self._errors in ready:
            self._read_errors()
        if not self._worker_ended and (not is_told or self._worker.end_notice in ready) and self._worker.has_ended:
            self._notice_end()

    def _patience(self, longest: Optional[float]) -> Optional[float]:
        """Seconds to wait for news; None: without end."""
        if self._call.ends is None:
            return longest
        left = max(0.0, self._call.ends - time.monotonic())
        return left if longest is None else min(left, longest)

    def _check_alarm(self) -> None:
        self._progress.check()
        if self._call.is_stopped():
            raise CancellationError()

    def _notice_end(self) -> None:
        """Its last words are in the pipe already; who else holds the pipe open is not waited for."""
        assert self._worker is not None
        self._worker_ended = True
        if self._worker.end_notice is not None:
            self._selector.unregister(self._worker.end_notice)
        for _ in range(LAST_READS):
            if self._errors < 0 or not self._read_errors():
                break
        if self._errors >= 0:
            self._errors = self._closed(self._errors)

    def _write_request(self) -> None:
        try:
            while self._unwritten:
                self._unwritten = self._unwritten[os.write(self._input, self._unwritten):]
        except BlockingIOError:
            pass
        except OSError as error:
            self._fail_write(os.strerror(error.errno or 0))

    def _end_input(self) -> None:
        os.close(self._input)
        self._input = -1

    def _fail_write(self, reason: str) -> NoReturn:
        raise LaunchFailed(f"cannot write the request: {reason}", LaunchCause.REQUEST_NOT_TAKEN)

    def _closed(self, descriptor: int) -> int:
        self._selector.unregister(descriptor)
        os.close(descriptor)
        return -1

    def _read_output(self) -> None:
        piece = _read(self._output)
        if piece == b"":
            self._output = self._closed(self._output)
        elif piece is not None:
            if len(piece) > self._call.result_limit - len(self._answer):
                raise InvalidResponse(f"longer than {self._call.result_limit} bytes", ResponseFault.TOO_LONG)
            self._answer += piece

    def _read_errors(self) -> bool:
        """Whether there may be more."""
        piece = _read(self._errors)
        if piece == b"":
            self._errors = self._closed(self._errors)
        elif piece is not None:
            self._lines.take(piece)
        return bool(piece)

    def _check_status(self, status: Optional[int]) -> None:
        # Without a status the output tells: a worker writes one only when all went well.
        if status is None and not self._answer:
            raise NonZeroExit(-1, self._lines.last(REPORTED_LINES))
        if status:
            raise NonZeroExit(abs(status), self._lines.last(REPORTED_LINES), -status if status < 0 else None)


def _pipe() -> tuple[int, int]:
    """Its reading and its writing end. Raises LaunchFailed."""
    try:
        return os.pipe()
    except OSError as error:
        raise LaunchFailed(f"cannot make a pipe: {os.strerror(error.errno or 0)}", LaunchCause.SYSTEM_REFUSED) from None


def _read(descriptor: int) -> Optional[bytes]:
    """One read; empty at the end of the stream and of what can be read of it, None when nothing is there now."""
    try:
        return os.read(descriptor, PIPE_BYTES)
    except BlockingIOError:
        return None
    except OSError:
        return b""
