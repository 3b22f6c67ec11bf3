// The macro functions the engine calls back while it works, written for a terminal.
#pragma once

#include <set>
#include <string>

namespace cli {

struct CallbackOptions {
    bool keepGoing = false;  // answer "skip" when a file fails
    bool verbose = false;    // print the engine's messages and each file's name
    bool showErrors = true;  // print a file's messages when the engine asks to show them
};

// Registers refactor_message, refactor_progress, refactor_file_message, refactor_locate_file,
// refactor_show_errors and refactor_prompt_to_skip.
void registerCallbacks(const CallbackOptions& options);
// Clears the progress bar, if one is drawn.
void endProgress();
// Files whose errors the engine asked to show, and that were printed.
const std::set<std::string>& shownFiles();
// Prints a file's errors from the transaction, one per line on stderr.
void printFileErrors(int transaction, const std::string& fileName);
// Whether the prompt answered "stop" at least once.
bool stoppedAtFailure();

}  // namespace cli
