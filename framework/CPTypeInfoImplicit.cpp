// Implicit conversions: the test canConvert and the conversions it tries in order, among them
// the two user-defined ones (a converting constructor of the target class, a conversion
// function of the source class). Both search a class's own symbol table and its bases'; a
// guard on the class node keeps a class whose constructor takes itself from recursing.
#include "CPTypeInfo.h"

#include <cstring>

using quernbase::QBArray;
using quernbase::QBString;

namespace {

typedef CPTypeInfo::Base Base;
typedef CPTypeInfo::Tree Tree;
typedef CPTypeInfo::Symbol Symbol;
typedef QBArray<Symbol*> SymbolList;

enum { MAX_DEPTH = 32 };

// A copy of t, resolved through links and typedefs; false when t is null or broken.
bool settle(CPTypeInfo& copy, const Base* t) {
    return t && copy.assign(*t) == 0 && copy.normalize() == 0 && copy.resolve(true) == 0;
}

// A name "operator T" for a type T; not an operator symbol, new or delete, or an
// operator's alternative spelling.
bool isConversionName(const QBString& name) {
    static const char prefix[] = "operator ";
    if (!name.beginsWith(prefix)) return false;
    const char* rest = name.get() + sizeof prefix - 1;
    bool wordStart = (*rest >= 'a' && *rest <= 'z') || (*rest >= 'A' && *rest <= 'Z') || *rest == '_' || *rest == ':';
    if (!wordStart) return false;
    static const char* const operatorWords[] = {
        "new", "delete", "new[]", "delete[]", "new []", "delete []", "and", "and_eq", "bitand", "bitor",
        "compl", "not", "not_eq", "or", "or_eq", "xor", "xor_eq"};
    for (const char* word : operatorWords)
        if (std::strcmp(rest, word) == 0) return false;
    return true;
}

const Base* functionOf(const Symbol* symbol) {
    const Base* t = symbol ? symbol->getType() : nullptr;
    t = t ? t->resolved() : nullptr;
    return t && t->getRawKind() == BPTYPE_Function ? t : nullptr;
}

// The class node of a class type, where its members are declared.
Tree* classNode(const Base& classType) {
    const Base* t = classType.resolved();
    if (t->getRawKind() == BPTYPE_TemplateID) t = CPTypeInfo::classOfTemplateID(t);
    return t ? t->getScopeNode() : nullptr;
}

// Conversion functions of the class and its bases, one per name, the nearest first.
int collectConversions(const Base& classType, SymbolList& out, int depth) {
    Tree* node = classNode(classType);
    if (!node || depth > MAX_DEPTH) return 0;
    SymbolList found;
    if (node->getSymbolTable()) node->getSymbolTable()->collectWithPrefix(QBString("operator "), found);
    for (Symbol* symbol : found) {
        if (!isConversionName(symbol->getName()) || !functionOf(symbol)) continue;
        bool known = false;
        for (Symbol* seen : out) known = known || seen->getName() == symbol->getName();
        if (!known)
            if (int rc = out.add(symbol)) return rc;
    }
    const Base* t = classType.resolved();
    for (unsigned i = 0; i < t->getParentCount(); ++i)
        if (const Base* parent = t->getParent(i))
            if (int rc = collectConversions(*parent, out, depth + 1)) return rc;
    return 0;
}

// The first function named name in the class or its bases.
Symbol* findMemberFunction(const Base& classType, const QBString& name, int depth) {
    Tree* node = classNode(classType);
    if (!node || depth > MAX_DEPTH) return nullptr;
    if (node->getSymbolTable())
        if (SymbolList* entry = node->getSymbolTable()->getEntry(name))
            for (Symbol* symbol : *entry)
                if (functionOf(symbol)) return symbol;
    const Base* t = classType.resolved();
    for (unsigned i = 0; i < t->getParentCount(); ++i)
        if (const Base* parent = t->getParent(i))
            if (Symbol* symbol = findMemberFunction(*parent, name, depth + 1)) return symbol;
    return nullptr;
}

// Class nodes being searched for a converting constructor.
QBArray<const Tree*>& guardedClasses() {
    static QBArray<const Tree*> nodes;
    return nodes;
}

bool isGuarded(const Tree* node) {
    for (const Tree* n : guardedClasses())
        if (n == node) return true;
    return false;
}

// A constructor that takes source as its one argument: the first parameter accepts it and
// every further one has a default. Explicit constructors don't convert implicitly.
bool convertsFrom(const Base& constructor, const Base* source, Tree* node, uint32_t flags) {
    unsigned n = constructor.getArgumentCount();
    if (n == 0 || (CPTypeInfo::flagsOf(&constructor) & CPTYPE_Explicit)) return false;
    for (unsigned i = 1; i < n; ++i)
        if (!constructor.getArgumentDefault(i)) return false;
    return CPTypeInfo::canConvert(source, constructor.getArgumentType(0), node, flags | LOOKUP_NoUserConversions);
}

Symbol* convertingConstructor(const Base& classType, const Base* source, Tree* node, uint32_t flags) {
    Tree* cls = classNode(classType);
    QBString name = classType.getName();
    if (!cls || name.isEmpty() || !cls->getSymbolTable() || isGuarded(cls)) return nullptr;
    SymbolList* entry = cls->getSymbolTable()->getEntry(name);
    if (!entry || guardedClasses().add(cls) != 0) return nullptr;
    Symbol* hit = nullptr;
    for (Symbol* symbol : *entry) {
        const Base* f = functionOf(symbol);
        if (f && convertsFrom(*symbol->getType(), source, node, flags)) {
            hit = symbol;
            break;
        }
    }
    guardedClasses().removeAt(guardedClasses().count() - 1);
    return hit;
}

}  // namespace

