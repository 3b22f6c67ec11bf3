#include <gtest/gtest.h>

#include <algorithm>
#include <dirent.h>
#include <string>
#include <sys/stat.h>
#include <vector>

#include "CPPreprocessorNodes.h"
#include "support/PreprocessorTestKit.h"

namespace {

void listFiles(const std::string& dir, const std::vector<std::string>& suffixes,
               std::vector<std::string>& out, int depth = 0) {
    DIR* d = opendir(dir.c_str());
    if (!d || depth > 6) {
        if (d) closedir(d);
        return;
    }
    while (dirent* e = readdir(d)) {
        std::string name = e->d_name;
        if (name == "." || name == "..") continue;
        std::string path = dir + "/" + name;
        struct stat info;
        if (lstat(path.c_str(), &info) != 0) continue;
        if (S_ISDIR(info.st_mode)) {
            listFiles(path, suffixes, out, depth + 1);
            continue;
        }
        if (!S_ISREG(info.st_mode)) continue;
        for (const std::string& s : suffixes)
            if (name.size() > s.size() && name.compare(name.size() - s.size(), s.size(), s) == 0)
                out.push_back(path);
    }
    closedir(d);
}

// The first node below node (itself included) that doesn't fit its kind's shape, or null.
const TBPParseNode<CPParseNodeType>* firstMisshapen(TBPParseNode<CPParseNodeType>* node) {
    if (!node || !node->isTree()) return nullptr;
    if (node->validate() != 0) return node;
    for (unsigned i = 0; i < node->getChildCount(); ++i)
        if (const TBPParseNode<CPParseNodeType>* bad = firstMisshapen(node->getChild(i))) return bad;
    return nullptr;
}

// The source tree prints back as the file, every node of a clean tree has its shape, and
// running it neither crashes nor leaks.
void expectRoundTrip(const std::string& path) {
    std::string text = readFile(path);
    PreprocessorRun run(text, path.c_str());
    EXPECT_EQ(run.sourceText(), text) << path;
    CPPreprocessorUnit* tree = run.pp().getSourceTree();
    if (tree && !tree->hasError()) {
        const TBPParseNode<CPParseNodeType>* bad = firstMisshapen(tree);
        EXPECT_FALSE(bad) << path << ": " << (bad ? bad->getTypeName() : "") << " at line "
                          << (bad && bad->getFirstToken() ? bad->getFirstToken()->getLine() : 0);
    }
    EXPECT_GE(run.pp().run(), 0) << path;
}

}  // namespace

TEST(PreprocessorSourceTree, RepositorySourcesPrintBackByteForByte) {
    std::vector<std::string> files;
    for (const char* layer : {"foundation", "framework", "lexer", "preprocessor", "parser", "host"})
        listFiles(std::string(QB_SOURCE_DIR) + "/" + layer, {".cpp", ".h", ".def", ".inc"}, files);
    ASSERT_GT(files.size(), 50u);
    for (const std::string& f : files) expectRoundTrip(f);
}

TEST(PreprocessorSourceTree, SystemHeadersPrintBackByteForByte) {
    std::vector<std::string> files;
    listFiles("/usr/include", {".h"}, files);
    if (files.size() < 200) GTEST_SKIP() << "too few system headers";
    std::sort(files.begin(), files.end());
    size_t step = files.size() / 200;
    for (size_t i = 0; i < files.size(); i += step) expectRoundTrip(files[i]);
}

TEST(PreprocessorSourceTree, HostileTextStillPrintsBack) {
    const char* cases[] = {
        "",
        "#",
        "#define X 1",
        "#ifdef",
        "#if 0\nfoo \"unbalanced\n#ifdef X\n",
        "#define f(x,x) x\n#define g(a b) a\n#define h(,) 1\n#define (x) 2\nf(1,2) g(1) h()\n",
        "#define f(x) x\nf(1, (2\n#endif\n#else\n",
        "#include\n#include <a\n#include \"x.h\" junk\n#pragma\n#line\n#error ` @ \n#foo bar\n",
        "#define e(...) #\n#define s(x) #y\n#define c(x) x ## ## x\nc(1) s(2) e(3)\n",
        "a \\\n b \\",
        "#if defined(A) && defined B\n#elif\n#else junk\n#endif A B C\n",
    };
    for (const char* text : cases) {
        PreprocessorRun run(text);
        EXPECT_EQ(run.sourceText(), text);
        EXPECT_GE(run.pp().run(), 0) << text;
        run.spellings();
    }
}

TEST(PreprocessorSourceTree, DirectivesBecomeTheirNodes) {
    PreprocessorRun run("#\n#foo bar\n#pragma once\n#define N 1\n#undef N\nint x;\n#line 9\n");
    ASSERT_EQ(run.pp().readSourceTree(), 0);
    CPPreprocessorUnit* unit = run.pp().getSourceTree();
    std::vector<int> kinds;
    for (unsigned i = 0; i < unit->getChildCount(); ++i)
        if (unit->getChild(i)->isTree()) kinds.push_back(unit->getChild(i)->getType());
    EXPECT_EQ(kinds, (std::vector<int>{CPN_PreprocessorEmpty, CPN_PreprocessorUnknown,
                                       CPN_PreprocessorPragma, CPN_PreprocessorDefine,
                                       CPN_PreprocessorUndef, CPN_PreprocessorPPTokens,
                                       CPN_PreprocessorLine}));
    EXPECT_FALSE(unit->hasError());
    EXPECT_EQ(unit->validate(), 0);
    EXPECT_TRUE(unit->getChild(0)->isKindOf(CPN_PreprocessorDirective));
}

TEST(PreprocessorSourceTree, BranchOutsideAGroupAndCutOffGroupAreErrors) {
    PreprocessorRun stray("#endif\nint a;\n");
    EXPECT_EQ(stray.spellings(), (std::vector<std::string>{"int", "a", ";"}));
    EXPECT_TRUE(stray.pp().getSourceTree()->hasError());

    PreprocessorRun cut("#ifndef G\nint b;\n");
    EXPECT_EQ(cut.spellings(), (std::vector<std::string>{"int", "b", ";"}));
    EXPECT_TRUE(cut.pp().getSourceTree()->hasError());
}
