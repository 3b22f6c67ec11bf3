#include "ParseCommand.h"

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "EngineCalls.h"
#include "FileSetRun.h"
#include "HostCallbacks.h"
#include "ModuleLoader.h"
#include "qbapi_host.h"

namespace cli {

namespace {

void usage(const char* command) {
    std::printf("usage: qbrefactor %s [options] FILE...\n%s%s", command, fileSetOptionsUsage(),
                std::string(command) == "preprocess"
                    ? "  --line-markers    mark where each line came from\n"
                      "  --tree            print each file's source tree instead (nothing is run)\n"
                      "  --emit-source     write the text of each file's source tree (the file's bytes)\n"
                      "  --roundtrip       name each file whose source tree's text differs from it\n"
                    : "  --emit            write each file's text as the parse keeps it (it must be\n"
                      "                    the file's bytes); messages go to stderr\n");
}

typedef int (*ParsedTextFunction)(int handle, const char* fileName, char* buffer, int size);

// Takes a command's own flag out of argv, so the shared options don't see it; true if it was
// there.
bool takeFlag(int& argc, char** argv, const char* flag) {
    bool found = false;
    int kept = 0;
    for (int i = 0; i < argc; ++i) {
        if (i > 0 && std::strcmp(argv[i], flag) == 0) found = true;
        else argv[kept++] = argv[i];
    }
    argc = kept;
    return found;
}

// Writes each file's text as its parse keeps it; 1 when a file gave no text.
int emitFiles(int t, const FileSetOptions& o) {
    auto text = reinterpret_cast<ParsedTextFunction>(
        qbHostModuleSymbol(1, "qbRefactorParsedFileText"));
    if (!text) {
        std::fprintf(stderr, "qbrefactor: the engine has no qbRefactorParsedFileText\n");
        return 1;
    }
    int failures = 0;
    std::vector<char> buffer(1 << 16);
    for (const std::string& file : o.files) {
        int n = text(t, file.c_str(), buffer.data(), int(buffer.size()));
        if (n > int(buffer.size())) {
            buffer.resize(size_t(n));
            n = text(t, file.c_str(), buffer.data(), int(buffer.size()));
        }
        if (n < 0) {
            reportStatus(file, n);
            ++failures;
            continue;
        }
        std::fwrite(buffer.data(), 1, size_t(n), stdout);
    }
    std::fflush(stdout);
    return failures;
}

// ---- Source trees: read, never run (--tree, --emit-source, --roundtrip) ----------------------

enum { SOURCE_NONE = -1, SOURCE_PRINT = 0, SOURCE_EMIT = 1, SOURCE_ROUNDTRIP = 2 };
enum { SOURCE_DIFFERS = 1, SOURCE_ERRORS = 2 };
typedef int (*SourceFileFunction)(const char* fileName, int options, char* buffer, int size);

// Takes the source-tree flags out of argv; false when more than one kind was given.
bool takeSourceMode(int& argc, char** argv, int& mode) {
    static const char* const flags[] = {"--tree", "--emit-source", "--roundtrip"};
    int given = 0;
    for (int m = SOURCE_PRINT; m <= SOURCE_ROUNDTRIP; ++m)
        if (takeFlag(argc, argv, flags[m])) mode = m, ++given;
    return given <= 1;
}

void reportUnreadable(const std::string& file, int status) {
    std::fprintf(stderr, "%s: error: %s\n", file.c_str(), qbHostMessageText(status));
}

// Each file's text as its source tree gives it back; 1 when a file gave none.
int emitSources(SourceFileFunction read, const std::vector<std::string>& files) {
    int status = 0;
    std::vector<char> buffer(1 << 16);
    for (const std::string& file : files) {
        int n = read(file.c_str(), SOURCE_EMIT, buffer.data(), int(buffer.size()));
        if (n > int(buffer.size())) {
            buffer.resize(size_t(n));
            n = read(file.c_str(), SOURCE_EMIT, buffer.data(), int(buffer.size()));
        }
        if (n < 0) {
            reportUnreadable(file, n);
            status = 1;
            continue;
        }
        std::fwrite(buffer.data(), 1, size_t(n), stdout);
    }
    std::fflush(stdout);
    return status;
}

// 1 when a file can't be read or its tree carries errors.
int printSources(SourceFileFunction read, const std::vector<std::string>& files) {
    int status = 0;
    for (const std::string& file : files) {
        int rc = read(file.c_str(), SOURCE_PRINT, nullptr, 0);
        if (rc < 0) reportUnreadable(file, rc);
        if (rc != 0) status = 1;
    }
    return status;
}

int roundTripSources(SourceFileFunction read, const std::vector<std::string>& files) {
    int differ = 0, failed = 0, withErrors = 0;
    for (const std::string& file : files) {
        int rc = read(file.c_str(), SOURCE_ROUNDTRIP, nullptr, 0);
        if (rc < 0) {
            reportUnreadable(file, rc);
            ++failed;
            continue;
        }
        if (rc & SOURCE_DIFFERS) std::printf("differs: %s\n", file.c_str()), ++differ;
        if (rc & SOURCE_ERRORS) std::printf("errors: %s\n", file.c_str()), ++withErrors;
    }
    std::printf("%zu files, %d identical, %d differ, %d unreadable, %d read without errors\n",
                files.size(), int(files.size()) - differ - failed, differ, failed,
                int(files.size()) - failed - withErrors);
    return differ || failed ? 1 : 0;
}

// The source trees of files on their own: no transaction, and configurations, include folders
// and definitions are accepted but unused, since reading a tree opens no include.
int runSourceTrees(int argc, char** argv, int mode) {
    FileSetOptions o;
    std::string error;
    if (!parseFileSetOptions(argc, argv, 1, o, error)) {
        std::fprintf(stderr, "qbrefactor preprocess: %s\n", error.c_str());
        usage("preprocess");
        return 2;
    }
    if (o.help) return usage("preprocess"), 0;
    if (!loadEngine()) return 2;
    auto read = reinterpret_cast<SourceFileFunction>(
        qbHostModuleSymbol(1, "qbRefactorPreprocessorSourceFile"));
    if (!read) {
        std::fprintf(stderr, "qbrefactor: the engine has no qbRefactorPreprocessorSourceFile\n");
        return 2;
    }
    if (mode == SOURCE_ROUNDTRIP) return roundTripSources(read, o.files);
    if (mode == SOURCE_EMIT) return emitSources(read, o.files);
    return printSources(read, o.files);
}

}  // namespace

int runParseCommand(int argc, char** argv) {
    bool emit = takeFlag(argc, argv, "--emit");
    FileSetRun run("parse", usage);
    if (int rc = run.open(argc, argv); rc != FileSetRun::OPENED) return rc;
    int failures = run.addFiles();
    int t = run.transaction();
    if (emit) {
        // Only a file that gave no text fails: the messages are for the reader.
        failures += emitFiles(t, run.options());
        run.finish(0);
        return failures ? 1 : 0;
    }
    int status = engineCall("refactor_c_parse", {qbArgInt(t), qbArgInt(0)});
    int rc = run.finish(status);
    if (rc == 0 && failures == 0 && run.options().verbose)
        std::fprintf(stderr, "qbrefactor: %zu file(s) parsed\n", run.options().files.size());
    return failures ? 1 : rc;
}

int runPreprocessCommand(int argc, char** argv) {
    int mode = SOURCE_NONE;
    if (!takeSourceMode(argc, argv, mode)) {
        std::fprintf(stderr, "qbrefactor preprocess: --tree, --emit-source and --roundtrip "
                             "don't go together\n");
        usage("preprocess");
        return 2;
    }
    if (mode != SOURCE_NONE) return runSourceTrees(argc, argv, mode);
    FileSetRun run("preprocess", usage);
    if (int rc = run.open(argc, argv); rc != FileSetRun::OPENED) return rc;
    int failures = run.addFiles();
    int wid = qbHostWindowCreate("");
    int status = engineCall("refactor_c_preprocess",
                            {qbArgInt(run.transaction()), qbArgInt(wid),
                             qbArgInt(run.options().lineMarkers ? 1 : 0)});
    size_t length = 0;
    const char* text = qbHostWindowText(wid, &length);
    endProgress();
    if (text) std::fwrite(text, 1, length, stdout);
    std::fflush(stdout);
    qbHostWindowDestroy(wid);
    int rc = run.finish(status);
    return failures ? 1 : rc;
}

}  // namespace cli
