#include "ParseCommand.h"

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "EngineCalls.h"
#include "FileSetOptions.h"
#include "HostCallbacks.h"
#include "ModuleLoader.h"
#include "qbapi_host.h"

namespace cli {

namespace {

void usage(const char* command) {
    std::printf(
        "usage: qbrefactor %s [options] FILE...\n"
        "  -I DIR            add a folder to the user include path\n"
        "  -isystem DIR      add a folder to the system include path\n"
        "  -D NAME[=VALUE]   define a macro\n"
        "  -U NAME           undefine a macro\n"
        "  -k, --keep-going  go on with the other files after a file fails\n"
        "  -v, --verbose     print each file and the engine's progress messages\n"
        "%s",
        command,
        std::string(command) == "preprocess"
            ? "  --line-markers    mark where each line came from\n"
              "  --tree            print each file's source tree instead (nothing is run)\n"
              "  --emit-source     write the text of each file's source tree (the file's bytes)\n"
              "  --roundtrip       name each file whose source tree's text differs from it\n"
            : "  --emit            write each file's text as the parse keeps it (it must be\n"
              "                    the file's bytes); messages go to stderr\n");
}

int addFiles(int t, const FileSetOptions& o) {
    int failures = 0;
    std::string user = o.userIncludePath(), system = o.systemIncludePath();
    std::string defines = o.defineOptions();
    for (const std::string& file : o.files) {
        int rc = engineCall("refactor_add_file",
                            {qbArgInt(t), qbArgString(file.c_str()), qbArgString(user.c_str()),
                             qbArgString(system.c_str()), qbArgString(defines.c_str()),
                             qbArgString("")});
        if (rc < 0) {
            reportStatus(file, rc);
            ++failures;
        }
    }
    return failures;
}

// Errors the engine didn't ask to show while it ran; gives the total count.
int printRemainingErrors(int t) {
    int files = engineCall("refactor_count_error_files", {qbArgInt(t)});
    for (int i = 0; i < files; ++i) {
        std::string name = engineString("refactor_get_error_file_name", {qbArgInt(t), qbArgInt(i)});
        if (!shownFiles().count(name)) printFileErrors(t, name);
    }
    return engineCall("refactor_count_errors", {qbArgInt(t), qbArgString("")});
}

int finish(int t, int status) {
    endProgress();
    int errors = printRemainingErrors(t);
    if (stoppedAtFailure())
        std::fprintf(stderr, "qbrefactor: stopped at the first file with errors "
                             "(--keep-going goes on)\n");
    else if (status < 0 && status != qbmsg::FileHasErrors)
        reportStatus("stopped", status);
    engineCall("refactor_cancel_transaction", {qbArgInt(t)});
    return errors > 0 || status < 0 ? 1 : 0;
}

// The options, with the usage for a bad one or --help: 0, -1 for an error, -2 for help.
int readOptions(const char* command, int argc, char** argv, FileSetOptions& o) {
    std::string error;
    if (!parseFileSetOptions(argc, argv, 1, o, error)) {
        std::fprintf(stderr, "qbrefactor %s: %s\n", command, error.c_str());
        usage(command);
        return -1;
    }
    if (o.help) {
        usage(command);
        return -2;
    }
    return 0;
}

// Shared by both commands: options, module, callbacks, transaction and files.
int openFileSet(const char* command, int argc, char** argv, FileSetOptions& o) {
    if (int rc = readOptions(command, argc, argv, o)) return rc;
    if (!loadEngine()) return -1;
    registerCallbacks(CallbackOptions{o.keepGoing, o.verbose});
    int t = engineCall("refactor_begin_transaction", {});
    if (t < 0) reportStatus("begin", t);
    return t;
}

int exitFor(int openStatus) { return openStatus == qbmsg::FileNotFound ? 0 : 2; }

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

// The source trees of files on their own: no transaction, and include folders and definitions
// are accepted but unused, since reading a tree opens no include.
int runSourceTrees(int argc, char** argv, int mode) {
    FileSetOptions o;
    if (int rc = readOptions("preprocess", argc, argv, o)) return exitFor(rc);
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
    FileSetOptions o;
    bool emit = takeFlag(argc, argv, "--emit");
    int t = openFileSet("parse", argc, argv, o);
    if (t < 0) return exitFor(t);
    int failures = addFiles(t, o);
    if (emit) {
        // Only a file that gave no text fails: the messages are for the reader.
        failures += emitFiles(t, o);
        finish(t, 0);
        return failures ? 1 : 0;
    }
    int status = engineCall("refactor_c_parse", {qbArgInt(t), qbArgInt(0)});
    int rc = finish(t, status);
    if (rc == 0 && failures == 0 && o.verbose)
        std::fprintf(stderr, "qbrefactor: %zu file(s) parsed\n", o.files.size());
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
    FileSetOptions o;
    int t = openFileSet("preprocess", argc, argv, o);
    if (t < 0) return exitFor(t);
    int failures = addFiles(t, o);
    int wid = qbHostWindowCreate("");
    int status = engineCall("refactor_c_preprocess",
                            {qbArgInt(t), qbArgInt(wid), qbArgInt(o.lineMarkers ? 1 : 0)});
    size_t length = 0;
    const char* text = qbHostWindowText(wid, &length);
    endProgress();
    if (text) std::fwrite(text, 1, length, stdout);
    std::fflush(stdout);
    qbHostWindowDestroy(wid);
    int rc = finish(t, status);
    return failures ? 1 : rc;
}

}  // namespace cli
