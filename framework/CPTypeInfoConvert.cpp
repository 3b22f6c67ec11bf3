// Arithmetic conversions and the conversion rank.
//
// convertSimple both tests and performs a conversion to a built-in type: the matrix below says
// which sources a target refuses without an explicit conversion, and a constant value is
// carried over with the truncation of C's own conversion. usualArithmetic brings two operands
// to their common type through it.
//
// The rank measures how well a source matches a target: -1 for no match, 10 for a match, and
// one more at each level where const and volatile agree, so an identical type outranks one
// that gains a qualifier. It recurses through pointers, references, arrays and templates,
// adding up the levels.
#include "CPTypeInfo.h"

using quernbase::QBString;

namespace {

typedef CPTypeInfo::Base Base;
typedef CPTypeInfo::Value Value;

enum { MAX_DEPTH = 64 };

// Internal to the rank: a level between the top and here lacks const.
const uint32_t RANK_UNQUALIFIED_LEVEL = 0x80000000u;

constexpr uint32_t bit(CPSimpleTypeName n) { return 1u << n; }

const uint32_t FLOATING = bit(CPSIMPLE_Float) | bit(CPSIMPLE_Double) | bit(CPSIMPLE_LongDouble);
const uint32_t LONGLONG = bit(CPSIMPLE_SignedLongLong) | bit(CPSIMPLE_UnsignedLongLong);
const uint32_t LONG = bit(CPSIMPLE_SignedLong) | bit(CPSIMPLE_UnsignedLong);
const uint32_t SHORT = bit(CPSIMPLE_SignedShort) | bit(CPSIMPLE_UnsignedShort);

// Sources each target refuses without explicitly; the first two answer NoSimpleConversion, the
// rest -1.
struct Refusal {
    uint32_t sources;
    int status;
};
const Refusal refusals[CPSIMPLE_LAST + 1] = {
    {0, 0},                                                                                // none
    {~(bit(CPSIMPLE_None) | bit(CPSIMPLE_Bool) | bit(CPSIMPLE_Void)), qbmsg::NoSimpleConversion},  // bool
    {0, 0},                                                                                // void
    {FLOATING | LONG | LONGLONG, qbmsg::NoSimpleConversion},                               // wchar_t
    {bit(CPSIMPLE_Double) | bit(CPSIMPLE_LongDouble) | LONGLONG | bit(CPSIMPLE_UnsignedLong), -1},
    {bit(CPSIMPLE_LongDouble) | LONGLONG, -1},                                             // double
    {LONGLONG, -1},                                                                        // long double
    {bit(CPSIMPLE_WideChar) | FLOATING | SHORT | LONG | LONGLONG, -1},                     // char
    {bit(CPSIMPLE_WideChar) | FLOATING | SHORT | LONG | LONGLONG, -1},                     // signed char
    {FLOATING | LONG | LONGLONG, -1},                                                      // short
    {FLOATING | LONGLONG, -1},                                                             // int
    {FLOATING | LONGLONG, -1},                                                             // long
    {FLOATING, -1},                                                                        // long long
    {bit(CPSIMPLE_WideChar) | FLOATING | SHORT | LONG | LONGLONG, -1},                     // unsigned char
    {FLOATING | LONG | LONGLONG, -1},                                                      // unsigned short
    {FLOATING | LONGLONG, -1},                                                             // unsigned int
    {FLOATING | LONGLONG, -1},                                                             // unsigned long
    {FLOATING, -1},                                                                        // unsigned long long
};

bool isFloating(CPSimpleTypeName n) { return (bit(n) & FLOATING) != 0; }

// A number of any numeric payload, read as its source type gives it.
struct Number {
    bool floating = false;
    double real = 0;
    int64_t integer = 0;
};

bool readNumber(const Value& v, CPSimpleTypeName from, Number& n) {
    switch (v.getKind()) {
    case BPVALUE_UnsignedInteger: n.integer = v.getUnsignedInteger(); return true;
    case BPVALUE_SignedInteger: n.integer = v.getSignedInteger(); return true;
    case BPVALUE_UnsignedLong: n.integer = v.getUnsignedLong(); return true;
    case BPVALUE_SignedLong: n.integer = v.getSignedLong(); return true;
    case BPVALUE_UnsignedLongLong: n.integer = int64_t(v.getUnsignedLongLong()); return true;
    case BPVALUE_SignedLongLong: n.integer = v.getSignedLongLong(); return true;
    case BPVALUE_UnsignedShort: n.integer = v.getUnsignedShort(); return true;
    case BPVALUE_SignedShort: n.integer = v.getSignedShort(); return true;
    case BPVALUE_Character:
        n.integer = from == CPSIMPLE_UnsignedChar ? int64_t(uint8_t(v.getCharacter())) : int64_t(v.getCharacter());
        return true;
    case BPVALUE_WideCharacter: n.integer = v.getWideCharacter(); return true;
    case BPVALUE_Boolean: n.integer = v.getBoolean() ? 1 : 0; return true;
    case BPVALUE_Enumeration: n.integer = v.getEnumeration(); return true;
    case BPVALUE_Float: n.floating = true; n.real = v.getFloat(); return true;
    case BPVALUE_Double: n.floating = true; n.real = v.getDouble(); return true;
    case BPVALUE_LongDouble: n.floating = true; n.real = v.getLongDouble(); return true;
    default: return false;
    }
}

// A floating value cut to an integer the way C does, saturating where C leaves it undefined.
int64_t truncated(double d) {
    if (d != d) return 0;
    if (d >= 9.2233720368547758e18) return INT64_MAX;
    if (d <= -9.2233720368547758e18) return INT64_MIN;
    return int64_t(d);
}

int writeNumber(Value& v, CPSimpleTypeName to, const Number& n) {
    if (n.floating && !isFloating(to) && to != CPSIMPLE_Bool) {
        Number cut;
        cut.integer = truncated(n.real);
        return writeNumber(v, to, cut);
    }
    double real = n.floating ? n.real : double(n.integer);
    int64_t i = n.integer;
    switch (to) {
    case CPSIMPLE_Bool: v.setBoolean(n.floating ? n.real != 0 : i != 0); return 0;
    case CPSIMPLE_WideChar: v.setWideCharacter(uint16_t(i)); return 0;
    case CPSIMPLE_Float: v.setFloat(float(real)); return 0;
    case CPSIMPLE_Double: v.setDouble(real); return 0;
    case CPSIMPLE_LongDouble: return v.setLongDouble(real);
    case CPSIMPLE_Char:
    case CPSIMPLE_SignedChar:
    case CPSIMPLE_UnsignedChar: v.setCharacter(char(uint8_t(i))); return 0;
    case CPSIMPLE_SignedShort: v.setSignedShort(int16_t(uint16_t(i))); return 0;
    case CPSIMPLE_UnsignedShort: v.setUnsignedShort(uint16_t(i)); return 0;
    case CPSIMPLE_SignedInt: v.setSignedInteger(int32_t(uint32_t(i))); return 0;
    case CPSIMPLE_UnsignedInt: v.setUnsignedInteger(uint32_t(i)); return 0;
    case CPSIMPLE_SignedLong: v.setSignedLong(int32_t(uint32_t(i))); return 0;
    case CPSIMPLE_UnsignedLong: v.setUnsignedLong(uint32_t(i)); return 0;
    case CPSIMPLE_SignedLongLong: v.setSignedLongLong(i); return 0;
    case CPSIMPLE_UnsignedLongLong: v.setUnsignedLongLong(uint64_t(i)); return 0;
    default: return 0;
    }
}

// The type's value, converted from the simple type from to to; other payloads stay.
int convertValue(CPTypeInfo& type, CPSimpleTypeName from, CPSimpleTypeName to) {
    const Value* shown = type.getValue();
    Number n;
    if (!shown || !readNumber(*shown, from, n)) return 0;
    Value converted;
    if (int rc = writeNumber(converted, to, n)) return rc;
    return type.setValue(&converted);
}

// An enumeration operand: an int whose value is the enumerator's number.
int enumerationToInt(CPTypeInfo& type) {
    Value number;
    const Value* shown = type.getValue();
    bool hasNumber = shown && shown->getKind() == BPVALUE_Enumeration;
    if (hasNumber) number.setSignedLong(int32_t(shown->getEnumeration()));
    uint32_t kept = type.getChainFlags();
    Value other;
    bool keepOther = shown && !hasNumber && other.copyFrom(*shown) == 0;
    type.setKind(BPTYPE_Simple, false);
    type.setFlags(kept);
    if (int rc = type.setSimpleName(CPSIMPLE_SignedInt)) return rc;
    if (hasNumber) return type.setValue(&number);
    return keepOther ? type.setValue(&other) : 0;
}

bool isClassOrID(uint32_t k) { return k == BPTYPE_Class || k == BPTYPE_TemplateID; }

bool isVoid(const Base* t) {
    CPTypeInfo copy;
    return t && copy.assign(*t) == 0 && copy.resolve(true) == 0 && copy.getKind() == BPTYPE_Simple &&
           copy.getSimpleName() == CPSIMPLE_Void;
}

}  // namespace

