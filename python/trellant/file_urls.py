# SPDX-License-Identifier: Apache-2.0
"""File locations as URL text."""

from __future__ import annotations

import os
import re
from typing import NewType, Optional
from urllib.parse import unquote_to_bytes

#: A URL, kept as its text; never empty in an answer.
Url = NewType("Url", str)

_FILE_URL = re.compile(r"file:(?://(?:localhost)?(?=/)|(?!//))(/[^?#]*)", re.IGNORECASE | re.ASCII)
_BROKEN_ESCAPE = re.compile(r"%(?![0-9A-Fa-f]{2})")


def path_of_file_url(url: str) -> Optional[str]:
    """The path that a file URL names: scheme "file" in any case, host empty or "localhost", the path absolute and
    percent-decoded, query and fragment cut off. Bytes that are no UTF-8 come as `os.fsdecode` gives them.

    None for any other text, a broken percent escape or a NUL.
    """
    match = _FILE_URL.match(url)
    if match is None or _BROKEN_ESCAPE.search(match[1]):
        return None
    path = unquote_to_bytes(match[1].encode("utf-8", "surrogateescape"))
    return None if b"\0" in path else os.fsdecode(path)
