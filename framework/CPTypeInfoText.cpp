// The text of a type as a reader of the source writes it, which refactorings put back into
// files ("const signed int*", "signed int(*f)(char)", "S::T"), the debugging dump with the
// attribute word, and the decorated name of __FUNCDNAME__.
//
// The qualifiers of a whole reference chain lead the text; a function's own const and
// volatile are those of a member function and trail it instead.
#include "CPTypeInfo.h"

using quernbase::QBString;

namespace {

typedef CPTypeInfo::Base Base;
typedef CPTypeInfo::SeenSet SeenSet;

enum { MAX_OWNER_DEPTH = 64 };

int appendType(QBString& out, const Base* t, const SeenSet& seen, bool normalize, bool noReturn) {
    if (!t) return out.append("NULL");
    return t->getText(out, seen, normalize, noReturn);
}

int appendList(QBString& out, const Base* list, const SeenSet& seen, bool normalize) {
    if (!list) return 0;
    for (unsigned i = 0; i < list->getArgumentCount(); ++i) {
        if (i > 0) out += ", ";
        if (int rc = appendType(out, list->getArgumentType(i), seen, normalize, false)) return rc;
    }
    return out.isNull() ? qbmsg::OutOfMemory : 0;
}

int appendQualifiers(QBString& out, const Base& t) {
    if (t.isConst()) out += " const";
    if (t.isVolatile()) out += " volatile";
    return out.isNull() ? qbmsg::OutOfMemory : 0;
}

// A node's own spelling, without the whitespace before it.
QBString spellingOf(const CPTypeInfo::Tree* node) {
    QBString text("");
    if (!node || node->getText(text) != 0) return QBString();
    const char* p = text.get();
    while (p && (*p == ' ' || *p == '\t' || *p == '\n' || *p == '\r')) ++p;
    return QBString(p ? p : "");
}

}  // namespace

const char* CPTypeInfo::simpleTypeText(CPSimpleTypeName name) {
    static const char* const texts[] = {
        "", "bool", "void", "wchar_t", "float", "double", "long double", "char", "signed char",
        "signed short", "signed int", "signed long", "signed long long", "unsigned char",
        "unsigned short", "unsigned int", "unsigned long", "unsigned long long"};
    return name >= CPSIMPLE_None && name <= CPSIMPLE_LAST ? texts[name] : "";
}

int CPTypeInfo::appendOwnerScope(QBString& out) const {
    static int depth = 0;  // one thread; only bounds a scope that contains itself
    Tree* owner = getOwnerScope();
    Base* ownerType = owner ? owner->getTypeInfo() : nullptr;
    if (!ownerType || ownerType == this || depth > MAX_OWNER_DEPTH) return 0;
    QBString text("");
    ++depth;
    int rc = ownerType->getText(text, true, false);
    --depth;
    if (rc) return rc;
    static const char* const skipped[] = {"", "NULL", "ANY", "STATEMENT", "<<unknown>>"};
    for (const char* s : skipped)
        if (text == QBString(s)) return 0;
    out += text;
    return out.append("::");
}

int CPTypeInfo::appendFunctionPointer(QBString& out, const Base& function, const SeenSet& seen,
                                      bool normalize) const {
    if (int rc = appendType(out, function.getReturnType(), seen, normalize, false)) return rc;
    out += "(*";
    out += function.getName();
    out += ")(";
    if (int rc = appendList(out, function.getArguments(), seen, normalize)) return rc;
    out += ")";
    return appendQualifiers(out, function);
}

int CPTypeInfo::appendFunctionText(QBString& out, const SeenSet& seen, bool normalize, bool noReturn) const {
    const Base* t = resolved();
    if (!noReturn && t->getReturnType()) {
        if (int rc = appendType(out, t->getReturnType(), seen, normalize, false)) return rc;
        out += " ";
    }
    if (normalize)
        if (int rc = appendOwnerScope(out)) return rc;
    out += t->getName();
    if (noReturn) return out.isNull() ? qbmsg::OutOfMemory : 0;
    out += "(";
    if (int rc = appendList(out, t->getArguments(), seen, normalize)) return rc;
    out += ")";
    return appendQualifiers(out, *this);
}

