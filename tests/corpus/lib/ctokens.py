"""Token-by-token comparison of two preprocessed texts.

Both texts are split into C and C++ preprocessing tokens; whitespace, comments and line markers
("# 12 "file"", "#line 12") are dropped, since they carry layout and positions, not tokens.
So are `#pragma` lines: our preprocessed text runs `#pragma once` and drops every other pragma
by design, where the reference passes them through.
"""
import re

_PUNCT = sorted("""
%:%: ... <<= >>= ->* ## -> ++ -- << >> <= >= == != && || += -= *= /= %= &= |= ^= :: .* <: :> <% %> %:
{ } [ ] ( ) ; : , . + - * / % ^ & | ~ ! = < > ? #
""".split(), key=len, reverse=True)

_TOKEN = re.compile(r"""
    (?P<space>[ \t\f\v\r\n]+|\\\n)
  | (?P<comment>//[^\n]*|/\*.*?\*/)
  | (?P<string>(?:u8|[uUL])?"(?:[^"\\\n]|\\.)*")
  | (?P<char>(?:u8|[uUL])?'(?:[^'\\\n]|\\.)*')
  | (?P<number>\.?[0-9](?:[eEpP][+-]|[0-9A-Za-z_.])*)
  | (?P<name>[A-Za-z_$][A-Za-z0-9_$]*)
  | (?P<punct>""" + "|".join(re.escape(p) for p in _PUNCT) + r""")
  | (?P<other>.)
""", re.VERBOSE | re.DOTALL)

_MARKER = re.compile(r"^[ \t]*#[ \t]*(?:line[ \t]+)?[0-9]+(?:[ \t].*)?$", re.MULTILINE)
_PRAGMA = re.compile(r"^[ \t]*#[ \t]*pragma\b.*$", re.MULTILINE)


def tokens(text):
    """The list of (token, line) of a preprocessed text, without line markers."""
    text = _PRAGMA.sub("", _MARKER.sub("", text))
    out = []
    line = 1
    for m in _TOKEN.finditer(text):
        kind = m.lastgroup
        if kind not in ("space", "comment"):
            out.append((m.group(), line))
        line += m.group().count("\n")
    return out


def first_difference(expected_text, actual_text):
    """None when both texts have the same tokens; otherwise a one-line description."""
    expected = tokens(expected_text)
    actual = tokens(actual_text)
    for i, (e, a) in enumerate(zip(expected, actual)):
        if e[0] != a[0]:
            return "token %d: expected %r (line %d) but got %r (line %d)" % (
                i + 1, e[0], e[1], a[0], a[1])
    if len(expected) != len(actual):
        if len(expected) > len(actual):
            e = expected[len(actual)]
            return "output ends after %d tokens; expected %r (line %d) next" % (
                len(actual), e[0], e[1])
        a = actual[len(expected)]
        return "%d tokens more than expected, from %r (line %d)" % (
            len(actual) - len(expected), a[0], a[1])
    return None


def first_byte_difference(expected, actual):
    """None when both byte strings are equal; otherwise where they first differ."""
    if expected == actual:
        return None
    n = min(len(expected), len(actual))
    i = next((k for k in range(n) if expected[k] != actual[k]), n)
    line = expected.count(b"\n", 0, i) + 1
    col = i - (expected.rfind(b"\n", 0, i) + 1) + 1
    return "byte %d (line %d, col %d): expected %r but got %r (sizes %d and %d)" % (
        i, line, col, expected[i:i + 12], actual[i:i + 12], len(expected), len(actual))