// ---- Simple conversion ----

int CPTypeInfo::convertSimple(CPTypeInfo& type, CPSimpleTypeName name, Tree* node, bool explicitly) {
    if (int rc = type.resolve(false)) return rc;
    uint32_t k = type.getKind();
    if (k == BPTYPE_Typedef) {
        if (int rc = type.stripTypedef()) return rc;
        if (int rc = type.resolve(false)) return rc;
        k = type.getKind();
    }
    if ((k == BPTYPE_Pointer || k == BPTYPE_Array) && name == CPSIMPLE_Bool) {
        Value truth;
        truth.setBoolean(!type.isNullPointerConstant());
        bool hasValue = type.getValue() != nullptr;
        type.setKind(BPTYPE_Simple, false);
        if (int rc = type.setSimpleName(CPSIMPLE_Bool)) return rc;
        return hasValue ? type.setValue(&truth) : 0;
    }
    if (k == BPTYPE_Simple && type.getSimpleName() == name) return 0;
    if (k == BPTYPE_Class || k == BPTYPE_Union || k == BPTYPE_TemplateID) {
        CPTypeInfo target(BPTYPE_Simple);
        target.setSimpleName(name);
        Symbol* found = nullptr;
        if (findConversionFunction(type, &target, node, 0, &found) != 0) return ERR_NOCONVERSION;
        if (node && found) found->addReference(node);
        return 0;
    }
    if (k == BPTYPE_Enumeration) {
        if (int rc = enumerationToInt(type)) return rc;
        if (name == CPSIMPLE_SignedInt) return 0;
    } else if (k != BPTYPE_Simple) {
        return ERR_NOCONVERSION;
    }
    CPSimpleTypeName from = type.getSimpleName();
    if (from == CPSIMPLE_None || from == CPSIMPLE_Void || from > CPSIMPLE_LAST) return ERR_NOCONVERSION;
    if (name <= CPSIMPLE_None || name > CPSIMPLE_LAST) return ERR_NOCONVERSION;
    const Refusal& refusal = refusals[name];
    if (!explicitly && (refusal.sources & bit(from))) return refusal.status;
    if (int rc = type.setSimpleName(name)) return rc;
    return convertValue(type, from, name);
}

