// qbrefactor parse and qbrefactor preprocess: a transaction over the given files.
#pragma once

namespace cli {

int runParseCommand(int argc, char** argv);
int runPreprocessCommand(int argc, char** argv);

}  // namespace cli
