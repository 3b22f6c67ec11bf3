// `qbrefactor lex`: the tokens of files as the front end sees them.
#pragma once

namespace cli {

int runLexCommand(int argc, char** argv);

}  // namespace cli