// ---- Usual arithmetic conversions ----

static void convertTo(CPTypeInfo& type, CPSimpleTypeName name, CPTypeInfo::Tree* node) {
    CPTypeInfo::convertSimple(type, name, node, false);
}

// The rule of the integers after promotion: the first of these that either side has wins.
static void balanceIntegers(CPTypeInfo& left, CPTypeInfo& right, CPTypeInfo::Tree* leftNode,
                            CPTypeInfo::Tree* rightNode) {
    CPSimpleTypeName l = left.getSimpleName(), r = right.getSimpleName();
    auto either = [&](CPSimpleTypeName n) { return l == n || r == n; };
    auto both = [&](CPSimpleTypeName n) {
        convertTo(left, n, leftNode);
        convertTo(right, n, rightNode);
    };
    if ((l == CPSIMPLE_SignedLong && r == CPSIMPLE_UnsignedInt) || (l == CPSIMPLE_UnsignedInt && r == CPSIMPLE_SignedLong))
        return both(CPSIMPLE_UnsignedLong);
    static const CPSimpleTypeName order[] = {CPSIMPLE_UnsignedLongLong, CPSIMPLE_SignedLongLong,
                                             CPSIMPLE_UnsignedLong, CPSIMPLE_SignedLong, CPSIMPLE_UnsignedInt};
    for (CPSimpleTypeName n : order)
        if (either(n)) return both(n);
}

