#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

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

// Rows come in number order without gaps or doubles, every row but an abstract family has a
// name, no two numbers share one, and the only numbers without a row are the framework's 4 to 7.
TEST(CPParseNodeTypeNames, RowsCoverEveryNumberOnceAndNamesAreUnique) {
    std::vector<int> rows;
    std::set<int> families;
#define TOKEN(number, name, print) rows.push_back(number);
#define KEYWORD(number, name, spelling, flags) rows.push_back(number);
#define PUNCTUATOR(number, name, print, spelling, digraph, flags) rows.push_back(number);
#include "CPTokenKinds.def"
#undef TOKEN
#undef KEYWORD
#undef PUNCTUATOR
#define NODE(number, name, print) rows.push_back(number);
#define FAMILY(number, name) \
    rows.push_back(number);  \
    families.insert(number);
#include "CPNodeTypes.def"
#undef NODE
#undef FAMILY
    ASSERT_FALSE(rows.empty());
    EXPECT_EQ(rows.front(), 0);
    EXPECT_EQ(rows.back(), CPT_LAST);
    for (size_t i = 1; i < rows.size(); ++i) {
        int gap = rows[i] - rows[i - 1];
        EXPECT_TRUE(gap == 1 || (rows[i - 1] == 3 && rows[i] == 8)) << "after " << rows[i - 1];
    }
    std::set<std::string> seen;
    for (int n = 0; n <= CPT_LAST; ++n) {
        const char* name = cpParseNodeTypeName(n);
        bool hasRow = std::find(rows.begin(), rows.end(), n) != rows.end();
        EXPECT_EQ(name == nullptr, !hasRow || families.count(n) > 0) << n;
        if (name) {
            EXPECT_TRUE(seen.insert(name).second) << "two numbers named " << name;
        }
    }
}

// The flags that grammar and preprocessor read, as properties a wrong column would break.
TEST(CPTokenTable, FlagsDescribeTheirKinds) {
    for (int kind = 0; kind <= CPT_LAST; ++kind) {
        unsigned flags = cpTokenFlags(kind);
        SCOPED_TRACE(cpParseNodeTypeName(kind) ? cpParseNodeTypeName(kind) : "unnamed");
        const char* spelling = cpTokenSpelling(kind);
        std::string text = spelling ? spelling : "";
        bool underscored = text.rfind("__", 0) == 0;
        EXPECT_TRUE(kind <= CPT_LAST_TOKEN || flags == 0);
        EXPECT_TRUE(!(flags & (CPTK_C_NAME | CPTK_KEYWORD_NAME | CPTK_DIRECTIVE | CPTK_BUILTIN)) ||
                    (flags & CPTK_KEYWORD));
        EXPECT_FALSE((flags & CPTK_C_NAME) && (flags & CPTK_KEYWORD_NAME));
        EXPECT_TRUE(!(flags & CPTK_MS_WORD) || ((flags & CPTK_KEYWORD_NAME) && underscored));
        EXPECT_TRUE(!(flags & CPTK_BUILTIN) || (underscored && !(flags & CPTK_DIRECTIVE)));
        char last = (flags & CPTK_KEYWORD) ? 'q' : '=';
        EXPECT_TRUE(!(flags & CPTK_ASSIGNMENT) || (!text.empty() && text.back() == last));
    }
    EXPECT_TRUE(cpTokenHas(CPT_kw_include, CPTK_DIRECTIVE));
    EXPECT_FALSE(cpTokenHas(CPT_kw_defined, CPTK_DIRECTIVE)) << "an operator of #if, no directive";
    EXPECT_FALSE(cpTokenHas(CPT_kw_if, CPTK_DIRECTIVE)) << "a keyword in code as well";
    EXPECT_FALSE(cpTokenHas(CPT_EQUALS_EQUALS, CPTK_ASSIGNMENT));
    EXPECT_EQ(cpTokenFlags(-1), 0u);
}
