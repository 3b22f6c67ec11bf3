#include "FileSetRun.h"

#include <cstdio>
#include <iostream>

#include "ConfigCommand.h"
#include "EngineCalls.h"
#include "HostCallbacks.h"
#include "ModuleLoader.h"
#include "qbapi_host.h"

namespace cli {

namespace {

const int USAGE_ERROR = 2;

// Errors the engine didn't ask to show while it ran; gives the total count.
int printRemainingErrors(int t) {
    int files = engineCall("refactor_count_error_files", {qbArgInt(t)});
    for (int i = 0; i < files; ++i) {
        std::string name = engineString("refactor_get_error_file_name", {qbArgInt(t), qbArgInt(i)});
        if (!shownFiles().count(name)) printFileErrors(t, name);
    }
    return engineCall("refactor_count_errors", {qbArgInt(t), qbArgString("")});
}

}  // namespace

FileSetRun::FileSetRun(const char* command, void (*usage)(const char*))
    : command(command), usage(usage) {}

FileSetRun::~FileSetRun() = default;

int FileSetRun::open(int argc, char** argv, bool showErrors) {
    std::string error;
    if (!parseFileSetOptions(argc, argv, 1, fileSet, error)) {
        std::fprintf(stderr, "qbrefactor %s: %s\n", command, error.c_str());
        usage(command);
        return USAGE_ERROR;
    }
    if (fileSet.help) {
        usage(command);
        return 0;
    }
    // The engine first: reading the configurations would load it without its message file.
    if (!loadEngine()) return USAGE_ERROR;
    qbcli::FileSetupOptions how{qbcli::configurationFilePath(), fileSet.configName,
                                fileSet.noConfig, fileSet.compileCommands,
                                fileSet.compilerArguments};
    setup.reset(new qbcli::FileSetup(how, std::cerr));
    if (!setup->open(error)) {
        std::fprintf(stderr, "qbrefactor %s: %s\n", command, error.c_str());
        return USAGE_ERROR;
    }
    registerCallbacks(CallbackOptions{fileSet.keepGoing, fileSet.verbose, showErrors});
    handle = engineCall("refactor_begin_transaction", {});
    if (handle >= 0) return OPENED;
    reportStatus("begin", handle);
    return USAGE_ERROR;
}

int FileSetRun::addFiles() {
    int failures = 0;
    for (const std::string& file : fileSet.files) {
        qbcli::AddFileArguments a;
        std::string error;
        if (!setup->argumentsFor(file, a, error)) {
            std::fprintf(stderr, "qbrefactor: %s\n", error.c_str());
            ++failures;
            continue;
        }
        if (fileSet.verbose && a.configurationName.empty())
            std::fprintf(stderr, "qbrefactor: %s: no configuration\n", file.c_str());
        else if (fileSet.verbose)
            std::fprintf(stderr, "qbrefactor: %s: configuration %s (header %s), read as %s\n",
                         file.c_str(), a.configurationName.c_str(),
                         a.configurationHeader.c_str(), a.defineOptions == "-xc" ? "C" : "C++");
        int rc = engineCall("refactor_add_file",
                            {qbArgInt(handle), qbArgString(file.c_str()),
                             qbArgString(a.userIncludePath.c_str()),
                             qbArgString(a.systemIncludePath.c_str()),
                             qbArgString(a.defineOptions.c_str()),
                             qbArgString(a.compilerConfig.c_str())});
        if (rc < 0) {
            reportStatus(file, rc);
            ++failures;
        }
    }
    return failures;
}

int FileSetRun::finish(int status) {
    endProgress();
    int errors = printRemainingErrors(handle);
    if (stoppedAtFailure())
        std::fprintf(stderr, "qbrefactor: stopped at the first file with errors "
                             "(--keep-going goes on)\n");
    else if (status < 0 && status != qbmsg::FileHasErrors)
        reportStatus("stopped", status);
    engineCall("refactor_cancel_transaction", {qbArgInt(handle)});
    return errors > 0 || status < 0 ? 1 : 0;
}

}  // namespace cli