int CPTypeInfo::usualArithmetic(CPTypeInfo& left, CPTypeInfo& right, Tree* leftNode, Tree* rightNode) {
    if (left.resolve(true) || right.resolve(true)) return ERR_NOCONVERSION;
    if (left.getKind() == BPTYPE_Enumeration && enumerationToInt(left)) return qbmsg::OutOfMemory;
    if (right.getKind() == BPTYPE_Enumeration && enumerationToInt(right)) return qbmsg::OutOfMemory;
    if (left.getKind() != BPTYPE_Simple || right.getKind() != BPTYPE_Simple) return ERR_NOCONVERSION;
    CPSimpleTypeName l = left.getSimpleName(), r = right.getSimpleName();
    static const CPSimpleTypeName floating[] = {CPSIMPLE_LongDouble, CPSIMPLE_Double, CPSIMPLE_Float};
    for (CPSimpleTypeName n : floating)
        if (l == n || r == n) {
            convertTo(left, n, leftNode);
            convertTo(right, n, rightNode);
            return 0;
        }
    // Integral promotion: what is narrower than int becomes int.
    static const uint32_t promoted = bit(CPSIMPLE_Bool) | bit(CPSIMPLE_WideChar) | bit(CPSIMPLE_Char) |
                                     bit(CPSIMPLE_SignedChar) | bit(CPSIMPLE_UnsignedChar) | SHORT;
    if (bit(l) & promoted) convertTo(left, CPSIMPLE_SignedInt, leftNode);
    if (bit(r) & promoted) convertTo(right, CPSIMPLE_SignedInt, rightNode);
    balanceIntegers(left, right, leftNode, rightNode);
    return 0;
}

// ---- Conversion rank ----

static int rankAt(const Base* target, const Base* source, uint32_t flags, int depth);

// A rank plus the level's own e, or -1.
static int plus(int rank, int e) { return rank < 0 ? -1 : rank + e; }

static int rankPointers(const Base& t, const Base& s, int e, uint32_t flags, int depth) {
    const Base* tp = t.getPointedType();
    const Base* sp = s.getPointedType();
    if (!tp || !sp) return -1;
    if (isVoid(tp)) {
        if ((sp->isConst() && !tp->isConst()) || (sp->isVolatile() && !tp->isVolatile())) return -1;
        bool same = sp->isConst() == tp->isConst() && sp->isVolatile() == tp->isVolatile();
        return e + CPTypeInfo::RANK_EXACT + (same ? 1 : 0);
    }
    // Below the top, a pointee may gain const or volatile only where this level and every
    // level between it and the top are const: char** doesn't become const char**.
    bool belowTop = (flags & CPRANK_QualifiedPointee) != 0;
    bool gains = (tp->isConst() && !sp->isConst()) || (tp->isVolatile() && !sp->isVolatile());
    if (belowTop && gains && (!t.isConst() || (flags & RANK_UNQUALIFIED_LEVEL))) return -1;
    uint32_t next = flags | CPRANK_Pointee | CPRANK_QualifiedPointee;
    if (belowTop && !t.isConst()) next |= RANK_UNQUALIFIED_LEVEL;
    return rankAt(tp, sp, next, depth + 1);
}

