// The built-in types of C and C++, as the type model stores them in a simple type. The
// framework's trees are instantiated with this enumeration for their embedded types.
#pragma once

enum CPSimpleTypeName : int {
    CPSIMPLE_None = 0,
    CPSIMPLE_Bool = 1,
    CPSIMPLE_Void = 2,
    CPSIMPLE_WideChar = 3,
    CPSIMPLE_Float = 4,
    CPSIMPLE_Double = 5,
    CPSIMPLE_LongDouble = 6,
    CPSIMPLE_Char = 7,
    CPSIMPLE_SignedChar = 8,
    CPSIMPLE_SignedShort = 9,
    CPSIMPLE_SignedInt = 10,
    CPSIMPLE_SignedLong = 11,
    CPSIMPLE_SignedLongLong = 12,
    CPSIMPLE_UnsignedChar = 13,
    CPSIMPLE_UnsignedShort = 14,
    CPSIMPLE_UnsignedInt = 15,
    CPSIMPLE_UnsignedLong = 16,
    CPSIMPLE_UnsignedLongLong = 17,
    CPSIMPLE_LAST = CPSIMPLE_UnsignedLongLong
};
