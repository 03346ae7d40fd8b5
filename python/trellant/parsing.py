# SPDX-License-Identifier: Apache-2.0
"""JSON text to plain values: strict RFC 8259 in UTF-8, a byte-order mark skipped.

The text may come from a worker that a hostile file has taken over. So what Python's own reader leaves open is closed
here: keys that stand twice in an object, NaN and infinities, halves of surrogate pairs, whole numbers of a million
digits, and nesting as deep as the host's recursion limit or, where that was raised, as its stack.
"""

from __future__ import annotations

import json
import re
from typing import Any, NoReturn

from .errors import JsonDecodingError

#: Arrays and objects within one another; an answer has at most 8.
DEEPEST = 64

_BYTE_ORDER_MARK = b"\xef\xbb\xbf"
_ALL_BUT_MARKS = bytes(sorted(set(range(256)) - set(b'"[]{}')))
_QUOTED = re.compile(rb'"[^"]*"')
#: More than any number of the protocol has, fewer than take Python long.
_LONG_NUMBER = re.compile(rb"[0-9]{40}")
_SURROGATE_ESCAPE = re.compile(rb"\\u[dD][89a-fA-F]")


class NumberText(str):
    """A number as it stands in the text, where a plain int cannot hold it: it has a fraction or an exponent, or very
    many digits."""


def parsed(text: bytes) -> Any:
    """The value of `text`: dict, list, str, int, NumberText, bool or None. Raises JsonDecodingError."""
    if text.startswith(_BYTE_ORDER_MARK):
        text = text[len(_BYTE_ORDER_MARK):]
    try:
        decoded = text.decode("utf-8")
    except UnicodeDecodeError as error:
        raise JsonDecodingError(f"syntax error at byte {error.start + 1}: not UTF-8") from None
    if not _nests_within_bounds(text):
        raise JsonDecodingError(f"arrays and objects nest more than {DEEPEST} deep")
    try:
        value = json.loads(
            decoded, object_pairs_hook=_members, parse_constant=_refuse_constant, parse_float=NumberText,
            parse_int=NumberText if _LONG_NUMBER.search(text) else int)
    except json.JSONDecodeError as error:
        raise JsonDecodingError(
            f"syntax error at line {error.lineno}, column {error.colno}: {error.msg}") from None
    if _SURROGATE_ESCAPE.search(text):
        _refuse_halves_of_pairs(value)
    return value


def printable(text: str) -> str:
    """`text` for a message of one line: control characters escaped, a long text cut."""
    shown = text[:200] + ("..." if len(text) > 200 else "")
    return "".join(character if character.isprintable() else f"\\u{ord(character):04x}" for character in shown)


def _nests_within_bounds(text: bytes) -> bool:
    """Found without recursion, in time linear in the text: of its brackets outside of strings, the innermost pairs are
    taken away again and again."""
    # Quotes that follow one another can go in pairs: what stands behind them is in a string as it was before.
    marks = text.replace(b"\\\\", b"").replace(b'\\"', b"").translate(None, _ALL_BUT_MARKS).replace(b'""', b"")
    marks = _QUOTED.sub(b"", marks)
    for _ in range(DEEPEST):
        marks = _without_innermost(marks)
    # What is left when nothing pairs any more is a fault for the reader to explain, while it is short.
    return len(marks) <= DEEPEST and _without_innermost(marks) == marks


def _without_innermost(marks: bytes) -> bytes:
    """Brackets without the pairs that hold nothing."""
    return marks.replace(b"[]", b".").replace(b"{}", b".").replace(b".", b"")


def _members(pairs: list[tuple[str, Any]]) -> dict[str, Any]:
    members = dict(pairs)
    if len(members) != len(pairs):
        seen = set()
        for key, _ in pairs:
            if key in seen:
                raise JsonDecodingError(f'the key "{printable(key)}" stands twice in one object')
            seen.add(key)
    return members


def _refuse_constant(text: str) -> NoReturn:
    raise JsonDecodingError(f"{text} is no number of JSON")


def _refuse_halves_of_pairs(value: Any) -> None:
    try:
        json.dumps(value, ensure_ascii=False).encode("utf-8")
    except UnicodeEncodeError:
        raise JsonDecodingError("a string holds half of a surrogate pair") from None
