#include <gtest/gtest.h>

#include <cstring>
#include <set>
#include <string>

#include "CPParseNodeType.h"

TEST(CPParseNodeTypeNames, TokensNodesAndNamelessNumbers) {
    EXPECT_STREQ(cpParseNodeTypeName(CPT_IDENTIFIER), "IDENTIFIER");
    EXPECT_STREQ(cpParseNodeTypeName(CPT_kw_and), "and");
    EXPECT_STREQ(cpParseNodeTypeName(CPT_GT_QUESTION), "GT_QUESTION");
    EXPECT_STREQ(cpParseNodeTypeName(CPN_PreprocessorUnit), "PreprocessorUnit");
    EXPECT_STREQ(cpParseNodeTypeName(CPN_IfStatement), "IfStatement");
    EXPECT_STREQ(cpParseNodeTypeName(CPN_DeclarationFactory), "Declaration Factory");
    EXPECT_STREQ(cpParseNodeTypeName(CPN_CppTypeTrait), "Microsoft C++ Type Trait");
    for (int n = 4; n <= 7; ++n) EXPECT_EQ(cpParseNodeTypeName(n), nullptr);
    EXPECT_EQ(cpParseNodeTypeName(CPN_Declarator), nullptr);  // an abstract family
    EXPECT_EQ(cpParseNodeTypeName(-1), nullptr);
    EXPECT_EQ(cpParseNodeTypeName(402), nullptr);
    EXPECT_EQ(cpTokenKindName(CPN_CompilationUnit), nullptr);  // not a token
}

TEST(CPParseNodeTypeNames, EveryNumberHasOneRowAndNamesAreUnique) {
    int named = 0;
    std::set<std::string> seen;
    for (int n = 0; n <= CPT_LAST; ++n) {
        const char* name = cpParseNodeTypeName(n);
        if (!name) continue;
        ++named;
        EXPECT_TRUE(seen.insert(name).second) << "two numbers named " << name;
    }
    // 181 token numbers less the four empty ones, and 221 nodes less the 20 abstract families.
    EXPECT_EQ(named, 177 + 201);
}
