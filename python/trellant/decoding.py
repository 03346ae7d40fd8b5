# SPDX-License-Identifier: Apache-2.0
"""Records from JSON and to it, driven by the fields of the dataclasses.

A field's key is its name in the spelling of the protocol (`track_id`: "trackID"). Unknown keys are ignored; a required
key that is missing, a type that does not fit and a value outside its range are errors that name the key path. An
integer is any number text whose value is whole (1, 1.0, 1e0) and fits 64 bits. A missing or null optional field is
None.
"""

from __future__ import annotations

import collections.abc
import dataclasses
import enum
import functools
import math
import typing
from fractions import Fraction
from typing import Any, Callable, NoReturn, Optional, TypeVar, Union

from .errors import JsonDecodingError, ResponseFault
from .file_urls import Url
from .messages import Progress, Request, Result
from .parsing import NumberText, parsed, printable
from .timeline import Curve, Interpolation, Timeline
from .validation import validate

LARGEST = 2**63 - 1
SMALLEST = -(2**63)

#: What a key has in capitals where a name has plain letters.
_CAPITALS = {"aaf": "AAF", "id": "ID", "ids": "IDs", "sha256": "SHA256", "url": "URL"}

_FOUND = {
    type(None): "null", bool: "a boolean", int: "a number", NumberText: "a number", str: "a string", list: "an array",
    dict: "an object",
}

#: Called now and then; raises what is to end the decoding.
Check = Callable[[], None]
_Decode = Callable[[Any, Check], Any]
_Record = TypeVar("_Record")


def decode_timeline(text: bytes, *, checked: bool = True) -> Timeline:
    """The timeline that a JSON document is, such as `timeline.json` of `trellant extract`.

    Raises JsonDecodingError, and TimelineError for a timeline that breaks a rule (`trellant.validate`), unless
    `checked` is false.
    """
    timeline = _decoded(Timeline, text, _go_on)
    if checked:
        validate(timeline)
    return timeline


def decode_result(text: bytes, *, checked: bool = True, check: Optional[Check] = None) -> Result:
    """The result that a worker wrote. Raises what `decode_timeline` raises, and what `check` raises, which is called
    now and then: a text of many megabytes takes seconds."""
    check = check or _go_on
    result = _decoded(Result, text, check)
    if checked:
        check()
        validate(result.timeline)
    return result


def decode_progress(text: bytes) -> Progress:
    """The object of a progress line. Raises JsonDecodingError."""
    return _decoded(Progress, text, _go_on)


def request_object(request: Request) -> dict[str, Any]:
    """The request as `json.dumps` takes it, keys in the documented order."""
    members: dict[str, Any] = {"protocolVersion": request.protocol_version}
    for field in dataclasses.fields(request):
        value = getattr(request, field.name)
        if value is not None:
            members[key_of(field.name)] = value.value if isinstance(value, enum.Enum) else value
    return members


def key_of(name: str) -> str:
    """The key of a field: "trackID" of track_id."""
    first, *others = name.split("_")
    return first + "".join(_CAPITALS.get(word, word.capitalize()) for word in others)


def is_required(field: dataclasses.Field[Any]) -> bool:
    """Whether a key must be there."""
    return field.default is dataclasses.MISSING


def _go_on() -> None:
    """No wish to end the decoding."""


def _decoded(record: type[_Record], text: bytes, check: Check) -> _Record:
    kind: Any = record
    try:
        decoded: _Record = _decoder_of(kind)(parsed(text), check)
        return decoded
    except _Misfit as misfit:
        raise JsonDecodingError(misfit.reason, misfit.kind, misfit.key_path()) from None


class _Misfit(Exception):
    """A value that does not fit its place; where that is becomes known on the way out."""

    def __init__(self, reason: str, kind: ResponseFault) -> None:
        super().__init__(reason)
        self.reason = reason
        self.kind = kind
        self.steps: list[Union[str, int]] = []

    def key_path(self) -> str:
        path = ""
        for step in reversed(self.steps):
            if isinstance(step, int):
                path += f"[{step}]"
            else:
                path += ("." if path else "") + printable(step)
        return path


def _mismatch(expected: str, value: Any) -> NoReturn:
    raise _Misfit(f"expected {expected}, found {_FOUND[type(value)]}", ResponseFault.WRONG_TYPE)


def _corrupt(reason: str) -> NoReturn:
    raise _Misfit(reason, ResponseFault.CORRUPT)


def _missing(key: str) -> NoReturn:
    misfit = _Misfit("missing key", ResponseFault.MISSING_KEY)
    misfit.steps.append(key)
    raise misfit


def _boolean(value: Any, _: Check) -> bool:
    if type(value) is bool:
        return value
    _mismatch("a boolean", value)


def _integer(value: Any, _: Check) -> int:
    if type(value) is int and SMALLEST <= value <= LARGEST:
        return value
    if type(value) is NumberText:
        value = _whole(value)
    if type(value) is not int:
        _mismatch("an integer", value)
    if not SMALLEST <= value <= LARGEST:
        _corrupt("the number is out of range")
    return value


def _whole(text: NumberText) -> int:
    """Exact: digits are never rounded on their way to an integer."""
    digits, _, exponent = text.lower().partition("e")
    if not digits.strip("-0."):
        return 0
    # Beyond any length of text.
    if len(exponent.lstrip("+-0")) > 18:
        _corrupt("the number is not whole" if exponent.startswith("-") else "the number is out of range")
    head, _, tail = digits.partition(".")
    significant = (head + tail).rstrip("0")
    zeros = int(exponent or "0") + len(head) - len(significant)
    magnitude = significant.lstrip("-0")
    if zeros < 0:
        _corrupt("the number is not whole")
    if len(magnitude) + zeros > 19:
        _corrupt("the number is out of range")
    whole = int(magnitude + "0" * zeros)
    return -whole if digits.startswith("-") else whole