// ---- Conversion functions ----

int CPTypeInfo::findConversionFunction(CPTypeInfo& classType, const Base* target, Tree* node,
                                       uint32_t flags, Symbol** found) {
    if (found) *found = nullptr;
    if (!target) return ERR_NOCONVERSION;
    QBString text("");
    target->getText(text, true, false);
    Symbol* pick = nullptr;
    if (!text.isEmpty()) pick = findMemberFunction(classType, QBString("operator ") + text, 0);
    if (!pick) {
        SymbolList candidates;
        if (collectConversions(classType, candidates, 0) != 0) return qbmsg::OutOfMemory;
        int best = -1;
        for (Symbol* symbol : candidates) {
            const Base* result = functionOf(symbol)->getReturnType();
            int rank = conversionRank(target, result, 0);
            if (rank > best) {
                best = rank;
                pick = symbol;
            } else if (best < 0 && !pick && !(flags & LOOKUP_NoUserConversions) &&
                       canConvert(result, target, node, LOOKUP_NoUserConversions)) {
                pick = symbol;
            }
        }
    }
    const Base* result = pick ? functionOf(pick)->getReturnType() : nullptr;
    if (!result) return ERR_NOCONVERSION;
    if (int rc = classType.assign(*result)) return rc;
    if (found) *found = pick;
    return 0;
}

// ---- User-defined conversions ----

bool CPTypeInfo::userConversion(const Base* source, const Base* target, Tree* node, uint32_t flags) {
    if (!source || !target || (flags & LOOKUP_NoUserConversions)) return false;
    CPTypeInfo t, s;
    if (!settle(t, target) || !settle(s, source)) return false;
    const Base* targetClass = t.getKind() == BPTYPE_TemplateID ? CPTypeInfo::classOfTemplateID(&t) : &t;
    if (targetClass && targetClass->getKind() == BPTYPE_Class)
        if (Symbol* constructor = convertingConstructor(*targetClass, source, node, flags)) {
            if (node) constructor->addReference(node);
            return true;
        }
    uint32_t sk = s.getKind();
    if (sk == BPTYPE_Class || sk == BPTYPE_TemplateID) {
        CPTypeInfo converted(s);
        Symbol* function = nullptr;
        if (findConversionFunction(converted, target, node, flags | LOOKUP_NoUserConversions, &function) == 0) {
            if (node && function) function->addReference(node);
            return true;
        }
    }
    CPTypeInfo lvalue;
    bool isLValue = lvalue.assign(*source) == 0 && lvalue.isLValue();
    if (isLValue && targetClass && targetClass->getKind() == BPTYPE_Class && sk == BPTYPE_Class &&
        (isDerivedFrom(&s, &t, nullptr) || isDerivedFrom(&t, &s, nullptr)))
        return (!s.isConst() || t.isConst()) && (!s.isVolatile() || t.isVolatile());
    return false;
}

