#include "QBCharType.h"

namespace quernbase {

// Bytes from 128 up have no class and translate to themselves: the engine reads source bytes,
// not characters of a code page.
QBCharType::QBCharType() {
    for (int c = 0; c < 256; ++c) {
        bool up = c >= 'A' && c <= 'Z', low = c >= 'a' && c <= 'z', dig = c >= '0' && c <= '9';
        uint16_t m = 0;
        if (up) m |= UPPER | ALPHA;
        if (low) m |= LOWER | ALPHA;
        if (dig) m |= DIGIT;
        if (c == ' ' || (c >= '\t' && c <= '\r')) m |= SPACE;
        if (dig || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F')) m |= HEXDIGIT;
        if (up || low || dig || c == '_') m |= CSYM;
        if (up || low || dig) m |= ALNUM_ASCII;
        masks[c] = m;
        upper[c] = upperAscii[c] = uint8_t(low ? c - 32 : c);
        lower[c] = lowerAscii[c] = uint8_t(up ? c + 32 : c);
    }
}

const QBCharType& QBCharType::getInstance() {
    static const QBCharType instance;
    return instance;
}

}  // namespace quernbase

using quernbase::QBCharType;

extern "C" {
int QBCharIsAlNum(int c) { return QBCharType::getInstance().isAlNum(c); }
int QBCharIsAlpha(int c) { return QBCharType::getInstance().isAlpha(c); }
int QBCharIsCSym(int c) { return QBCharType::getInstance().isCSym(c); }
int QBCharIsDigit(int c) { return QBCharType::getInstance().isDigit(c); }
int QBCharIsHexDigit(int c) { return QBCharType::getInstance().isHexDigit(c); }
int QBCharToLower(int c) { return QBCharType::getInstance().toLower(c); }
int QBCharToUpper(int c) { return QBCharType::getInstance().toUpper(c); }
}
