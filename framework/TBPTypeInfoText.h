// TBPTypeInfo's equality, text form and debugging dump.
//
// Classes compare by bare name, not by scope: two parses of one header give different pointers
// but the same names, and that is the comparison analysis needs. Only unnamed classes are
// compared by their parts. The text form and the dump both walk into sub-types; the text form
// ends self-reference through the set of class names already expanded, the dump through its
// indent limit.
#pragma once

#include "TBPTypeInfoImpl.h"

// ---- Equality ----

template <class T, class S>
bool TBPTypeInfo<T, S>::sameType(const TBPTypeInfo* a, const TBPTypeInfo* b) {
    static int depth = 0;  // the engine runs on one thread; this only bounds cyclic records
    if (a == b) return true;
    if (!a || !b || depth >= BPTYPE_MAX_COMPARE_DEPTH) return false;
    ++depth;
    bool same = *a == *b;
    --depth;
    return same;
}

template <class T, class S>
bool TBPTypeInfo<T, S>::sameTypes(const TypeList& a, const TypeList& b) {
    if (a.count() != b.count()) return false;
    for (unsigned i = 0; i < a.count(); ++i)
        if (!sameType(a[i], b[i])) return false;
    return true;
}

template <class T, class S>
bool TBPTypeInfo<T, S>::operator==(const TBPTypeInfo& other) const {
    if ((isLink(kind) && record) || (isLink(other.kind) && other.record)) {
        const TBPTypeInfo* a = resolved();
        const TBPTypeInfo* b = other.resolved();
        if (isLink(a->kind) || isLink(b->kind)) return false;  // a chain ended at a null link
        return a == b || *a == *b;
    }
    if (kind != other.kind || kind > BPTYPE_LAST) return false;
    if (record == other.record) return true;
    if (isClassLike(kind)) return equalClasses(other);
    quernbase::QBString mine = getName(), theirs = other.getName();
    if (mine != theirs) return false;
    return equalRecords(other);
}

template <class T, class S>
bool TBPTypeInfo<T, S>::equalClasses(const TBPTypeInfo& other) const {
    quernbase::QBString mine = getName(), theirs = other.getName();
    if (mine != theirs) return false;
    if (!mine.isEmpty()) return true;
    static const ClassRecord empty;
    const ClassRecord* a = record ? static_cast<const ClassRecord*>(record) : &empty;
    const ClassRecord* b = other.record ? static_cast<const ClassRecord*>(other.record) : &empty;
    switch (kind) {
    case BPTYPE_Class:
        return sameTypes(a->parents, b->parents) && sameTypes(a->derivations, b->derivations) &&
               sameTypes(a->members, b->members) && sameType(a->templateType, b->templateType);
    case BPTYPE_Union:
        return sameTypes(a->members, b->members) && sameTypes(a->friends, b->friends) &&
               sameType(a->templateType, b->templateType);
    case BPTYPE_Enumeration:
        return sameTypes(a->derivations, b->derivations) && sameTypes(a->members, b->members);
    default: return sameTypes(a->members, b->members);
    }
}

