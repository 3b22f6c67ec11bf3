// Lexing throughput on real inputs, beside a plain byte scan of the same bytes.
//
// Input: the files named by QB_BENCH_FILES (a file with one path per line), or else every C and
// C++ header under /usr/include. Run: build/release/bench/lex_bench (see README).
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <dirent.h>
#include <fstream>
#include <sstream>
#include <string>
#include <sys/stat.h>
#include <vector>

#include "BPSourceText.h"
#include "CPLexer.h"
#include "CPScanner.h"
#include "CPWhitespaceFilter.h"

namespace {

bool isSourceName(const std::string& name) {
    static const char* exts[] = {".h", ".c", ".cc", ".cpp", ".hpp"};
    for (const char* e : exts) {
        size_t n = std::char_traits<char>::length(e);
        if (name.size() > n && name.compare(name.size() - n, n, e) == 0) return true;
    }
    return name.find('.') == std::string::npos;  // extensionless C++ headers
}

void collect(const std::string& dir, std::vector<std::string>& out) {
    DIR* d = opendir(dir.c_str());
    if (!d) return;
    while (dirent* e = readdir(d)) {
        std::string name = e->d_name;
        if (name == "." || name == "..") continue;
        std::string path = dir + "/" + name;
        struct stat st;
        if (lstat(path.c_str(), &st) != 0) continue;
        if (S_ISDIR(st.st_mode))
            collect(path, out);
        else if (S_ISREG(st.st_mode) && isSourceName(name))
            out.push_back(path);
    }
    closedir(d);
}

const std::vector<std::string>& corpus() {
    static std::vector<std::string> texts = [] {
        std::vector<std::string> paths;
        if (const char* list = std::getenv("QB_BENCH_FILES")) {
            std::ifstream in(list);
            for (std::string line; std::getline(in, line);)
                if (!line.empty()) paths.push_back(line);
        } else {
            collect("/usr/include", paths);
        }
        std::vector<std::string> all;
        for (auto& p : paths) {
            std::ifstream f(p, std::ios::binary);
            std::stringstream ss;
            ss << f.rdbuf();
            all.push_back(ss.str());
        }
        return all;
    }();
    return texts;
}

int64_t corpusBytes() {
    int64_t n = 0;
    for (auto& t : corpus()) n += int64_t(t.size());
    return n;
}

// The floor: touch every byte once, as any lexer must.
void BM_ByteScan(benchmark::State& state) {
    for (auto _ : state) {
        unsigned lines = 0;
        for (auto& t : corpus())
            for (char c : t) lines += c == '\n';
        benchmark::DoNotOptimize(lines);
    }
    state.SetBytesProcessed(state.iterations() * corpusBytes());
}
BENCHMARK(BM_ByteScan)->Unit(benchmark::kMillisecond);

// The scanner alone: kinds and extents, no token objects.
void BM_Scanner(benchmark::State& state) {
    size_t tokens = 0;
    for (auto _ : state) {
        tokens = 0;
        for (auto& t : corpus()) {
            CPScanCursor s{t.c_str(), t.c_str() + t.size(), 0, 0, 0};
            while (cpScanToken(s) != CPT_EOF) ++tokens;
        }
        benchmark::DoNotOptimize(tokens);
    }
    state.SetBytesProcessed(state.iterations() * corpusBytes());
    state.counters["tokens"] = double(tokens);
}
BENCHMARK(BM_Scanner)->Unit(benchmark::kMillisecond);

// Source records made once, as the source cache would hold them.
const std::vector<BPSourceHandle>& sources() {
    static std::vector<BPSourceHandle> all = [] {
        std::vector<BPSourceHandle> v;
        for (auto& t : corpus()) {
            BPSourceHandle h;
            h.setText(quernbase::QBString(t.data(), unsigned(t.size())));
            v.push_back(h);
        }
        return v;
    }();
    return all;
}

// The lexer proper: token objects from the pool, positions, pending messages.
void BM_Lexer(benchmark::State& state) {
    size_t tokens = 0;
    for (auto _ : state) {
        tokens = 0;
        for (auto& h : sources()) {
            CPLexer* lexer = new CPLexer(h, 0);
            lexer->addRef();
            while (TBPToken<CPParseNodeType>* t = lexer->nextToken()) {
                ++tokens;
                if (t->getType() == CPT_EOF) break;
            }
            lexer->release();
        }
    }
    state.SetBytesProcessed(state.iterations() * corpusBytes());
    state.counters["tokens"] = double(tokens);
}
BENCHMARK(BM_Lexer)->Unit(benchmark::kMillisecond);

// What the preprocessor reads: the lexer behind the whitespace filter.
void BM_LexerFiltered(benchmark::State& state) {
    for (auto _ : state) {
        for (auto& h : sources()) {
            CPLexer* lexer = new CPLexer(h, 0);
            lexer->addRef();
            CPWhitespaceFilter* filter = new CPWhitespaceFilter(lexer);
            filter->addRef();
            while (TBPToken<CPParseNodeType>* t = filter->nextToken())
                if (t->getType() == CPT_EOF) break;
            filter->release();
            lexer->release();
        }
    }
    state.SetBytesProcessed(state.iterations() * corpusBytes());
}
BENCHMARK(BM_LexerFiltered)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