// The sum of ranks of two lists of equal length, or -1.
static int rankLists(const Base& t, const Base& s, uint32_t flags, int depth) {
    unsigned n = t.getArgumentCount();
    if (n != s.getArgumentCount()) return -1;
    int sum = 0;
    for (unsigned i = 0; i < n; ++i) {
        int r = rankAt(t.getArgumentType(i), s.getArgumentType(i), flags, depth + 1);
        if (r < 0) return -1;
        sum += r;
    }
    return sum;
}

static bool equalLists(const Base* a, const Base* b) {
    if (!a || !b) return a == b || (a ? a->getArgumentCount() : b->getArgumentCount()) == 0;
    unsigned n = a->getArgumentCount();
    if (n != b->getArgumentCount()) return false;
    for (unsigned i = 0; i < n; ++i) {
        const Base* x = a->getArgumentType(i);
        const Base* y = b->getArgumentType(i);
        if (x != y && (!x || !y || !(*x == *y))) return false;
    }
    return true;
}

// What a function gives: its return type, or for a constructor its class.
static const Base* resultOf(const Base& function) {
    const Base* r = function.getReturnType();
    uint32_t k = r ? r->getKind() : uint32_t(BPTYPE_Null);
    if (k != BPTYPE_None && k != BPTYPE_Null) return r;
    CPTypeInfo::Symbol* symbol = function.getSymbol();
    CPTypeInfo::Tree* owner = symbol ? symbol->getScope() : nullptr;
    return owner ? owner->getTypeInfo() : r;
}

static int rankFunctions(const Base& t, const Base& s, int e, uint32_t flags, int depth) {
    if (!(flags & CPRANK_Pointee) && t.getName() != s.getName()) return -1;
    if (!equalLists(t.getArguments(), s.getArguments())) return -1;
    const Base* tr = resultOf(t);
    const Base* sr = resultOf(s);
    int r = tr && sr ? rankAt(tr, sr, flags & ~CPRANK_Pointee, depth + 1) : (tr == sr ? 0 : -1);
    return plus(r, e + CPTypeInfo::RANK_EXACT);
}

static int rankClasses(const Base& t, const Base& s, int e, uint32_t flags, int depth) {
    if (t.getName() != s.getName()) return -1;
    const int exact = e + CPTypeInfo::RANK_EXACT;
    if (t.getName().isEmpty()) {
        if (t.getDerivationCount() != s.getDerivationCount() || t.getMemberCount() != s.getMemberCount()) return -1;
        for (unsigned i = 0; i < t.getMemberCount(); ++i)
            if (rankAt(t.getMember(i), s.getMember(i), flags, depth + 1) < 0) return -1;
        return exact;
    }
    const Base* tid = t.getRawKind() == BPTYPE_Enumeration ? nullptr : t.getTemplateID();
    const Base* sid = s.getRawKind() == BPTYPE_Enumeration ? nullptr : s.getTemplateID();
    if (tid && sid && tid->resolved() != &t && sid->resolved() != &s)
        return rankAt(tid, sid, flags, depth + 1) < 0 ? -1 : exact;
    return exact;
}

static int rankTemplateParameters(const Base& t, const Base& s, int e, uint32_t flags, int depth) {
    const Base* tt = t.getParameterType();
    const Base* st = s.getParameterType();
    bool equal = (!tt && !st && t.getName() == s.getName()) ||
                 (tt && st && rankAt(tt, st, flags, depth + 1) >= 0);
    if (equal) return e + CPTypeInfo::RANK_EXACT;
    return (flags & LOOKUP_MatchParameterByPosition) ? e : -1;
}

