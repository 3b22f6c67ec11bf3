// The transaction as refactorings see it from inside the engine.
#include <gtest/gtest.h>

#include "CPParser.h"
#include "QBMemory.h"
#include "QBRefactorTransaction.h"

using quernbase::QBAllocator;
using quernbase::QBString;

namespace {

CPParser* parserFor(const char* name) {
    CPParser* p = new CPParser;
    p->fileName = name;
    return p;
}

int compareNames(const char* a, const char* b) {
    CPParser* pa = parserFor(a);
    CPParser* pb = parserFor(b);
    int r = compareParsers(pa, pb);
    delete pa;
    delete pb;
    return r;
}

}  // namespace

TEST(TransactionInternals, ParsersSortByExtensionThenNameIgnoringCase) {
    EXPECT_LT(compareNames("z.c", "a.cpp"), 0);
    EXPECT_LT(compareNames("b.CPP", "a.h"), 0);
    EXPECT_LT(compareNames("A.cpp", "b.cpp"), 0);
    EXPECT_EQ(compareNames("dir/X.C", "dir/x.c"), 0);
    EXPECT_LT(compareNames("src.v2/noext", "a.c"), 0) << "a dot before the last separator isn't one";
    EXPECT_LT(compareNames("c:name", "a.c"), 0);
    CPParser* p = parserFor("a.c");
    EXPECT_EQ(compareParsers(nullptr, p), 1);
    EXPECT_EQ(compareParsers(p, nullptr), -1);
    delete p;
}

TEST(TransactionInternals, FileNamesCompareByteForByte) {
    QBString a("src/a.c");
    EXPECT_EQ(compareFileNames(a, a), 0);
    EXPECT_EQ(compareFileNames(a, QBString("src/a.c")), 0);
    EXPECT_NE(compareFileNames(a, QBString("src/A.c")), 0);
    EXPECT_NE(compareFileNames(a, QBString("src/a.cc")), 0);
}

TEST(TransactionInternals, NewParsersGoBehindTheirEqualsAndKeepOrder) {
    int h = beginTransaction();
    QBRefactorTransaction* t = findTransaction(h);
    ASSERT_NE(t, nullptr);
    for (const char* n : {"b.cpp", "a.h", "a.cpp", "a.cpp"})
        ASSERT_EQ(t->addFile(n, "", "", "", "", -1), 0);
    ASSERT_EQ(t->parsers.count(), 4u);
    EXPECT_STREQ(t->parsers[0]->fileName.get(), "a.cpp");
    EXPECT_STREQ(t->parsers[1]->fileName.get(), "a.cpp");
    EXPECT_STREQ(t->parsers[2]->fileName.get(), "b.cpp");
    EXPECT_STREQ(t->parsers[3]->fileName.get(), "a.h");
    CPParser* second = t->parsers[1];
    int index = -2;
    EXPECT_EQ(t->findParser("a.cpp", index), t->parsers[0]);
    EXPECT_EQ(index, 0);
    EXPECT_EQ(t->releaseParser(0), 0);
    EXPECT_EQ(t->findParser("a.cpp", index), second);
    EXPECT_EQ(index, 1);
    EXPECT_EQ(t->parsers.count(), 4u) << "a released file keeps its slot";
    EXPECT_EQ(cancelTransaction(h), 0);
}

TEST(TransactionInternals, SlotsMustBeFreeAndInRange) {
    int h = beginTransaction();
    QBRefactorTransaction* t = findTransaction(h);
    ASSERT_EQ(t->addFile("a.c", "", "", "", "", -1), 0);
    EXPECT_EQ(t->addFile("b.c", "", "", "", "", 0), -8021);
    EXPECT_EQ(t->addFile("b.c", "", "", "", "", 1), -8021);
    EXPECT_EQ(t->addFile("b.c", "", "", "", "", -3), -8021);
    t->releaseParser(0);
    EXPECT_EQ(t->addFile("b.c", "", "", "", "", 0), 0);
    EXPECT_STREQ(t->parsers[0]->fileName.get(), "b.c");
    cancelTransaction(h);
}

TEST(TransactionInternals, ReloadGivesAFreshParserWithTheSameSettings) {
    int h = beginTransaction();
    QBRefactorTransaction* t = findTransaction(h);
    ASSERT_EQ(t->addFile("m.c", " -Iinc ; /Isys;lib ", "/usr/include", "-DX=1 -UY", "", -1), 0);
    CPParser* old = t->parsers[0];
    old->cancelled = true;
    EXPECT_EQ(t->reloadParser(0), 0);
    CPParser* fresh = t->parsers[0];
    ASSERT_NE(fresh, nullptr);
    EXPECT_FALSE(fresh->cancelled);
    EXPECT_STREQ(fresh->fileName.get(), "m.c");
    EXPECT_STREQ(fresh->defineOptions.get(), "-DX=1 -UY");
    ASSERT_EQ(fresh->getUserIncludePaths().count(), 3u);
    EXPECT_STREQ(fresh->getUserIncludePaths()[0].get(), "inc");
    EXPECT_STREQ(fresh->getUserIncludePaths()[1].get(), "sys");
    EXPECT_STREQ(fresh->getUserIncludePaths()[2].get(), "lib");
    EXPECT_EQ(fresh->getSystemIncludePaths().count(), 1u);
    EXPECT_EQ(fresh->transactionId, h);
    EXPECT_EQ(t->reloadParser(5), 0);
    t->releaseParser(0);
    EXPECT_EQ(t->reloadParser(0), 0);
    EXPECT_EQ(t->parsers[0], nullptr) << "an empty slot stays empty";
    cancelTransaction(h);
}

TEST(TransactionInternals, OutOfMemoryGivesMinusEightAndNoTransaction) {
    for (unsigned n = 1; n <= 4; ++n) {
        QBAllocator::failAllocationAfter(n);
        int h = beginTransaction();
        QBAllocator::failAllocationAfter(0);
        if (h >= 0) {
            EXPECT_EQ(cancelTransaction(h), 0);
        } else {
            EXPECT_EQ(h, -8) << "failing allocation " << n;
            EXPECT_EQ(findTransaction(h), nullptr);
        }
    }
    int h = beginTransaction();
    QBRefactorTransaction* t = findTransaction(h);
    QBString name("a.c"), none("");
    QBAllocator::failAllocationAfter(1);
    EXPECT_EQ(t->addFile(name, none, none, none, none, -1), -8);
    QBAllocator::failAllocationAfter(0);
    EXPECT_EQ(t->parsers.count(), 0u);
    cancelTransaction(h);
}

TEST(TransactionInternals, RefactoringDataHoldsOneReference) {
    struct Data : BPRefCountObject {
        explicit Data(bool* dead) : dead(dead) {}
        ~Data() override { *dead = true; }
        bool* dead;
    };
    bool firstDead = false, secondDead = false;
    int h = beginTransaction();
    QBRefactorTransaction* t = findTransaction(h);
    Data* first = new Data(&firstDead);
    t->setRefactoringData(first);
    EXPECT_EQ(first->getRefCount(), 1);
    t->setRefactoringData(new Data(&secondDead));
    EXPECT_TRUE(firstDead);
    cancelTransaction(h);
    EXPECT_TRUE(secondDead);
}
