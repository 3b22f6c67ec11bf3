// CPTypeInfo: the attribute word, copies, equality, and the operations that reshape a type
// (resolve, the strips, normalize, function and pointer forms) and ask about it.
#include "CPTypeInfo.h"

using quernbase::QBString;

namespace {

typedef CPTypeInfo::Base Base;

enum { MAX_STEPS = 1000, MAX_DEPTH = 64 };

// Through links and typedefs, without copying.
const Base* throughTypedefs(const Base* t) {
    for (int steps = 0; t && steps < MAX_STEPS; ++steps) {
        t = t->resolved();
        if (t->getRawKind() != BPTYPE_Typedef) return t;
        t = t->getAliasedType();
    }
    return t;
}

bool isFunction(const Base* t) {
    t = throughTypedefs(t);
    return t && t->getRawKind() == BPTYPE_Function;
}

// A simple integral type: everything but none, void and the floating types.
bool isIntegralName(CPSimpleTypeName n) {
    return n == CPSIMPLE_Bool || n == CPSIMPLE_WideChar || (n >= CPSIMPLE_Char && n <= CPSIMPLE_LAST);
}

bool isZero(const CPTypeInfo::Value& v) {
    switch (v.getKind()) {
    case BPVALUE_UnsignedInteger: return v.getUnsignedInteger() == 0;
    case BPVALUE_SignedInteger: return v.getSignedInteger() == 0;
    case BPVALUE_UnsignedLong: return v.getUnsignedLong() == 0;
    case BPVALUE_SignedLong: return v.getSignedLong() == 0;
    case BPVALUE_UnsignedLongLong: return v.getUnsignedLongLong() == 0;
    case BPVALUE_SignedLongLong: return v.getSignedLongLong() == 0;
    case BPVALUE_UnsignedShort: return v.getUnsignedShort() == 0;
    case BPVALUE_SignedShort: return v.getSignedShort() == 0;
    case BPVALUE_Character: return v.getCharacter() == 0;
    case BPVALUE_WideCharacter: return v.getWideCharacter() == 0;
    case BPVALUE_Boolean: return !v.getBoolean();
    case BPVALUE_Enumeration: return v.getEnumeration() == 0;
    default: return false;
    }
}

}  // namespace

// ---- The attribute word ----

int CPTypeInfo::assign(const Base& other) {
    if (&other == this) return 0;
    const CPTypeInfo* typed = dynamic_cast<const CPTypeInfo*>(&other);
    flags = typed ? typed->flags : 0;
    return copyFrom(other);
}

uint32_t CPTypeInfo::flagsOf(const Base* t) {
    const CPTypeInfo* typed = dynamic_cast<const CPTypeInfo*>(t);
    return typed ? typed->flags : 0;
}

uint32_t CPTypeInfo::getChainFlags() const {
    uint32_t all = flags;
    const Base* t = this;
    for (int steps = 0; steps < MAX_STEPS && CPTypeInfo::isLinkKind(t->getRawKind()) && t->getReferenceTarget(); ++steps) {
        t = t->getReferenceTarget();
        all |= flagsOf(t);
    }
    return all;
}

bool CPTypeInfo::isLValue() const {
    const Base* t = this;
    for (int steps = 0; t && steps < MAX_STEPS; ++steps) {
        if (flagsOf(t) & CPTYPE_LValue) return true;
        uint32_t k = t->getRawKind();
        t = CPTypeInfo::isLinkKind(k) ? t->getReferenceTarget() : k == BPTYPE_Typedef ? t->getAliasedType() : nullptr;
    }
    return false;
}

const char* CPTypeInfo::flagName(uint32_t bit) {
    static const char* const names[] = {
        "LValue", "Auto", "Register", "Restrict", "Static", "Extern", "Export", "Mutable",
        "Inline", "Virtual", "Abstract", "Explicit", "Const", "Volatile", "Private", "Protected",
        "Public", "Friend", "Typedef", "AssignedTo", "NoImplicitConversion", "FunctionCalled",
        "TemplateNotInstantiated"};
    for (unsigned i = 0; i < sizeof names / sizeof names[0]; ++i)
        if (bit == (1u << i)) return names[i];
    return nullptr;
}

