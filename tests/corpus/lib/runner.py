"""Running a program on one input under a time limit, and judging how it ended."""
import os
import signal
import subprocess

SANITIZER_MARKS = (b"ERROR: AddressSanitizer", b"ERROR: LeakSanitizer", b"runtime error:",
                   b"SUMMARY: UndefinedBehaviorSanitizer", b"ERROR: MemorySanitizer",
                   b"WARNING: ThreadSanitizer")


class Outcome:
    """How one run ended: exit status, output, and whether it crashed, hung or tripped a sanitizer."""

    def __init__(self, status, out, err, timed_out):
        self.status = status
        self.out = out
        self.err = err
        self.timed_out = timed_out

    def sanitizer_report(self):
        for line in self.err.splitlines():
            if any(mark in line for mark in SANITIZER_MARKS):
                return line.decode("utf-8", "replace").strip()
        return None

    def fault(self):
        """None for an orderly end; otherwise a description of the crash, hang or report."""
        if self.timed_out:
            return "hang: no end within the time limit"
        report = self.sanitizer_report()
        if report:
            return "sanitizer: " + report
        if self.status < 0:
            return "crash: killed by signal %s" % signal.Signals(-self.status).name
        return None

    def first_error_line(self):
        """The first line that says "error", else the first line on stderr, else the status."""
        err = self.err.decode("utf-8", "replace").splitlines()
        out = self.out.decode("utf-8", "replace").splitlines()
        lines = [l.strip() for l in err + out if "error" in l] + [l.strip() for l in err if l.strip()]
        if lines:
            return "exit status %d: %s" % (self.status, lines[0][:300])
        return "exit status %d, no message" % self.status


def run(argv, timeout, cwd=None):
    """Runs argv with no input; kills its whole process group when the time runs out."""
    env = dict(os.environ)
    env.setdefault("ASAN_OPTIONS", "detect_leaks=1:abort_on_error=0")
    env.setdefault("UBSAN_OPTIONS", "print_stacktrace=1")
    env["LC_ALL"] = "C"
    try:
        proc = subprocess.Popen(argv, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                stderr=subprocess.PIPE, cwd=cwd, env=env, start_new_session=True)
    except OSError as e:
        return Outcome(127, b"", str(e).encode(), False)
    try:
        out, err = proc.communicate(timeout=timeout)
        return Outcome(proc.returncode, out, err, False)
    except subprocess.TimeoutExpired:
        os.killpg(proc.pid, signal.SIGKILL)
        out, err = proc.communicate()
        return Outcome(proc.returncode, out, err, True)
