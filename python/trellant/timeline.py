# SPDX-License-Identifier: Apache-2.0
"""The timeline records: what one composition became.

Times and durations are seconds, rates are per second, gains are linear factors (1 leaves the level
unchanged), pans run from 0 (left) to 1 (right). Times, durations and rates are exact fractions. Records are
values: they do not change, and any number of threads may read them. What is not known is None.
"""

from __future__ import annotations

import enum
from dataclasses import dataclass
from fractions import Fraction
from typing import Optional

from .file_urls import Url, path_of_file_url
from .timecode import ProgramClock, TimecodeAddress


class StemRole(enum.Enum):
    """What a track or clip is in a mix."""

    MUSIC = "music"
    SOUNDS = "sounds"
    VOICE = "voice"
    OTHER = "other"
    UNCLASSIFIED = "unclassified"


class ChannelRole(enum.Enum):
    """The speaker that a clip's channel is meant for."""

    MONO = "mono"
    LEFT = "left"
    RIGHT = "right"
    CENTER = "center"
    LFE = "lfe"
    LEFT_SURROUND = "leftSurround"
    RIGHT_SURROUND = "rightSurround"
    UNKNOWN = "unknown"


class Curve(enum.Enum):
    """How a value moves between two points."""

    #: In a straight line.
    LINEAR = "linear"
    #: Held until the next point.
    CONSTANT = "constant"
    #: With equal power.
    POWER = "power"
    LOGARITHMIC = "logarithmic"
    #: A curve that the interchange file names and this model does not know.
    UNSUPPORTED = "unsupported"


@dataclass(frozen=True)
class Interpolation:
    """How a value moves between automation points or along a fade."""

    curve: Curve
    #: What the interchange file calls a curve that is not supported; None for every other curve.
    identifier: Optional[str] = None


@dataclass(frozen=True)
class AutomationPoint:
    """One value at one place."""

    #: Position within the owner (track, clip or fade): 0 its start, 1 its end. Never seconds.
    timeline_offset: Fraction
    #: A gain as a linear factor or a pan from 0 (left) to 1 (right), as the owner says.
    value: float


@dataclass(frozen=True)
class AutomationEnvelope:
    """Values over the length of a track, a clip or a fade."""

    interpolation: Interpolation
    #: In time order; equal positions are a step.
    points: tuple[AutomationPoint, ...]


class FadeDirection(enum.Enum):
    """Which way a fade goes."""

    FADE_IN = "fadeIn"
    FADE_OUT = "fadeOut"
    CROSSFADE = "crossfade"


@dataclass(frozen=True)
class Fade:
    """A fade at the start or the end of a clip."""

    direction: FadeDirection
    #: Seconds.
    duration: Fraction
    curve: Interpolation
    #: The fade's shape; empty when the curve says it all.
    points: tuple[AutomationPoint, ...]
    #: The time of the points runs in reverse.
    reverses_point_time: Optional[bool] = None


@dataclass(frozen=True)
class SourceEssence:
    """One piece of audio media that events play."""

    id: str
    #: The media was carried inside the interchange file.
    embedded: bool
    #: Samples per second.
    sample_rate: Fraction
    channel_count: int
    #: The identifier of the source in the interchange file.
    mob_id: Optional[str] = None
    source_name: Optional[str] = None
    #: The audio file, extracted or located, as a URL; None when there is none.
    file_url: Optional[Url] = None
    #: Bits per sample.
    bit_depth: Optional[int] = None
    #: As the media's header calls it ("PCM", "NONE", "sowt"), else the class of its descriptor.
    codec: Optional[str] = None
    #: The path that the interchange file recorded for external media, as recorded.
    original_path: Optional[str] = None

    @property
    def path(self) -> Optional[str]:
        """Where the audio file lies; None when there is none, or none on this machine."""
        return None if self.file_url is None else path_of_file_url(self.file_url)


@dataclass(frozen=True)
class TrackState:
    """One track: mono, its settings for the whole timeline."""

    id: str
    #: Slot of the composition, from 0.
    index: int
    #: Linear factor of the whole track.
    fixed_gain: float
    muted: bool
    solo: bool
    name: Optional[str] = None
    gain_automation: Optional[AutomationEnvelope] = None
    #: 0 left, 0.5 centre, 1 right.
    fixed_pan: Optional[float] = None
    pan_automation: Optional[AutomationEnvelope] = None