// Kinds other than the class-like ones, once their names agree.
template <class T, class S>
bool TBPTypeInfo<T, S>::equalRecords(const TBPTypeInfo& other) const {
    const TBPTypeInfo& b = other;
    switch (kind) {
    case BPTYPE_Null:
    case BPTYPE_None:
    case BPTYPE_Any: return getSymbol() && b.getSymbol();
    case BPTYPE_Simple: return getSimpleName() == b.getSimpleName();
    case BPTYPE_Array:
        return sameType(getElementType(), b.getElementType()) &&
               sameType(getIndexType(), b.getIndexType()) && getStart() == b.getStart() &&
               getSize() == b.getSize();
    case BPTYPE_Pointer:
    case BPTYPE_Reference: return sameType(getPointedType(), b.getPointedType());
    case BPTYPE_Typedef: return sameType(getAliasedType(), b.getAliasedType());
    case BPTYPE_ArgumentList: {
        const ArgumentListRecord* x = argumentList();
        const ArgumentListRecord* y = b.argumentList();
        return x && y ? sameTypes(x->types, y->types) : x == y;
    }
    case BPTYPE_Function:
        return sameType(getReturnType(), b.getReturnType()) &&
               sameType(getTemplateType(), b.getTemplateType()) &&
               sameType(getArguments(), b.getArguments());
    case BPTYPE_Variable: return sameType(getVariableType(), b.getVariableType());
    case BPTYPE_Statement: return true;
    case BPTYPE_TemplateID: {
        if (!sameType(getTemplateType(), b.getTemplateType())) return false;
        if (getArgumentCount() != b.getArgumentCount()) return false;
        for (unsigned i = 0; i < getArgumentCount(); ++i)
            if (!sameType(getArgumentType(i), b.getArgumentType(i))) return false;
        return true;
    }
    case BPTYPE_TemplateDeclaration:
        return sameType(getDeclaredType(), b.getDeclaredType()) && sameType(getArguments(), b.getArguments());
    case BPTYPE_TemplateParameter:
        return getPosition() == b.getPosition() && getNormalizedName() == b.getNormalizedName();
    case BPTYPE_MemberPointer:
        return sameType(getClassType(), b.getClassType()) && sameType(getMemberType(), b.getMemberType());
    case BPTYPE_Range: return getLower() == b.getLower() && getUpper() == b.getUpper();
    default: return false;
    }
}

// ---- Text form ----

template <class T, class S>
int TBPTypeInfo<T, S>::appendText(quernbase::QBString& out, const TBPTypeInfo* t,
                                  const SeenSet& seen, bool normalize, bool noReturn) {
    if (!t) return out.append("NULL");
    return t->getText(out, seen, normalize, noReturn);
}

template <class T, class S>
int TBPTypeInfo<T, S>::appendJoined(quernbase::QBString& out, const TypeList& types,
                                    const SeenSet& seen, bool normalize) {
    for (unsigned i = 0; i < types.count(); ++i) {
        if (i > 0)
            if (int rc = out.append(", ")) return rc;
        if (int rc = appendText(out, types[i], seen, normalize, false)) return rc;
    }
    return 0;
}

// A class-like kind by its name; the name joins a copy of the seen set handed to nothing
// further in the base form, but a language's form expands through it.
template <class T, class S>
int TBPTypeInfo<T, S>::appendNamed(quernbase::QBString& out, const char* unnamed,
                                   const SeenSet&) const {
    quernbase::QBString name = getName();
    return name.isEmpty() ? out.append(unnamed) : out.append(name);
}

template <class T, class S>
int TBPTypeInfo<T, S>::appendPointerText(quernbase::QBString& out, const SeenSet& seen,
                                         bool normalize, bool noReturn) const {
    const TBPTypeInfo* target = getPointedType();
    const TBPTypeInfo* function = target ? target->resolved() : nullptr;
    if (kind == BPTYPE_Pointer && function && function->kind == BPTYPE_Function) {
        if (int rc = appendText(out, function->getReturnType(), seen, normalize, noReturn)) return rc;
        out += "(*";
        out += function->getName();
        out += ")(";
        if (const ArgumentListRecord* list = function->argumentList())
            if (int rc = appendJoined(out, list->types, seen, normalize)) return rc;
        return out.append(")");
    }
    if (int rc = appendText(out, target, seen, normalize, noReturn)) return rc;
    return out.append(kind == BPTYPE_Pointer ? "*" : "&");
}

