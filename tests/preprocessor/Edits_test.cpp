#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "CPParseTree.h"
#include "CPPreprocessorEdits.h"
#include "CPPreprocessorNodes.h"
#include "CPWhitespaceFilter.h"
#include "support/PreprocessorTestKit.h"

using quernbase::QBString;

namespace {

typedef TBPToken<CPParseNodeType> Token;

// Generated text as a refactoring has it: its tokens, leading whitespace attached, are the
// leaves of a node of their own.
class Fragment {
public:
    explicit Fragment(const std::string& text) {
        BPSourceHandle handle = BPSourceHandle::makeTextSource(
            QBString(text.data(), unsigned(text.size())), 1, 0);
        CPLexer* lexer = new CPLexer(handle, 0);
        CPWhitespaceFilter* filter = new CPWhitespaceFilter(lexer);
        filter->addRef();
        root = new CPParseTree(CPN_ExpressionList);
        root->addRef();
        for (Token* t = filter->currentToken(); t && t->getType() != CPT_EOF; t = filter->nextToken())
            root->addChild(t);
        filter->release();
    }
    ~Fragment() { root->release(); }
    CPPreprocessorEdits::TokenList tokens() const {
        CPPreprocessorEdits::TokenList list;
        for (unsigned i = 0; i < root->getChildCount(); ++i)
            list.add(static_cast<Token*>(root->getChild(i)));
        return list;
    }
    CPParseTree* node() const { return root; }

private:
    CPParseTree* root;
};

// The spellings of the output tree's leaves, in order.
void outputLeaves(TBPParseNode<CPParseNodeType>* node, std::string& out) {
    if (!node) return;
    if (node->isToken()) {
        if (node->getType() == CPT_EOF) return;
        if (!out.empty()) out += ' ';
        out += static_cast<Token*>(node)->getSpellingConst().get();
        return;
    }
    for (unsigned i = 0; i < node->getChildCount(); ++i) outputLeaves(node->getChild(i), out);
}

std::string outputText(PreprocessorRun& run) {
    std::string out;
    outputLeaves(run.pp().getOutputTree(), out);
    return out;
}

// The served token of the given spelling, nth of them, as a written token of the source tree.
CPPreprocessorToken* writtenToken(std::vector<CPPreprocessedToken*>& served, const char* spelling,
                                  unsigned nth = 0) {
    for (CPPreprocessedToken* t : served)
        if (std::string(t->getSpelling().get()) == spelling && nth-- == 0)
            return CPPreprocessorToken::from(t->getWrittenToken());
    return nullptr;
}

}  // namespace

TEST(PreprocessorEdits, ReplacingATokenChangesTheFileAndTheOutputTogether) {
    PreprocessorRun run("int value = 1;\nint other = value;\n");
    std::vector<CPPreprocessedToken*> served = run.served();
    CPPreprocessorToken* second = writtenToken(served, "value", 1);
    ASSERT_TRUE(second);
    CPPreprocessorFilter* node = CPPreprocessorFilter::from(second->getParent());
    ASSERT_TRUE(node);
    int at = node->indexOfChild(second, false);
    ASSERT_GE(at, 0);
    Fragment fragment(" count + 1");
    CPPreprocessorEdits::TokenList list = fragment.tokens();
    ASSERT_EQ(CPPreprocessorEdits::replaceToken(node, unsigned(at), list), 0);
    EXPECT_EQ(run.sourceText(), "int value = 1;\nint other = count + 1;\n");
    EXPECT_EQ(outputText(run), "int value = 1 ; int other = count + 1 ;");
    EXPECT_TRUE(run.pp().getSourceTree()->isModified());
    // The fragment now wraps what went into the file: editing it edits the file.
    auto* wrapped = dynamic_cast<CPPreprocessedToken*>(fragment.node()->getChild(0));
    ASSERT_TRUE(wrapped);
    EXPECT_EQ(wrapped->getSourceToken(), list[0]);
    EXPECT_EQ(wrapped->setSpelling("total"), 0);
    EXPECT_EQ(run.sourceText(), "int value = 1;\nint other = total + 1;\n");
    releaseTokens(served);
}

TEST(PreprocessorEdits, InsertingBeforeAndAfterAnArgumentReachesEveryExpansion) {
    PreprocessorRun run("#define SQ(x) ((x)*(x))\nint v = SQ(n);\n");
    std::vector<CPPreprocessedToken*> served = run.served();
    CPPreprocessorToken* n = writtenToken(served, "n");
    ASSERT_TRUE(n);
    // Whitespace rides on the token behind it: the anchor keeps its own.
    Fragment before(" m +");
    CPPreprocessorEdits::TokenList list = before.tokens();
    ASSERT_EQ(CPPreprocessorEdits::insertBeforeToken(n, list), 0);
    EXPECT_EQ(run.sourceText(), "#define SQ(x) ((x)*(x))\nint v = SQ( m +n);\n");
    EXPECT_EQ(outputText(run), "int v = ( ( m + n ) * ( m + n ) ) ;");
    Fragment after(" - 1");
    list = after.tokens();
    // Given the parse tree's token, the edit goes to the token it stands for.
    ASSERT_EQ(CPPreprocessorEdits::insertAfterToken(served[5], list), 0);
    EXPECT_EQ(run.sourceText(), "#define SQ(x) ((x)*(x))\nint v = SQ( m +n - 1);\n");
    EXPECT_EQ(outputText(run), "int v = ( ( m + n - 1 ) * ( m + n - 1 ) ) ;");
    releaseTokens(served);
}