@dataclass(frozen=True)
class SemanticDecision:
    """Which stem something was judged to belong to, and why; hosts fill it."""

    role: StemRole
    confidence: float
    reason: str


@dataclass(frozen=True)
class ExportTrackNameOrigin:
    """Where the name of an exported track comes from; hosts fill it."""

    schema_version: int
    original_name: str
    exported_name: str
    role: StemRole


@dataclass(frozen=True)
class ClipEvent:
    """One placement of an essence on a track."""

    id: str
    #: The `id` of a track.
    track_id: str
    #: The `id` of an essence.
    essence_id: str
    #: Seconds from the timeline's zero.
    timeline_start: Fraction
    #: Seconds.
    duration: Fraction
    #: First sample of the essence that is played; the clip covers ceil(duration * sample_rate) samples.
    source_start_sample: int
    channel_role: ChannelRole
    #: Linear factor.
    fixed_clip_gain: float
    clip_muted: bool
    clip_name: Optional[str] = None
    #: Channel of a multichannel essence, from 0; None plays all of it.
    source_channel: Optional[int] = None
    clip_gain_automation: Optional[AutomationEnvelope] = None
    fade_in: Optional[Fade] = None
    fade_out: Optional[Fade] = None
    semantic_decision: Optional[SemanticDecision] = None
    export_source_event_ids: Optional[tuple[str, ...]] = None
    export_track_name_origin: Optional[ExportTrackNameOrigin] = None

    @property
    def timeline_end(self) -> Fraction:
        """Seconds from the timeline's zero."""
        return self.timeline_start + self.duration


class Severity(enum.Enum):
    """What a loss does to the sound."""

    #: Material was dropped.
    INFORMATIONAL = "informational"
    #: Material was kept, but does not sound as the source intends.
    RENDER_AFFECTING = "renderAffecting"


@dataclass(frozen=True)
class UnsupportedFeature:
    """A loss: one thing of the interchange file that was dropped or is not rendered as it was meant."""

    id: str
    severity: Severity
    #: For people.
    description: str
    #: Where in the interchange file: "CMOB[12]/slot[34]/SEQU[56]".
    object_path: Optional[str] = None


@dataclass(frozen=True)
class Timeline:
    """One composition."""

    #: The interchange file that was read, as a file URL.
    source_aaf: Url
    clock: ProgramClock
    essences: tuple[SourceEssence, ...]
    tracks: tuple[TrackState, ...]
    #: The clips, track by track.
    events: tuple[ClipEvent, ...]
    #: All that was not carried over.
    unsupported_features: tuple[UnsupportedFeature, ...]
    #: The start timecode that the composition states.
    explicit_program_start: Optional[TimecodeAddress] = None
    composition_name: Optional[str] = None
    source_application: Optional[str] = None
    #: Seconds.
    composition_length: Optional[Fraction] = None
    #: The composition states a timecode; where it does not, the clock is 25 frames per second from 00:00:00:00.
    has_native_timecode: Optional[bool] = None

    def audible_events(self) -> list[ClipEvent]:
        """The events that mute and solo let be heard, in their order; gains and fades have no say."""
        any_solo = any(track.solo for track in self.tracks)
        heard = {track.id for track in self.tracks if not track.muted and (track.solo or not any_solo)}
        return [event for event in self.events if event.track_id in heard and not event.clip_muted]

    def first_audible_event_start(self) -> Optional[Fraction]:
        """The earliest start (seconds) of an audible event; None when nothing is audible."""
        return min((event.timeline_start for event in self.audible_events()), default=None)

    def bounce_start(self) -> Optional[TimecodeAddress]:
        """The timecode at which a render of the mix starts: the explicit start when the first audible event
        does not lie before it or nothing is audible, else the start of that event's timecode minute."""
        first = self.first_audible_event_start()
        if first is None:
            return self.explicit_program_start
        return self.clock.bounce_start(first, self.explicit_program_start)
