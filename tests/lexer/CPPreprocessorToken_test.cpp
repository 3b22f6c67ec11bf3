#include <gtest/gtest.h>

#include <vector>

#include "BPSourceText.h"
#include "CPPreprocessorToken.h"

namespace {

// Owners are only compared, never followed, so distinct addresses stand in for nodes.
CPPreprocessorFilter* node(int i) {
    static char slots[1000];
    return reinterpret_cast<CPPreprocessorFilter*>(&slots[i]);
}

std::vector<int> ownersOf(const CPPreprocessorToken& t) {
    std::vector<int> out;
    for (unsigned i = 0; i < t.getOwnerCount(); ++i)
        out.push_back(int(reinterpret_cast<char*>(t.getOwner(i)) -
                          reinterpret_cast<char*>(node(0))));
    return out;
}

}  // namespace

TEST(CPPreprocessorTokenOwners, RemovalKeepsTheOrderOfTheRest) {
    CPPreprocessorToken t(CPT_IDENTIFIER, BPSourcePosition(), 1, BPSourcePosition());
    for (int i : {1, 2, 3, 2, 4}) t.addOwner(node(i));
    t.removeOwner(node(2), false);  // the first 2 only
    EXPECT_EQ(ownersOf(t), (std::vector<int>{1, 3, 2, 4}));
    t.removeOwner(node(4), false);
    t.removeOwner(node(1), false);
    EXPECT_EQ(ownersOf(t), (std::vector<int>{3, 2}));
    t.removeOwner(node(9), true);  // not an owner: nothing happens
    EXPECT_EQ(t.getOwnerCount(), 2u);
    t.addOwner(node(2));
    t.removeOwner(node(2), true);
    EXPECT_EQ(ownersOf(t), (std::vector<int>{3}));
    EXPECT_EQ(t.getOwner(1), nullptr);
}

TEST(CPPreprocessorTokenOwners, ManyOwnersLeaveInEitherOrder) {
    CPPreprocessorToken t(CPT_IDENTIFIER, BPSourcePosition(), 1, BPSourcePosition());
    const int n = 900;
    for (int i = 0; i < n; ++i) t.addOwner(node(i));
    for (int i = 0; i < n / 3; ++i) t.removeOwner(node(i), false);           // oldest first
    for (int i = n - 1; i >= 2 * n / 3; --i) t.removeOwner(node(i), false);  // newest first
    ASSERT_EQ(t.getOwnerCount(), unsigned(n / 3));
    EXPECT_EQ(ownersOf(t).front(), n / 3);
    EXPECT_EQ(ownersOf(t).back(), 2 * n / 3 - 1);
    for (int i = n / 3; i < 2 * n / 3; i += 2) t.removeOwner(node(i), false);  // from the middle
    EXPECT_EQ(t.getOwnerCount(), unsigned(n / 6));
    EXPECT_EQ(ownersOf(t).front(), n / 3 + 1);
}
