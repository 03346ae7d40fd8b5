# SPDX-License-Identifier: Apache-2.0
"""The contract between a host and a worker process: the host writes one request to the worker's standard input and
closes it; the worker writes progress to standard error and, when all went well, one result to standard output."""

from __future__ import annotations

import enum
from dataclasses import dataclass
from typing import Mapping, Optional

from .extensions import Extensions
from .timeline import Timeline

#: Both sides compare it for equality; there is no negotiation.
PROTOCOL_VERSION = 1


class Operation(enum.Enum):
    """What a worker is asked for."""

    #: Read and map; nothing is written.
    INSPECT = "inspect"
    #: Create the work directory, read and map, take embedded audio out into it.
    EXTRACT_AND_INSPECT = "extractAndInspect"
    #: As INSPECT.
    VERIFY_EXPORT = "verifyExport"


@dataclass(frozen=True)
class Request:
    """Host to worker. Relative paths are taken against the current directory at the start of the worker."""

    operation: Operation
    #: The interchange file.
    aaf_path: str
    #: Where embedded audio goes; the operations that write nothing leave it alone.
    work_directory: str
    #: Where external media are looked for by name, folders within too. The empty text is a path.
    media_search_directory: Optional[str] = None
    #: Options of the host that travel with the request; the worker does not act on them.
    recover_pro_tools_true_fades: bool = False
    remove_pro_tools_sample_accurate_edit_fragments: bool = False
    #: What the answer is to hold beside the timeline: `ExtensionName` and its values. None: nothing.
    extensions: Optional[tuple[str, ...]] = None
    #: Bytes of memory that the worker may take at most; one that needs more fails. None: as much as there is.
    memory_limit: Optional[int] = None
    protocol_version: int = PROTOCOL_VERSION


@dataclass(frozen=True)
class Progress:
    """Worker to host, while it works."""

    #: "opening", "reconstructing", "resolving", "finishing" or "done"; show another one as it is.
    phase: str
    #: From 0 to 1.
    fraction: float
    detail: Optional[str] = None


@dataclass(frozen=True)
class Result:
    """Worker to host, once, when all went well."""

    protocol_version: int
    timeline: Timeline
    #: Remarks of the mapping for people, in the order made.
    diagnostics: tuple[str, ...]
    #: A digest for each extracted file; the worker leaves it out.
    embedded_media_sha256: Optional[Mapping[str, str]] = None
    #: There exactly when the request named extensions.
    extensions: Optional[Extensions] = None
