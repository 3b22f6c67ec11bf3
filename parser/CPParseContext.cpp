#include "CPParseContext.h"

using quernbase::QBString;

// --- the shared steps of the grammar routines ---

QBString CPParseContext::currentText() {
    CPToken* token = source.currentToken();
    if (!token || token->getType() == CPT_EOF) return QBString("<<EOF>>");
    if (token->getType() == CPT_NEWLINE) return QBString("<<NEWLINE>>");
    return token->getSpelling();
}

CPParseTree* CPParseContext::fail(CPParseTree* node, int code, const QBString& text) {
    node->logErrorAtSource(source, code, text);
    node->recover(source);
    source.commitWithError(node);
    return node;
}

bool CPParseContext::expect(CPParseTree* node, CPParseNodeType t, const char* text) {
    if (accept(node, t)) return true;
    node->logErrorAtSource(source, qbmsg::ExpectedToken, QBString(text));
    return false;
}

bool CPParseContext::require(CPParseTree* node, CPParseNode* child) {
    if (child) {
        node->addChild(child);
        return true;
    }
    node->logErrorAtSource(source, qbmsg::SyntaxError, currentText());
    return false;
}

void cpNoteName(CPDeclaredNames& names, const QBString& name, int kind) {
    if (name.isEmpty() || kind == 0) return;
    int* old = names.find(name);
    if (!old) names.set(name, kind);
    else if (*old != kind && *old != 0) *old = CPNAME_VARIABLE;
}

void cpNoteDeclared(CPParseContext& ctx, const CPParseTree* node, int kind) {
    if (!node) return;
    int noted = kind ? kind : node->getDeclaratorKind();
    if (noted == 0) return;
    QBString name;
    node->getDeclaredName(name);
    cpNoteName(ctx.names, name, noted);
}

// --- token classes ---

namespace {

bool inList(CPParseNodeType t, const CPParseNodeType* list) {
    for (; *list != CPT_NULL; ++list)
        if (*list == t) return true;
    return false;
}

// Names in C that are operators or types in C++.
const CPParseNodeType kFirstNameList[] = {
    CPT_kw_and,    CPT_kw_and_eq, CPT_kw_bitand,  CPT_kw_bitor, CPT_kw_bool,
    CPT_kw_compl,  CPT_kw_export, CPT_kw_friend,  CPT_kw_not,   CPT_kw_not_eq,
    CPT_kw_or,     CPT_kw_or_eq,  CPT_kw_wchar_t, CPT_kw_xor,   CPT_kw_xor_eq, CPT_NULL};

// The Microsoft statement words that the second list holds but that unqualified ids take with
// the first list.
const CPParseNodeType kMicrosoftWords[] = {CPT_kw___try, CPT_kw___leave, CPT_kw___if_exists,
                                           CPT_kw___if_not_exists, CPT_NULL};

const CPParseNodeType kSecondNameList[] = {
    CPT_kw_asm,       CPT_kw_catch,     CPT_kw_class,     CPT_kw_const_cast,
    CPT_kw_delete,    CPT_kw_dynamic_cast, CPT_kw_explicit, CPT_kw_false,
    CPT_kw_inline,    CPT_kw_mutable,   CPT_kw_namespace, CPT_kw_new,
    CPT_kw_operator,  CPT_kw_private,   CPT_kw_protected, CPT_kw_public,
    CPT_kw_reinterpret_cast, CPT_kw_restrict, CPT_kw_static_cast, CPT_kw_template,
    CPT_kw_this,      CPT_kw_throw,     CPT_kw_true,      CPT_kw_try,
    CPT_kw_typeid,    CPT_kw_typename,  CPT_kw_using,     CPT_kw_virtual,
    CPT_kw___try,     CPT_kw___leave,   CPT_kw___if_exists, CPT_kw___if_not_exists,
    CPT_kw___asm,     CPT_NULL};


}  // namespace

bool cpIsLabelName(CPParseNodeType t) {
    return t == CPT_IDENTIFIER || t == CPT_kw___except || t == CPT_kw___finally ||
           inList(t, kFirstNameList) || inList(t, kSecondNameList);
}

bool cpIsNameKeyword(CPParseNodeType t, unsigned flags) {
    if ((flags & (CPPARSE_KEYWORD_NAMES | CPPARSE_ALL_KEYWORD_NAMES)) && inList(t, kFirstNameList))
        return true;
    return (flags & CPPARSE_KEYWORD_NAMES) && inList(t, kSecondNameList);
}

// The unqualified-id variant of the two lists.
bool cpIsIdNameKeyword(CPParseNodeType t, unsigned flags) {
    if (flags & CPPARSE_KEYWORD_NAMES)
        if (inList(t, kFirstNameList) || inList(t, kMicrosoftWords)) return true;
    return (flags & CPPARSE_ALL_KEYWORD_NAMES) && inList(t, kSecondNameList) &&
           !inList(t, kMicrosoftWords);
}

bool cpIsBuiltinTypeKeyword(CPParseNodeType t) {
    switch (t) {
    case CPT_kw_char: case CPT_kw_wchar_t: case CPT_kw_bool: case CPT_kw_short:
    case CPT_kw_int: case CPT_kw_long: case CPT_kw_signed: case CPT_kw_unsigned:
    case CPT_kw_float: case CPT_kw_double: case CPT_kw_void:
        return true;
    default:
        return false;
    }
}