template <class T, class S>
int TBPTypeInfo<T, S>::getText(quernbase::QBString& out, const SeenSet& seen, bool normalize,
                               bool noReturn) const {
    switch (kind) {
    case BPTYPE_Null: return out.append("NULL");
    case BPTYPE_None: return out.append("NONE");
    case BPTYPE_Any: return out.append("ANY");
    case BPTYPE_Simple: return out.append("SIMPLE");
    case BPTYPE_TypeReference:
    case BPTYPE_TemplateParameterTypeReference: {
        const TBPTypeInfo* end = resolved();
        if (isLink(end->kind)) return out.append("<<unknown>>");
        return end->getText(out, seen, normalize, noReturn);
    }
    case BPTYPE_Array: {
        if (int rc = appendText(out, getElementType(), seen, normalize, noReturn)) return rc;
        out += "[";
        if (getSize() != 0) out.appendNumber(int64_t(getSize()), 10);
        return out.append("]");
    }
    case BPTYPE_Pointer:
    case BPTYPE_Reference: return appendPointerText(out, seen, normalize, noReturn);
    case BPTYPE_Class:
    case BPTYPE_Union:
    case BPTYPE_Namespace:
    case BPTYPE_Enumeration: {
        static const char* const unnamed[] = {"CLASS", "UNION", "NAMESPACE"};
        return appendNamed(out, kind == BPTYPE_Enumeration ? "ENUM" : unnamed[kind - BPTYPE_Class], seen);
    }
    case BPTYPE_Typedef: return appendNamed(out, "TYPEDEF", seen);
    case BPTYPE_Statement: return appendNamed(out, "STATEMENT", seen);
    case BPTYPE_Range: return appendNamed(out, "RANGE", seen);
    case BPTYPE_ArgumentList: {
        const ArgumentListRecord* list = argumentList();
        return list ? appendJoined(out, list->types, seen, normalize) : 0;
    }
    case BPTYPE_Function: {
        out += getName();
        out += "(";
        if (const ArgumentListRecord* list = argumentList())
            if (int rc = appendJoined(out, list->types, seen, normalize)) return rc;
        return out.append(")");
    }
    case BPTYPE_Variable: return appendText(out, getVariableType(), seen, normalize, noReturn);
    case BPTYPE_TemplateID:
        out += getName();
        return getTemplateText(out);
    case BPTYPE_TemplateDeclaration:
        out += "template ";
        return getTemplateText(out);
    case BPTYPE_TemplateParameter: return out.append(getName());
    case BPTYPE_MemberPointer: {
        if (int rc = appendText(out, getMemberType(), seen, normalize, noReturn)) return rc;
        out += " ";
        if (int rc = appendText(out, getClassType(), seen, normalize, noReturn)) return rc;
        return out.append("::*");
    }
    default: return out.append("<<unknown>>");
    }
}

template <class T, class S>
int TBPTypeInfo<T, S>::getTemplateText(quernbase::QBString& out) const {
    const TBPTypeInfo* t = resolved();
    SeenSet seen(quernbase::QBString::hashString);
    switch (t->kind) {
    case BPTYPE_TemplateID: {
        const TemplateIDRecord* r = static_cast<const TemplateIDRecord*>(t->record);
        out += "<";
        if (r)
            if (int rc = appendJoined(out, r->arguments, seen, false)) return rc;
        return out.append(">");
    }
    case BPTYPE_TemplateDeclaration: {
        out += "<";
        if (const ArgumentListRecord* list = t->argumentList())
            if (int rc = appendJoined(out, list->types, seen, false)) return rc;
        return out.append(">");
    }
    case BPTYPE_Class:
    case BPTYPE_Union: {
        const TBPTypeInfo* from = t->getTemplateID() ? t->getTemplateID() : t->getTemplateType();
        return from && from->resolved() != t ? from->getTemplateText(out) : 0;
    }
    case BPTYPE_Function: {
        const TBPTypeInfo* from = t->getTemplateType();
        return from && from->resolved() != t ? from->getTemplateText(out) : 0;
    }
    default: return 0;
    }
}

// ---- Dump ----

template <class T, class S>
int TBPTypeInfo<T, S>::dumpChild(quernbase::QBString& out, const TBPTypeInfo* t, int indent,
                                 const char* label, bool deep, bool showReferences) {
    return t ? t->dumpToString(out, indent, label, deep, showReferences) : 0;
}