// ---- Pointer conversions ----

int CPTypeInfo::pointerConversion(const Base* target, const Base* source, Tree* node, uint32_t flags) {
    CPTypeInfo t, s;
    if (!settle(t, target) || !settle(s, source)) return ERR_NOCONVERSION;
    uint32_t tk = t.getKind(), sk = s.getKind();
    if (tk == BPTYPE_Pointer && (sk == BPTYPE_Class || sk == BPTYPE_TemplateID)) {
        Symbol* function = nullptr;
        if (findConversionFunction(s, &t, node, flags | LOOKUP_NoUserConversions, &function) != 0) return ERR_NOCONVERSION;
        if (node && function) function->addReference(node);
        return s.getKind() == BPTYPE_Pointer ? pointerConversion(&t, &s, node, flags) : ERR_NOCONVERSION;
    }
    if (tk == BPTYPE_Pointer && sk == BPTYPE_Array && s.arrayToPointer() == 0) sk = BPTYPE_Pointer;
    bool targetPointer = tk == BPTYPE_Pointer || tk == BPTYPE_MemberPointer;
    if (targetPointer && s.isNullPointerConstant()) return 0;
    if ((sk == BPTYPE_Pointer || sk == BPTYPE_MemberPointer) && t.isNullPointerConstant()) return 0;
    if (tk == BPTYPE_MemberPointer && sk == BPTYPE_Pointer) {
        CPTypeInfo member;
        if (!settle(member, s.getPointedType())) return ERR_NOCONVERSION;
        Symbol* symbol = member.getSymbol();
        Tree* owner = symbol ? symbol->getScope() : nullptr;
        Base* ownerType = owner ? owner->getTypeInfo() : nullptr;
        bool related = ownerType && (isDerivedFrom(t.getClassType(), ownerType, nullptr) || isDerivedFrom(ownerType, t.getClassType(), nullptr));
        return related && conversionRank(t.getMemberType(), s.getPointedType(), 0) >= 0 ? 0 : ERR_NOCONVERSION;
    }
    if (tk != BPTYPE_Pointer || sk != BPTYPE_Pointer) return ERR_NOCONVERSION;
    CPTypeInfo tp, sp;
    if (!settle(tp, t.getPointedType()) || !settle(sp, s.getPointedType())) return ERR_NOCONVERSION;
    if (tp.containsAny(true) || sp.containsAny(true)) return 0;
    if ((sp.isConst() && !tp.isConst()) || (sp.isVolatile() && !tp.isVolatile())) return ERR_NOCONVERSION;
    bool toVoid = tp.getKind() == BPTYPE_Simple && tp.getSimpleName() == CPSIMPLE_Void;
    if (toVoid && sp.getKind() != BPTYPE_Function) return 0;
    if (isDerivedFrom(&sp, &tp, nullptr)) return 0;
    return conversionRank(&tp, &sp, 0) >= 0 ? 0 : ERR_NOCONVERSION;
}

// ---- Function pointers ----

// The function a pointer, reference or member pointer designates; the function itself.
static const Base* designatedFunction(const Base* t, const Base** ownerClass) {
    const Base* end = t;
    for (int steps = 0; end && steps < MAX_DEPTH; ++steps) {
        uint32_t k = end->getRawKind();
        if (k == BPTYPE_TypeReference || k == BPTYPE_TemplateParameterTypeReference) end = end->getReferenceTarget();
        else if (k == BPTYPE_Typedef) end = end->getAliasedType();
        else if (k == BPTYPE_Variable) end = end->getVariableType();
        else break;
    }
    if (!end) return nullptr;
    const Base* inner = end;
    switch (end->getRawKind()) {
    case BPTYPE_Function: return end;
    case BPTYPE_Pointer:
    case BPTYPE_Reference: inner = end->getPointedType(); break;
    case BPTYPE_MemberPointer:
        if (ownerClass) *ownerClass = end->getClassType();
        inner = end->getMemberType();
        break;
    default: return nullptr;
    }
    inner = inner ? inner->resolved() : nullptr;
    while (inner && inner->getRawKind() == BPTYPE_Typedef && inner->getAliasedType()) inner = inner->getAliasedType()->resolved();
    return inner && inner->getRawKind() == BPTYPE_Function ? inner : nullptr;
}

