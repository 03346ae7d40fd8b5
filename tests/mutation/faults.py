# SPDX-License-Identifier: Apache-2.0
"""Which small faults can be planted in a C++ source, found in its text alone.

Sources are formatted by clang-format: a binary operator has blanks around it, a template bracket,
a pointer and a reference have not. That is enough to tell them apart."""
import re
from dataclasses import dataclass

OPERATORS = {
    "comparison": {"<": "<=", "<=": "<", ">": ">=", ">=": ">", "==": "!=", "!=": "=="},
    "logic": {"&&": "||", "||": "&&"},
    "arithmetic": {"+": "-", "-": "+", "*": "+", "/": "*", "%": "/", "+=": "-=", "-=": "+=",
                   "*=": "+="},
    "bits": {"&": "|", "|": "&", "^": "&", "<<": ">>", ">>": "<<", "|=": "&=", "&=": "|="},
}
WORDS = {"true": "false", "false": "true", "std::min": "std::max", "std::max": "std::min"}

TOKENS = re.compile(r"""
    (?P<comment>//[^\n]*|/\*.*?\*/)
  | (?P<raw>R"(?P<mark>[^(\s]*)\(.*?\)(?P=mark)")
  | (?P<string>"(?:\\.|[^"\\\n])*")
  | (?P<separator>(?<=[0-9a-fA-F])'(?=[0-9a-fA-F]))
  | (?P<character>'(?:\\.|[^'\\\n])+')
  | (?P<directive>^[ \t]*\#(?:\\\n|[^\n])*)
  | (?P<checked>\bstatic_assert\((?:[^;])*;)
  | (?P<attribute>\[\[.*?\]\])
""", re.VERBOSE | re.DOTALL | re.MULTILINE)

CONDITIONAL = re.compile(r"[ \t]*#[ \t]*(?P<word>if|ifdef|ifndef|elif|else|endif)\b")
NUMBER = re.compile(r"(?<![\w.'])(?P<digits>0[xX][0-9a-fA-F']+|[0-9][0-9']*)(?P<suffix>[uUlL]*)"
                    r"(?![\w.'])")
CALL = re.compile(r"(?<=\()(?P<first>[\w.:*>\[\]-]+), (?P<second>[\w.:*>\[\]-]+)(?=\))")
CONDITION = re.compile(r"\bif \(")
STATEMENT = re.compile(r"""(?<=[{};:])\s*\n\s*(?P<statement>
    (?:break|continue|throw\b[^;{}]*|return)
  | (?:\+\+|--|\*)?[A-Za-z_][\w.:]*(?:(?:\(|\[|->|\+\+|--|\ [-+*/|&^]?=\ )[^;{}]*)?
    );""", re.VERBOSE)
KEYWORDS = {"using", "public", "private", "protected", "default", "case", "else", "goto"}


@dataclass(frozen=True)
class Fault:
    """Characters `start` to `end` of a text become `replacement`."""
    kind: str
    start: int
    end: int
    replacement: str

    def planted_in(self, text):
        return text[:self.start] + self.replacement + text[self.end:]

    def line_in(self, text):
        """Counted from 1."""
        return text.count("\n", 0, self.start) + 1

    def description(self, text):
        """The change for people, on one line."""
        before = " ".join(text[self.start:self.end].split())
        after = " ".join(self.replacement.split()) or "nothing"
        return f"{self.kind}: {before} becomes {after}"


def blanks_for(text):
    return re.sub(r"[^\n]", " ", text)


def of_this_system(text):
    """`text` with blanks in the place of what is compiled on other systems than Linux with glibc:
    the branch of __APPLE__ or of a missing macro, and the other branch of any other macro."""
    lines = text.splitlines(keepends=True)
    compiled = []
    for number, line in enumerate(lines):
        directive = CONDITIONAL.match(line)
        if not directive:
            lines[number] = line if all(compiled) else blanks_for(line)
        elif directive["word"].startswith("if"):
            compiled.append(directive["word"] != "ifndef" and "__APPLE__" not in line)
        elif directive["word"] in ("else", "elif"):
            compiled[-1] = not compiled[-1]
        else:
            compiled.pop()
    return "".join(lines)


def code_of(text):
    """`text` with blanks in the place of all that is no code; positions stay the same. Digit
    separators stay, so that a number is one word."""
    def blank(found):
        return found.group() if found.lastgroup == "separator" else blanks_for(found.group())
    return TOKENS.sub(blank, of_this_system(text))


def operator_faults(code):
    for kind, operators in OPERATORS.items():
        choice = "|".join(re.escape(one) for one in sorted(operators, key=len, reverse=True))
        for found in re.finditer(rf"(?<=\s)(?:{choice})(?=\s)", code):
            yield Fault(kind, found.start(), found.end(), operators[found.group()])


def word_faults(code):
    for word, other in WORDS.items():
        for found in re.finditer(rf"(?<![\w:]){word}(?![\w:])", code):
            yield Fault("word", found.start(), found.end(), other)


def number_faults(code):
    """One more, and one less where that is not below zero."""
    for found in NUMBER.finditer(code):
        digits = found["digits"].replace("'", "")
        hexadecimal = digits[:2] in ("0x", "0X")
        value = int(digits, 16) if hexadecimal else int(digits)
        for changed in (value + 1, value - 1):
            if changed >= 0:
                shown = hex(changed) if hexadecimal else str(changed)
                yield Fault("constant", found.start(), found.end(), shown + found["suffix"])


def closing(code, opening):
    """Where the bracket that opens at `opening` closes; None when it does not."""
    depth = 0
    for place in range(opening, len(code)):
        depth += {"(": 1, ")": -1}.get(code[place], 0)
        if depth == 0:
            return place
    return None


def condition_faults(code, text):
    """Conditions that declare something are left alone."""
    for found in CONDITION.finditer(code):
        start = found.end()
        end = closing(code, start - 1)
        if end is None or ";" in code[start:end] or re.match(r"const\b|auto\b", code[start:end]):
            continue
        yield Fault("condition", start, end, f"!({text[start:end]})")


def statement_faults(code):
    """Calls, assignments and jumps that stand alone. Declarations do not look like them."""
    for found in STATEMENT.finditer(code):
        first = re.match(r"\W*(\w+)", found["statement"]).group(1)
        if first not in KEYWORDS:
            yield Fault("dropped statement", found.start("statement"), found.end("statement"), "")


def argument_faults(code):
    for found in CALL.finditer(code):
        if found["first"] != found["second"]:
            yield Fault("swapped arguments", found.start(), found.end(),
                        f"{found['second']}, {found['first']}")


def faults_in(text):
    """All faults that can be planted in `text`, in the order of their places."""
    code = code_of(text)
    faults = [*operator_faults(code), *word_faults(code), *number_faults(code),
              *condition_faults(code, text), *statement_faults(code), *argument_faults(code)]
    return sorted(faults, key=lambda fault: (fault.start, fault.end, fault.kind, fault.replacement))
