# SPDX-License-Identifier: Apache-2.0
"""Reads OMF 2.x files into exact timelines, by a worker process for each file.

    import trellant

    timeline = trellant.Client().inspect("mix.omf").timeline
    for event in timeline.events:
        print(timeline.clock.address(event.timeline_start), event.clip_name)

Times and durations are seconds and rates are per second, as `fractions.Fraction`; gains are linear factors. A file from
a stranger can end the worker, never the host.
"""

from .client import DEFAULT_RESULT_LIMIT, Answer, Call, Client
from .decoding import decode_progress, decode_result, decode_timeline
from .errors import (
    CancellationError,
    HelperMissing,
    InvalidResponse,
    JsonDecodingError,
    LaunchCause,
    LaunchFailed,
    NonZeroExit,
    ResponseFault,
    TimeLimitError,
    TimelineError,
    TrellantError,
    WorkerClientError,
)
from .extensions import (
    Application,
    Composition,
    Compositions,
    Contents,
    Dates,
    EmbeddedMedia,
    ExtensionName,
    Extensions,
    LossKind,
    LossPlace,
    LossPlaces,
    MasterMob,
    MasterMobs,
    MediaLength,
    OlderModel,
    Provenance,
    Reel,
    ReelTimecode,
    Reels,
    SampleData,
    SamplePiece,
    Samples,
    SeparateFile,
)
from .file_urls import Url, path_of_file_url
from .messages import PROTOCOL_VERSION, Operation, Progress, Request, Result
from .timecode import ProgramClock, TimecodeAddress, TimecodeRate
from .timeline import (
    AutomationEnvelope,
    AutomationPoint,
    ChannelRole,
    ClipEvent,
    Curve,
    ExportTrackNameOrigin,
    Fade,
    FadeDirection,
    Interpolation,
    SemanticDecision,
    Severity,
    SourceEssence,
    StemRole,
    Timeline,
    TrackState,
    UnsupportedFeature,
)
from .validation import validate
from .worker import WORKER_NAME, WORKER_VARIABLE, find_worker, worker_places

__version__ = "0.2.0"

__all__ = [
    "DEFAULT_RESULT_LIMIT", "PROTOCOL_VERSION", "WORKER_NAME", "WORKER_VARIABLE", "Answer", "AutomationEnvelope",
    "AutomationPoint", "Call", "CancellationError", "ChannelRole", "Client", "ClipEvent", "Composition",
    "Compositions", "Contents", "Curve", "Dates", "EmbeddedMedia", "ExportTrackNameOrigin", "ExtensionName",
    "Extensions", "Fade", "FadeDirection", "HelperMissing", "Interpolation", "InvalidResponse", "JsonDecodingError",
    "LaunchCause", "LaunchFailed", "LossKind", "LossPlace", "LossPlaces", "MasterMob", "MasterMobs", "MediaLength",
    "NonZeroExit", "OlderModel", "Operation", "ProgramClock", "Progress", "Reel", "ReelTimecode", "Reels",
    "Request", "ResponseFault", "Result", "SemanticDecision", "SeparateFile", "Severity", "SourceEssence",
    "StemRole", "TimeLimitError", "TimecodeAddress", "TimecodeRate", "Timeline", "TimelineError", "TrackState",
    "TrellantError", "UnsupportedFeature", "Url", "WorkerClientError", "decode_progress", "decode_result",
    "decode_timeline", "find_worker", "path_of_file_url", "validate", "worker_places",
    "Application", "Provenance", "SampleData", "SamplePiece", "Samples",
]