template <class T, class S>
int TBPTypeInfo<T, S>::dumpList(quernbase::QBString& out, const TypeList& types, int indent,
                                const char* label, bool deep, bool showReferences) {
    for (const TBPTypeInfo* t : types)
        if (int rc = dumpChild(out, t, indent, label, deep, showReferences)) return rc;
    return 0;
}

// The header line's text after the kind name, up to and including its newline.
template <class T, class S>
int TBPTypeInfo<T, S>::dumpHeader(quernbase::QBString& out, bool) const {
    quernbase::QBString name = getName();
    switch (kind) {
    case BPTYPE_Null:
    case BPTYPE_None:
    case BPTYPE_Any:
        if (getSymbol()) out += " name=" + name;
        break;
    case BPTYPE_Simple:
        out += " type=";
        out.appendNumber(int32_t(getSimpleName()), 10);
        break;
    case BPTYPE_Array:
        out += " size=";
        out.appendNumber(int64_t(getSize()), 10);
        out += " start=";
        out.appendNumber(int64_t(getStart()), 10);
        break;
    case BPTYPE_Class:
    case BPTYPE_Union:
    case BPTYPE_Function:
    case BPTYPE_TemplateID:
    case BPTYPE_TemplateDeclaration:
        out += " name=" + name;
        getTemplateText(out);
        break;
    case BPTYPE_Namespace:
    case BPTYPE_Typedef:
    case BPTYPE_Variable:
    case BPTYPE_Statement:
    case BPTYPE_Enumeration: out += " name=" + name; break;
    case BPTYPE_TemplateParameter:
        out += " name=" + name;
        out += "  normalized=" + getNormalizedName();
        break;
    case BPTYPE_Range:
        out += " name=" + name;
        out += " lower=";
        out.appendNumber(int64_t(getLower()), 10);
        out += " upper=";
        out.appendNumber(int64_t(getUpper()), 10);
        break;
    default: break;
    }
    return out.append("\n");
}

