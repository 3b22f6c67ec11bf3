"""The committed expectation of the --quick run: counts per corpus and stage, and the files
that are known to fail. A file that fails and isn't listed, a stage that stops running, or a
drop in passes is a regression; a listed file that now passes is an improvement to record."""

HEADER = """# Expected results of `tests/corpus/run --quick`.
# Rewrite on purpose, when the front end improves: tests/corpus/run --quick --update-expected
# stage CORPUS STAGE FILES PASSED FAILED SKIPPED  (n/a: the tool couldn't run the stage)
# fail CORPUS STAGE FILE
"""


def write(path, rows):
    with open(path, "w", encoding="utf-8") as f:
        f.write(HEADER)
        for r in rows:
            counts = " ".join(r.cells()[2:]) if r.available else "n/a"
            f.write("stage %s %s %s\n" % (r.corpus, r.stage, counts))
        for r in rows:
            for rel, _ in r.failed:
                f.write("fail %s %s %s\n" % (r.corpus, r.stage, rel))


def read(path):
    """{(corpus, stage): [counts or None, set of failing files]}, or None without a file."""
    try:
        with open(path, encoding="utf-8") as f:
            lines = f.read().splitlines()
    except OSError:
        return None
    table = {}
    for line in lines:
        words = line.split(" ", 3)
        if words[0] == "stage" and len(words) == 4:
            counts = None if words[3] == "n/a" else [int(w) for w in words[3].split()]
            table[(words[1], words[2])] = [counts, set()]
        elif words[0] == "fail" and len(words) == 4:
            table.setdefault((words[1], words[2]), [None, set()])[1].add(words[3])
    return table


def compare(table, rows):
    """Lines of REGRESSION and NOTE found between the expectation and this run's rows."""
    if table is None:
        return ["REGRESSION: no expected results; write them with --update-expected"]
    out = []
    for r in rows:
        where = "%s/%s" % (r.corpus, r.stage)
        counts, fails = table.get((r.corpus, r.stage), [None, set()])
        if counts is not None and not r.available:
            out.append("REGRESSION: %s ran before and can't run now" % where)
        elif r.available and counts is None:
            out.append("NOTE: %s runs now; record it with --update-expected" % where)
        elif r.available:
            out += _compare_files(where, counts, fails, r)
    return out


def _compare_files(where, counts, fails, row):
    out = []
    failing = set()
    for rel, detail in row.failed:
        failing.add(rel)
        if rel not in fails:
            out.append("REGRESSION: %s %s fails: %s" % (where, rel, detail))
    if row.passed < counts[1]:
        out.append("REGRESSION: %s passes %d files, expected %d" % (where, row.passed, counts[1]))
    fixed = sorted(fails - failing)
    if fixed:
        out.append("NOTE: %s: %d expected failures pass now (%s); record them with "
                   "--update-expected" % (where, len(fixed), ", ".join(fixed[:5])))
    return out
