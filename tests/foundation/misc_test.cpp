#include <gtest/gtest.h>

#include "BPRefCountObject.h"
#include "QBCharType.h"
#include "QBIterator.h"
#include "QBMemory.h"
#include "QBMutex.h"

using quernbase::QBAllocator;
using quernbase::QBCharType;
using quernbase::QBIterator;

namespace {
struct Counted : BPRefCountObject {
    explicit Counted(int* deaths) : deaths(deaths) {}
    ~Counted() override { ++*deaths; }
    int* deaths;
};
}  // namespace

TEST(BPRefCountObject, LastReleaseDeletes) {
    int deaths = 0;
    Counted* c = new Counted(&deaths);
    EXPECT_EQ(c->getRefCount(), 0);
    c->addRef();
    c->addRef();
    c->release();
    EXPECT_EQ(deaths, 0);
    c->release();
    EXPECT_EQ(deaths, 1);
}

TEST(BPRefCountObject, AssignReleasesOldAndTakesNew) {
    int deaths = 0;
    Counted* slot = nullptr;
    Counted* a = new Counted(&deaths);
    BPRefCountObject::assign(slot, a);
    EXPECT_EQ(a->getRefCount(), 1);
    BPRefCountObject::assign(slot, a);  // same object: no change
    EXPECT_EQ(a->getRefCount(), 1);
    BPRefCountObject::assign(slot, static_cast<Counted*>(nullptr));
    EXPECT_EQ(deaths, 1);
    EXPECT_EQ(slot, nullptr);
}

TEST(QBMemory, AllocatorReportsAtLeastTheRequest) {
    for (size_t n : {1u, 7u, 24u, 100u, 4097u}) {
        void* p = QBAllocator::allocate(n);
        ASSERT_NE(p, nullptr);
        EXPECT_GE(QBAllocator::numBytesAllocated(p), n);
        QBAllocator::deallocate(p);
    }
    void* q = QBAllocate(10);
    q = QBReallocate(q, 5000);
    ASSERT_NE(q, nullptr);
    EXPECT_GE(QBAllocationSize(q), 5000u);
    QBDeallocate(q);
}

TEST(QBMemory, NothrowNewGivesNullOnFailure) {
    int deaths = 0;
    QBAllocator::failAllocationAfter(1);
    Counted* c = new (std::nothrow) Counted(&deaths);
    EXPECT_EQ(c, nullptr);
    QBAllocator::failAllocationAfter(0);
}

TEST(QBCharType, MasksAndTranslations) {
    const QBCharType& ct = QBCharType::getInstance();
    EXPECT_TRUE(ct.isCSym('_'));
    EXPECT_FALSE(ct.isAlNum('_'));
    EXPECT_TRUE(ct.isAlNum('7'));
    EXPECT_TRUE(ct.isHexDigit('F'));
    EXPECT_FALSE(ct.isHexDigit('g'));
    EXPECT_TRUE(ct.isSpace('\v'));
    EXPECT_FALSE(ct.isAlpha(0xE9));
    EXPECT_EQ(ct.toUpper('q'), 'Q');
    EXPECT_EQ(ct.toLowerAscii('Q'), 'q');
    EXPECT_EQ(ct.toUpper(0xE9), 0xE9);
    EXPECT_TRUE(QBCharIsCSym('a'));
    EXPECT_EQ(QBCharToLower('A'), 'a');
    EXPECT_FALSE(QBCharIsDigit('a'));
}

TEST(QBIterator, StackSavesAndRestoresPositions) {
    QBIterator it;
    EXPECT_EQ(it.state, 1u);
    EXPECT_EQ(it.popStack(), -3015);
    it.position = 10;
    EXPECT_EQ(it.pushStack(), 0);
    it.position = 20;
    QBIterator copy;
    EXPECT_EQ(copy.copyStack(it), 0);
    EXPECT_EQ(it.popStack(), 0);
    EXPECT_EQ(it.position, 10);
    EXPECT_EQ(copy.stackDepth(), 1u);
    QBAllocator::failAllocationAfter(1);
    EXPECT_EQ(QBIterator().pushStack(), -8);
    QBAllocator::failAllocationAfter(0);
}

TEST(QBMUTEX, LazyInitAndRecursion) {
    QBMUTEX m;
    m.unlock();  // never initialized: nothing happens
    EXPECT_FALSE(m.isInitialized());
    EXPECT_EQ(m.lock(), 0);
    EXPECT_TRUE(m.isInitialized());
    EXPECT_EQ(m.trylock(), 0);
    m.unlock();
    m.unlock();
    QBMUTEX a, b;
    QBMUTEX* both[] = {&a, &b};
    EXPECT_EQ(QBMUTEX::lockMultiple(both, 2), 0);
    QBMUTEX::unlockAll(both, 2);
}
