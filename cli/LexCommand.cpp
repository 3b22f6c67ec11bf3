#include "LexCommand.h"

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "ModuleLoader.h"
#include "qbapi_host.h"

namespace cli {

namespace {

enum { LEX_FILTERED = 1, LEX_EMIT = 2, LEX_ROUNDTRIP = 4 };
typedef int (*LexFileFunction)(const char* fileName, int options, char* buffer, int size);

void usage() {
    std::fprintf(stderr,
                 "usage: qbrefactor lex [--filtered] FILE...      one line per token\n"
                 "       qbrefactor lex --emit FILE              the text made from the tokens\n"
                 "       qbrefactor lex --roundtrip FILE...      name each file whose text differs\n");
}

void reportUnreadable(const char* file, int status) {
    std::fprintf(stderr, "%s: error: %s\n", file, qbHostMessageText(status));
}

int emit(LexFileFunction lex, const char* file) {
    std::vector<char> buffer(1 << 16);
    int n = lex(file, LEX_EMIT, buffer.data(), int(buffer.size()));
    if (n > int(buffer.size())) {
        buffer.resize(size_t(n));
        n = lex(file, LEX_EMIT, buffer.data(), int(buffer.size()));
    }
    if (n < 0) {
        reportUnreadable(file, n);
        return 1;
    }
    std::fwrite(buffer.data(), 1, size_t(n), stdout);
    return 0;
}

int roundTrip(LexFileFunction lex, const std::vector<const char*>& files) {
    int differ = 0, failed = 0;
    for (const char* file : files) {
        int rc = lex(file, LEX_ROUNDTRIP, nullptr, 0);
        if (rc < 0) {
            reportUnreadable(file, rc);
            ++failed;
        } else if (rc > 0) {
            std::printf("differs: %s\n", file);
            ++differ;
        }
    }
    std::printf("%zu files, %d identical, %d differ, %d unreadable\n", files.size(),
                int(files.size()) - differ - failed, differ, failed);
    return differ || failed ? 1 : 0;
}

}  // namespace

int runLexCommand(int argc, char** argv) {
    int options = 0;
    std::vector<const char*> files;
    for (int i = 1; i < argc; ++i) {
        if (!std::strcmp(argv[i], "--filtered")) options |= LEX_FILTERED;
        else if (!std::strcmp(argv[i], "--emit")) options |= LEX_EMIT;
        else if (!std::strcmp(argv[i], "--roundtrip")) options |= LEX_ROUNDTRIP;
        else if (!std::strcmp(argv[i], "--help")) return usage(), 0;
        else if (argv[i][0] == '-' && argv[i][1]) return usage(), 2;
        else files.push_back(argv[i]);
    }
    if (files.empty() || ((options & LEX_EMIT) && files.size() != 1)) return usage(), 2;
    if (!loadEngine()) return 2;
    auto lex = reinterpret_cast<LexFileFunction>(qbHostModuleSymbol(1, "qbRefactorLexFile"));
    if (!lex) {
        std::fprintf(stderr, "qbrefactor: the engine has no qbRefactorLexFile\n");
        return 2;
    }
    if (options & LEX_ROUNDTRIP) return roundTrip(lex, files);
    if (options & LEX_EMIT) return emit(lex, files[0]);
    int status = 0;
    for (const char* file : files) {
        int rc = lex(file, options & LEX_FILTERED, nullptr, 0);
        if (rc < 0) {
            reportUnreadable(file, rc);
            status = 1;
        }
    }
    return status;
}

}  // namespace cli
