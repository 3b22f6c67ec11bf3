#!/usr/bin/env python3
"""Prints the GCC test files that GCC 12 itself passes, one path a line, relative to gcc/testsuite.

Usage: gccpasses.py TEST_RESULTS_DIR TESTSUITE_DIR

A file counts when every result that names it is PASS (C++ tests: only the -std=c++98 runs),
at least one is, and the file asks for no C++ standard past C++98.
"""
import lzma
import os
import re
import sys

DIRS = ("gcc.dg/cpp/", "c-c++-common/cpp/", "gcc.c-torture/", "g++.dg/parse/",
        "g++.dg/template/", "g++.old-deja/")
RESULT = re.compile(r"^(PASS|FAIL|XPASS|XFAIL|UNRESOLVED|UNSUPPORTED|UNTESTED|KFAIL|KPASS): (\S+)(.*)$")
STD = re.compile(r"-std=(?:c|gnu)\+\+(\w+)")
NEWER_CXX = re.compile(r"target\s+c\+\+(?:0x|1[147z]|2[0abc])|-std=(?:c|gnu)\+\+(?:0x|1[147yz]|2[0abc])"
                       r"|c\+\+(?:1[147]|20)_only")


def summaries(results_dir):
    for top, _, files in os.walk(results_dir):
        for name in files:
            if name in ("gcc.sum.xz", "g++.sum.xz"):
                yield os.path.join(top, name)


def verdicts(results_dir):
    seen = {}
    for path in summaries(results_dir):
        with lzma.open(path, "rt", encoding="utf-8", errors="replace") as f:
            for line in f:
                m = RESULT.match(line)
                if not m or not m.group(2).startswith(DIRS):
                    continue
                kind, test, rest = m.groups()
                std = STD.search(rest)
                if std and std.group(1) not in ("98", "03"):
                    continue
                good, bad = seen.get(test, (0, 0))
                if kind == "PASS":
                    good += 1
                elif kind != "UNSUPPORTED":
                    bad += 1
                seen[test] = (good, bad)
    return sorted(t for t, (good, bad) in seen.items() if good and not bad)


def wants_newer_cxx(path):
    try:
        with open(path, encoding="latin-1") as f:
            return NEWER_CXX.search(f.read()) is not None
    except OSError:
        return True


def main():
    results_dir, testsuite = sys.argv[1], sys.argv[2]
    for test in verdicts(results_dir):
        path = os.path.join(testsuite, test)
        if os.path.isfile(path) and not wants_newer_cxx(path):
            print(test)


if __name__ == "__main__":
    main()
