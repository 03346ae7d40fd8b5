# SPDX-License-Identifier: Apache-2.0
"""What must hold for a timeline that was read from JSON before anything computes with it.

The decoder checks shapes; this checks references between records and the ranges of values: the same rules by the same
codes as in every other host, so a file is refused everywhere or nowhere.
"""

from __future__ import annotations

import math
from collections.abc import Iterable, Mapping
from fractions import Fraction
from typing import Optional, TypeVar, Union

from .errors import TimelineError
from .timecode import SECONDS_PER_DAY, TimecodeAddress, TimecodeRate
from .timeline import AutomationEnvelope, AutomationPoint, ClipEvent, Fade, SourceEssence, Timeline, TrackState

LARGEST = 2**63 - 1
SMALLEST = -(2**63)
#: The largest frame rate whose frames of a day fit 64 bits.
LARGEST_NOMINAL_RATE = LARGEST // SECONDS_PER_DAY
LARGEST_CHANNEL_COUNT = 2**32 - 1
#: Samples per second.
LARGEST_SAMPLE_RATE = 384_000

_Element = TypeVar("_Element", bound=Union[TrackState, SourceEssence, ClipEvent])


def validate(timeline: Timeline) -> None:
    """Raises TimelineError for the first rule that `timeline` breaks. Takes time linear in its size."""
    tracks = _identities(timeline.tracks, "track")
    essences = _identities(timeline.essences, "essence")
    _identities(timeline.events, "event")
    _require(timeline.clock.edit_rate > 0, "invalid-edit-rate", "clock")
    _check_rate(timeline.clock.timecode_rate, "clock")
    _check_address(timeline.clock.timeline_zero, "clock")
    if timeline.explicit_program_start is not None:
        _check_address(timeline.explicit_program_start, "program-start")
    length = timeline.composition_length
    _require(length is None or length >= 0, "negative-composition-length", "composition")
    for index, essence in enumerate(timeline.essences):
        _check_essence(essence, f"essence[{index}]")
    for index, track in enumerate(timeline.tracks):
        _check_track(track, f"track[{index}]")
    for index, event in enumerate(timeline.events):
        _check_event(event, tracks, essences, f"event[{index}]")


def _require(holds: bool, code: str, place: str) -> None:
    if not holds:
        raise TimelineError(code, place)


def _identities(elements: Iterable[_Element], kind: str) -> Mapping[str, _Element]:
    """The elements by their identities, which must all be different."""
    seen: dict[str, _Element] = {}
    for index, element in enumerate(elements):
        place = f"{kind}[{index}]"
        _require(element.id != "", "empty-identity", place)
        _require(element.id not in seen, "duplicate-identity", place)
        seen[element.id] = element
    return seen


def _check_rate(rate: TimecodeRate, place: str) -> None:
    nominal = rate.nominal_frames_per_second
    _require(rate.exact_rate > 0 and 1 <= nominal <= LARGEST_NOMINAL_RATE, "invalid-timecode-rate", place)
    _require(not rate.drop_frame or nominal in (30, 60), "invalid-drop-frame-rate", place)


def _check_address(address: TimecodeAddress, place: str) -> None:
    _check_rate(address.rate, place)
    _require(
        0 <= address.hours < 24 and 0 <= address.minutes < 60 and 0 <= address.seconds < 60
        and 0 <= address.frames < address.rate.nominal_frames_per_second,
        "invalid-timecode-label", place)
    _require(not address.is_skipped, "skipped-drop-frame-label", place)


def _check_points(points: Iterable[AutomationPoint], place: str) -> None:
    before = Fraction(0)
    for point in points:
        _require(math.isfinite(point.value), "nonfinite-automation", place)
        _require(0 <= point.timeline_offset <= 1, "automation-time-outside-owner", place)
        _require(point.timeline_offset >= before, "unordered-automation", place)
        before = point.timeline_offset


def _check_envelope(envelope: Optional[AutomationEnvelope], place: str) -> None:
    if envelope is not None:
        _check_points(envelope.points, place)


def _check_fade(fade: Optional[Fade], place: str) -> None:
    if fade is not None:
        _require(fade.duration.numerator >= 0, "negative-fade-duration", place)
        _check_points(fade.points, place)


def _check_essence(essence: SourceEssence, place: str) -> None:
    _require(0 < essence.sample_rate <= LARGEST_SAMPLE_RATE, "invalid-sample-rate", place)
    _require(1 <= essence.channel_count <= LARGEST_CHANNEL_COUNT, "invalid-channel-count", place)
    _require(essence.bit_depth is None or essence.bit_depth > 0, "invalid-bit-depth", place)


def _check_track(track: TrackState, place: str) -> None:
    _require(
        math.isfinite(track.fixed_gain) and (track.fixed_pan is None or math.isfinite(track.fixed_pan)),
        "nonfinite-track-value", place)
    _check_envelope(track.gain_automation, place)
    _check_envelope(track.pan_automation, place)


def _check_event(event: ClipEvent, tracks: Mapping[str, TrackState], essences: Mapping[str, SourceEssence],
                 place: str) -> None:
    _require(event.track_id in tracks, "missing-track-reference", place)
    essence = essences.get(event.essence_id)
    if essence is None:
        raise TimelineError("missing-essence-reference", place)
    _require(event.duration.numerator >= 0 and event.source_start_sample >= 0, "negative-source-range", place)
    _require(
        event.source_channel is None or 0 <= event.source_channel < essence.channel_count,
        "invalid-source-channel", place)
    _require(math.isfinite(event.fixed_clip_gain), "nonfinite-clip-gain", place)
    _check_envelope(event.clip_gain_automation, place)
    _check_fade(event.fade_in, place)
    _check_fade(event.fade_out, place)
    _check_ends(event, essence.sample_rate, place)


def _check_ends(event: ClipEvent, rate: Fraction, place: str) -> None:
    """That 64 bits tell the last sample and, rounded outward to whole seconds, the end on the timeline. In integers,
    which take a fifth of the time that fractions take."""
    start, duration = event.timeline_start, event.duration
    samples = -(-duration.numerator * rate.numerator // (duration.denominator * rate.denominator))
    _require(event.source_start_sample + samples <= LARGEST, "source-range-overflow", place)
    numerator = start.numerator * duration.denominator + duration.numerator * start.denominator
    denominator = start.denominator * duration.denominator
    _require(
        numerator // denominator >= SMALLEST and -(-numerator // denominator) <= LARGEST, "timeline-end-overflow",
        place)
