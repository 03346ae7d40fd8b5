# SPDX-License-Identifier: Apache-2.0
"""Progress on its way from a call's thread to the host's callback, which has a thread of its own: a callback that takes
its time, or waits for somebody who waits for the call, holds up neither the reading nor a cancellation."""

from __future__ import annotations

import collections
import functools
import math
import threading
import time
from typing import Callable, Deque, Optional

from .errors import LaunchCause, LaunchFailed
from .messages import Progress

#: Takes each progress record in the order written, one at a time.
ProgressCallback = Callable[[Progress], object]

#: Records that wait for the callback, and characters of them; the oldest go first.
WAITING_RECORDS = 1_024
WAITING_CHARACTERS = 262_144
#: Seconds that callbacks may hold up a call whose worker has ended by itself.
PATIENCE_AT_THE_END = 2.0
#: Seconds that one which is running may hold up a call that fails or is cancelled.
PATIENCE_AFTER_A_STOP = 0.5
#: Seconds between two looks whether a stop is wished.
LOOK_AFTER_A_STOP = 0.05


class ProgressDelivery:
    """The way of one call's progress. `failed` is called, on the callbacks' thread, when a callback raises."""

    def __init__(self, callback: Optional[ProgressCallback], failed: Callable[[], None]) -> None:
        self._failed = failed
        self._changed = threading.Condition()
        self._waiting: Deque[Progress] = collections.deque()
        self._characters = 0
        self._is_running = False
        self._is_closed = callback is None
        self._failure: Optional[BaseException] = None
        self._patience_ends = math.inf
        if callback is not None:
            start_thread("trellant progress", functools.partial(self._deliver, callback))

    def add(self, record: Progress) -> None:
        """Hands a record over."""
        with self._changed:
            if self._is_closed:
                return
            self._waiting.append(record)
            self._characters += _characters(record)
            while len(self._waiting) > WAITING_RECORDS or self._characters > WAITING_CHARACTERS:
                self._take_first()
            self._changed.notify_all()

    def check(self) -> None:
        """Raises what a callback raised."""
        with self._changed:
            if self._failure is not None:
                raise self._failure

    def finish(self, is_stopped: Callable[[], bool]) -> None:
        """Waits until the callback has had all records, has raised, a stop is wished or patience is lost."""
        self._patience_ends = time.monotonic() + PATIENCE_AT_THE_END
        with self._changed:
            while not self._is_closed and (self._waiting or self._is_running) and not is_stopped():
                left = self._patience_ends - time.monotonic()
                if left <= 0:
                    return
                self._changed.wait(min(left, LOOK_AFTER_A_STOP))

    def close(self) -> None:
        """From now on no callback begins."""
        self._patience_ends = min(self._patience_ends, time.monotonic() + PATIENCE_AFTER_A_STOP)
        with self._changed:
            self._is_closed = True
            self._changed.notify_all()

    def wait(self) -> None:
        """After `close`: waits for a callback that is running until patience is lost."""
        with self._changed:
            self._changed.wait_for(lambda: not self._is_running, max(0.0, self._patience_ends - time.monotonic()))

    def _take_first(self) -> Progress:
        record = self._waiting.popleft()
        self._characters -= _characters(record)
        return record

    def _deliver(self, callback: ProgressCallback) -> None:
        """On the thread of the callbacks, until closed."""
        while True:
            with self._changed:
                self._changed.wait_for(lambda: self._is_closed or bool(self._waiting))
                if self._is_closed:
                    return
                record = self._take_first()
                self._is_running = True
            failure: Optional[BaseException] = None
            try:
                callback(record)
            except BaseException as raised:
                failure = raised
            with self._changed:
                self._is_running = False
                if failure is not None and not self._is_closed:
                    self._is_closed = True
                    self._failure = failure
                    self._failed()
                self._changed.notify_all()


def start_thread(name: str, work: Callable[[], None]) -> None:
    """Raises LaunchFailed when the system gives no thread."""
    try:
        threading.Thread(target=work, name=name, daemon=True).start()
    except RuntimeError as error:
        raise LaunchFailed(f"cannot start a thread: {error}", LaunchCause.SYSTEM_REFUSED) from None


def _characters(record: Progress) -> int:
    return len(record.phase) + len(record.detail or "")