void CPTypeInfo::setFunctionCalled(bool value, bool followReferences) {
    setFlag(CPTYPE_FunctionCalled, value);
    if (!followReferences) return;
    if (CPTypeInfo* end = dynamic_cast<CPTypeInfo*>(resolved())) end->setFlag(CPTYPE_FunctionCalled, value);
}

// ---- Copies and equality ----

bool CPTypeInfo::operator==(const Base& other) const {
    return Base::operator==(other) && isConst() == other.isConst() && isVolatile() == other.isVolatile();
}

int CPTypeInfo::copyResolved(const Base& source) {
    if (int rc = assign(source)) return rc;
    return resolve(false);
}

int CPTypeInfo::relinkKeepingValue(Base* target) {
    Value kept;
    const Value* shown = getValue();
    bool hadValue = shown != nullptr;
    if (hadValue && kept.copyFrom(*shown) != 0) return qbmsg::OutOfMemory;
    int rc = setReference(target, false);
    if (rc == 0 && hadValue) rc = setValue(&kept);
    return rc;
}

int CPTypeInfo::resolve(bool followTypedefs) {
    uint32_t all = flags;
    const Base* t = this;
    for (int steps = 0;; ++steps) {
        if (steps >= MAX_STEPS) return qbmsg::BadArgument;
        uint32_t k = t->getRawKind();
        const Base* next = CPTypeInfo::isLinkKind(k) ? t->getReferenceTarget()
                           : followTypedefs && k == BPTYPE_Typedef ? t->getAliasedType()
                                                                    : t;
        if (next == t) break;
        if (!next) return qbmsg::BadArgument;
        t = next;
        all |= flagsOf(t);
    }
    if (t == this) return 0;
    Value kept;
    const Value* shown = getValue();
    bool hadValue = shown != nullptr;
    if (hadValue && kept.copyFrom(*shown) != 0) return qbmsg::OutOfMemory;
    if (int rc = copyFrom(*t)) return rc;
    flags = all;
    return hadValue ? setValue(&kept) : 0;
}

int CPTypeInfo::stripVariable() {
    if (getKind() != BPTYPE_Variable) return 0;
    Base* type = getVariableType();
    if (!type) return qbmsg::BadArgument;
    bool lvalue = isLValue();
    if (int rc = relinkKeepingValue(type)) return rc;
    flags = lvalue ? uint32_t(CPTYPE_LValue) : 0u;
    return 0;
}

int CPTypeInfo::stripTypedef() {
    for (int steps = 0; getKind() == BPTYPE_Typedef; ++steps) {
        Base* aliased = getAliasedType();
        if (!aliased || steps >= MAX_STEPS) return qbmsg::BadArgument;
        uint32_t cv = getChainFlags() & (CPTYPE_Const | CPTYPE_Volatile | CPTYPE_LValue);
        if (int rc = relinkKeepingValue(aliased)) return rc;
        flags |= cv;
    }
    return 0;
}

int CPTypeInfo::normalize() {
    if (int rc = stripVariable()) return rc;
    if (int rc = stripTypedef()) return rc;
    if (getKind() == BPTYPE_Reference) {
        Base* target = getPointedType();
        if (!target) return qbmsg::BadArgument;
        Value referred;
        const Value* shown = getValue();
        bool hasReferred = shown && shown->getKind() == BPVALUE_Reference && shown->getReferredValue();
        if (hasReferred && referred.copyFrom(*shown->getReferredValue()) != 0) return qbmsg::OutOfMemory;
        uint32_t kept = flags & CPTYPE_LValue;
        if (int rc = hasReferred ? setReference(target, false) : relinkKeepingValue(target)) return rc;
        flags = kept | CPTYPE_LValue;  // what a reference designates is an object
        if (hasReferred)
            if (int rc = setValue(&referred)) return rc;
    }
    if (int rc = stripVariable()) return rc;
    return stripTypedef();
}

// A callable reached through pointers, references and member pointers: the function itself.
static Base* calledFunction(const Base* t) {
    t = throughTypedefs(t);
    if (!t) return nullptr;
    switch (t->getRawKind()) {
    case BPTYPE_Function: return const_cast<Base*>(t);
    case BPTYPE_Pointer:
    case BPTYPE_Reference: {
        const Base* f = throughTypedefs(t->getPointedType());
        return f && f->getRawKind() == BPTYPE_Function ? const_cast<Base*>(f) : nullptr;
    }
    case BPTYPE_MemberPointer: {
        const Base* f = throughTypedefs(t->getMemberType());
        return f && f->getRawKind() == BPTYPE_Function ? const_cast<Base*>(f) : nullptr;
    }
    default: return nullptr;
    }
}

