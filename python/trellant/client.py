# SPDX-License-Identifier: Apache-2.0
"""The host's side of a worker process. Each call starts one worker, hands it one request, turns its progress lines into
callbacks and gives back what it answered. Whatever a file does to the worker, the host sees it as a typed error."""

from __future__ import annotations

import atexit
import concurrent.futures
import dataclasses
import json
import os
import time
import weakref
from dataclasses import dataclass
from types import TracebackType
from typing import Callable, Iterable, Optional, Union

from .conversation import Alarm, WorkerCall, answer_to
from .decoding import LARGEST, SMALLEST, decode_result, request_object
from .errors import (
    CancellationError,
    InvalidResponse,
    JsonDecodingError,
    LaunchCause,
    LaunchFailed,
    ResponseFault,
    TimelineError,
)
from .messages import PROTOCOL_VERSION, Operation, Request, Result
from .progress_delivery import ProgressCallback, start_thread
from .timeline import Timeline
from .worker import find_worker

Path = Union[str, "os.PathLike[str]"]

#: Bytes of an answer: about a hundred times what a feature film needs.
DEFAULT_RESULT_LIMIT = 268_435_456
#: Seconds that the end of the interpreter waits for a call that it cancels.
PATIENCE_AT_EXIT = 1.0


@dataclass(frozen=True)
class Answer:
    """What a call gave that went well."""

    #: With the worker's remarks on the mapping, its `diagnostics`.
    result: Result
    #: What the worker wrote to standard error beside progress: the last lines, at most 60.
    log_lines: tuple[str, ...]

    @property
    def timeline(self) -> Timeline:
        """The composition that was read."""
        return self.result.timeline


class Call(concurrent.futures.Future[Answer]):
    """A call that is under way: a future that `Client.start` has made.

    `result()` gives the answer or raises what `Client` lists; `add_done_callback`, `concurrent.futures.wait` and
    `asyncio.wrap_future` take it like any other future. As a context manager it cancels the call that is still under
    way at the end of the block, and waits for its end.
    """

    def __init__(self, alarm: Alarm) -> None:
        super().__init__()
        self._alarm = alarm
        self._is_stopped = False

    def cancel(self) -> bool:
        """Asks for the end of the call, from any thread or signal handler, and returns at once: false when the call has
        ended already. `result()` raises CancellationError within a second, when the worker is gone."""
        if self.done():
            return False
        self._is_stopped = True
        self._alarm.ring()
        return True

    def is_stopped(self) -> bool:
        """Whether `cancel` was called while the call was under way."""
        return self._is_stopped

    def __enter__(self) -> Call:
        return self

    def __exit__(self, kind: Optional[type[BaseException]], error: Optional[BaseException],
                 trace: Optional[TracebackType]) -> None:
        self.cancel()
        concurrent.futures.wait([self])


