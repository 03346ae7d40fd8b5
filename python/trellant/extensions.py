# SPDX-License-Identifier: Apache-2.0
"""What a worker adds to its answer when a request asks for it by name.

Without such a wish nothing of this is written. A worker that does not know a name passes it over, so what was
asked for may be None.
"""

from __future__ import annotations

import enum
from dataclasses import dataclass
from fractions import Fraction
from typing import Optional


class ExtensionName(str, enum.Enum):
    """The names by which a request asks."""

    LOSS_PLACES = "lossPlaces"
    COMPOSITIONS = "compositions"
    EMBEDDED_MEDIA = "embeddedMedia"
    DATES = "dates"
    REELS = "reels"
    CONTENTS = "contents"
    MASTER_MOBS = "masterMobs"
    PROVENANCE = "provenance"
    SAMPLE_DATA = "sampleData"
    #: Without this one a file of OMF 1.x is refused.
    OMF1 = "omf1"


class LossKind(enum.Enum):
    """What was lost, for programs that say it in their own words."""

    TRACK_WITHOUT_EDIT_RATE = "trackWithoutEditRate"
    TRACK_WITHOUT_AUDIO = "trackWithoutAudio"
    CLIP_WITHOUT_SOURCE = "clipWithoutSource"
    CLIP_SOURCE_MISSING = "clipSourceMissing"
    CLIP_SOURCE_TRACK_MISSING = "clipSourceTrackMissing"
    CLIP_MEDIA_UNDESCRIBED = "clipMediaUndescribed"
    CLIP_UNRESOLVED = "clipUnresolved"
    SOURCE_CYCLE = "sourceCycle"
    SOURCE_DEAD_END = "sourceDeadEnd"
    ESSENCE_NOT_EXTRACTED = "essenceNotExtracted"
    NESTING_TOO_DEEP = "nestingTooDeep"
    OPERATION_NOT_RENDERED = "operationNotRendered"
    UNKNOWN_COMPONENT = "unknownComponent"
    SELECTOR_WITHOUT_SELECTION = "selectorWithoutSelection"
    EMPTY_NESTED_SCOPE = "emptyNestedScope"
    SCOPE_REFERENCE_BROKEN = "scopeReferenceBroken"
    EFFECT_NOT_RENDERED = "effectNotRendered"
    EFFECT_UNNAMED = "effectUnnamed"
    EFFECT_WITHOUT_INPUT = "effectWithoutInput"
    TRANSITION_AS_CUT = "transitionAsCut"
    NESTED_TRIM_NOT_APPLIED = "nestedTrimNotApplied"
    NESTED_DISSOLVE = "nestedDissolve"
    FADE_CONFLICT = "fadeConflict"
    UNKNOWN_FADE_CURVE = "unknownFadeCurve"
    EFFECT_CONTROL_UNREADABLE = "effectControlUnreadable"
    PAN_AUTOMATION = "panAutomation"
    PAN_DIFFERS = "panDiffers"
    NESTED_GAIN_AUTOMATION = "nestedGainAutomation"
    UNKNOWN_AUTOMATION_CURVE = "unknownAutomationCurve"
    EFFECT_NOT_APPLIED = "effectNotApplied"
    OLDER_MODEL_UNKNOWN = "olderModelUnknown"
    OTHER = "other"


@dataclass(frozen=True)
class LossPlace:
    """Where on the timeline a loss lies."""

    kind: LossKind
    #: The id that the track has or would have; None for what belongs to no track.
    track_id: Optional[str] = None
    track_name: Optional[str] = None
    #: Among the composition's slots, from 0.
    track_index: Optional[int] = None
    #: The stretch that does not sound as meant: seconds from the timeline's zero.
    start: Optional[Fraction] = None
    #: Seconds.
    duration: Optional[Fraction] = None
    #: Of a transition that became a cut: where the cut lies, in seconds.
    cut: Optional[Fraction] = None
    #: Object number of the clip concerned.
    clip_object: Optional[int] = None
    clip_name: Optional[str] = None


@dataclass(frozen=True)
class LossPlaces:
    """One place for each of the timeline's `unsupported_features`, in their order."""

    places: tuple[LossPlace, ...]


@dataclass(frozen=True)
class Composition:
    """A composition of the file."""

    #: Its object number.
    object: int
    #: Slots of all kinds, not only audio.
    slot_count: int
    #: The one that the timeline was made of.
    is_read: bool
    name: Optional[str] = None
    #: "0000002A-00000001-FFFFFFFF".
    mob_id: Optional[str] = None


@dataclass(frozen=True)
class Compositions:
    """All compositions of the file, the one that is read first."""

    compositions: tuple[Composition, ...]


@dataclass(frozen=True)
class SeparateFile:
    """A source that shared its file with others and was taken out once more, into one of its own."""

    essence_id: str
    #: In the work directory; None when it could not be taken out.
    path: Optional[str] = None


