// The keyword table and the accepted sets of built-in type keywords.
#include "CPTypeInfoKeywords.h"

#include "CPParseNodeType.h"

namespace {

struct KeywordRow {
    int tokenKind;
    uint32_t bit;
    uint32_t rejectMask;
};

const KeywordRow keywords[] = {
    {CPT_kw_char, CPSIMPLEBIT_Char, 0x3ff},
    {CPT_kw_bool, CPSIMPLEBIT_Bool, 0xfff},
    {CPT_kw_int, CPSIMPLEBIT_Int, 0x3c7},
    {CPT_kw_long, CPSIMPLEBIT_Long, 0x2f3},
    {CPT_kw_short, CPSIMPLEBIT_Short, 0x3fb},
    {CPT_kw_wchar_t, CPSIMPLEBIT_WideChar, 0xfff},
    {CPT_kw_float, CPSIMPLEBIT_Float, 0xfff},
    {CPT_kw_double, CPSIMPLEBIT_Double, 0xff7},
    {CPT_kw_void, CPSIMPLEBIT_Void, 0xfff},
    {CPT_kw_signed, CPSIMPLEBIT_Signed, 0xfc2},
    {CPT_kw_unsigned, CPSIMPLEBIT_Unsigned, 0xfc2},
};

const KeywordRow* rowOf(int tokenKind) {
    for (const KeywordRow& row : keywords)
        if (row.tokenKind == tokenKind) return &row;
    return nullptr;
}

enum : uint32_t {
    C = CPSIMPLEBIT_Char, B = CPSIMPLEBIT_Bool, I = CPSIMPLEBIT_Int, L = CPSIMPLEBIT_Long,
    LL = CPSIMPLEBIT_Long | CPSIMPLEBIT_SecondLong, SH = CPSIMPLEBIT_Short, W = CPSIMPLEBIT_WideChar,
    F = CPSIMPLEBIT_Float, D = CPSIMPLEBIT_Double, V = CPSIMPLEBIT_Void, S = CPSIMPLEBIT_Signed,
    U = CPSIMPLEBIT_Unsigned
};

// Every set of keywords that names a type. Each subset of a row reachable by adding keywords
// is itself a row, so a sequence that was never refused always names a type.
struct Accepted {
    uint32_t bits;
    CPSimpleTypeName name;
};

const Accepted accepted[] = {
    {B, CPSIMPLE_Bool}, {V, CPSIMPLE_Void}, {W, CPSIMPLE_WideChar}, {F, CPSIMPLE_Float},
    {D, CPSIMPLE_Double}, {L | D, CPSIMPLE_LongDouble},
    {C, CPSIMPLE_Char}, {S | C, CPSIMPLE_SignedChar}, {U | C, CPSIMPLE_UnsignedChar},
    {SH, CPSIMPLE_SignedShort}, {SH | I, CPSIMPLE_SignedShort}, {S | SH, CPSIMPLE_SignedShort},
    {S | SH | I, CPSIMPLE_SignedShort}, {U | SH, CPSIMPLE_UnsignedShort},
    {U | SH | I, CPSIMPLE_UnsignedShort},
    {I, CPSIMPLE_SignedInt}, {S, CPSIMPLE_SignedInt}, {S | I, CPSIMPLE_SignedInt},
    {U, CPSIMPLE_UnsignedInt}, {U | I, CPSIMPLE_UnsignedInt},
    {L, CPSIMPLE_SignedLong}, {L | I, CPSIMPLE_SignedLong}, {S | L, CPSIMPLE_SignedLong},
    {S | L | I, CPSIMPLE_SignedLong}, {U | L, CPSIMPLE_UnsignedLong},
    {U | L | I, CPSIMPLE_UnsignedLong},
    {LL, CPSIMPLE_SignedLongLong}, {LL | I, CPSIMPLE_SignedLongLong},
    {S | LL, CPSIMPLE_SignedLongLong}, {S | LL | I, CPSIMPLE_SignedLongLong},
    {U | LL, CPSIMPLE_UnsignedLongLong}, {U | LL | I, CPSIMPLE_UnsignedLongLong},
};

}  // namespace

bool CPSimpleTypeKeywords::isKeyword(int tokenKind) { return rowOf(tokenKind) != nullptr; }

uint32_t CPSimpleTypeKeywords::bitOf(int tokenKind, uint32_t bits) {
    const KeywordRow* row = rowOf(tokenKind);
    if (!row) return 0;
    return row->bit == CPSIMPLEBIT_Long && (bits & CPSIMPLEBIT_Long) ? CPSIMPLEBIT_SecondLong : row->bit;
}

uint32_t CPSimpleTypeKeywords::rejectMask(int tokenKind) {
    const KeywordRow* row = rowOf(tokenKind);
    return row ? row->rejectMask : 0;
}

int CPSimpleTypeKeywords::add(uint32_t& bits, int tokenKind) {
    const KeywordRow* row = rowOf(tokenKind);
    if (!row) return qbmsg::BadArgument;
    if (bits & row->rejectMask) return qbmsg::SyntaxError;
    uint32_t next = bits | bitOf(tokenKind, bits);
    if (nameOf(next) == CPSIMPLE_None) return qbmsg::SyntaxError;
    bits = next;
    return 0;
}

CPSimpleTypeName CPSimpleTypeKeywords::nameOf(uint32_t bits, CPSimpleTypeName wideChar) {
    for (const Accepted& row : accepted)
        if (row.bits == bits) return row.name == CPSIMPLE_WideChar ? wideChar : row.name;
    return CPSIMPLE_None;
}

int CPSimpleTypeKeywords::combine(const int* tokenKinds, unsigned count, CPSimpleTypeName& name,
                                  unsigned* refusedAt, CPSimpleTypeName wideChar) {
    uint32_t bits = 0;
    name = CPSIMPLE_None;
    for (unsigned i = 0; i < count; ++i)
        if (int rc = add(bits, tokenKinds[i])) {
            if (refusedAt) *refusedAt = i;
            return rc;
        }
    name = nameOf(bits, wideChar);
    return 0;
}
