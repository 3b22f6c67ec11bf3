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

bool CPParseContext::expect(CPParseTree* node, CPParseNodeType t) {
    if (accept(node, t)) return true;
    node->logErrorAtSource(source, qbmsg::ExpectedToken, cpTokenSpelling(t));
    return false;
}

CPParseTree* CPParseContext::failExpecting(CPParseTree* node, CPParseNodeType t) {
    return fail(node, qbmsg::ExpectedToken, cpTokenSpelling(t));
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

bool cpIsLabelName(CPParseNodeType t) {
    return t == CPT_IDENTIFIER || t == CPT_kw___except || t == CPT_kw___finally ||
           cpTokenHas(t, CPTK_C_NAME | CPTK_KEYWORD_NAME);
}

bool cpIsNameKeyword(CPParseNodeType t, unsigned flags) {
    if ((flags & (CPPARSE_KEYWORD_NAMES | CPPARSE_ALL_KEYWORD_NAMES)) && cpTokenHas(t, CPTK_C_NAME))
        return true;
    return (flags & CPPARSE_KEYWORD_NAMES) && cpTokenHas(t, CPTK_KEYWORD_NAME);
}

// The unqualified-id variant: the Microsoft statement words go with the C names.
bool cpIsIdNameKeyword(CPParseNodeType t, unsigned flags) {
    unsigned kind = cpTokenFlags(t);
    if ((flags & CPPARSE_KEYWORD_NAMES) && (kind & (CPTK_C_NAME | CPTK_MS_WORD))) return true;
    return (flags & CPPARSE_ALL_KEYWORD_NAMES) && (kind & CPTK_KEYWORD_NAME) &&
           !(kind & CPTK_MS_WORD);
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

