// `qbrefactor tree`: the parse trees of files, or a check that they give the files back.
#pragma once

namespace cli {

int runTreeCommand(int argc, char** argv);

}  // namespace cli
