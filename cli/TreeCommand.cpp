#include "TreeCommand.h"

#include <cstdio>
#include <cstring>
#include <string>

#include "FileSetRun.h"
#include "qbapi_host.h"

namespace cli {

namespace {

enum { TREE_PRINT = 0, TREE_ROUNDTRIP = 1, TREE_ERRORS = 2 };
typedef int (*TreeFunction)(int handle, const char* fileName, int options);

void usage(const char*) {
    std::printf("usage: qbrefactor tree [--tree] [options] FILE...     the parse tree of each file\n"
                "       qbrefactor tree --errors [options] FILE...     the messages of the parse\n"
                "       qbrefactor tree --roundtrip [options] FILE...  check the tree's text and "
                "count clean parses\n%s",
                fileSetOptionsUsage());
}

// Takes the mode flags out of argv, so the shared options don't see them.
int takeMode(int& argc, char** argv) {
    int mode = TREE_PRINT, kept = 0;
    for (int i = 0; i < argc; ++i) {
        if (i > 0 && !std::strcmp(argv[i], "--tree")) mode = TREE_PRINT;
        else if (i > 0 && !std::strcmp(argv[i], "--roundtrip")) mode = TREE_ROUNDTRIP;
        else if (i > 0 && !std::strcmp(argv[i], "--errors")) mode = TREE_ERRORS;
        else argv[kept++] = argv[i];
    }
    argc = kept;
    return mode;
}

int roundTrip(TreeFunction tree, const FileSetRun& run) {
    const std::vector<std::string>& files = run.options().files;
    int differ = 0, failed = 0, withErrors = 0;
    for (const std::string& file : files) {
        int rc = tree(run.transaction(), file.c_str(), TREE_ROUNDTRIP);
        if (rc < 0) {
            std::fprintf(stderr, "%s: error: %s\n", file.c_str(), qbHostMessageText(rc));
            ++failed;
            continue;
        }
        if (rc & 1) std::printf("differs: %s\n", file.c_str()), ++differ;
        if (rc & 2) std::printf("errors: %s\n", file.c_str()), ++withErrors;
    }
    std::printf("%zu files, %d identical, %d differ, %d unreadable, %d parsed without errors\n",
                files.size(), int(files.size()) - differ - failed, differ, failed,
                int(files.size()) - failed - withErrors);
    return differ || failed ? 1 : 0;
}

int printEach(TreeFunction tree, const FileSetRun& run, int mode) {
    int status = 0;
    for (const std::string& file : run.options().files) {
        std::fflush(stdout);
        int rc = tree(run.transaction(), file.c_str(), mode);
        if (rc < 0) std::fprintf(stderr, "%s: error: %s\n", file.c_str(), qbHostMessageText(rc));
        if (rc != 0) status = 1;
    }
    return status;
}

}  // namespace

// Messages go to stderr as the engine shows them, except with --errors, which prints them.
int runTreeCommand(int argc, char** argv) {
    int mode = takeMode(argc, argv);
    FileSetRun run("tree", usage);
    if (int rc = run.open(argc, argv, mode == TREE_PRINT); rc != FileSetRun::OPENED) return rc;
    int failures = run.addFiles();
    auto tree = reinterpret_cast<TreeFunction>(qbHostModuleSymbol(1, "qbRefactorTreeOfFile"));
    if (!tree) {
        std::fprintf(stderr, "qbrefactor: the engine has no qbRefactorTreeOfFile\n");
        run.finish(0);
        return 2;
    }
    int status = mode == TREE_ROUNDTRIP ? roundTrip(tree, run) : printEach(tree, run, mode);
    std::fflush(stdout);
    run.finish(0);
    return failures || status ? 1 : 0;
}

}  // namespace cli