// The text after the leading qualifiers; this type is resolved already.
int CPTypeInfo::appendBody(QBString& out, const SeenSet& seen, bool normalize, bool noReturn) const {
    switch (kind) {
    case BPTYPE_Null:
    case BPTYPE_None:
    case BPTYPE_Any: return 0;
    case BPTYPE_Simple: {
        QBString spelling = normalize ? QBString() : spellingOf(getSimpleScope());
        return out.append(spelling.isEmpty() ? QBString(simpleTypeText(getSimpleName())) : spelling);
    }
    case BPTYPE_Array:
        if (int rc = appendType(out, getElementType(), seen, normalize, noReturn)) return rc;
        out += "[";
        if (getSize() != 0) out.appendNumber(int64_t(getSize()), 10);
        return out.append("]");
    case BPTYPE_Pointer:
    case BPTYPE_Reference: {
        const Base* target = getPointedType();
        const Base* function = target ? target->resolved() : nullptr;
        if (kind == BPTYPE_Pointer && function && function->getRawKind() == BPTYPE_Function)
            return appendFunctionPointer(out, *function, seen, normalize);
        if (int rc = appendType(out, target, seen, normalize, noReturn)) return rc;
        return out.append(kind == BPTYPE_Pointer ? "*" : "&");
    }
    case BPTYPE_Class:
        out += getName();
        return getTemplateText(out);
    case BPTYPE_Union:
    case BPTYPE_Namespace:
    case BPTYPE_Enumeration: return out.append(getName());
    case BPTYPE_Typedef: {
        const Base* aliased = getAliasedType();
        if (normalize && aliased && !containsAny(aliased, true)) {
            QBString text("");
            if (int rc = aliased->getText(text, seen, normalize, noReturn)) return rc;
            if (text != QBString("__qbparser_unnamed_csu__")) return out.append(text);
        }
        return out.append(getName());
    }
    case BPTYPE_ArgumentList: return appendList(out, this, seen, normalize);
    case BPTYPE_Function: return appendFunctionText(out, seen, normalize, noReturn);
    case BPTYPE_Variable: return appendType(out, getVariableType(), seen, normalize, noReturn);
    case BPTYPE_Statement: return out.append(getName());
    case BPTYPE_TemplateID:
        out += getName();
        return getTemplateText(out);
    default: return Base::getText(out, seen, normalize, noReturn);
    }
}

int CPTypeInfo::getText(QBString& out, const SeenSet& seen, bool normalize, bool noReturn) const {
    const Base* end = resolved();
    if (end != this) {
        if (isReferenceKind() && end->isReferenceKind()) return out.append("<<unknown>>");
        CPTypeInfo copy;
        if (int rc = copy.assign(*end)) return rc;
        copy.flags = getChainFlags();
        return copy.getText(out, seen, normalize, noReturn);
    }
    if (kind != BPTYPE_Function) {
        if (isConst()) out += "const ";
        if (isVolatile()) out += "volatile ";
    }
    // A function's owner goes before its name, behind the return type.
    bool ownerFirst = normalize && kind != BPTYPE_ArgumentList && kind != BPTYPE_Variable &&
                      kind != BPTYPE_TemplateParameter && kind != BPTYPE_Function;
    if (ownerFirst)
        if (int rc = appendOwnerScope(out)) return rc;
    return appendBody(out, seen, normalize, noReturn);
}

int CPTypeInfo::getTemplateText(QBString& out) const {
    const Base* t = resolved();
    const Base* list = nullptr;
    switch (t->getRawKind()) {
    case BPTYPE_TemplateID: list = t; break;
    case BPTYPE_TemplateDeclaration: list = t->getArguments(); break;
    case BPTYPE_Class:
    case BPTYPE_Union:
    case BPTYPE_Function: {
        const Base* from = t->getRawKind() == BPTYPE_Function ? nullptr : t->getTemplateID();
        if (!from) from = t->getTemplateType();
        return from && from->resolved() != t ? from->getTemplateText(out) : 0;
    }
    default: return 0;
    }
    SeenSet seen(QBString::hashString);
    out += "<";
    for (unsigned i = 0; list && i < list->getArgumentCount(); ++i) {
        if (i > 0) out += ", ";
        const Base* argument = list->getArgumentType(i);
        if (int rc = appendType(out, argument, seen, true, false)) return rc;
        if (const Value* v = argument ? argument->getValue() : nullptr) {
            out += "=";
            if (int rc = v->toText(out)) return rc;
        }
    }
    return out.append(">");
}

