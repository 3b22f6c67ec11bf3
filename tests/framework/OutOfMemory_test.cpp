// Every allocation of a whole front-end round fails once in turn: lexing through the filter
// with marks, building and cloning a tree, editing, logging and formatting. Nothing may crash,
// every block the round made is freed, and whatever text comes out is never longer than the
// input.
#include <gtest/gtest.h>

#include <string>

#include "CPWhitespaceFilter.h"
#include "QBMemory.h"
#include "support/FrameworkTestKit.h"
#include "support/TestLexer.h"

using quernbase::QBAllocator;
using quernbase::QBString;

namespace {

const char* const kInput = "#if A /* c */\nint x = 1; // x\n#endif\n  y \\\n z !! ??\n";

// One round; returns the text of the built tree, or "" if it could not be built.
std::string round() {
    BPSourceHandle text = testText(kInput);
    if (text.isNull()) return "";
    auto* filter = new (std::nothrow) CPWhitespaceFilter(new (std::nothrow) TestLexer(text));
    if (!filter) return "";
    filter->addRef();
    TestTree* root = new (std::nothrow) TestTree(NT_UNIT);
    if (root) root->addRef();
    filter->currentToken();
    filter->mark();
    filter->peekType(3);
    filter->nextToken();
    filter->rollback();
    for (Token* t = filter->currentToken(); t && root; t = filter->nextToken()) {
        root->addChild(t);
        if (t->getType() == CPT_EOF) break;
    }
    std::string result;
    if (root) {
        if (Token* first = root->getFirstToken()) first->setSpelling("#");
        root->logError(nullptr, -8001, QBString("a"));
        Node* copy = root->clone();
        if (copy) {
            copy->addRef();
            copy->logWarning(copy->getPosition(), -8006);
            ErrorLog log;
            copy->collectErrors(log);
            QBString texts("");
            log.appendTo(texts);
            copy->release();
        }
        QBString out("");
        root->getTextString(out);
        result = str(out);
        root->release();
    }
    filter->release();
    return result;
}

}  // namespace

TEST(OutOfMemory, EveryFailingAllocationIsSurvived) {
    std::string clean = round();
    ASSERT_EQ(clean, kInput);
    const size_t live = QBAllocator::liveBlocks();
    unsigned failedRounds = 0;
    bool ranOut = false;
    for (unsigned n = 1; n < 5000 && !ranOut; ++n) {
        QBAllocator::failAllocationAfter(n);
        std::string text = round();
        ranOut = QBAllocator::failAllocationAfter(0) != 0;  // the round needed fewer than n
        if (!ranOut) ++failedRounds;
        EXPECT_LE(text.size(), clean.size()) << "failing allocation " << n;
        EXPECT_EQ(QBAllocator::liveBlocks(), live) << "blocks left when allocation " << n << " failed";
    }
    EXPECT_TRUE(ranOut) << "some allocation of the round never failed";
    EXPECT_GT(failedRounds, 100u) << "a round this size makes more allocations than that";
    EXPECT_EQ(round(), clean) << "memory back, the same text";
}
