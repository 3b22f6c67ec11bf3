// Built-in type keywords of one specifier sequence: every order C accepts, and the refusals.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "CPParseNodeType.h"
#include "CPTypeInfo.h"
#include "CPTypeInfoKeywords.h"

namespace {

struct Accepted {
    std::vector<int> keywords;
    CPSimpleTypeName name;
};

std::string spelled(const std::vector<int>& kinds) {
    std::string out;
    for (int k : kinds) out += std::string(out.empty() ? "" : " ") + cpTokenKindName(k);
    return out;
}

TEST(SimpleTypeKeywords, EveryOrderOfEveryAcceptedSet) {
    const Accepted cases[] = {
        {{CPT_kw_char}, CPSIMPLE_Char},
        {{CPT_kw_signed, CPT_kw_char}, CPSIMPLE_SignedChar},
        {{CPT_kw_unsigned, CPT_kw_char}, CPSIMPLE_UnsignedChar},
        {{CPT_kw_bool}, CPSIMPLE_Bool},
        {{CPT_kw_void}, CPSIMPLE_Void},
        {{CPT_kw_wchar_t}, CPSIMPLE_WideChar},
        {{CPT_kw_float}, CPSIMPLE_Float},
        {{CPT_kw_double}, CPSIMPLE_Double},
        {{CPT_kw_long, CPT_kw_double}, CPSIMPLE_LongDouble},
        {{CPT_kw_short}, CPSIMPLE_SignedShort},
        {{CPT_kw_short, CPT_kw_int}, CPSIMPLE_SignedShort},
        {{CPT_kw_signed, CPT_kw_short, CPT_kw_int}, CPSIMPLE_SignedShort},
        {{CPT_kw_unsigned, CPT_kw_short}, CPSIMPLE_UnsignedShort},
        {{CPT_kw_unsigned, CPT_kw_short, CPT_kw_int}, CPSIMPLE_UnsignedShort},
        {{CPT_kw_int}, CPSIMPLE_SignedInt},
        {{CPT_kw_signed}, CPSIMPLE_SignedInt},
        {{CPT_kw_signed, CPT_kw_int}, CPSIMPLE_SignedInt},
        {{CPT_kw_unsigned}, CPSIMPLE_UnsignedInt},
        {{CPT_kw_unsigned, CPT_kw_int}, CPSIMPLE_UnsignedInt},
        {{CPT_kw_long}, CPSIMPLE_SignedLong},
        {{CPT_kw_long, CPT_kw_int}, CPSIMPLE_SignedLong},
        {{CPT_kw_signed, CPT_kw_long, CPT_kw_int}, CPSIMPLE_SignedLong},
        {{CPT_kw_unsigned, CPT_kw_long}, CPSIMPLE_UnsignedLong},
        {{CPT_kw_unsigned, CPT_kw_long, CPT_kw_int}, CPSIMPLE_UnsignedLong},
        {{CPT_kw_long, CPT_kw_long}, CPSIMPLE_SignedLongLong},
        {{CPT_kw_signed, CPT_kw_long, CPT_kw_long, CPT_kw_int}, CPSIMPLE_SignedLongLong},
        {{CPT_kw_unsigned, CPT_kw_long, CPT_kw_long}, CPSIMPLE_UnsignedLongLong},
        {{CPT_kw_unsigned, CPT_kw_long, CPT_kw_long, CPT_kw_int}, CPSIMPLE_UnsignedLongLong},
    };
    int orders = 0;
    for (const Accepted& k : cases) {
        std::vector<int> kinds = k.keywords;
        std::sort(kinds.begin(), kinds.end());
        do {
            CPSimpleTypeName name = CPSIMPLE_None;
            unsigned refusedAt = 99;
            ASSERT_EQ(CPSimpleTypeKeywords::combine(kinds.data(), unsigned(kinds.size()), name, &refusedAt), 0) << spelled(kinds);
            EXPECT_EQ(name, k.name) << spelled(kinds);
            EXPECT_EQ(refusedAt, 99u);
            ++orders;
        } while (std::next_permutation(kinds.begin(), kinds.end()));
    }
    EXPECT_EQ(orders, 81);
}

struct Refused {
    std::vector<int> keywords;
    unsigned refusedAt;
};

TEST(SimpleTypeKeywords, RefusalsNameTheTokenThatCannotJoin) {
    const Refused cases[] = {
        {{CPT_kw_short, CPT_kw_long}, 1},
        {{CPT_kw_signed, CPT_kw_unsigned}, 1},
        {{CPT_kw_long, CPT_kw_long, CPT_kw_long}, 2},
        {{CPT_kw_int, CPT_kw_int}, 1},
        {{CPT_kw_long, CPT_kw_long, CPT_kw_double}, 2},
        {{CPT_kw_double, CPT_kw_long, CPT_kw_long}, 2},
        {{CPT_kw_unsigned, CPT_kw_double}, 1},
        {{CPT_kw_long, CPT_kw_float}, 1},
        {{CPT_kw_char, CPT_kw_int}, 1},
        {{CPT_kw_bool, CPT_kw_signed}, 1},
        {{CPT_kw_void, CPT_kw_int}, 1},
        {{CPT_kw_signed, CPT_kw_wchar_t}, 1},
        {{CPT_kw_long, CPT_kw_double, CPT_kw_int}, 2},
        {{CPT_kw_short, CPT_kw_char}, 1},
        {{CPT_kw_int, CPT_kw_const}, 1},
    };
    for (const Refused& k : cases) {
        CPSimpleTypeName name = CPSIMPLE_Bool;
        unsigned refusedAt = 99;
        int status = CPSimpleTypeKeywords::combine(k.keywords.data(), unsigned(k.keywords.size()), name, &refusedAt);
        int expected = CPSimpleTypeKeywords::isKeyword(k.keywords[k.refusedAt]) ? -8001 : -8021;
        EXPECT_EQ(status, expected) << spelled(k.keywords);
        EXPECT_EQ(refusedAt, k.refusedAt) << spelled(k.keywords);
        EXPECT_EQ(name, CPSIMPLE_None);
    }
}

TEST(SimpleTypeKeywords, BitsMasksAndTheWideCharacter) {
    uint32_t bits = 0;
    EXPECT_EQ(CPSimpleTypeKeywords::add(bits, CPT_kw_long), 0);
    EXPECT_EQ(bits, uint32_t(CPSIMPLEBIT_Long));
    EXPECT_EQ(CPSimpleTypeKeywords::bitOf(CPT_kw_long, bits), uint32_t(CPSIMPLEBIT_SecondLong));
    EXPECT_EQ(CPSimpleTypeKeywords::add(bits, CPT_kw_long), 0);
    EXPECT_EQ(CPSimpleTypeKeywords::add(bits, CPT_kw_long), -8001);
    EXPECT_EQ(bits, uint32_t(CPSIMPLEBIT_Long | CPSIMPLEBIT_SecondLong)) << "a refusal leaves the bits";
    EXPECT_EQ(CPSimpleTypeKeywords::rejectMask(CPT_kw_double), 0xff7u);
    EXPECT_EQ(CPSimpleTypeKeywords::rejectMask(CPT_IDENTIFIER), 0u);
    EXPECT_FALSE(CPSimpleTypeKeywords::isKeyword(CPT_kw_const));
    EXPECT_EQ(CPSimpleTypeKeywords::nameOf(0), CPSIMPLE_None);
    EXPECT_EQ(CPSimpleTypeKeywords::nameOf(CPSIMPLEBIT_SecondLong), CPSIMPLE_None);
    int wide[] = {CPT_kw_wchar_t};
    CPSimpleTypeName name = CPSIMPLE_None;
    EXPECT_EQ(CPSimpleTypeKeywords::combine(wide, 1, name, nullptr, CPSIMPLE_UnsignedShort), 0);
    EXPECT_EQ(name, CPSIMPLE_UnsignedShort);
    EXPECT_EQ(CPSimpleTypeKeywords::combine(nullptr, 0, name, nullptr), 0);
    EXPECT_EQ(name, CPSIMPLE_None);
}

}  // namespace