static int rankSameKind(const Base& t, const Base& s, int e, uint32_t flags, int depth) {
    const int exact = e + CPTypeInfo::RANK_EXACT;
    switch (t.getRawKind()) {
    case BPTYPE_Null:
    case BPTYPE_None:
    case BPTYPE_Any:
    case BPTYPE_Namespace:
    case BPTYPE_Range: return t.getName() == s.getName() ? exact : -1;
    case BPTYPE_Simple: return t.getSimpleName() == s.getSimpleName() ? exact : -1;
    case BPTYPE_Array: {
        int element = rankAt(t.getElementType(), s.getElementType(), flags, depth + 1);
        const Base* ti = t.getIndexType();
        const Base* si = s.getIndexType();
        int index = ti && si ? rankAt(ti, si, flags, depth + 1) : (ti == si ? 0 : -1);
        if (element < 0 || index < 0 || t.getStart() != s.getStart() || t.getSize() != s.getSize()) return -1;
        return exact + element + index;
    }
    case BPTYPE_Pointer: return rankPointers(t, s, e, flags, depth);
    case BPTYPE_Reference: return rankAt(t.getPointedType(), s.getPointedType(), flags | CPRANK_Pointee, depth + 1);
    case BPTYPE_Class:
    case BPTYPE_Union:
    case BPTYPE_Enumeration: return rankClasses(t, s, e, flags, depth);
    case BPTYPE_ArgumentList: return equalLists(&t, &s) ? exact : -1;
    case BPTYPE_Function: return rankFunctions(t, s, e, flags, depth);
    case BPTYPE_Variable:
        if (t.getName() != s.getName()) return -1;
        return plus(rankAt(t.getVariableType(), s.getVariableType(), flags, depth + 1), exact);
    case BPTYPE_TemplateID: {
        const Base* tt = t.getTemplateType();
        const Base* st = s.getTemplateType();
        if (tt != st && (!tt || !st || !(*tt == *st))) return -1;
        return plus(rankLists(t, s, flags, depth), exact);
    }
    case BPTYPE_TemplateDeclaration: return equalLists(t.getArguments(), s.getArguments()) ? exact : -1;
    case BPTYPE_TemplateParameter: return rankTemplateParameters(t, s, e, flags, depth);
    case BPTYPE_MemberPointer: {
        const Base* tc = t.getClassType();
        const Base* sc = s.getClassType();
        bool related = tc && sc && (CPTypeInfo::isDerivedFrom(tc, sc, nullptr) || CPTypeInfo::isDerivedFrom(sc, tc, nullptr));
        if (!related) return -1;
        return plus(rankAt(t.getMemberType(), s.getMemberType(), flags, depth + 1), exact);
    }
    default: return -1;
    }
}

// Steps 4 to 9 of the rank: the forms that convert before kinds are compared.
static int rankAcrossKinds(CPTypeInfo& t, CPTypeInfo& s, int e, uint32_t& flags, int depth, bool& done) {
    done = true;
    uint32_t tk = t.getKind(), sk = s.getKind();
    if (tk == BPTYPE_Pointer && sk == BPTYPE_Array) {
        CPTypeInfo decayed(s);
        if (decayed.arrayToPointer()) return -1;
        return plus(rankAt(&t, &decayed, flags, depth + 1), e);
    }
    if (tk == BPTYPE_Pointer && s.isNullPointerConstant()) return e + CPTypeInfo::RANK_EXACT;
    if (tk == BPTYPE_Array && sk == BPTYPE_Pointer && t.getSize() == 0 && !(flags & CPRANK_ArrayBoundIgnored)) {
        CPTypeInfo decayed(t);
        if (decayed.arrayToPointer()) return -1;
        return plus(rankAt(&decayed, &s, flags, depth + 1), e);
    }
    flags &= ~CPRANK_ArrayBoundIgnored;
    int string = CPTypeInfo::simpleRank(&t, &s, flags);
    if (string >= 0) return string + e;
    if (tk == BPTYPE_Class && sk == BPTYPE_TemplateID)
        if (const Base* c = CPTypeInfo::classOfTemplateID(&s)) return rankAt(&t, c, flags, depth + 1);
    if (tk == BPTYPE_TemplateID && sk == BPTYPE_Class)
        if (const Base* c = CPTypeInfo::classOfTemplateID(&t)) return rankAt(c, &s, flags, depth + 1);
    if ((flags & CPRANK_DerivedToBase) && isClassOrID(tk) && isClassOrID(sk) && CPTypeInfo::isDerivedFrom(&s, &t, nullptr))
        return e + CPTypeInfo::RANK_EXACT;
    if (tk != sk) {
        CPTypeInfo rt(t), rs(s);
        if (rt.resolve(true) || rs.resolve(true)) return -1;
        if (rt.getRawKind() == t.getRawKind() && rs.getRawKind() == s.getRawKind()) return -1;
        return rankAt(&rt, &rs, flags, depth + 1);
    }
    done = false;
    return -1;
}

