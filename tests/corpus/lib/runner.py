"""Running a program on one input under a limit, and judging how it ended.

A hang is told from a slow run by the processor time the program uses, not by the clock: a
program that loops, or does work quadratic in its input, keeps using processor time, while one
that is slow because the machine is busy (or because the harness's workers share it) uses no
more processor time than on an idle machine. The clock only catches a program that stops using
the processor without ending (waiting on something that never comes), with a wide margin.
"""
import os
import signal
import subprocess
import tempfile
import time

SANITIZER_MARKS = (b"ERROR: AddressSanitizer", b"ERROR: LeakSanitizer", b"runtime error:",
                   b"SUMMARY: UndefinedBehaviorSanitizer", b"ERROR: MemorySanitizer",
                   b"WARNING: ThreadSanitizer")
TICKS = os.sysconf("SC_CLK_TCK")
POLL_SECONDS = 0.05
# The clock's limit is this many times the processor's, plus the margin, so that a run that gets
# a quarter of a processor on a busy machine is never taken for a hang.
WALL_FACTOR = 4
WALL_MARGIN = 30


class Outcome:
    """How one run ended: exit status, output, processor seconds, and whether it crashed, hung
    or tripped a sanitizer."""

    def __init__(self, status, out, err, hung=None, cpu=0.0):
        self.status = status
        self.out = out
        self.err = err
        self.hung = hung  # None, or why the run was stopped
        self.cpu = cpu

    @property
    def timed_out(self):
        return self.hung is not None

    def sanitizer_report(self):
        for line in self.err.splitlines():
            if any(mark in line for mark in SANITIZER_MARKS):
                return line.decode("utf-8", "replace").strip()
        return None

    def fault(self):
        """None for an orderly end; otherwise a description of the crash, hang or report."""
        if self.hung:
            return "hang: " + self.hung
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


def processor_seconds(pid):
    """User and system time of a running process, from /proc; None once it is gone."""
    try:
        with open("/proc/%d/stat" % pid, "rb") as f:
            fields = f.read().rsplit(b")", 1)[1].split()
    except (OSError, IndexError):
        return None
    return (int(fields[11]) + int(fields[12])) / TICKS  # utime and stime, fields 14 and 15


def _reap(proc):
    """The exact processor seconds of proc once it has ended (its status set), else None."""
    pid, status, usage = os.wait4(proc.pid, os.WNOHANG)
    if pid == 0:
        return None
    proc.returncode = os.waitstatus_to_exitcode(status)
    return usage.ru_utime + usage.ru_stime


def _wait(proc, cpu_limit, wall_limit):
    """Waits for proc; gives (why it was stopped or None, its processor seconds)."""
    start = time.monotonic()
    cpu = 0.0
    while True:
        done = _reap(proc)
        if done is not None:
            return None, done
        cpu = processor_seconds(proc.pid) or cpu
        if cpu > cpu_limit:
            return "%.0f s of processor time, over the limit of %.0f s" % (cpu, cpu_limit), cpu
        if time.monotonic() - start > wall_limit:
            return "no end after %.0f s, with %.1f s of processor time" % (
                time.monotonic() - start, cpu), cpu
        time.sleep(POLL_SECONDS)


def run(argv, cpu_limit, cwd=None, env=None, wall_limit=None):
    """Runs argv with no input; stops its whole process group when it uses more than cpu_limit
    seconds of processor time, or when it runs far longer than that by the clock. env adds to
    the environment; a value of None takes a name out."""
    full_env = dict(os.environ)
    for name, value in (env or {}).items():
        if value is None:
            full_env.pop(name, None)
        else:
            full_env[name] = value
    full_env.setdefault("ASAN_OPTIONS", "detect_leaks=1:abort_on_error=0")
    full_env.setdefault("UBSAN_OPTIONS", "print_stacktrace=1")
    full_env["LC_ALL"] = "C"
    if wall_limit is None:
        wall_limit = cpu_limit * WALL_FACTOR + WALL_MARGIN
    with tempfile.TemporaryFile() as out, tempfile.TemporaryFile() as err:
        try:
            proc = subprocess.Popen(argv, stdin=subprocess.DEVNULL, stdout=out, stderr=err,
                                    cwd=cwd, env=full_env, start_new_session=True)
        except OSError as e:
            return Outcome(127, b"", str(e).encode())
        hung, cpu = _wait(proc, cpu_limit, wall_limit)
        if hung:
            try:
                os.killpg(proc.pid, signal.SIGKILL)
            except ProcessLookupError:
                pass
            while _reap(proc) is None:
                time.sleep(POLL_SECONDS)
        out.seek(0)
        err.seek(0)
        return Outcome(proc.returncode, out.read(), err.read(), hung, cpu)
