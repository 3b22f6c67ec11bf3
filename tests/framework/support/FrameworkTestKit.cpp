#include "FrameworkTestKit.h"

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

#include "BPHostMessages.h"
#include "CPWhitespaceFilter.h"
#include "TestLexer.h"

using quernbase::QBString;

QBString drainText(Source& source, int* tokenCount) {
    QBString text("");
    int count = 0;
    for (Token* token = source.currentToken(); token; token = source.nextToken()) {
        token->getText(text);
        ++count;
        if (token->getType() == CPT_EOF) break;
    }
    if (tokenCount) *tokenCount = count;
    return text;
}

TokenList drainTokens(Source& source) {
    TokenList tokens;
    for (Token* token = source.currentToken(); token; token = source.nextToken()) {
        token->addRef();
        tokens.add(token);
        if (token->getType() == CPT_EOF) break;
    }
    return tokens;
}

void releaseAll(TokenList& tokens) {
    for (Token* token : tokens) token->release();
    tokens.clear();
}

std::string str(const QBString& s) { return s.isNull() ? std::string() : std::string(s.get(), s.length()); }

TokenList lexTokens(const char* text, const char* fileName) {
    auto* filter = new CPWhitespaceFilter(new TestLexer(testText(text, fileName)));
    filter->addRef();
    TokenList tokens = drainTokens(*filter);
    filter->release();
    return tokens;
}

std::string sortedLines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    std::sort(lines.begin(), lines.end());
    std::string out;
    for (const std::string& line : lines) out += line + "\n";
    return out;
}

const char* testTypeName(int type) {
    switch (type) {
    case NT_UNIT: return "Unit";
    case NT_DECL: return "Decl";
    case NT_GROUP: return "Group";
    case 150: return "PUNCT";
    default: return type <= BPTOKEN_GARBAGE_CHAR ? BPCommonTypeName(type) : nullptr;
    }
}

namespace {
std::string parameters[10];
std::string message;

const char* textFor(int code) {
    switch (code) {
    case qbmsg::ErrorPrefix: return "%s0(%s1,%s2) error %s3: ";
    case qbmsg::WarningPrefix: return "%s0(%s1,%s2) warning %s3: ";
    case -8001: return "syntax error at '%s0'";
    case -8002: return "'%s0' expected before '%s1'";
    case -8006: return "suspicious characters";
    case -8007: return "invalid characters";
    default: return "";
    }
}

const char* getMessage(int code) {
    std::string pattern = textFor(code);
    if ((code == qbmsg::ErrorPrefix || code == qbmsg::WarningPrefix) && parameters[3] == "-8999")
        pattern.clear();
    message.clear();
    for (size_t i = 0; i < pattern.size(); ++i) {
        if (pattern[i] == '%' && i + 2 < pattern.size() + 1 && pattern[i + 1] == 's' &&
            pattern[i + 2] >= '0' && pattern[i + 2] <= '9') {
            message += parameters[pattern[i + 2] - '0'];
            i += 2;
        } else {
            message += pattern[i];
        }
    }
    return message.c_str();
}

void setParameter(int index, const char* text) {
    if (index >= 0 && index < 10) parameters[index] = text ? text : "";
}
}  // namespace

void installTestMessages() {
    for (std::string& p : parameters) p.clear();
    BPHostMessages::install(getMessage, setParameter);
}

void removeTestMessages() { BPHostMessages::install(nullptr, nullptr); }