int CPTypeInfo::toFunctionType() {
    if (int rc = stripVariable()) return rc;
    if (int rc = stripTypedef()) return rc;
    Base* function = calledFunction(this);
    if (!function) return ERR_NOCONVERSION;
    Base* result = function->getReturnType();
    uint32_t resultKind = result ? result->getKind() : uint32_t(BPTYPE_Null);
    if (resultKind == BPTYPE_None || resultKind == BPTYPE_Null) {
        // a constructor gives its class
        Symbol* symbol = function->getSymbol();
        Tree* owner = symbol ? symbol->getScope() : nullptr;
        result = owner ? owner->getTypeInfo() : nullptr;
        if (!result) return qbmsg::BadArgument;
    }
    flags = 0;
    return setReference(result, false);
}

int CPTypeInfo::arrayToPointer() {
    if (getKind() != BPTYPE_Array) return qbmsg::BadArgument;
    Base* element = getElementType();
    Value pointer;
    const Value* shown = getValue();
    if (shown && pointer.setPointedValue(*shown) != 0) return qbmsg::OutOfMemory;
    setKind(BPTYPE_Pointer, false);
    record = element;
    return shown ? setValue(&pointer) : 0;
}

// ---- Questions ----

bool CPTypeInfo::isFunctionPointer() const {
    const Base* t = throughTypedefs(this);
    return t && t->getRawKind() == BPTYPE_Pointer && isFunction(t->getPointedType());
}

bool CPTypeInfo::isFunctionReference() const {
    const Base* t = throughTypedefs(this);
    return t && t->getRawKind() == BPTYPE_Reference && isFunction(t->getPointedType());
}

bool CPTypeInfo::isMemberFunctionPointer() const {
    const Base* t = throughTypedefs(this);
    return t && t->getRawKind() == BPTYPE_MemberPointer && isFunction(t->getMemberType());
}

bool CPTypeInfo::isCallable() const {
    const Base* t = this;
    for (int steps = 0; t && steps < MAX_STEPS; ++steps) {
        t = throughTypedefs(t);
        if (!t || t->getRawKind() != BPTYPE_Variable) break;
        t = t->getVariableType();
    }
    return t && calledFunction(t) != nullptr;
}

bool CPTypeInfo::isMemberFunction() const {
    const Base* t = resolved();
    if (t->getRawKind() != BPTYPE_Function) return false;
    Symbol* symbol = t->getSymbol();
    Tree* definition = symbol ? symbol->getDefinition() : nullptr;
    if (!definition) return false;
    int type = definition->getType();
    return type == CPN_InitDeclarator || type == CPN_MemberDeclarator;
}

bool CPTypeInfo::isConstructor() const {
    const Base* t = resolved();
    if (t->getRawKind() != BPTYPE_Function) return false;
    Symbol* symbol = t->getSymbol();
    Tree* owner = symbol ? symbol->getScope() : nullptr;
    Base* ownerType = owner ? owner->getTypeInfo() : nullptr;
    if (!ownerType || ownerType->getKind() != BPTYPE_Class) return false;
    QBString className = ownerType->getName();
    return !className.isEmpty() && className == symbol->getName();
}

bool CPTypeInfo::isNullPointerConstant() const {
    const Value* v = getValue();
    if (!v) return false;
    if (v->getKind() == BPVALUE_Pointer) return !v->getPointedValue() && v->getPointerAddress() == 0;
    const Base* t = throughTypedefs(this);
    return t && t->getRawKind() == BPTYPE_Simple && isIntegralName(t->getSimpleName()) && isZero(*v);
}

bool CPTypeInfo::isStringType() const {
    const Base* t = throughTypedefs(this);
    if (!t || t->getRawKind() != BPTYPE_Array || !getValue()) return false;
    const Base* element = throughTypedefs(t->getElementType());
    if (!element || element->getRawKind() != BPTYPE_Simple) return false;
    CPSimpleTypeName name = element->getSimpleName();
    return name == CPSIMPLE_Char || name == CPSIMPLE_SignedChar || name == CPSIMPLE_WideChar ||
           name == getWideCharType(nullptr);
}

