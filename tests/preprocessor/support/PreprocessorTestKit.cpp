#include "PreprocessorTestKit.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>

#include "CPPreprocessorNodes.h"

using quernbase::QBString;

PreprocessorRun::PreprocessorRun(const std::string& text, const char* name) {
    BPSourceHandle handle = BPSourceHandle::makeTextSource(
        QBString(text.data(), unsigned(text.size())), 1, 0);
    handle->kind = BPSourceText::MAIN_FILE;
    handle->fileName = name;
    lexer = new CPLexer(handle, 0);
    lexer->addRef();
    preprocessor = new CPPreprocessor(lexer);
    preprocessor->addRef();
}

PreprocessorRun::~PreprocessorRun() {
    preprocessor->release();
    lexer->release();
}

std::vector<CPPreprocessedToken*> PreprocessorRun::served() {
    std::vector<CPPreprocessedToken*> tokens;
    for (TBPToken<CPParseNodeType>* t = preprocessor->currentToken(); t;
         t = preprocessor->nextToken()) {
        if (t->getType() == CPT_EOF) break;
        CPPreprocessedToken* token = dynamic_cast<CPPreprocessedToken*>(t);
        if (!token) break;
        token->addRef();
        tokens.push_back(token);
    }
    return tokens;
}

std::vector<std::string> PreprocessorRun::spellings() {
    std::vector<CPPreprocessedToken*> tokens = served();
    std::vector<std::string> out;
    for (CPPreprocessedToken* t : tokens) out.push_back(t->getSpelling().get());
    releaseTokens(tokens);
    return out;
}

std::string PreprocessorRun::sourceText() {
    if (preprocessor->readSourceTree() != 0) return "<no tree>";
    QBString text("");
    preprocessor->getSourceTree()->getText(text);
    return std::string(text.get(), text.length());
}

void releaseTokens(std::vector<CPPreprocessedToken*>& tokens) {
    for (CPPreprocessedToken* t : tokens) t->release();
    tokens.clear();
}

std::string readFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream s;
    s << in.rdbuf();
    return s.str();
}

std::vector<std::string> lexSpellings(const std::string& text) {
    BPSourceHandle handle = BPSourceHandle::makeTextSource(
        QBString(text.data(), unsigned(text.size())), 1, 0);
    CPLexer* lexer = new CPLexer(handle, 0);
    lexer->addRef();
    std::vector<std::string> out;
    for (TBPToken<CPParseNodeType>* t = lexer->currentToken(); t && t->getType() != CPT_EOF;
         t = lexer->nextToken()) {
        if (t->isWhitespaceType() || t->getType() == CPT_BACKSLASH) continue;
        out.push_back(t->getSpellingConst().get());
    }
    lexer->release();
    return out;
}

std::vector<std::string> gccSpellings(const std::string& text, bool& ok) {
    const char* tmp = std::getenv("QB_TEST_TMP");
    std::string dir = tmp && *tmp ? tmp : "/tmp";
    std::string base = dir + "/ppcase" + std::to_string(getpid());
    std::system(("mkdir -p '" + dir + "'").c_str());
    std::ofstream(base + ".c") << text;
    std::string command = "gcc -E -P -x c '" + base + ".c' -o '" +
                          base + ".i' 2>/dev/null";
    ok = std::system(command.c_str()) == 0;
    std::string output = ok ? readFile(base + ".i") : "";
    std::remove((base + ".c").c_str());
    std::remove((base + ".i").c_str());
    return ok ? lexSpellings(output) : std::vector<std::string>();
}

std::string joinSpellings(const std::vector<std::string>& spellings) {
    std::string out;
    for (const std::string& s : spellings) out += (out.empty() ? "" : " ") + s;
    return out;
}
