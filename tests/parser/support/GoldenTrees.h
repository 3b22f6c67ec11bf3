// Golden trees for the grammar tests: a case is annotated source; its whole printed tree, its
// messages and its text are compared with a file under tests/parser/golden/, one file per family.
// QB_UPDATE_GOLDEN=1 writes the files afresh instead of comparing; read the diff before
// committing it, since a golden that records a wrong tree is worse than none.
#pragma once

#include <string>
#include <vector>

struct ParsedSource {
    bool parsed = false;
    std::string text, tree, errors;
};

// Lexes, filters and parses source as a compilation unit.
ParsedSource parseSource(const std::string& source);

struct GoldenCase {
    const char* name;   // one word, unique in its family
    const char* note;   // what the tree must show, and why
    std::string source;
    bool hasErrors = false;              // the input is meant to be faulty
    std::vector<std::string> mustShow = {};  // pieces the tree must hold whatever the golden says
    std::vector<std::string> mustLack = {};  // pieces it must not hold
};

// Checks every case of a family: the text comes back byte for byte; a valid input has no
// message and no ***INVALID*** node; the pieces stand; and the whole tree equals the golden.
void checkFamily(const char* family, const std::vector<GoldenCase>& cases);

// True if the piece occurs in text.
inline bool holds(const std::string& text, const std::string& piece) {
    return text.find(piece) != std::string::npos;
}

// The cases of each family, for the checks that run over all of them.
std::vector<GoldenCase> declarationCases();
std::vector<GoldenCase> classCases();
std::vector<GoldenCase> templateCases();
std::vector<GoldenCase> statementCases();
std::vector<GoldenCase> expressionCases();