def _number(value: Any, _: Check) -> float:
    if type(value) is not int and type(value) is not NumberText:
        _mismatch("a number", value)
    try:
        number = float(value)
    except OverflowError:
        number = math.inf
    # What is too small for a double is zero; only what is too large is refused.
    if math.isinf(number):
        _corrupt("the number is out of range")
    return number


def _text(value: Any, _: Check) -> str:
    if type(value) is str:
        return value
    _mismatch("a string", value)


def _url(value: Any, _: Check) -> Url:
    if type(value) is not str:
        _mismatch("a URL", value)
    if not value:
        _corrupt("the URL is empty")
    return Url(value)


def _object(value: Any) -> dict[str, Any]:
    if type(value) is not dict:
        _mismatch("an object", value)
    members: dict[str, Any] = value
    return members


def _member(members: dict[str, Any], key: str, decode: _Decode, check: Check) -> Any:
    if key not in members:
        _missing(key)
    try:
        return decode(members[key], check)
    except _Misfit as misfit:
        misfit.steps.append(key)
        raise


_PARTS = ("numerator", "denominator")
#: Values that come again and again, rates and lengths of frames for two, are made once.
_made_fraction = functools.lru_cache(maxsize=4_096)(Fraction)


def _fraction(value: Any, check: Check) -> Fraction:
    members = _object(value)
    # In the order of the text, so that of two faults the first is named.
    parts = {key: _member(members, key, _integer, check) for key in members if key in _PARTS}
    for key in _PARTS:
        if key not in parts:
            _missing(key)
    if parts["denominator"] == 0:
        misfit = _Misfit("the denominator is zero", ResponseFault.CORRUPT)
        misfit.steps.append("denominator")
        raise misfit
    return _made_fraction(parts["numerator"], parts["denominator"])


def _empty_case(value: Any, _: Check) -> None:
    _object(value)


def _identifier(value: Any, check: Check) -> Any:
    return _member(_object(value), "identifier", _text, check)


def _interpolation(value: Any, check: Check) -> Interpolation:
    members = _object(value)
    if len(members) != 1:
        raise _Misfit("Invalid number of keys found, expected one.", ResponseFault.WRONG_TYPE)
    (key,) = members
    try:
        curve = Curve(key)
    except ValueError:
        _corrupt("the key is none of the known cases")
    return Interpolation(curve, _member(
        members, key, _identifier if curve is Curve.UNSUPPORTED else _empty_case, check))


def _named(kind: type[enum.Enum]) -> _Decode:
    cases = {case.value: case for case in kind}

    def decode(value: Any, _: Check) -> enum.Enum:
        if type(value) is not str:
            _mismatch("a string", value)
        if value not in cases:
            _corrupt(f'unknown value "{printable(value)}"')
        return cases[value]

    return decode


def _array(element: _Decode) -> _Decode:
    def decode(value: Any, check: Check) -> tuple[Any, ...]:
        if type(value) is not list:
            _mismatch("an array", value)
        decoded: list[Any] = []
        try:
            for item in value:
                check()
                decoded.append(element(item, check))
        except _Misfit as misfit:
            misfit.steps.append(len(decoded))
            raise
        return tuple(decoded)

    return decode


def _map(value_of: _Decode) -> _Decode:
    def decode(value: Any, check: Check) -> dict[str, Any]:
        members = _object(value)
        return {key: _member(members, key, value_of, check) for key in members}

    return decode


def _optional(inner: _Decode) -> _Decode:
    def decode(value: Any, check: Check) -> Any:
        return None if value is None else inner(value, check)

    return decode


def _record(kind: type[Any]) -> _Decode:
    hints = typing.get_type_hints(kind)
    fields = dataclasses.fields(kind)
    defaults = {field.name: field.default for field in fields if not is_required(field)}
    required = {key_of(field.name): None for field in fields if is_required(field)}
    decoders = {key_of(field.name): (field.name, _decoder_of(hints[field.name])) for field in fields}

    def decode(value: Any, check: Check) -> Any:
        members = _object(value)
        attributes = dict(defaults)
        key = ""
        try:
            for key, item in members.items():
                if key in decoders:
                    name, decode_field = decoders[key]
                    attributes[name] = decode_field(item, check)
        except _Misfit as misfit:
            misfit.steps.append(key)
            raise
        if not required.keys() <= members.keys():
            _missing(next(key for key in required if key not in members))
        # As the dataclass would make it, in a third of the time that frozen ones take.
        record = object.__new__(kind)
        record.__dict__.update(attributes)
        return record

    return decode


_SCALARS: dict[Any, _Decode] = {
    bool: _boolean, int: _integer, float: _number, str: _text, Url: _url, Fraction: _fraction,
    Interpolation: _interpolation,
}


@functools.lru_cache(maxsize=None)
def _decoder_of(kind: Any) -> _Decode:
    """The decoder of a type that a field of a record has."""
    if kind in _SCALARS:
        return _SCALARS[kind]
    origin, parts = typing.get_origin(kind), typing.get_args(kind)
    if origin is Union:
        return _optional(_decoder_of(parts[0]))
    if origin is tuple:
        return _array(_decoder_of(parts[0]))
    if origin is collections.abc.Mapping:
        return _map(_decoder_of(parts[1]))
    if issubclass(kind, enum.Enum):
        return _named(kind)
    return _record(kind)