static bool argumentsMatch(const Base& target, const Base& source) {
    unsigned n = target.getArgumentCount();
    if (n != source.getArgumentCount()) return false;
    for (unsigned i = 0; i < n; ++i)
        if (CPTypeInfo::conversionRank(target.getArgumentType(i), source.getArgumentType(i), 0) < 0) return false;
    return true;
}

bool CPTypeInfo::compatibleFunctionPointers(const Base* target, const Base* source, bool strict) {
    if (!target || !source) return false;
    const Base* tt = target->resolved();
    if (tt->getRawKind() == BPTYPE_Function) return false;  // the target must designate one
    const Base* targetClass = nullptr;
    const Base* sourceClass = nullptr;
    const Base* tf = designatedFunction(target, &targetClass);
    const Base* sf = designatedFunction(source, &sourceClass);
    if (!tf || !sf || !argumentsMatch(*tf, *sf)) return false;
    if (targetClass || sourceClass) {
        bool related = targetClass && sourceClass &&
                       (isDerivedFrom(targetClass, sourceClass, nullptr) || isDerivedFrom(sourceClass, targetClass, nullptr));
        if (!related) return false;
    }
    const Base* tr = tf->getReturnType();
    const Base* sr = sf->getReturnType();
    if (!tr || !sr) return tr == sr;
    return *tr == *sr || (!strict && conversionRank(tr, sr, 0) >= 0);
}

// ---- The implicit conversion test ----

bool CPTypeInfo::canConvert(const Base* source, const Base* target, Tree* node, uint32_t flags) {
    if (!target) return true;
    if (!source) return false;
    CPTypeInfo t, s;
    if (t.assign(*target) || s.assign(*source)) return false;
    if (t.getKind() == BPTYPE_Variable && t.stripVariable() != 0) return false;
    t.stripTypedef();
    if (compatibleFunctionPointers(&t, &s, true)) return true;
    if (t.normalize() != 0) return false;
    if (compatibleFunctionPointers(&t, &s, true)) return true;
    if (s.normalize() != 0) return false;
    if (compatibleFunctionPointers(&t, &s, true)) return true;
    if (userConversion(&s, &t, node, flags | CPRANK_InUserConversion)) return true;
    if (isDerivedFrom(&s, &t, nullptr)) return true;
    CPTypeInfo left(t), right(s);
    if (usualArithmetic(left, right, node, s.getScopeNode()) == 0) return true;
    if (simpleRank(&t, &s, flags) >= 0) return true;
    if (pointerConversion(&t, &s, node, flags) == 0) return true;
    if (t.getKind() == BPTYPE_Array && t.getSize() == 0 && s.isNullPointerConstant()) return true;
    uint32_t sk = s.getKind();
    bool toBool = t.getKind() == BPTYPE_Simple && t.getSimpleName() == CPSIMPLE_Bool;
    if ((sk == BPTYPE_Pointer || sk == BPTYPE_MemberPointer) && toBool) return true;
    if (s.containsAny(true) || t.containsAny(true)) return true;
    return conversionRank(&t, &s, flags) >= 0;
}

// ---- The wide character type ----

CPSimpleTypeName CPTypeInfo::getWideCharType(const Tree* node) {
    const Tree* root = node;
    for (int steps = 0; root && steps < 100000; ++steps) {
        const auto* parent = root->getParent();
        if (!parent || !parent->isTree()) break;
        root = static_cast<const Tree*>(parent);
    }
    SymbolList* entry = root ? root->findSymbolList(QBString("__wchar_t")) : nullptr;
    if (!entry || entry->count() == 0) return CPSIMPLE_WideChar;
    CPTypeInfo type;
    if (!settle(type, (*entry)[0]->getType()) || type.getKind() != BPTYPE_Simple) return CPSIMPLE_WideChar;
    CPSimpleTypeName name = type.getSimpleName();
    return name > CPSIMPLE_None && name <= CPSIMPLE_LAST ? name : CPSIMPLE_WideChar;
}
