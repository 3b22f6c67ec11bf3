#include "QBApiSignature.h"

#include <cctype>
#include <cstdlib>

namespace qbapi {

namespace {

std::string trim(const std::string& s) {
    size_t b = 0, e = s.size();
    while (b < e && std::isspace(static_cast<unsigned char>(s[b]))) ++b;
    while (e > b && std::isspace(static_cast<unsigned char>(s[e - 1]))) --e;
    return s.substr(b, e - b);
}

bool isIdentifier(const std::string& s) {
    if (s.empty() || std::isdigit(static_cast<unsigned char>(s[0]))) return false;
    for (char c : s)
        if (!std::isalnum(static_cast<unsigned char>(c)) && c != '_') return false;
    return true;
}

// Splits "type name QBDEFAULT(v)" into its parts.
bool parseParam(std::string text, Param& out) {
    text = trim(text);
    size_t dflt = text.find("QBDEFAULT");
    if (dflt != std::string::npos) {
        size_t open = text.find('(', dflt), close = text.rfind(')');
        if (open == std::string::npos || close == std::string::npos || close < open) return false;
        if (!trim(text.substr(close + 1)).empty()) return false;
        out.hasDefault = true;
        out.defaultText = trim(text.substr(open + 1, close - open - 1));
        text = trim(text.substr(0, dflt));
    }
    size_t space = text.find_first_of(" \t");
    if (space == std::string::npos) return false;
    std::string type = text.substr(0, space);
    out.name = trim(text.substr(space));
    if (!isIdentifier(out.name)) return false;
    if (type == "int") out.type = QBPARAM_INT;
    else if (type == "QBPSZ") out.type = QBPARAM_STRING;
    else if (type == "QBHREFVAR") out.type = QBPARAM_VAR;
    else return false;
    return true;
}

bool parseHead(std::string head, Signature& out) {
    head = trim(head);
    const std::string command = "_command ";
    if (head.compare(0, command.size(), command) == 0) {
        out.isCommand = true;
        head = trim(head.substr(command.size()));
    }
    size_t space = head.find(' ');
    if (space == std::string::npos) return false;
    std::string ret = head.substr(0, space);
    if (ret == "void") out.returnsVoid = true;
    else if (ret != "int") return false;
    std::string qualified = trim(head.substr(space));
    size_t colon = qualified.find(':');
    if (colon == std::string::npos) return false;
    out.module = qualified.substr(0, colon);
    out.name = qualified.substr(colon + 1);
    return isIdentifier(out.module) && isIdentifier(out.name);
}

bool parseParams(const std::string& list, Signature& out) {
    if (trim(list).empty()) return true;
    size_t start = 0;
    int depth = 0;
    for (size_t i = 0; i <= list.size(); ++i) {
        char c = i < list.size() ? list[i] : ',';
        if (c == '(') ++depth;
        if (c == ')') --depth;
        if (c != ',' || depth != 0) continue;
        Param p;
        if (!parseParam(list.substr(start, i - start), p)) return false;
        out.params.push_back(p);
        start = i + 1;
    }
    return depth == 0;
}

}  // namespace

int parseSignature(const char* text, Signature& out) {
    if (!text) return qbmsg::BadSignature;
    out = Signature();
    out.text = text;
    size_t open = out.text.find('(');
    size_t close = out.text.rfind(')');
    if (open == std::string::npos || close == std::string::npos || close < open ||
        !trim(out.text.substr(close + 1)).empty())
        return qbmsg::BadSignature;
    if (!parseHead(out.text.substr(0, open), out)) return qbmsg::BadSignature;
    if (!parseParams(out.text.substr(open + 1, close - open - 1), out))
        return qbmsg::BadSignature;
    // Only trailing parameters may have defaults.
    bool seenDefault = false;
    for (const Param& p : out.params) {
        if (seenDefault && !p.hasDefault) return qbmsg::BadSignature;
        seenDefault = seenDefault || p.hasDefault;
    }
    return 0;
}

long long defaultValue(const std::string& text) {
    if (text == "NULL") return 0;
    return std::strtoll(text.c_str(), nullptr, 0);
}

}  // namespace qbapi
