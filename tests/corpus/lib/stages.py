"""The stages a corpus file goes through, and which of them the built tool can run.

Each stage gives a Result: "pass" (run and compared equal), "fail" (with the first difference
or diagnostic), or "skip" (the reference compiler itself rejects the file in this configuration,
so there is nothing to compare against). A crash, hang or sanitizer report fails the stage and
is kept as the result's fault.

The tool is run as its user runs it: `qbrefactor config detect` into a configuration folder of
the harness's own (XDG_CONFIG_HOME), and then each file with the options its user would give.

Its limit is processor time (see runner), scaled to the build: a build with sanitizers, or one
that does more work per file, gets proportionally more. The scale is measured once per run, as
the tool's processor time on a generated file against the reference compiler's on the same
file, divided by the same ratio for a release build when the limit was set.
"""
import atexit
import os
import re
import shutil
import tempfile

import ctokens
import reference
import runner

STAGES = ("lex-roundtrip", "tree-roundtrip", "preprocess", "parse")
FAULT_STAGE = "no-fault"
ERROR_LINE = re.compile(rb"^[^\n]*:\d+:\d+: error: [^\n]*$", re.MULTILINE)
PROBE = b"#define N 2\n/* probe */ int a[N];\n"
# A parser that reports nothing here reads no grammar: its parse stage is not there yet.
BAD_PROBE = b"int a[;\n"
# Processor seconds of a release build's parse over gcc -fsyntax-only's, on the generated file.
RELEASE_RATIO = 7.0


def calibration_text(functions=2000):
    """A C file of plain declarations, macros and statements, the same on every run."""
    parts = ["#define SQUARE(x) ((x) * (x))\n#define LIMIT 64\n",
             "typedef struct point { int x, y; struct point *next; } point;\n"]
    for i in range(functions):
        parts.append(
            "static int f%d(point *p, int n) {\n"
            "    int total = 0, k;\n"
            "    for (k = 0; k < n && k < LIMIT; ++k) {\n"
            "        total += SQUARE(p->x + k) - p->y * %d;\n"
            "        if (p->next) p = p->next; else break;\n"
            "    }\n"
            "    return total > %d ? total : -total;\n"
            "}\n" % (i, i % 7, i))
    return "".join(parts)


class Result:
    def __init__(self, status, detail=None, fault=None):
        self.status = status
        self.detail = detail
        self.fault = fault


