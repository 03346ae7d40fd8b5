# SPDX-License-Identifier: Apache-2.0
"""A worker process: how it is started, watched and ended."""

from __future__ import annotations

import errno
import os
import select
import signal
import subprocess
import time
from typing import Optional

from .errors import LaunchCause, LaunchFailed
from .parsing import printable

#: Seconds that a worker may take to end by itself once asked; half of what a cancelled call has.
GRACE = 0.4
#: Seconds between two looks where the system does not tell of the end.
LOOK = 0.005

_CAUSES = {
    errno.ENOENT: LaunchCause.WORKER_NOT_FOUND,
    errno.ENOTDIR: LaunchCause.WORKER_NOT_FOUND,
    errno.EACCES: LaunchCause.WORKER_NOT_EXECUTABLE,
    errno.EPERM: LaunchCause.WORKER_NOT_EXECUTABLE,
    errno.ENOEXEC: LaunchCause.WORKER_NOT_EXECUTABLE,
    errno.EISDIR: LaunchCause.WORKER_NOT_EXECUTABLE,
    errno.ELOOP: LaunchCause.WORKER_NOT_EXECUTABLE,
    errno.EAGAIN: LaunchCause.SYSTEM_REFUSED,
    errno.ENOMEM: LaunchCause.SYSTEM_REFUSED,
    errno.EMFILE: LaunchCause.SYSTEM_REFUSED,
    errno.ENFILE: LaunchCause.SYSTEM_REFUSED,
}


class ChildProcess:
    """One started process and its group. Whoever leaves it behind ends it (`end`)."""

    def __init__(self, executable: str, stdin: int, stdout: int, stderr: int) -> None:
        """Starts `executable` without arguments, in the host's directory and environment, with no descriptor but its
        streams. It leads a session of its own, so that a key pressed at the host's terminal is the host's to handle.

        Raises LaunchFailed.
        """
        try:
            self._process = subprocess.Popen(
                [executable], executable=executable, stdin=stdin, stdout=stdout, stderr=stderr,
                start_new_session=True)
        except (OSError, ValueError) as error:
            raise _launch_failure(executable, error) from None
        self._is_reaped = False
        #: Somebody else has reaped it.
        self._is_lost = False
        #: How it ended, where the system tells that only to whoever reaps it.
        self._early_status: Optional[int] = None
        self.end_notice = _open_end_notice(self._process.pid)

    @property
    def has_ended(self) -> bool:
        """True from its end on; it stays to be reaped."""
        if self._is_lost or self._is_reaped or self._early_status is not None:
            return True
        try:
            return self._look()
        except ChildProcessError:
            self._is_lost = True
            return True

    def reap(self) -> Optional[int]:
        """Waits for the end. The exit status, or the negative number of the signal that ended it; None when the host
        reaps all its children itself and so took the answer."""
        status: Optional[int] = None
        try:
            if self._early_status is not None:
                status = _exit_status(self._early_status)
            elif not self._is_lost:
                status = _exit_status(os.waitpid(self._process.pid, 0)[1])
        except ChildProcessError:
            self._is_lost = True
        self._is_reaped = True
        # Else the standard library would go on looking for a process of this number.
        self._process.returncode = 0 if status is None else status
        if self.end_notice is not None:
            os.close(self.end_notice)
            self.end_notice = None
        return status

    def end(self) -> None:
        """Asks it to end, kills what is left after a grace, and reaps it, all within a second. Nothing is left to do
        for one that is reaped."""
        if self._is_reaped:
            return
        self._signal(signal.SIGTERM)
        self._wait()
        self._signal(signal.SIGKILL)
        self._wait()
        # One that is stuck in the system does not end even so; the host must not be stuck with it.
        if self.has_ended:
            self.reap()

    def _look(self) -> bool:
        """Whether it has ended. Raises ChildProcessError when somebody else has reaped it."""
        if hasattr(os, "waitid"):
            return os.waitid(os.P_PID, self._process.pid, os.WEXITED | os.WNOHANG | os.WNOWAIT) is not None
        process, status = os.waitpid(self._process.pid, os.WNOHANG)
        if process != 0:
            self._early_status = status
        return process != 0

    def _signal(self, number: int) -> None:
        """To the group too, because a worker may be a script whose programs hold the pipes."""
        if not self.has_ended:
            os.kill(self._process.pid, number)
        # Once the worker is reaped, by whomever, its number may be anybody's.
        if not self._is_lost and self._early_status is None:
            try:
                os.killpg(self._process.pid, number)
            except (ProcessLookupError, PermissionError):
                pass

    def _wait(self) -> None:
        """Returns at its end, or when the grace is over."""
        if self.end_notice is not None:
            select.select([self.end_notice], [], [], GRACE)
            return
        ends = time.monotonic() + GRACE
        while not self.has_ended and time.monotonic() < ends:
            time.sleep(LOOK)


def _exit_status(status: int) -> int:
    """As `reap` gives it."""
    return -os.WTERMSIG(status) if os.WIFSIGNALED(status) else os.WEXITSTATUS(status)


def _open_end_notice(process: int) -> Optional[int]:
    """A descriptor that becomes readable when the process ends; None where the system has no such thing."""
    try:
        return os.pidfd_open(process)
    except (AttributeError, OSError):
        return None


def _launch_failure(executable: str, error: Exception) -> LaunchFailed:
    number = error.errno if isinstance(error, OSError) else None
    if number == errno.EACCES and os.path.isdir(executable):
        number = errno.EISDIR
    reason = str(error) if number is None else os.strerror(number)
    cause = LaunchCause.OTHER if number is None else _CAUSES.get(number, LaunchCause.OTHER)
    return LaunchFailed(f'cannot start "{printable(executable)}": {reason}', cause)
