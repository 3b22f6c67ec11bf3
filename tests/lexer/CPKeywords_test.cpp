// The lexer against the token table: the keyword tree (CPKeywords.inc, written by hand for
// speed) holds the same words with the same kinds, row by row, and the scanner gives every
// word, punctuator spelling and digraph its kind.
#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <regex>
#include <string>

#include "CPScanner.h"

namespace {

// Every word of the token table, keyword rows and second spellings, with its enumerator.
std::map<std::string, std::string> tableWords() {
    std::map<std::string, std::string> words;
#define TOKEN(number, name, print)
#define PUNCTUATOR(number, name, print, spelling, digraph, flags)
#define KEYWORD(number, name, spelling, flags) EXPECT_TRUE(words.emplace(spelling, #name).second);
#define KEYWORD_SPELLING(spelling, name) EXPECT_TRUE(words.emplace(spelling, #name).second);
#include "CPTokenKinds.def"
#undef TOKEN
#undef PUNCTUATOR
#undef KEYWORD
    return words;
}

// Every word of the keyword tree: the first letter from its case, the rest from its comparison,
// whose length must be the case's length less one.
std::map<std::string, std::string> treeWords() {
    std::ifstream in(QB_SOURCE_DIR "/lexer/CPKeywords.inc");
    std::regex letter(R"re(^    case '(.)':)re"), length(R"re(^        case ([0-9]+):)re"),
        word(R"re(memcmp\(w \+ 1, "([^"]*)", ([0-9]+)\)\) return (CPT_\w+);)re");
    std::map<std::string, std::string> words;
    std::string line;
    char first = 0;
    int n = 0;
    std::smatch m;
    while (std::getline(in, line)) {
        if (std::regex_search(line, m, letter)) first = m[1].str()[0];
        else if (std::regex_search(line, m, length)) n = std::stoi(m[1]);
        else if (std::regex_search(line, m, word)) {
            std::string text = first + m[1].str();
            EXPECT_EQ(int(text.size()), n) << text;
            EXPECT_EQ(std::stoi(m[2]), n - 1) << text;
            EXPECT_TRUE(words.emplace(text, m[3]).second) << text << " twice";
        }
    }
    return words;
}

}  // namespace

TEST(CPKeywords, TheTreeHoldsExactlyTheWordsOfTheTable) {
    std::map<std::string, std::string> table = tableWords(), tree = treeWords();
    EXPECT_GT(table.size(), 100u);
    for (const auto& [text, name] : table) {
        auto it = tree.find(text);
        if (it == tree.end()) {
            ADD_FAILURE() << text << " is in the table, not in the tree";
        } else {
            EXPECT_EQ(it->second, name) << text;
        }
    }
    for (const auto& [text, name] : tree)
        EXPECT_TRUE(table.count(text)) << text << " is in the tree, not in the table";
}

TEST(CPKeywords, TheScannerGivesEveryWordItsKindAndLongerWordsAreNames) {
    std::map<std::string, int> kinds;
#define TOKEN(number, name, print)
#define PUNCTUATOR(number, name, print, spelling, digraph, flags)
#define KEYWORD(number, name, spelling, flags) kinds[spelling] = name;
#define KEYWORD_SPELLING(spelling, name) kinds[spelling] = name;
#include "CPTokenKinds.def"
#undef TOKEN
#undef PUNCTUATOR
#undef KEYWORD
    for (const auto& [text, kind] : kinds) {
        for (const std::string& variant : {text, text + "_", text + "1"}) {
            CPScanCursor s{variant.c_str(), variant.c_str() + variant.size(), 0, 0, 0};
            int scanned = cpScanToken(s);
            EXPECT_EQ(scanned, variant == text ? kind : int(CPT_IDENTIFIER)) << variant;
            EXPECT_EQ(s.cursor, variant.c_str() + variant.size()) << variant;
        }
    }
}

// Spellings and digraphs scan back to their own kind, and a keyword is spelled as its name.
TEST(CPTokenTable, SpellingsScanBackToTheirKind) {
    int spelled = 0;
    for (int kind = 0; kind <= CPT_LAST_TOKEN; ++kind) {
        for (const char* text : {cpTokenSpelling(kind), cpTokenDigraph(kind)}) {
            if (!text) continue;
            ++spelled;
            std::string s = text;
            CPScanCursor cursor{s.c_str(), s.c_str() + s.size(), 0, 0, 0};
            EXPECT_EQ(cpScanToken(cursor), kind) << s;
            EXPECT_EQ(cursor.cursor, s.c_str() + s.size()) << s;
        }
        if (cpTokenHas(kind, CPTK_KEYWORD)) {
            EXPECT_STREQ(cpTokenSpelling(kind), cpTokenKindName(kind));
        }
    }
    EXPECT_EQ(cpTokenSpelling(CPT_IDENTIFIER), nullptr);
    EXPECT_EQ(cpTokenSpelling(CPN_CompilationUnit), nullptr);
    EXPECT_GT(spelled, 150);
}