bool CPTypeInfo::containsAny(bool deep) const { return containsAny(this, deep); }

static bool anyIn(const Base* t, bool deep, int depth);

static bool anyArgument(const Base* t, bool deep, int depth) {
    if (!deep) return false;
    for (unsigned i = 0; i < t->getArgumentCount(); ++i)
        if (anyIn(t->getArgumentType(i), deep, depth + 1)) return true;
    return false;
}

static bool anyIn(const Base* t, bool deep, int depth) {
    if (!t || depth > MAX_DEPTH) return false;
    switch (t->getRawKind()) {
    case BPTYPE_Any: return true;
    case BPTYPE_TypeReference:
    case BPTYPE_TemplateParameterTypeReference:
    case BPTYPE_Reference: return anyIn(t->getRawKind() == BPTYPE_Reference ? t->getPointedType() : t->getReferenceTarget(), deep, depth + 1);
    case BPTYPE_Typedef: return anyIn(t->getAliasedType(), deep, depth + 1);
    case BPTYPE_Array: return deep && anyIn(t->getElementType(), deep, depth + 1);
    case BPTYPE_Pointer: return deep && anyIn(t->getPointedType(), deep, depth + 1);
    case BPTYPE_Function: return anyIn(t->getReturnType(), deep, depth + 1);
    case BPTYPE_Variable: {
        const Base* type = t->getVariableType();
        if (!type) return true;
        const Base* parameter = t->getTemplateParameter();
        if ((t->getVariableFlags() & BPVARIABLE_TEMPLATE) && (!parameter || !parameter->getDefaultType())) return true;
        return anyIn(type, deep, depth + 1);
    }
    case BPTYPE_ArgumentList:
    case BPTYPE_TemplateID: return anyArgument(t, deep, depth);
    case BPTYPE_TemplateParameter: {
        const Base* fallback = t->getDefaultType();
        if (!fallback || fallback->getKind() == BPTYPE_TemplateDeclaration) return true;
        return anyIn(fallback, deep, depth + 1);
    }
    default: return false;
    }
}

bool CPTypeInfo::containsAny(const Base* t, bool deep) { return anyIn(t, deep, 0); }

// ---- Derivation ----

const Base* CPTypeInfo::classOfTemplateID(const Base* id) {
    if (!id) return nullptr;
    const Base* named = throughTypedefs(id->getTemplateType());
    if (named && named->getRawKind() == BPTYPE_TemplateDeclaration) named = throughTypedefs(named->getDeclaredType());
    bool isClass = named && (named->getRawKind() == BPTYPE_Class || named->getRawKind() == BPTYPE_Union);
    return isClass && named != id->resolved() ? named : nullptr;
}

static bool derivedFrom(const Base* derived, const Base* base, CPTypeInfo* out, int depth) {
    if (!base || !derived || depth > MAX_DEPTH) return false;
    CPTypeInfo d, b;
    if (d.assign(*derived) || b.assign(*base) || d.resolve(true) || b.resolve(true)) return false;
    uint32_t dk = d.getKind(), bk = b.getKind();
    if (dk != BPTYPE_Class && dk != BPTYPE_TemplateID) return false;
    if (dk == BPTYPE_TemplateID || bk == BPTYPE_TemplateID) {
        const Base* dc = dk == BPTYPE_TemplateID ? CPTypeInfo::classOfTemplateID(&d) : derived;
        const Base* bc = bk == BPTYPE_TemplateID ? CPTypeInfo::classOfTemplateID(&b) : base;
        return dc && bc && derivedFrom(dc, bc, out, depth + 1);
    }
    CPTypeInfo::Tree* scope = d.getScopeNode();
    bool same = (scope && scope == b.getScopeNode()) || CPTypeInfo::conversionRank(&b, &d, 0) >= 0;
    if (same) {
        if (out) out->assign(d);
        return true;
    }
    for (unsigned i = 0; i < d.getParentCount(); ++i)
        if (derivedFrom(d.getParent(i), base, out, depth + 1)) return true;
    return false;
}

bool CPTypeInfo::isDerivedFrom(const Base* derived, const Base* base, CPTypeInfo* out) {
    return derivedFrom(derived, base, out, 0);
}
