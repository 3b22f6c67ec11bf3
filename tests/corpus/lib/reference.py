"""The reference compiler's configuration, so that our tool gets exactly what gcc assumes.

gcc's predefined macros (`gcc -dM -E`) and its system include directories (`gcc -E -v`) for a
language and standard become -D and -isystem options of our tool; gcc itself gets the file's own
-I, -D and -U options on top of its defaults.
"""
import re
import subprocess
import threading

_lock = threading.Lock()
_configs = {}


def std_flags(language, std):
    flags = ["-x", language]
    if std == "ansi":
        flags.append("-ansi")
    elif std:
        flags.append("-std=" + std)
    return flags


def _query(compiler, flags, extra):
    proc = subprocess.run([compiler, *flags, *extra, "-E", "-"], input=b"", capture_output=True)
    return proc.stdout.decode("utf-8", "replace"), proc.stderr.decode("utf-8", "replace")


def _system_dirs(text):
    m = re.search(r"#include <\.\.\.> search starts here:\n(.*?)End of search list", text, re.DOTALL)
    return [line.strip() for line in m.group(1).splitlines() if line.strip()] if m else []


def _defines(text):
    out = []
    for line in text.splitlines():
        m = re.match(r"#define (\S+)(?: (.*))?$", line)
        if m:
            out.append(m.group(1) + "=" + (m.group(2) or ""))
    return out


def configuration(compiler, language, std):
    """(predefined macros as NAME=VALUE, system include dirs) of the compiler for this mode."""
    key = (compiler, language, std)
    with _lock:
        if key not in _configs:
            flags = std_flags(language, std)
            defines = _defines(_query(compiler, flags, ["-dM"])[0])
            dirs = _system_dirs(_query(compiler, flags, ["-v"])[1])
            _configs[key] = (defines, dirs)
        return _configs[key]


def compiler_argv(compiler, source, action):
    """gcc's command for a file: action is -E or -fsyntax-only."""
    argv = [compiler, *std_flags(source.language, source.std), "-w"]
    for d in source.includes:
        argv += ["-I", d]
    for d in source.defines:
        argv += ["-D", d]
    for u in source.undefines:
        argv += ["-U", u]
    return argv + [action, source.path]


def tool_options(compiler, source):
    """Options of our tool that give it gcc's configuration for this file."""
    defines, dirs = configuration(compiler, source.language, source.std)
    options = []
    for d in source.includes:
        options += ["-I", d]
    for d in dirs:
        options += ["-isystem", d]
    if source.language == "c":
        options += ["-U", "__cplusplus"]
    for d in defines + source.defines:
        options += ["-D", d]
    for u in source.undefines:
        options += ["-U", u]
    return options
