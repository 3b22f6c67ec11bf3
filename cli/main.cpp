// qbrefactor: the engine's command-line host. Each subcommand opens a transaction over the
// files it is given, runs one engine command, and prints what the engine reports.
#include <cstdio>
#include <cstring>

#include "ConfigCommand.h"
#include "LexCommand.h"
#include "ParseCommand.h"
#include "TreeCommand.h"

namespace {

struct Subcommand {
    const char* name;
    const char* summary;
    int (*run)(int argc, char** argv);  // argv[0] is the subcommand's name
};

// One row per subcommand; refactorings add theirs here.
const Subcommand subcommands[] = {
    {"parse", "parse and analyse files, and report their errors", cli::runParseCommand},
    {"preprocess", "write the preprocessed text of files", cli::runPreprocessCommand},
    {"tree", "print the parse trees of files, or check that they give the files back", cli::runTreeCommand},
    {"lex", "list the tokens of files, or check that they give the files back", cli::runLexCommand},
    {"config", "list, show, add, delete or detect compiler configurations", runConfigCommand},
};

void help() {
    std::printf("usage: qbrefactor COMMAND [options] FILE...\n\ncommands:\n");
    for (const Subcommand& s : subcommands) std::printf("  %-12s %s\n", s.name, s.summary);
    std::printf("\n'qbrefactor COMMAND --help' tells a command's options.\n"
                "QBREFACTOR_MODULE names the engine module to load; QBROOT the folder of the\n"
                "message file qbedit.qbb.\n");
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2 || std::strcmp(argv[1], "--help") == 0 || std::strcmp(argv[1], "-h") == 0 ||
        std::strcmp(argv[1], "help") == 0) {
        help();
        return argc < 2 ? 2 : 0;
    }
    for (const Subcommand& s : subcommands)
        if (std::strcmp(argv[1], s.name) == 0) return s.run(argc - 1, argv + 1);
    std::fprintf(stderr, "qbrefactor: unknown command '%s'\n", argv[1]);
    help();
    return 2;
}
