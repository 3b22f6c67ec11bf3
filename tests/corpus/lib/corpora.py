"""The corpora in the cache, and the configuration (language, standard, paths, macros) of each file."""
import hashlib
import os
import re

CXX_EXTENSIONS = (".C", ".cc", ".cpp", ".cxx", ".hpp", ".hh", ".hxx", ".ipp", ".inl")

# Per corpus: language of .c/.h files, C++ standard, include dirs relative to the root, and the
# size of the --quick sample (None: every file).
SETTINGS = {
    "usr-include": {"quick": 120},
    "gcc": {"quick": 300},
    "tcc": {"includes": ["."], "quick": 40},
    "sqlite": {"includes": ["."], "quick": None},
    "duktape": {"includes": ["."], "quick": None},
    "googletest": {"language": "c++", "cxx_std": "gnu++14", "quick": 25,
                   "includes": ["googletest/include", "googlemock/include", "googletest",
                                "googlemock"]},
    "nlohmann-json": {"language": "c++", "cxx_std": "gnu++11", "includes": [".."], "quick": 15},
}
ORDER = list(SETTINGS)
DEFAULT_CXX_STD = "gnu++98"


class SourceFile:
    """One corpus file with the options that both our tool and the compilers get."""

    def __init__(self, corpus, rel, path, language, std, includes, defines, undefines):
        self.corpus = corpus
        self.rel = rel
        self.path = path
        self.language = language
        self.std = std
        self.includes = includes
        self.defines = defines
        self.undefines = undefines

    def size(self):
        try:
            return os.path.getsize(self.path)
        except OSError:
            return 0


class Corpus:
    def __init__(self, cache, name):
        self.name = name
        self.dir = os.path.join(cache, "corpora", name)
        self.settings = SETTINGS.get(name, {})

    def present(self):
        return os.path.isfile(os.path.join(self.dir, ".done"))

    def root(self):
        with open(os.path.join(self.dir, "root"), encoding="utf-8") as f:
            return f.read().strip()

    def names(self):
        with open(os.path.join(self.dir, "files.txt"), encoding="utf-8") as f:
            return [line.rstrip("\n") for line in f if line.strip()]

    def quick_sample(self, names):
        """A fixed sample: the first files in the order of their names' MD5, so that a file
        added to or missing from a corpus moves at most one other in or out."""
        limit = self.settings.get("quick", 30)
        if limit is None or len(names) <= limit:
            return names
        return sorted(sorted(names, key=lambda n: hashlib.md5(n.encode()).hexdigest())[:limit])

    def files(self, quick):
        root = self.root()
        names = self.names()
        if quick:
            names = self.quick_sample(names)
        return [self.source_file(root, rel) for rel in names]

    def language(self, rel):
        if rel.endswith(CXX_EXTENSIONS) or rel.startswith("g++.") or "c++/" in rel:
            return "c++"
        return self.settings.get("language", "c")

    def source_file(self, root, rel):
        path = os.path.join(root, rel)
        language = self.language(rel)
        std = self.settings.get("cxx_std", DEFAULT_CXX_STD) if language == "c++" else None
        includes = [os.path.normpath(os.path.join(root, d)) for d in self.settings.get("includes", [])]
        defines, undefines, extra_includes, test_std = test_options(path) if self.name == "gcc" \
            else ([], [], [], None)
        return SourceFile(self.name, rel, path, language, test_std or std,
                          includes + [os.path.join(os.path.dirname(path), d) for d in extra_includes],
                          defines, undefines)


def selected(cache, wanted):
    """The corpora named, or else every known one and any other found in the cache."""
    if wanted:
        return [Corpus(cache, n) for n in wanted]
    top = os.path.join(cache, "corpora")
    extra = sorted(n for n in os.listdir(top) if n not in ORDER) if os.path.isdir(top) else []
    return [Corpus(cache, n) for n in ORDER + extra]


_DG_OPTIONS = re.compile(r'dg-options\s+"([^"]*)"')


def test_options(path):
    """-D, -U, -I and -std from a GCC test's dg-options, the rest of its flags left out."""
    try:
        with open(path, encoding="latin-1") as f:
            text = f.read(8192)
    except OSError:
        return [], [], [], None
    defines, undefines, includes, std = [], [], [], None
    for options in _DG_OPTIONS.findall(text):
        words = options.split()
        for i, w in enumerate(words):
            value = w[2:] or (words[i + 1] if i + 1 < len(words) else "")
            if w.startswith("-D"):
                defines.append(value)
            elif w.startswith("-U"):
                undefines.append(value)
            elif w.startswith("-I") and "$" not in value:
                includes.append(value)
            elif w.startswith("-std="):
                std = w[5:]
            elif w == "-ansi":
                std = "ansi"
    return defines, undefines, includes, std
