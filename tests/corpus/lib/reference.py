"""What each side gets for a file: the reference compiler its command line, and our tool the
options a user would give it. Neither gets the other's predefined macros by hand: our tool takes
the compiler's macros and system folders from the configuration that `qbrefactor config detect`
wrote, as a user's would.

The configuration's header ends with a block of definitions for the GNU extensions that our
parser does not read yet (`__attribute__`, `__int128`, ...). Those change what the preprocessor
gives, so for the preprocess comparison the reference compiler gets the same block (with
-include), and both sides answer the same question. The parse comparison gives the compiler the
file alone.
"""
import os
import re
import tempfile
import threading

COMPAT_MARK = "/* GNU extensions that the parser does not know */"
# `qbrefactor ... -v` names the configuration header it gives each file.
_HEADER_LINE = re.compile(rb"^qbrefactor: .*: configuration \S+ \(header (.*)\)", re.MULTILINE)

_lock = threading.Lock()
_compat_files = {}


def std_flags(language, std):
    flags = ["-x", language]
    if std == "ansi":
        flags.append("-ansi")
    elif std:
        flags.append("-std=" + std)
    return flags


def compiler_argv(compiler, source, action, extra=()):
    """gcc's command for a file: action is -E or -fsyntax-only."""
    argv = [compiler, *std_flags(source.language, source.std), "-w", *extra]
    for d in source.includes:
        argv += ["-I", d]
    for d in source.defines:
        argv += ["-D", d]
    for u in source.undefines:
        argv += ["-U", u]
    return argv + [action, source.path]


def user_options(source):
    """Our tool's options for a file, as its user would give them: the language and standard,
    the corpus's include folders, and a GCC test's own -D, -U and -I."""
    options = std_flags(source.language, source.std)
    for d in source.includes:
        options += ["-I", d]
    for d in source.defines:
        options += ["-D", d]
    for u in source.undefines:
        options += ["-U", u]
    return options


def header_of(verbose_err):
    """The configuration header that `qbrefactor -v` said it gave the file, or None."""
    m = _HEADER_LINE.search(verbose_err)
    return m.group(1).decode("utf-8", "replace") if m else None


def compat_include(header, scratch):
    """A file with the compatibility block of a configuration header, for gcc's -include;
    None when the header has no block."""
    with _lock:
        if header not in _compat_files:
            _compat_files[header] = _write_compat(header, scratch)
        return _compat_files[header]


def _write_compat(header, scratch):
    try:
        with open(header, encoding="utf-8", errors="replace") as f:
            text = f.read()
    except OSError:
        return None
    at = text.find(COMPAT_MARK)
    if at < 0:
        return None
    fd, path = tempfile.mkstemp(suffix=".h", prefix="compat-", dir=scratch)
    with os.fdopen(fd, "w", encoding="utf-8") as f:
        f.write(text[at:])
    return path