class Tool:
    """Our built qbrefactor, with the set of stages it can run."""

    def __init__(self, path, compiler, timeout, build_factor=None):
        self.path = path
        self.compiler = compiler
        self.timeout = timeout
        self.scratch = tempfile.mkdtemp(prefix="qbcorpus-")
        atexit.register(shutil.rmtree, self.scratch, True)
        self.env = {"XDG_CONFIG_HOME": os.path.join(self.scratch, "config"), "QBROOT": None}
        self.configured = ""
        self.factor = 1.0
        runnable = path and os.access(path, os.X_OK)
        if runnable:
            self.configured = self.detect_configurations()
        self.stages = self.detect() if runnable else set()
        if self.stages:
            self.factor = build_factor or self.calibrate()

    def run(self, argv, limit):
        return runner.run(argv, limit, env=self.env)

    def detect_configurations(self):
        """`qbrefactor config detect` into the harness's configuration folder; its report."""
        outcome = self.run([self.path, "config", "detect"], 120)
        return (outcome.out + outcome.err).decode("utf-8", "replace").strip()

    def commands(self, file, options=()):
        return {
            "lex-roundtrip": [self.path, "lex", "--emit", file],
            "tree-roundtrip": [self.path, "parse", "--emit", *options, file],
            "preprocess": [self.path, "preprocess", "-v", *options, file],
            "parse": [self.path, "parse", *options, file],
        }

    def detect(self):
        """A stage is there when its command runs cleanly on a tiny file and shows its text."""
        found = set()
        with tempfile.TemporaryDirectory() as tmp:
            probe = os.path.join(tmp, "probe.c")
            with open(probe, "wb") as f:
                f.write(PROBE)
            for stage, argv in self.commands(probe).items():
                outcome = self.run(argv, 60)
                if outcome.status == 0 and not outcome.fault() and self.shows_probe(stage, outcome.out):
                    found.add(stage)
            if "parse" in found and not self.rejects_bad_probe(tmp):
                found.discard("parse")
        return found

    def rejects_bad_probe(self, tmp):
        bad = os.path.join(tmp, "bad.c")
        with open(bad, "wb") as f:
            f.write(BAD_PROBE)
        outcome = self.run(self.commands(bad)["parse"], 60)
        return outcome.status != 0 and ERROR_LINE.search(outcome.out + outcome.err) is not None

    @staticmethod
    def shows_probe(stage, out):
        if stage in ("lex-roundtrip", "tree-roundtrip"):
            return b"int a[N];" in out
        if stage == "preprocess":
            return [t for t, _ in ctokens.tokens(out.decode("latin-1"))][-6:] == \
                ["int", "a", "[", "2", "]", ";"]
        return True

    def calibrate(self):
        """How many times a release build's processor time this build needs (at least 1)."""
        path = os.path.join(self.scratch, "calibration.c")
        with open(path, "w") as f:
            f.write(calibration_text())
        ours = self.fastest([self.path, "parse", "--no-config", path])
        theirs = self.fastest([self.compiler, "-fsyntax-only", "-x", "c", path])
        if not ours or not theirs:
            return 1.0
        return max(1.0, ours / theirs / RELEASE_RATIO)

    def fastest(self, argv, runs=2):
        times = [self.run(argv, 600).cpu for _ in range(runs)]
        return min(times) if all(times) else None

    def time_limit(self, source):
        """Processor seconds a run on this file may take before it counts as a hang."""
        return (self.timeout + 10 * source.size() / 1e6) * self.factor

    def run_stage(self, stage, source):
        options = reference.user_options(source) if stage != "lex-roundtrip" else []
        outcome = self.run(self.commands(source.path, options)[stage], self.time_limit(source))
        fault = outcome.fault()
        if fault:
            return Result("fail", fault, fault)
        return getattr(self, "judge_" + stage.replace("-", "_"))(source, outcome)

    def judge_lex_roundtrip(self, source, outcome):
        return self.judge_bytes(source, outcome)

    def judge_tree_roundtrip(self, source, outcome):
        return self.judge_bytes(source, outcome)

    @staticmethod
    def judge_bytes(source, outcome):
        if outcome.status != 0:
            return Result("fail", outcome.first_error_line())
        with open(source.path, "rb") as f:
            difference = ctokens.first_byte_difference(f.read(), outcome.out)
        return Result("fail", difference) if difference else Result("pass")

    def judge_preprocess(self, source, outcome):
        header = reference.header_of(outcome.err)
        compat = reference.compat_include(header, self.scratch) if header else None
        extra = ["-include", compat] if compat else []
        expected = runner.run(reference.compiler_argv(self.compiler, source, "-E", extra), 300)
        if expected.status != 0:
            return Result("skip", "gcc -E rejects it: " + expected.first_error_line())
        if outcome.status != 0:
            return Result("fail", outcome.first_error_line())
        difference = ctokens.first_difference(expected.out.decode("latin-1"),
                                              outcome.out.decode("latin-1"))
        return Result("fail", difference) if difference else Result("pass")

    def judge_parse(self, source, outcome):
        expected = runner.run(reference.compiler_argv(self.compiler, source, "-fsyntax-only"), 300)
        if expected.status != 0:
            return Result("skip", "gcc -fsyntax-only rejects it: " + expected.first_error_line())
        errors = ERROR_LINE.findall(outcome.out + b"\n" + outcome.err)
        if errors:
            return Result("fail", "%d errors; first: %s" % (
                len(errors), errors[0].decode("utf-8", "replace")[:300]))
        if outcome.status != 0:
            return Result("fail", outcome.first_error_line())
        return Result("pass")
