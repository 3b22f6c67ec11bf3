#include <gtest/gtest.h>

#include <string>

#include "CPPreprocessorNodes.h"
#include "support/PreprocessorTestKit.h"

namespace {

CPPreprocessorIfGroup* firstGroup(PreprocessorRun& run) {
    if (run.pp().readSourceTree() != 0) return nullptr;
    CPPreprocessorUnit* unit = run.pp().getSourceTree();
    for (unsigned i = 0; i < unit->getChildCount(); ++i)
        if (unit->getChild(i) && unit->getChild(i)->getType() == CPN_PreprocessorIfGroup)
            return static_cast<CPPreprocessorIfGroup*>(unit->getChild(i));
    return nullptr;
}

class CancellingHost : public CPPreprocessorHost {
public:
    bool cancelled = false;
    bool isCancelled() const override { return cancelled; }
    int reportMessage(const char*, int) override { return cancelled ? -2038 : 0; }
    int reportProgress(int64_t, int64_t, int) override { return 0; }
    int locateFile(const char*, char*, int) override { return -1; }
};

}  // namespace

TEST(ConditionalShapes, BranchCountsAndElseBody) {
    PreprocessorRun full("#ifdef A\na\n#elif B\nb\n#elif C\nc\n#else\nd\n#endif\n");
    CPPreprocessorIfGroup* group = firstGroup(full);
    ASSERT_TRUE(group);
    EXPECT_EQ(group->getElifCount(), 2u);
    ASSERT_TRUE(group->getElseBody());
    EXPECT_EQ(group->validate(), 0);

    PreprocessorRun bare("#ifndef A\na\n#endif\n");
    CPPreprocessorIfGroup* plain = firstGroup(bare);
    ASSERT_TRUE(plain);
    EXPECT_EQ(plain->getChildCount(), 4u);
    EXPECT_EQ(plain->getElifCount(), 0u);
    EXPECT_FALSE(plain->getElseBody());
}

TEST(ConditionalShapes, ErrorsInAnInactiveBranchDontCount) {
    PreprocessorRun run("#ifdef NOPE\n#define f(a a) x\n#endif\nok\n");
    EXPECT_EQ(joinSpellings(run.spellings()), "ok");
    EXPECT_FALSE(run.pp().getSourceTree()->hasError());
}

TEST(NodeCopies, CloneKeepsTextAndEqualsTheOriginal) {
    PreprocessorRun run("#define F(a, ...) g(a, ## __VA_ARGS__) #a\n");
    ASSERT_EQ(run.pp().readSourceTree(), 0);
    auto* define = static_cast<CPPreprocessorDefine*>(run.pp().getSourceTree()->getChild(0));
    TBPParseNode<CPParseNodeType>* copy = define->clone();
    ASSERT_TRUE(copy);
    copy->addRef();
    EXPECT_TRUE(copy->equals(define));
    quernbase::QBString a(""), b("");
    define->getText(a);
    copy->getText(b);
    EXPECT_EQ(std::string(a.get()), std::string(b.get()));
    EXPECT_EQ(copy->getType(), CPN_PreprocessorDefine);
    copy->release();
}

TEST(Cancelling, AHostThatCancelsStopsTheRun) {
    CancellingHost host;
    host.cancelled = true;
    BPSourceHandle handle = BPSourceHandle::makeTextSource("#define A 1\nA A A\n", 1, 0);
    handle->kind = BPSourceText::MAIN_FILE;
    CPLexer* lexer = new CPLexer(handle, 0);
    lexer->addRef();
    CPPreprocessor* pp = new CPPreprocessor(lexer, &host);
    pp->addRef();
    EXPECT_EQ(pp->run(), qbmsg::Cancelled);
    quernbase::QBString out;
    EXPECT_EQ(pp->writePreprocessedText(out, false), qbmsg::Cancelled);
    pp->release();
    lexer->release();
}
