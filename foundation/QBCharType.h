// Character classes as one read-only table: four translation tables then 256 masks.
#pragma once

#include <cstdint>

namespace quernbase {

class QBCharType {
public:
    enum Mask : uint16_t {
        UPPER = 1 << 0,
        LOWER = 1 << 1,
        DIGIT = 1 << 2,
        SPACE = 1 << 3,
        HEXDIGIT = 1 << 7,
        ALPHA = 1 << 8,
        CSYM = 1 << 12,
        ALNUM_ASCII = 1 << 13,
    };

    static const QBCharType& getInstance();

    int toUpper(int c) const { return upper[uint8_t(c)]; }
    int toLower(int c) const { return lower[uint8_t(c)]; }
    int toUpperAscii(int c) const { return upperAscii[uint8_t(c)]; }
    int toLowerAscii(int c) const { return lowerAscii[uint8_t(c)]; }

    bool isUpper(int c) const { return test(c, UPPER); }
    bool isLower(int c) const { return test(c, LOWER); }
    bool isDigit(int c) const { return test(c, DIGIT); }
    bool isSpace(int c) const { return test(c, SPACE); }
    bool isHexDigit(int c) const { return test(c, HEXDIGIT); }
    bool isAlpha(int c) const { return test(c, ALPHA); }
    bool isCSym(int c) const { return test(c, CSYM); }
    bool isAlNumAscii(int c) const { return test(c, ALNUM_ASCII); }
    bool isAlNum(int c) const { return test(c, DIGIT | ALPHA); }

private:
    QBCharType();
    bool test(int c, unsigned mask) const { return (masks[uint8_t(c)] & mask) != 0; }

    uint8_t upper[256];
    uint8_t lower[256];
    uint8_t upperAscii[256];
    uint8_t lowerAscii[256];
    uint16_t masks[256];
};

}  // namespace quernbase

extern "C" {
int QBCharIsAlNum(int c);
int QBCharIsAlpha(int c);
int QBCharIsCSym(int c);
int QBCharIsDigit(int c);
int QBCharIsHexDigit(int c);
int QBCharToLower(int c);
int QBCharToUpper(int c);
}
