// Running the preprocessor over a text in tests, and what gcc makes of the same text.
#pragma once

#include <string>
#include <vector>

#include "CPLexer.h"
#include "CPPreprocessedToken.h"
#include "CPPreprocessor.h"
#include "CPPreprocessorConditionals.h"
#include "CPPreprocessorMacros.h"

// A lexer and preprocessor over one text, released together.
class PreprocessorRun {
public:
    explicit PreprocessorRun(const std::string& text, const char* name = "test.c");
    ~PreprocessorRun();
    PreprocessorRun(const PreprocessorRun&) = delete;
    PreprocessorRun& operator=(const PreprocessorRun&) = delete;

    CPPreprocessor& pp() { return *preprocessor; }
    // The served tokens up to EOF, each counted; the caller releases them with releaseTokens.
    std::vector<CPPreprocessedToken*> served();
    // Spellings of the served tokens, EOF excluded.
    std::vector<std::string> spellings();
    // The text of the source tree (the file as written).
    std::string sourceText();

private:
    CPLexer* lexer;
    CPPreprocessor* preprocessor;
};

void releaseTokens(std::vector<CPPreprocessedToken*>& tokens);
std::string readFile(const std::string& path);
// The token spellings of text by our lexer, blanks, line ends and comments left out.
std::vector<std::string> lexSpellings(const std::string& text);
// Spellings of what `gcc -E -P` makes of text; an empty list with ok false if gcc failed.
std::vector<std::string> gccSpellings(const std::string& text, bool& ok);
std::string joinSpellings(const std::vector<std::string>& spellings);
