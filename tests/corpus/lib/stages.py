"""The stages a corpus file goes through, and which of them the built tool can run.

Each stage gives a Result: "pass" (run and compared equal), "fail" (with the first difference
or diagnostic), or "skip" (the reference compiler itself rejects the file in this configuration,
so there is nothing to compare against). A crash, hang or sanitizer report fails the stage and
is kept as the result's fault.
"""
import os
import re
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


class Result:
    def __init__(self, status, detail=None, fault=None):
        self.status = status
        self.detail = detail
        self.fault = fault


class Tool:
    """Our built qbrefactor, with the set of stages it can run."""

    def __init__(self, path, compiler, timeout):
        self.path = path
        self.compiler = compiler
        self.timeout = timeout
        self.stages = self.detect() if path and os.access(path, os.X_OK) else set()

    def commands(self, file, options=()):
        return {
            "lex-roundtrip": [self.path, "lex", "--emit", file],
            "tree-roundtrip": [self.path, "parse", "--emit", *options, file],
            "preprocess": [self.path, "preprocess", *options, file],
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
                outcome = runner.run(argv, 30)
                if outcome.status == 0 and not outcome.fault() and self.shows_probe(stage, outcome.out):
                    found.add(stage)
            if "parse" in found and not self.rejects_bad_probe(tmp):
                found.discard("parse")
        return found

    def rejects_bad_probe(self, tmp):
        bad = os.path.join(tmp, "bad.c")
        with open(bad, "wb") as f:
            f.write(BAD_PROBE)
        outcome = runner.run(self.commands(bad)["parse"], 30)
        return outcome.status != 0 and ERROR_LINE.search(outcome.out + outcome.err) is not None

    @staticmethod
    def shows_probe(stage, out):
        if stage in ("lex-roundtrip", "tree-roundtrip"):
            return b"int a[N];" in out
        if stage == "preprocess":
            return [t for t, _ in ctokens.tokens(out.decode("latin-1"))][-6:] == \
                ["int", "a", "[", "2", "]", ";"]
        return True

    def time_limit(self, source):
        return self.timeout + 10 * source.size() / 1e6

    def run_stage(self, stage, source):
        options = reference.tool_options(self.compiler, source) if stage != "lex-roundtrip" else []
        outcome = runner.run(self.commands(source.path, options)[stage], self.time_limit(source))
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
        expected = runner.run(reference.compiler_argv(self.compiler, source, "-E"), 300)
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
