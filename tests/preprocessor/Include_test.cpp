// #include as the preprocessor runs it: the name forms, the search order, include-once, the
// depth limit, and the guard check on real header shapes.
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <string>

#include "CPPreprocessorInclude.h"
#include "CPPreprocessorReader.h"
#include "CPWhitespaceFilter.h"
#include "MessageLines.h"
#include "support/PreprocessorTestKit.h"

using quernbase::QBString;

namespace {

std::string scratch() {
    char pattern[] = "/tmp/qbinclude.XXXXXX";
    const char* dir = mkdtemp(pattern);
    return dir ? dir : "/tmp";
}

void put(const std::string& path, const std::string& text) {
    std::string dir = path.substr(0, path.rfind('/'));
    std::string command = "mkdir -p '" + dir + "'";
    ASSERT_EQ(std::system(command.c_str()), 0);
    std::ofstream(path, std::ios::binary) << text;
}

// The served spellings of main (at dir/src/main.c) with the given search paths.
std::string served(const std::string& dir, const std::string& text,
                   const std::vector<std::string>& user = {},
                   const std::vector<std::string>& system = {}) {
    std::string name = dir + "/src/main.c";
    put(name, text);
    PreprocessorRun run(text, name.c_str());
    for (const std::string& p : user) run.pp().addUserIncludePath(QBString(p.c_str()));
    for (const std::string& p : system) run.pp().addSystemIncludePath(QBString(p.c_str()));
    return joinSpellings(run.spellings());
}

// The messages of a run, one a line: see messageLines.
std::string messages(PreprocessorRun& run) {
    run.pp().run();
    TBPErrorLog<CPParseNodeType> log;
    run.pp().collectErrors(log);
    return messageLines(log);
}

bool guarded(const std::string& text, std::string* name = nullptr) {
    BPSourceHandle handle = BPSourceHandle::makeTextSource(QBString(text.c_str()), 1, 0);
    CPLexer* lexer = new CPLexer(handle, 0);
    lexer->addRef();
    CPWhitespaceFilter* filter = new CPWhitespaceFilter(lexer);
    filter->addRef();
    CPPreprocessorUnit* unit = cpParseUnit(*filter, 0);
    unit->addRef();
    QBString guard("");
    TBPToken<CPParseNodeType>* token = nullptr;
    bool result = cpHasIncludeGuard(unit, guard, token);
    if (name) *name = guard.isNull() ? "" : guard.get();
    unit->release();
    filter->release();
    lexer->release();
    return result;
}

}  // namespace

TEST(Include, TheThreeFormsFindTheirFiles) {
    std::string dir = scratch();
    put(dir + "/src/a.h", "quoted");
    put(dir + "/sys/b.h", "angled");
    put(dir + "/sys/c.h", "computed");
    put(dir + "/sys/d.h", "bracketed");
    std::string text =
        "#include \"a.h\"\n#include <b.h>\n#define C \"c.h\"\n#include C\n"
        "#define D <d.h>\n#include D\n";
    EXPECT_EQ(served(dir, text, {}, {dir + "/sys"}), "quoted angled computed bracketed");
}

TEST(Include, QuotedLooksBesideTheIncluderFirstAndAngledDoesNot) {
    std::string dir = scratch();
    put(dir + "/src/x.h", "beside");
    put(dir + "/user/x.h", "user");
    put(dir + "/sys/x.h", "system");
    EXPECT_EQ(served(dir, "#include \"x.h\"\n", {dir + "/user"}, {dir + "/sys"}), "beside");
    EXPECT_EQ(served(dir, "#include <x.h>\n", {dir + "/user"}, {dir + "/sys"}), "user");
    EXPECT_EQ(served(dir, "#include <x.h>\n", {}, {dir + "/sys"}), "system");
    // Either slash separates folders, and a -I prefix and blanks come off a path.
    put(dir + "/user/sub/y.h", "nested");
    EXPECT_EQ(served(dir, "#include \"sub\\y.h\"\n", {" -I" + dir + "/user "}), "nested");
}

TEST(Include, SystemHeadersAndWhatLiesBesideThemAreSystemFiles) {
    std::string dir = scratch();
    put(dir + "/sys/outer.h", "#include \"inner.h\"\nouter");
    put(dir + "/sys/inner.h", "inner");
    put(dir + "/src/main.c", "#include <outer.h>\n");
    PreprocessorRun run("#include <outer.h>\n", (dir + "/src/main.c").c_str());
    run.pp().addSystemIncludePath(QBString((dir + "/sys").c_str()));
    EXPECT_EQ(joinSpellings(run.spellings()), "inner outer");
    BPSourceCache* cache = run.pp().getSourceCache();
    BPSourceHandle* outer = cache->find(QBString((dir + "/sys/outer.h").c_str()));
    BPSourceHandle* inner = cache->find(QBString((dir + "/sys/inner.h").c_str()));
    ASSERT_TRUE(outer && inner);
    EXPECT_TRUE((*outer)->isSystem);
    EXPECT_TRUE((*inner)->isSystem);
}

