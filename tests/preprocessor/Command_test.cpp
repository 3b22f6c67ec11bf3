#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

#include "support/PreprocessorTestKit.h"

#ifdef QB_CLI_PATH
// The command line's preprocess goes through the transaction to the preprocessor and back.
TEST(PreprocessCommand, WritesExpandedTextWithMarkersAndOptions) {
    const char* tmp = std::getenv("QB_TEST_TMP");
    std::string dir = std::string(tmp && *tmp ? tmp : "/tmp") + "/ppcommand";
    ASSERT_EQ(std::system(("mkdir -p '" + dir + "'").c_str()), 0);
    std::ofstream(dir + "/a.c") << "#define SQ(x) ((x)*(x))\n#ifdef SQ\nint v = SQ(N);\n#endif\n";
    std::string command = std::string(QB_CLI_PATH) + " preprocess -DN=4 --line-markers '" + dir +
                          "/a.c' > '" + dir + "/out.txt' 2>&1";
    EXPECT_EQ(std::system(command.c_str()), 0);
    std::string out = readFile(dir + "/out.txt");
    EXPECT_NE(out.find("#line 3 \"" + dir + "/a.c\"\nint v=((4)*(4));"), std::string::npos)
        << out;
}
#endif