@dataclass(frozen=True)
class Client:
    """How workers are started. A value: calls hold no state between them, and one client may be used for any number of
    calls at once, from any threads; each has its own process.

    A call raises, out of `inspect`, `extract` or `Call.result`:

    - HelperMissing, LaunchFailed, NonZeroExit or InvalidResponse (WorkerClientError): no result, see each;
    - CancellationError: `Call.cancel` was called;
    - TimeLimitError: the time limit was over;
    - what the progress callback raises, which ends the worker.

    The progress callback takes each record in the order written, one at a time, on a thread of its own, while the
    worker is read and cancelled. Records that come meanwhile wait for it, the newest 1,024 of them. No callback begins
    once the call is done. One that does not return holds the call up by two seconds, by half a second once it has
    failed or was cancelled, and is then left to itself.
    """

    #: The worker's file; None: the one that `find_worker` finds, at each call.
    worker: Optional[Path] = None
    #: Seconds that a worker may take, counted from the call; then it is ended. None: as long as it takes.
    time_limit: Optional[float] = None
    #: Bytes of memory that a worker may take at most, on Linux; one that needs more ends with status 2 and says so,
    #: which is a NonZeroExit. None: as much as the machine has left. A request's own limit goes before it.
    memory_limit: Optional[int] = None
    #: Bytes of an answer; a worker that writes more is ended, and the call fails with InvalidResponse. While an answer
    #: is decoded, memory of about fifteen times its size is in use; one that was made to take as much as it can takes
    #: 42 times its size. A host that trusts its worker less sets the limit by that.
    result_limit: int = DEFAULT_RESULT_LIMIT

    def inspect(self, file: Path, *, media_search_directory: Optional[Path] = None, extensions: Iterable[str] = (),
                progress: Optional[ProgressCallback] = None) -> Answer:
        """Reads the OMF file `file` and writes nothing. External media are looked for in `media_search_directory` and
        below, by name. `extensions` are names of what the answer is to hold beside the timeline (`ExtensionName`).

        Waits for the end of the call; an exception that comes in between, such as KeyboardInterrupt, ends the worker.
        Relative paths are taken against the current directory of the moment.
        """
        return self._answer(self.request(
            Operation.INSPECT, file, media_search_directory=media_search_directory, extensions=extensions), progress)

    def extract(self, file: Path, work_directory: Path, *, media_search_directory: Optional[Path] = None,
                extensions: Iterable[str] = (), progress: Optional[ProgressCallback] = None) -> Answer:
        """As `inspect`, and takes embedded audio out into `work_directory`, which is created when missing. Files
        already taken out stay there when a call fails."""
        return self._answer(self.request(
            Operation.EXTRACT_AND_INSPECT, file, work_directory, media_search_directory=media_search_directory,
            extensions=extensions), progress)

    @staticmethod
    def request(operation: Operation, file: Path, work_directory: Path = "/", *,
                media_search_directory: Optional[Path] = None, extensions: Iterable[str] = ()) -> Request:
        """The request that `inspect` and `extract` send. Raises LaunchFailed for a relative path where the current
        directory is gone."""
        # A single name is an iterable of letters.
        wished = (extensions,) if isinstance(extensions, str) else extensions
        names = tuple(str.__str__(name) for name in wished)
        return Request(
            operation, _absolute(file), _absolute(work_directory),
            None if media_search_directory is None else _absolute(media_search_directory),
            extensions=names or None)

    def start(self, request: Request, *, progress: Optional[ProgressCallback] = None, checked: bool = True) -> Call:
        """Sends any request and returns at once; paths go out as they are. The call goes on to its end whether or not
        somebody holds what is returned.

        Raises LaunchFailed when the system gives no thread or descriptor; all else comes out of the call. With
        `checked` false the timeline is given as the worker wrote it, also where it breaks rules (`trellant.validate`).
        """
        alarm = Alarm()
        call = Call(alarm)
        call.set_running_or_notify_cancel()
        ends = None if self.time_limit is None else time.monotonic() + self.time_limit
        try:
            start_thread("trellant call", lambda: self._perform(call, request, progress, checked, ends))
        except LaunchFailed:
            alarm.close()
            raise
        _under_way.add(call)
        return call

    def _answer(self, request: Request, progress: Optional[ProgressCallback]) -> Answer:
        with self.start(request, progress=progress) as call:
            return call.result()

    def _perform(self, call: Call, request: Request, progress: Optional[ProgressCallback], checked: bool,
                 ends: Optional[float]) -> None:
        """The whole call, on its own thread."""
        try:
            answer = self._answer_of(call, request, progress, checked, ends)
        except BaseException as error:
            call._alarm.close()
            call.set_exception(error)
        else:
            call._alarm.close()
            call.set_result(answer)

    def _answer_of(self, call: Call, request: Request, progress: Optional[ProgressCallback], checked: bool,
                   ends: Optional[float]) -> Answer:
        executable = find_worker() if self.worker is None else os.fspath(self.worker)
        text, log_lines = answer_to(WorkerCall(
            executable, self._encoded(request), progress, call.is_stopped, call._alarm, self.result_limit, ends))

        def check() -> None:
            if call.is_stopped():
                raise CancellationError()

        try:
            result = decode_result(text, checked=checked, check=check)
        except JsonDecodingError as error:
            raise InvalidResponse(str(error), error.kind, error.key_path) from None
        except TimelineError as error:
            raise InvalidResponse(str(error), ResponseFault.INVALID_TIMELINE) from None
        if result.protocol_version != PROTOCOL_VERSION:
            raise InvalidResponse("protocol version mismatch", ResponseFault.OTHER_VERSION)
        return Answer(result, log_lines)

    def _encoded(self, request: Request) -> bytes:
        if request.memory_limit is None:
            request = dataclasses.replace(request, memory_limit=self.memory_limit)
        if request.memory_limit is not None and not SMALLEST <= request.memory_limit <= LARGEST:
            raise LaunchFailed("the memory limit does not fit 64 bits", LaunchCause.UNSENDABLE_REQUEST)
        try:
            return json.dumps(request_object(request), ensure_ascii=False).encode("utf-8")
        except UnicodeEncodeError:
            raise LaunchFailed(
                "a text of the request is not UTF-8 and cannot be sent to a worker",
                LaunchCause.UNSENDABLE_REQUEST) from None


#: What the end of the interpreter cancels.
_under_way: weakref.WeakSet[Call] = weakref.WeakSet()


@atexit.register
def _end_all() -> None:
    calls = [call for call in list(_under_way) if call.cancel()]
    concurrent.futures.wait(calls, PATIENCE_AT_EXIT)


def _absolute(path: Path) -> str:
    """As it is when it is absolute, else taken against the current directory without a look at links."""
    text = os.fspath(path)
    if os.path.isabs(text):
        return text
    try:
        return os.path.normpath(os.path.join(os.getcwd(), text))
    except OSError as error:
        raise LaunchFailed(
            f"cannot tell the current directory: {os.strerror(error.errno or 0)}",
            LaunchCause.NO_CURRENT_DIRECTORY) from None