TEST(Include, AUserPathThatIsAlsoASystemPathGivesSystemFiles) {
    std::string dir = scratch();
    put(dir + "/both/h.h", "text");
    put(dir + "/src/main.c", "");
    PreprocessorRun run("#include \"h.h\"\n", (dir + "/src/main.c").c_str());
    run.pp().addUserIncludePath(QBString((dir + "/both/").c_str()));
    run.pp().addSystemIncludePath(QBString((dir + "/both").c_str()));
    EXPECT_EQ(joinSpellings(run.spellings()), "text");
    BPSourceHandle* entry = run.pp().getSourceCache()->find(QBString((dir + "/both/h.h").c_str()));
    ASSERT_TRUE(entry);
    EXPECT_TRUE((*entry)->isSystem);
}

TEST(Include, GuardedAndOnceHeadersRunOnceEvenAfterUndef) {
    std::string dir = scratch();
    put(dir + "/src/g.h", "/* c */\n#ifndef G_H\n#define G_H\nguarded\n#endif\n");
    put(dir + "/src/o.h", "#pragma once\nonce\n");
    put(dir + "/src/p.h", "plain\n");
    std::string text =
        "#include \"g.h\"\n#undef G_H\n#include \"g.h\"\n#include \"o.h\"\n#include \"o.h\"\n"
        "#include \"p.h\"\n#include \"p.h\"\n";
    EXPECT_EQ(served(dir, text), "guarded once plain plain");
}

TEST(Include, TheGuardCheckReadsOnlyRealGuards) {
    std::string name;
    EXPECT_TRUE(guarded("// c\n#ifndef A\n#define A\nint x;\n#endif\n", &name));
    EXPECT_EQ(name, "A");
    EXPECT_TRUE(guarded("#if !defined(B)\n#define B 1\n#endif\n", &name));
    EXPECT_EQ(name, "B");
    EXPECT_TRUE(guarded("#if !defined C\n#define C\n#endif\n"));
    EXPECT_TRUE(guarded("#ifndef D\n#define D\n#endif\n#pragma message\n"));
    EXPECT_TRUE(guarded("#line 1\n#pragma once\nint x;\n")) << "what follows doesn't matter";
    EXPECT_FALSE(guarded("int x;\n#pragma once\n")) << "but it must come before any text";
    EXPECT_FALSE(guarded("#define E\n#ifndef E\n#define E\n#endif\n"));
    EXPECT_FALSE(guarded("#ifndef F\n#define F\n#else\nint y;\n#endif\n"));
    EXPECT_FALSE(guarded("#if !(G)\n#define G\n#endif\n"));
    EXPECT_FALSE(guarded("#ifndef H\n#define H\n#undef H\n#endif\n"));
    EXPECT_FALSE(guarded("#ifndef I\n#define I\n#endif\nint after;\n"));
    EXPECT_FALSE(guarded("#ifndef J\n#define K\n#endif\n"));
    EXPECT_FALSE(guarded(""));
}

TEST(Include, FailuresAreLoggedAndTheRunGoesOn) {
    std::string dir = scratch();
    put(dir + "/src/main.c", "");
    PreprocessorRun run("#include \"absent.h\"\n#define EMPTY\n#include EMPTY\n#include\nafter\n",
                        (dir + "/src/main.c").c_str());
    std::string text = messages(run);
    EXPECT_NE(text.find("main.c:1:10:-54:absent.h\n"), std::string::npos) << text;
    EXPECT_NE(text.find("main.c:3:0:-8012:"), std::string::npos) << text;
    EXPECT_NE(text.find("main.c:4:0:-8012:"), std::string::npos) << text;
    EXPECT_NE(text.find("main.c:4:8:-8004:"), std::string::npos) << text;
    EXPECT_EQ(joinSpellings(run.spellings()), "after");
}

TEST(Include, ASelfIncludeStopsAtTheDepthLimit) {
    std::string dir = scratch();
    put(dir + "/src/self.h", "#include \"self.h\"\nx\n");
    put(dir + "/src/main.c", "");
    PreprocessorRun run("#include \"self.h\"\n", (dir + "/src/main.c").c_str());
    std::string text = messages(run);
    EXPECT_NE(text.find("self.h:1:10:-8072:"), std::string::npos) << text.substr(0, 400);
    std::vector<std::string> tokens = run.spellings();
    EXPECT_GT(tokens.size(), 100u);
    EXPECT_LT(tokens.size(), 1025u);
    EXPECT_EQ(run.pp().getParseCache()->count(), 1) << "read once, run at every level";
}
