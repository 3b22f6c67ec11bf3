#include "TreeCommand.h"

#include <cstdio>
#include <cstring>
#include <vector>

#include "ModuleLoader.h"
#include "qbapi_host.h"

namespace cli {

namespace {

enum { TREE_PRINT = 0, TREE_ROUNDTRIP = 1, TREE_ERRORS = 2 };
typedef int (*TreeFileFunction)(const char* fileName, int options);

void usage() {
    std::fprintf(stderr,
                 "usage: qbrefactor tree [--tree] FILE...     the parse tree of each file\n"
                 "       qbrefactor tree --errors FILE...     the messages of the parse\n"
                 "       qbrefactor tree --roundtrip FILE...  check the tree's text and count clean parses\n");
}

int roundTrip(TreeFileFunction tree, const std::vector<const char*>& files) {
    int differ = 0, failed = 0, withErrors = 0;
    for (const char* file : files) {
        int rc = tree(file, TREE_ROUNDTRIP);
        if (rc < 0) {
            std::fprintf(stderr, "%s: error: %s\n", file, qbHostMessageText(rc));
            ++failed;
            continue;
        }
        if (rc & 1) std::printf("differs: %s\n", file), ++differ;
        if (rc & 2) std::printf("errors: %s\n", file), ++withErrors;
    }
    std::printf("%zu files, %d identical, %d differ, %d unreadable, %d parsed without errors\n",
                files.size(), int(files.size()) - differ - failed, differ, failed,
                int(files.size()) - failed - withErrors);
    return differ || failed ? 1 : 0;
}

}  // namespace

int runTreeCommand(int argc, char** argv) {
    int options = TREE_PRINT;
    std::vector<const char*> files;
    for (int i = 1; i < argc; ++i) {
        if (!std::strcmp(argv[i], "--tree")) options = TREE_PRINT;
        else if (!std::strcmp(argv[i], "--roundtrip")) options = TREE_ROUNDTRIP;
        else if (!std::strcmp(argv[i], "--errors")) options = TREE_ERRORS;
        else if (!std::strcmp(argv[i], "--help")) return usage(), 0;
        else if (argv[i][0] == '-' && argv[i][1]) return usage(), 2;
        else files.push_back(argv[i]);
    }
    if (files.empty()) return usage(), 2;
    if (!loadEngine()) return 2;
    auto tree = reinterpret_cast<TreeFileFunction>(qbHostModuleSymbol(1, "qbRefactorTreeFile"));
    if (!tree) {
        std::fprintf(stderr, "qbrefactor: the engine has no qbRefactorTreeFile\n");
        return 2;
    }
    if (options == TREE_ROUNDTRIP) return roundTrip(tree, files);
    int status = 0;
    for (const char* file : files) {
        int rc = tree(file, options);
        if (rc < 0) std::fprintf(stderr, "%s: error: %s\n", file, qbHostMessageText(rc));
        if (rc != 0) status = 1;
    }
    return status;
}

}  // namespace cli