static int rankAt(const Base* target, const Base* source, uint32_t flags, int depth) {
    if (!target || !source || depth > MAX_DEPTH) return -1;
    bool tc = target->isConst(), tv = target->isVolatile(), sc = source->isConst(), sv = source->isVolatile();
    if ((sc && !tc) || (sv && !tv)) return -1;
    int e = tc == sc && tv == sv ? 1 : 0;
    CPTypeInfo t, s;
    if (t.assign(*target) || s.assign(*source)) return -1;
    if (CPTypeInfo::isLinkKind(t.getRawKind()) || CPTypeInfo::isLinkKind(s.getRawKind())) {
        if (t.resolve(false) || s.resolve(false)) return -1;
        return rankAt(&t, &s, flags, depth + 1);
    }
    if (t.getRawKind() == BPTYPE_Typedef || s.getRawKind() == BPTYPE_Typedef) {
        if (t.stripTypedef() || s.stripTypedef()) return -1;
        return plus(rankAt(&t, &s, flags, depth + 1), e);
    }
    bool done = false;
    int r = rankAcrossKinds(t, s, e, flags, depth, done);
    return done ? r : rankSameKind(t, s, e, flags, depth);
}

int CPTypeInfo::conversionRank(const Base* target, const Base* source, uint32_t flags) {
    return rankAt(target, source, flags, 0);
}

// ---- The string rule ----

static const Base* simpleElement(const Base* t) {
    CPTypeInfo copy;
    if (!t || copy.assign(*t) || copy.resolve(true)) return nullptr;
    uint32_t k = copy.getKind();
    const Base* element = k == BPTYPE_Array ? copy.getElementType() : k == BPTYPE_Pointer ? copy.getPointedType() : nullptr;
    while (element && (CPTypeInfo::isLinkKind(element->getRawKind()) || element->getRawKind() == BPTYPE_Typedef))
        element = CPTypeInfo::isLinkKind(element->getRawKind()) ? element->getReferenceTarget() : element->getAliasedType();
    return element && element->getRawKind() == BPTYPE_Simple ? element : nullptr;
}

int CPTypeInfo::simpleRank(const Base* target, const Base* source, uint32_t) {
    if (!target || !source || !source->getValue()) return -1;
    const Base* s = source->resolved();
    if (s->getRawKind() != BPTYPE_Array) return -1;
    const Base* se = simpleElement(source);
    const Base* te = simpleElement(target);
    if (!se || !te) return -1;
    CPSimpleTypeName sn = se->getSimpleName(), tn = te->getSimpleName();
    CPSimpleTypeName wide = getWideCharType(nullptr);
    bool narrow = sn == CPSIMPLE_Char || sn == CPSIMPLE_SignedChar;
    if (!narrow && sn != wide && sn != CPSIMPLE_WideChar) return -1;
    if (narrow) {
        bool arrayTarget = target->getKind() == BPTYPE_Array;
        bool unsignedOk = arrayTarget && tn == CPSIMPLE_UnsignedChar && !(flagsOf(te) & CPTYPE_NoImplicitConversion);
        return tn == CPSIMPLE_Char || tn == CPSIMPLE_SignedChar || unsignedOk ? RANK_EXACT : -1;
    }
    return tn == sn ? RANK_EXACT : -1;
}