template <class T, class S>
int TBPTypeInfo<T, S>::dumpChildren(quernbase::QBString& out, int indent, bool deep,
                                    bool showReferences) const {
    const int in = indent + 2;
    const bool sr = showReferences;
    int rc = 0;
    auto child = [&](const TBPTypeInfo* t, const char* label) {
        if (rc == 0) rc = dumpChild(out, t, in, label, deep, sr);
    };
    auto list = [&](unsigned (TBPTypeInfo::*count)() const, TBPTypeInfo* (TBPTypeInfo::*item)(unsigned) const,
                    const char* label) {
        for (unsigned i = 0; rc == 0 && i < (this->*count)(); ++i) child((this->*item)(i), label);
    };
    switch (kind) {
    case BPTYPE_TypeReference:
    case BPTYPE_TemplateParameterTypeReference: child(getReferenceTarget(), "type"); break;
    case BPTYPE_Array:
        child(getElementType(), "element type");
        child(getIndexType(), "index type");
        break;
    case BPTYPE_Pointer: child(getPointedType(), "pointer"); break;
    case BPTYPE_Reference: child(getPointedType(), "reference"); break;
    case BPTYPE_Class:
        if (!deep) break;
        list(&TBPTypeInfo::getParentCount, &TBPTypeInfo::getParent, "parent");
        list(&TBPTypeInfo::getDerivationCount, &TBPTypeInfo::getDerivation, "derivation");
        list(&TBPTypeInfo::getMemberCount, &TBPTypeInfo::getMember, "member");
        list(&TBPTypeInfo::getFriendCount, &TBPTypeInfo::getFriend, "friend");
        break;
    case BPTYPE_Union:
        if (!deep) break;
        list(&TBPTypeInfo::getMemberCount, &TBPTypeInfo::getMember, "member");
        list(&TBPTypeInfo::getFriendCount, &TBPTypeInfo::getFriend, "friend");
        break;
    case BPTYPE_Namespace: list(&TBPTypeInfo::getMemberCount, &TBPTypeInfo::getMember, ""); break;
    case BPTYPE_Typedef: child(getAliasedType(), "type"); break;
    case BPTYPE_ArgumentList:
        for (unsigned i = 0; rc == 0 && i < getArgumentCount(); ++i) {
            quernbase::QBString name = getArgumentName(i);
            child(getArgumentType(i), name.isNull() ? "" : name.get());
        }
        list(&TBPTypeInfo::getArgumentCount, &TBPTypeInfo::getArgumentDefault, "default");
        break;
    case BPTYPE_Function:
        if (!deep) break;
        child(getReturnType(), "return type");
        child(getArguments(), "arguments");
        list(&TBPTypeInfo::getExceptionCount, &TBPTypeInfo::getException, "throw");
        break;
    case BPTYPE_Variable:
        if (!deep) break;
        child(getVariableType(), "type");
        child(getInitializerType(), "init");
        break;
    case BPTYPE_Statement:
        list(&TBPTypeInfo::getLabelCount, &TBPTypeInfo::getLabel, "label");
        list(&TBPTypeInfo::getBodyTypeCount, &TBPTypeInfo::getBodyType, "inner");
        list(&TBPTypeInfo::getExceptionCount, &TBPTypeInfo::getException, "throw");
        break;
    case BPTYPE_TemplateID:
        if (!deep) break;
        child(getTemplateType(), "type");
        for (unsigned i = 0; rc == 0 && i < getArgumentCount(); ++i) {
            quernbase::QBString label("arg(");
            label += getArgumentName(i);
            label += ")";
            child(getArgumentType(i), label.get());
        }
        break;
    case BPTYPE_TemplateDeclaration:
        child(getArguments(), "parameters");
        child(getDeclaredType(), "declaration");
        break;
    case BPTYPE_TemplateParameter:
        child(getDeclaration(), "decl");
        child(getParameterType(), "type");
        child(getDefaultType(), "default");
        break;
    case BPTYPE_MemberPointer:
        child(getMemberType(), "type");
        child(getClassType(), "class");
        break;
    case BPTYPE_Enumeration:
        list(&TBPTypeInfo::getDerivationCount, &TBPTypeInfo::getDerivation, "derivation");
        list(&TBPTypeInfo::getMemberCount, &TBPTypeInfo::getMember, "member");
        break;
    default: break;
    }
    return rc;
}

// Without showReferences a link is invisible: its target stands in its place, under the
// label the link was given.
template <class T, class S>
int TBPTypeInfo<T, S>::dumpToString(quernbase::QBString& out, int indent, const char* label,
                                    bool deep, bool showReferences) const {
    if (indent > MAX_DUMP_INDENT) return 0;
    if (isLink(kind) && !showReferences && !isLink(resolved()->kind))
        return resolved()->dumpToString(out, indent, label, deep, showReferences);
    if (int rc = out.pad(out.length() + unsigned(indent > 0 ? indent : 0))) return rc;
    if (label && *label) {
        out += label;
        out += "=";
    }
    const char* name = kindName(kind);
    if (!name) return out.append("***UNKNOWN TYPE ERROR***\n");
    out += name;
    out += ":";
    if (int rc = dumpHeader(out, showReferences)) return rc;
    uint32_t flags = kind == BPTYPE_Variable ? getVariableFlags() : 0;
    if (flags & (BPVARIABLE_TEMPLATE | BPVARIABLE_CONST)) {
        out.pad(out.length() + unsigned(indent > 0 ? indent : 0));
        if (flags & BPVARIABLE_TEMPLATE) out += " TEMPLATEVAR";
        if (flags & BPVARIABLE_CONST) out += " CONST";
        out += "\n";
    }
    if (int rc = dumpChildren(out, indent, deep, showReferences)) return rc;
    return value ? value->dumpToString(out, indent + 2, "value") : 0;
}
