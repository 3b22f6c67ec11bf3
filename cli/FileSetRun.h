// One run of a command over a set of files, the way in that every command that parses shares:
// its options, each file's configuration (FileSetup), the engine, the host callbacks and one
// transaction holding the files. A refactoring command opens a run, calls its engine command
// on transaction(), and ends with finish().
#pragma once

#include <memory>
#include <string>

#include "FileSetOptions.h"
#include "FileSetup.h"

namespace cli {

class FileSetRun {
public:
    // usage prints the command's own options; the file-set options follow it.
    FileSetRun(const char* command, void (*usage)(const char* command));
    ~FileSetRun();

    // Reads argv (argv[0] is the command's name). OPENED, or the exit status to give: 0 after
    // --help, 2 for a bad option, an unknown configuration or an engine that can't be loaded.
    enum { OPENED = -1 };
    // showErrors false leaves a file's messages to the command (the engine's requests to show
    // them are only recorded).
    int open(int argc, char** argv, bool showErrors = true);
    // Adds every file with its own configuration; the count of files that couldn't be added.
    int addFiles();
    // Prints what the engine didn't show, cancels the transaction, and gives the exit status
    // for the command's result: 0 clean, 1 when a file has errors or status is a failure.
    int finish(int status);

    const FileSetOptions& options() const { return fileSet; }
    int transaction() const { return handle; }

private:
    const char* command;
    void (*usage)(const char* command);
    FileSetOptions fileSet;
    std::unique_ptr<qbcli::FileSetup> setup;
    int handle = -1;
};

}  // namespace cli