TEST(PreprocessorEdits, ABodyTokenIsNotEditedThroughAnExpansion) {
    const std::string text = "#define LIMIT (max + 1)\nint a = LIMIT;\n";
    PreprocessorRun run(text);
    std::vector<CPPreprocessedToken*> served = run.served();
    CPPreprocessorToken* max = writtenToken(served, "max");
    ASSERT_TRUE(max);
    Fragment fragment("2 * ");
    CPPreprocessorEdits::TokenList list = fragment.tokens();
    ASSERT_EQ(CPPreprocessorEdits::insertBeforeToken(max, list), 0);
    // The define is shared by every expansion; its text is the define's own business.
    EXPECT_EQ(run.sourceText(), text);
    EXPECT_EQ(outputText(run), "int a = ( 2 * max + 1 ) ;");
    releaseTokens(served);
}

TEST(PreprocessorEdits, RemovalAndBadPlaces) {
    PreprocessorRun run("int a;\nint b;\n");
    std::vector<CPPreprocessedToken*> served = run.served();
    CPPreprocessorToken* b = writtenToken(served, "b");
    ASSERT_TRUE(b);
    CPPreprocessorFilter* node = CPPreprocessorFilter::from(b->getParent());
    ASSERT_TRUE(node);
    int at = node->indexOfChild(b, false);
    CPPreprocessorEdits::TokenList none;
    ASSERT_EQ(CPPreprocessorEdits::replaceToken(node, unsigned(at), none), 0);
    EXPECT_EQ(run.sourceText(), "int a;\nint;\n");
    EXPECT_EQ(outputText(run), "int a ; int ;");
    // The emptied slot is no token any more: replacing it clears and prunes, and nothing else.
    EXPECT_EQ(CPPreprocessorEdits::replaceToken(node, unsigned(at), none), 0);
    EXPECT_EQ(run.sourceText(), "int a;\nint;\n");
    EXPECT_EQ(CPPreprocessorEdits::replaceToken(node, 999, none), qbmsg::NothingToWorkOn);
    EXPECT_EQ(CPPreprocessorEdits::replaceToken(nullptr, 0, none), qbmsg::NothingToWorkOn);
    EXPECT_EQ(CPPreprocessorEdits::insertBeforeToken(nullptr, none), qbmsg::NothingToWorkOn);
    releaseTokens(served);
}

TEST(PreprocessorEdits, ATokenOfNoTreeIsFreedNotLeaked) {
    // K is never expanded, so only its define holds k.
    PreprocessorRun run("#define K (k)\nint a;\n");
    std::vector<CPPreprocessedToken*> served = run.served();
    // A shared token's parent is the last node that took it: find the body's own place.
    CPPreprocessorFilter* define = run.pp().getSourceTree()->getFilterChild(0);
    ASSERT_TRUE(define && define->getType() == CPN_PreprocessorDefine);
    CPPreprocessorFilter* body = define->getFilterChild(define->getChildCount() - 1);
    ASSERT_TRUE(body && body->getChildCount() == 3);
    CPPreprocessorFilter* call = body->getFilterChild(1);
    ASSERT_TRUE(call && call->isInDefine());
    CPPreprocessorToken* k = CPPreprocessorToken::from(call->getChild(0));
    ASSERT_TRUE(k);
    // A token of no tree, into a place that takes nothing: the copy is dropped.
    CPPreprocessorToken* loose = static_cast<CPPreprocessorToken*>(k->clone());
    loose->addRef();
    CPPreprocessorEdits::TokenList list;
    list.add(loose);
    ASSERT_EQ(CPPreprocessorEdits::replaceToken(call, 0, list), 0);
    EXPECT_EQ(list[0], nullptr);
    EXPECT_EQ(run.sourceText(), "#define K (k)\nint a;\n");
    loose->release();
    releaseTokens(served);
}

// Memory running out at any step of an edit gives a status and leaves nothing dangling: the
// trees are printed and freed afterwards under the sanitizers.
TEST(PreprocessorEdits, OutOfMemoryAtEveryStep) {
    int failures = 0;
    for (unsigned n = 1; n < 200; ++n) {
        PreprocessorRun run("#define SQ(x) ((x)*(x))\nint v = SQ(n);\n");
        std::vector<CPPreprocessedToken*> served = run.served();
        CPPreprocessorToken* token = writtenToken(served, "n");
        ASSERT_TRUE(token);
        Fragment fragment(" m + k +");
        CPPreprocessorEdits::TokenList list = fragment.tokens();
        quernbase::QBAllocator::failAllocationAfter(n);
        int rc = CPPreprocessorEdits::insertBeforeToken(token, list);
        quernbase::QBAllocator::failAllocationAfter(0);
        std::string text = run.sourceText();
        if (rc == 0) {
            EXPECT_EQ(text, "#define SQ(x) ((x)*(x))\nint v = SQ( m + k +n);\n");
            releaseTokens(served);
            break;
        }
        ++failures;
        EXPECT_EQ(rc, qbmsg::OutOfMemory);
        releaseTokens(served);
    }
    EXPECT_GT(failures, 3);
}
