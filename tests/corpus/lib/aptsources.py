#!/usr/bin/env python3
"""Writes a one-line apt source list with the Debian entries of the given apt source files.

Usage: aptsources.py OUT FILE...

Reads one-line .list files and deb822 .sources files, keeps the entries whose URI is a Debian
archive (its path holds a "debian" component), and writes each as a deb and a deb-src line, so
binary and source packages come from the machine's own mirrors.
"""
import re
import sys


def is_debian(uri):
    return re.search(r"/debian(-security|-ports)?(/|$)", uri) is not None


def one_line_entries(text):
    for line in text.splitlines():
        line = line.split("#", 1)[0].strip()
        words = line.split()
        if len(words) < 3 or words[0] not in ("deb", "deb-src"):
            continue
        options = []
        rest = words[1:]
        if rest[0].startswith("["):
            while rest and not rest[0].endswith("]"):
                options.append(rest.pop(0))
            options.append(rest.pop(0))
        if len(rest) >= 2:
            yield " ".join(options), rest[0], rest[1], rest[2:]


def deb822_entries(text):
    for stanza in re.split(r"\n\s*\n", text):
        fields = {}
        key = None
        for line in stanza.splitlines():
            if line.startswith("#"):
                continue
            if line[:1] in (" ", "\t") and key:
                fields[key] += " " + line.strip()
            elif ":" in line:
                key, value = line.split(":", 1)
                key = key.strip().lower()
                fields[key] = value.strip()
        if fields.get("enabled", "yes").lower() == "no":
            continue
        if "deb" not in fields.get("types", "").split():
            continue
        options = ""
        if "signed-by" in fields and not fields["signed-by"].startswith("-"):
            options = "[signed-by=%s]" % fields["signed-by"].split()[0]
        for uri in fields.get("uris", "").split():
            for suite in fields.get("suites", "").split():
                yield options, uri, suite, fields.get("components", "").split()


def main():
    out, files = sys.argv[1], sys.argv[2:]
    lines = []
    for name in files:
        try:
            with open(name, encoding="utf-8") as f:
                text = f.read()
        except OSError:
            continue
        parse = deb822_entries if name.endswith(".sources") else one_line_entries
        for options, uri, suite, components in parse(text):
            if not is_debian(uri):
                continue
            for kind in ("deb", "deb-src"):
                line = " ".join(w for w in (kind, options, uri, suite, *components) if w)
                if line not in lines:
                    lines.append(line)
    if not lines:
        sys.exit("aptsources: no Debian archive among the machine's apt sources")
    with open(out, "w", encoding="utf-8") as f:
        f.write("\n".join(lines) + "\n")


if __name__ == "__main__":
    main()
