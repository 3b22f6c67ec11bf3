// The shapes against the trees the grammar really builds: over every valid case of every family,
// no node prints ***INVALID***, and every node class the grammar can make is met at least once,
// so that no class's shape goes unchecked.
#include <gtest/gtest.h>

#include <set>
#include <string>

#include "CPParseNodeType.h"
#include "support/GoldenTrees.h"

namespace {

std::vector<GoldenCase> allCases() {
    std::vector<GoldenCase> all;
    for (auto family : {declarationCases, classCases, templateCases, statementCases, expressionCases})
        for (GoldenCase& c : family()) all.push_back(c);
    return all;
}

// The node names that a tree holds, read from its printed lines.
void collectNames(const std::string& tree, std::set<std::string>& names) {
    size_t at = 0;
    while ((at = tree.find('[', at)) != std::string::npos) {
        size_t end = tree.find_first_of("\n", at);
        std::string name = tree.substr(at + 1, end - at - 1);
        size_t flag = name.find("     ***");
        names.insert(flag == std::string::npos ? name : name.substr(0, flag));
        at = end;
    }
}

}  // namespace

TEST(Shapes, NoValidInputPrintsInvalid) {
    for (const GoldenCase& c : allCases()) {
        if (c.hasErrors) continue;
        ParsedSource parsed = parseSource(c.source);
        EXPECT_FALSE(holds(parsed.tree, "***INVALID***")) << c.name << "\n" << parsed.tree;
    }
}

TEST(Shapes, EveryGrammarClassIsMetByAValidCase) {
    std::set<std::string> met;
    for (const GoldenCase& c : allCases())
        if (!c.hasErrors) collectNames(parseSource(c.source).tree, met);
    // Made by analysis or by the #if evaluator, or numbered but built by no production.
    const std::set<std::string> notParsed = {"DefaultMemberFunction", "DefinedExpression",
                                             "DestructorPointerAccessExpression", "ConditionStatement",
                                             "FunctionTryBlock", "ConstantInitializer",
                                             "TypeSpecifierSequence"};
    for (int type = CPN_CompilationUnit; type <= CPT_LAST; ++type) {
        const char* name = cpParseNodeTypeName(type);
        if (!name || type == CPN_DeclarationFactory || notParsed.count(name)) continue;
        EXPECT_TRUE(met.count(name)) << "no valid case builds a " << name;
    }
}

// Every case cut short, and every case with one character taken out, still parses to a tree
// that gives back its text: recovery never loses or duplicates a token, and never crashes.
TEST(Recovery, DamagedCasesKeepEveryByte) {
    for (const GoldenCase& c : allCases()) {
        for (size_t at = 1; at < c.source.size(); at += 4) {
            std::string cut = c.source.substr(0, at);
            EXPECT_EQ(parseSource(cut).text, cut) << c.name;
            std::string holed = c.source.substr(0, at) + c.source.substr(at + 1);
            EXPECT_EQ(parseSource(holed).text, holed) << c.name;
        }
    }
}

// A stray token dropped into every case: closers, an angle bracket, a scope operator.
TEST(Recovery, StrayTokensKeepEveryByte) {
    const char* strays[] = {")", "}", "<", "::", "? "};
    for (const GoldenCase& c : allCases()) {
        for (size_t at = 0; at < c.source.size(); at += 6) {
            for (const char* stray : strays) {
                std::string input = c.source.substr(0, at) + stray + c.source.substr(at);
                EXPECT_EQ(parseSource(input).text, input) << c.name;
            }
        }
    }
}