@dataclass(frozen=True)
class EmbeddedMedia:
    """Audio inside the file that the timeline alone does not account for."""

    #: Pieces of audio that no source of the timeline is, and the names of the first few.
    unused_count: int
    unused_names: tuple[str, ...]
    separate_files: tuple[SeparateFile, ...]


@dataclass(frozen=True)
class Dates:
    """When what happened to the file, as it says itself."""

    #: Seconds since 1970-01-01 00:00:00, of a zone that the file does not tell reliably.
    last_modified: Optional[int] = None


@dataclass(frozen=True)
class ReelTimecode:
    """Labels of a reel."""

    #: The label of the reel's zero, in frames from 00:00:00:00.
    start: int
    #: Frames that labels count in a second.
    frames_per_second: int
    drop_frame: bool
    #: Of the track that has the labels, in edit units per second: the true rate of the frames, the rounded one, or that
    #: of something else.
    edit_rate: Optional[Fraction] = None


@dataclass(frozen=True)
class Reel:
    """The tape or film that a source was recorded from."""

    essence_id: str
    mob_id: str
    #: Where the source's first sample lies, in seconds from the reel's zero.
    start: Fraction
    name: Optional[str] = None
    timecode: Optional[ReelTimecode] = None


@dataclass(frozen=True)
class Reels:
    """Of the sources that the file names a reel for, in their order."""

    reels: tuple[Reel, ...]


@dataclass(frozen=True)
class MediaLength:
    """How much audio an embedded essence holds."""

    essence_id: str
    #: Samples of one channel, as the audio's own header tells.
    frames: int


@dataclass(frozen=True)
class Contents:
    """What the file holds that the timeline does not say."""

    #: Of the embedded sources whose header tells, in their order.
    media_lengths: tuple[MediaLength, ...]
    #: Pieces of embedded audio that no source of the timeline is, the names of the first five, and their bytes.
    unused_media: int
    unused_names: tuple[str, ...]
    unused_bytes: int
    #: Effects whose rendered result is played in their place.
    rendered_effects: int
    #: Groups of tracks within a track.
    nested_groups: int


@dataclass(frozen=True)
class MasterMob:
    """What a file's audio is in the edit, under the name that editors know."""

    mob_id: str
    name: Optional[str] = None


@dataclass(frozen=True)
class MasterMobs:
    """Those that clips play."""

    master_mobs: tuple[MasterMob, ...]
    #: For each of the timeline's events, in their order: the place in `master_mobs`, from 0, of the one that it plays;
    #: -1 where it plays none.
    of_events: tuple[int, ...]


@dataclass(frozen=True)
class Application:
    """A program that had its hand in the file."""

    company: Optional[str] = None
    product: Optional[str] = None
    version: Optional[str] = None


@dataclass(frozen=True)
class Provenance:
    """Where the file comes from, as it says itself, and what reading it took."""

    #: Of the container, such as "2.0".
    container_version: str
    #: Values stand with their most significant byte first.
    big_endian: bool
    #: The programs that saved the file, the last one last.
    applications: tuple[Application, ...]
    #: Of the object model, such as "2.0".
    model_version: Optional[str] = None
    #: The most memory that the worker had at once by then, in bytes.
    peak_memory: Optional[int] = None


@dataclass(frozen=True)
class SamplePiece:
    """A stretch of the file, in bytes."""

    offset: int
    length: int


@dataclass(frozen=True)
class Samples:
    """Where the samples of an embedded source lie in the file, without the chunks of its audio file."""

    essence_id: str
    #: Bytes of one sample of one channel; 1 where they are compressed.
    sample_bytes: int
    #: Samples stand with their most significant byte first; those of one byte are signed.
    big_endian: bool
    #: In the order of the sound.
    pieces: tuple[SamplePiece, ...]


@dataclass(frozen=True)
class SampleData:
    """Of the embedded sources whose samples can be found from the head of their audio, in their order."""

    samples: tuple[Samples, ...]


@dataclass(frozen=True)
class OlderModel:
    """The file is OMF 1.x, read as far as its structure is known."""

    #: "1.0", or "1.x" where the file does not say.
    version: str


@dataclass(frozen=True)
class Extensions:
    """Those that were asked for and that the worker could serve."""

    loss_places: Optional[LossPlaces] = None
    #: None also where their names and lists are beyond the bounds of a request.
    compositions: Optional[Compositions] = None
    embedded_media: Optional[EmbeddedMedia] = None
    dates: Optional[Dates] = None
    #: None also where lists and names are beyond the bounds of a request.
    reels: Optional[Reels] = None
    contents: Optional[Contents] = None
    #: None also where its names are beyond the bounds of a request.
    master_mobs: Optional[MasterMobs] = None
    provenance: Optional[Provenance] = None
    sample_data: Optional[SampleData] = None
    #: None for OMF 2.
    omf1: Optional[OlderModel] = None