int CPTypeInfo::dumpToString(QBString& out, int indent, const char* label, bool deep,
                             bool showReferences) const {
    if (indent > MAX_DUMP_INDENT) return 0;
    if (int rc = Base::dumpToString(out, indent, label, deep, showReferences)) return rc;
    if (!hasFlags()) return 0;
    if (int rc = out.pad(out.length() + unsigned(indent + 2))) return rc;
    out += "flags=";
    bool first = true;
    for (uint32_t bit = 1; bit <= CPTYPE_TemplateNotInstantiated; bit <<= 1) {
        if (!(flags & bit)) continue;
        if (!first) out += " ";
        out += flagName(bit);
        first = false;
    }
    return out.append("\n");
}

// ---- Decorated name ----

namespace {

const char* simpleCode(CPSimpleTypeName name) {
    static const char* const codes[] = {"X", "b", "v", "w", "f", "d", "e", "c", "Sc", "Ss", "Si",
                                        "Sl", "Sm", "Uc", "Us", "Ui", "Ul", "Um"};
    return name >= CPSIMPLE_None && name <= CPSIMPLE_LAST ? codes[name] : "X";
}

// Codes of overloadable operators, by the text behind "operator".
const char* operatorCode(const char* op) {
    static const char* const table[][2] = {
        {"*", "__ml"}, {"/", "__dv"}, {"%", "__md"}, {"-", "__mi"}, {"+", "__pl"},
        {">>", "__rs"}, {"<<", "__ls"}, {"!=", "__ne"}, {"==", "__eq"}, {">", "__gt"},
        {"<", "__lt"}, {">=", "__ge"}, {"<=", "__le"}, {"=", "__as"}, {"()", "__cl"},
        {"[]", "__vc"}, {"->", "__rf"}, {"&", "__ad"}, {"|", "__or"}, {"^", "__er"},
        {"!", "__nt"}, {"~", "__co"}, {"&&", "__aa"}, {"||", "__oo"}, {"++", "__pp"},
        {"--", "__mm"}, {"+=", "__apl"}, {"-=", "__ami"}, {"*=", "__amu"}, {"/=", "__adv"},
        {",", "__cm"}, {"new", "__nw"}, {"delete", "__dl"}};
    for (const auto& row : table)
        if (std::strcmp(row[0], op) == 0) return row[1];
    return "__cv";
}

int appendDecorated(QBString& out, const Base* t, int depth);

int appendFunctionName(QBString& out, const Base& function, const CPTypeInfo& typed) {
    QBString name = function.getName();
    const char* text = name.isNull() ? "" : name.get();
    if (typed.isConstructor()) return out.append("__ct");
    if (*text == '~') return out.append("__dt");
    if (std::strncmp(text, "operator", 8) == 0) {
        const char* op = text + 8;
        while (*op == ' ') ++op;
        out += "__op";
        return out.append(operatorCode(op));
    }
    out.appendNumber(uint32_t(name.length()), 10);
    return out.append(name);
}

int appendDecorated(QBString& out, const Base* t, int depth) {
    if (!t || depth > 64) return out.append("X");
    if (t->isConst()) out += "C";
    if (t->isVolatile()) out += "V";
    t = t->resolved();
    switch (t->getRawKind()) {
    case BPTYPE_Any: return out.append("7__ANY__");
    case BPTYPE_Simple: return out.append(simpleCode(t->getSimpleName()));
    case BPTYPE_Pointer: out += "P"; return appendDecorated(out, t->getPointedType(), depth + 1);
    case BPTYPE_Reference: out += "R"; return appendDecorated(out, t->getPointedType(), depth + 1);
    case BPTYPE_Array:
        out += "A";
        out.appendNumber(int64_t(t->getSize()), 10);
        out += "_";
        return appendDecorated(out, t->getElementType(), depth + 1);
    case BPTYPE_Typedef: return appendDecorated(out, t->getAliasedType(), depth + 1);
    case BPTYPE_Variable: return appendDecorated(out, t->getVariableType(), depth + 1);
    case BPTYPE_Function: {
        CPTypeInfo typed;
        if (int rc = typed.assign(*t)) return rc;
        if (int rc = appendFunctionName(out, *t, typed)) return rc;
        out += "__F";
        if (t->getArgumentCount() == 0) out += "v";
        for (unsigned i = 0; i < t->getArgumentCount(); ++i)
            if (int rc = appendDecorated(out, t->getArgumentType(i), depth + 1)) return rc;
        return out.append("_");
    }
    default: {
        QBString name = t->getName();
        out.appendNumber(uint32_t(name.length()), 10);
        return out.append(name);
    }
    }
}

}  // namespace

int CPTypeInfo::getDecoratedName(QBString& out) const { return appendDecorated(out, this, 0); }
