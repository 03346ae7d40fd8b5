# SPDX-License-Identifier: Apache-2.0
"""Timecode: a frame rate with optional drop-frame counting, a label at such a rate, and the clock that ties
timeline seconds to labels.

At 30 frames per second drop-frame counting leaves out the labels ;00 and ;01 of each minute that is no
multiple of ten, at 60 the labels ;00 to ;03.

What computes here expects values that passed `trellant.validate`, as those of every answer have.
"""

from __future__ import annotations

from dataclasses import dataclass, replace
from fractions import Fraction
from typing import Optional

SECONDS_PER_DAY = 86_400


@dataclass(frozen=True)
class TimecodeRate:
    """How frames are counted."""

    #: True frame rate, frames per second: 30000/1001.
    exact_rate: Fraction
    #: Frames per second that labels count with: 30.
    nominal_frames_per_second: int
    drop_frame: bool

    @property
    def dropped_frames_per_minute(self) -> int:
        """Labels left out at the head of each minute that is no multiple of ten: 0, 2 or (at 60) 4."""
        if not self.drop_frame:
            return 0
        return 4 if self.nominal_frames_per_second == 60 else 2


@dataclass(frozen=True)
class TimecodeAddress:
    """One label. `str()` gives "01:00:00:00", with ";" before the frames of a drop-frame rate."""

    hours: int
    minutes: int
    seconds: int
    frames: int
    rate: TimecodeRate

    @staticmethod
    def from_frame_number(frame_number: int, rate: TimecodeRate) -> TimecodeAddress:
        """The label of frame `frame_number` (frames since 00:00:00:00, from 0); wraps at 24 hours.

        Raises ValueError for a negative number.
        """
        if frame_number < 0:
            raise ValueError("a frame number must not be negative")
        nominal = rate.nominal_frames_per_second
        label = _label_number(frame_number, nominal, rate.dropped_frames_per_minute)
        seconds, frames = divmod(label, nominal)
        return TimecodeAddress(seconds // 3600 % 24, seconds // 60 % 60, seconds % 60, frames, rate)

    @property
    def frame_number(self) -> int:
        """Frames since 00:00:00:00."""
        minutes = self.hours * 60 + self.minutes
        labels = (minutes * 60 + self.seconds) * self.rate.nominal_frames_per_second + self.frames
        return labels - (minutes - minutes // 10) * self.rate.dropped_frames_per_minute

    @property
    def is_skipped(self) -> bool:
        """Whether drop-frame counting leaves this label out, so that no frame has it."""
        return self.seconds == 0 and self.minutes % 10 != 0 and self.frames < self.rate.dropped_frames_per_minute

    @property
    def start_of_minute(self) -> TimecodeAddress:
        """The first label that exists in this label's minute."""
        first = 0 if self.minutes % 10 == 0 else self.rate.dropped_frames_per_minute
        return replace(self, seconds=0, frames=first)

    def __str__(self) -> str:
        mark = ";" if self.rate.drop_frame else ":"
        return f"{self.hours:02}:{self.minutes:02}:{self.seconds:02}{mark}{self.frames:02}"


@dataclass(frozen=True)
class ProgramClock:
    """From timeline seconds to labels."""

    #: Edit units of the composition per second.
    edit_rate: Fraction
    timecode_rate: TimecodeRate
    #: The label of timeline time zero.
    timeline_zero: TimecodeAddress

    def address(self, time: Fraction) -> TimecodeAddress:
        """The label at `time` (timeline seconds), to the nearest frame (halves away from zero), never before
        00:00:00:00."""
        frames = _rounded(time * self.timecode_rate.exact_rate)
        return TimecodeAddress.from_frame_number(
            max(0, self.timeline_zero.frame_number + frames), self.timecode_rate)

    def bounce_start(self, first_audible_event: Fraction,
                     explicit_program_start: Optional[TimecodeAddress]) -> TimecodeAddress:
        """Where a bounce starts: `explicit_program_start` when the first audible event (timeline seconds) does
        not lie before it, else the first label of that event's timecode minute."""
        first = self.address(first_audible_event)
        if explicit_program_start is not None and first.frame_number >= explicit_program_start.frame_number:
            return explicit_program_start
        return first.start_of_minute


def _rounded(value: Fraction) -> int:
    """The nearest whole number, halves away from zero."""
    whole = (2 * abs(value.numerator) + value.denominator) // (2 * value.denominator)
    return whole if value >= 0 else -whole


def _label_number(frame_number: int, nominal: int, dropped: int) -> int:
    """The frame number counted in labels: those left out are added back."""
    if dropped == 0:
        return frame_number % (nominal * SECONDS_PER_DAY)
    dropped_in_ten_minutes = 9 * dropped
    frames_in_ten_minutes = nominal * 600 - dropped_in_ten_minutes
    frame_of_day = frame_number % (frames_in_ten_minutes * 6 * 24)
    blocks, rest = divmod(frame_of_day, frames_in_ten_minutes)
    added = dropped_in_ten_minutes * blocks
    if rest >= dropped:
        added += dropped * ((rest - dropped) // (nominal * 60 - dropped))
    return frame_of_day + added
