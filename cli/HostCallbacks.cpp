#include "HostCallbacks.h"

#include <unistd.h>

#include <cstdio>

#include "EngineCalls.h"
#include "qbapi_host.h"

namespace cli {

namespace {

CallbackOptions options;
std::set<std::string> shown;
std::string currentFile;
bool barDrawn = false;
bool stopped = false;
const int BAR_WIDTH = 30;

std::string textArg(int argc, const QBArgRecord* args, int i) {
    return i < argc && args[i].tag == QBARG_STRING && qbArgText(args[i]) ? qbArgText(args[i]) : "";
}

int64_t intArg(int argc, const QBArgRecord* args, int i) { return i < argc ? args[i].value : 0; }

int onMessage(void*, int argc, const QBArgRecord* args) {
    if (options.verbose) std::fprintf(stderr, "qbrefactor: %s\n", textArg(argc, args, 0).c_str());
    return 0;
}

int onProgress(void*, int argc, const QBArgRecord* args) {
    if (!isatty(STDERR_FILENO)) return 0;
    int64_t current = intArg(argc, args, 0), total = intArg(argc, args, 1);
    int percent = total > 0 ? int(current * 100 / total) : 0;
    percent = percent < 0 ? 0 : percent > 100 ? 100 : percent;
    int filled = percent * BAR_WIDTH / 100;
    std::fprintf(stderr, "\r[%s%s] %3d%% %s\033[K", std::string(size_t(filled), '#').c_str(),
                 std::string(size_t(BAR_WIDTH - filled), ' ').c_str(), percent,
                 currentFile.c_str());
    barDrawn = true;
    return 0;
}

int onFileMessage(void*, int argc, const QBArgRecord* args) {
    currentFile = textArg(argc, args, 0);
    if (options.verbose)
        std::fprintf(stderr, "[%lld/%lld] %s\n", (long long)intArg(argc, args, 1),
                     (long long)intArg(argc, args, 2), currentFile.c_str());
    return 0;
}

// Include search is the engine's; the terminal has nobody to ask, so nothing more is found.
int onLocateFile(void*, int, const QBArgRecord*) { return 0; }

int onShowErrors(void*, int argc, const QBArgRecord* args) {
    std::string file = textArg(argc, args, 1);
    if (options.showErrors) printFileErrors(int(intArg(argc, args, 0)), file);
    shown.insert(file);
    return 0;
}

int onPromptToSkip(void*, int, const QBArgRecord*) {
    if (options.keepGoing) return 1;
    stopped = true;
    return qbmsg::FileHasErrors;  // ends the walk
}

}  // namespace

void registerCallbacks(const CallbackOptions& chosen) {
    options = chosen;
    qbHostRegisterMacroFunction("refactor_message", onMessage, nullptr);
    qbHostRegisterMacroFunction("refactor_progress", onProgress, nullptr);
    qbHostRegisterMacroFunction("refactor_file_message", onFileMessage, nullptr);
    qbHostRegisterMacroFunction("refactor_locate_file", onLocateFile, nullptr);
    qbHostRegisterMacroFunction("refactor_show_errors", onShowErrors, nullptr);
    qbHostRegisterMacroFunction("refactor_prompt_to_skip", onPromptToSkip, nullptr);
}

void endProgress() {
    if (barDrawn) std::fprintf(stderr, "\r\033[K");
    barDrawn = false;
}

const std::set<std::string>& shownFiles() { return shown; }

bool stoppedAtFailure() { return stopped; }

void printFileErrors(int transaction, const std::string& fileName) {
    endProgress();
    int count = engineCall("refactor_count_errors",
                           {qbArgInt(transaction), qbArgString(fileName.c_str())});
    for (int i = 0; i < count; ++i) {
        std::string text = engineString("refactor_get_error", {qbArgInt(transaction),
                                                               qbArgString(fileName.c_str()),
                                                               qbArgInt(i)});
        std::fprintf(stderr, "%s\n", text.c_str());
    }
}

}  // namespace cli
