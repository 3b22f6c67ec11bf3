// The built-in type keywords of one declaration-specifier sequence and the simple type they
// name together: "unsigned long long", "long double", "signed char", "short int", in any order
// C allows ("long unsigned int long"). One table of the accepted sets decides both questions
// a front end asks: may this keyword join those already seen, and what do they name.
//
// A type specifier keeps the seen keywords as bits (its simpleTypeBits); each keyword also has
// the mask of bits that refuse it. A keyword is refused when its mask meets the bits, or when
// the bits with it are no subset of an accepted set: the second test catches the orders that
// the masks let through ("double long long"). The grammar logs a refusal as SyntaxError with the
// refused token's text.
#pragma once

#include <cstdint>

#include "CPSimpleTypeName.h"
#include "QBMessageCodes.h"

enum CPSimpleTypeBit : uint32_t {
    CPSIMPLEBIT_Char = 0x1,
    CPSIMPLEBIT_Bool = 0x2,
    CPSIMPLEBIT_Int = 0x4,
    CPSIMPLEBIT_Long = 0x8,
    CPSIMPLEBIT_SecondLong = 0x10,
    CPSIMPLEBIT_Short = 0x20,
    CPSIMPLEBIT_WideChar = 0x40,
    CPSIMPLEBIT_Float = 0x80,
    CPSIMPLEBIT_Double = 0x100,
    CPSIMPLEBIT_Void = 0x200,
    CPSIMPLEBIT_Signed = 0x400,
    CPSIMPLEBIT_Unsigned = 0x800
};

class CPSimpleTypeKeywords {
public:

    // True for the token kinds of char, wchar_t, bool, short, int, long, signed, unsigned,
    // float, double and void.
    static bool isKeyword(int tokenKind);
    // The bit a keyword adds to bits (a second long adds the second-long bit); 0 for a token
    // that is no built-in type keyword.
    static uint32_t bitOf(int tokenKind, uint32_t bits);
    // The bits that refuse the keyword; 0 for a token that is no built-in type keyword.
    static uint32_t rejectMask(int tokenKind);
    // Adds the keyword to bits. 0; SyntaxError when it can't join the keywords seen; BadArgument
    // for a token that is no built-in type keyword. bits is unchanged on failure.
    static int add(uint32_t& bits, int tokenKind);
    // The type a complete set names; CPSIMPLE_None for no bits or a set no sequence makes.
    // wideChar is what wchar_t stands for where the keywords are (getWideCharType).
    static CPSimpleTypeName nameOf(uint32_t bits, CPSimpleTypeName wideChar = CPSIMPLE_WideChar);
    // A whole sequence of token kinds. 0 with name set; otherwise the status of add and, in
    // refusedAt (may be null), the index of the refused token.
    static int combine(const int* tokenKinds, unsigned count, CPSimpleTypeName& name,
                       unsigned* refusedAt, CPSimpleTypeName wideChar = CPSIMPLE_WideChar);
};
