// Names: identifiers (with the keywords that C code may use as names), qualified and
// unqualified ids, operator and conversion function ids, destructor names.
#include "CPClasses.h"
#include "CPExpressions.h"
#include "CPGrammar.h"

using quernbase::QBString;

int CPIdentifier::getSpelledName(QBString& out) const { return cpSpelledName(getChild(0), out); }

namespace cpgrammar {

namespace {

// The tokens that may follow `operator` as the operator's own.
bool isOperatorToken(CPParseNodeType t) {
    switch (t) {
    case CPT_kw_and: case CPT_kw_and_eq: case CPT_kw_bitand: case CPT_kw_compl: case CPT_kw_delete:
    case CPT_kw_new: case CPT_kw_not: case CPT_kw_not_eq: case CPT_kw_or: case CPT_kw_or_eq:
    case CPT_kw_xor: case CPT_kw_xor_eq: case CPT_LEFT_BRACKET: case CPT_LEFT_PAREN: case CPT_COMMA:
    case CPT_DASH_GT: case CPT_DASH_GT_STAR: case CPT_PLUS: case CPT_MINUS: case CPT_STAR:
    case CPT_SLASH: case CPT_PERCENT: case CPT_CAROT: case CPT_AND: case CPT_OR: case CPT_TILDE:
    case CPT_NOT: case CPT_LT_LT: case CPT_GT_GT: case CPT_EQUALS_EQUALS: case CPT_NOT_EQUALS:
    case CPT_LT_EQUALS: case CPT_GT_EQUALS: case CPT_LT: case CPT_GT: case CPT_EQUALS:
    case CPT_AND_EQUALS: case CPT_OR_EQUALS: case CPT_LT_LT_EQUALS: case CPT_GT_GT_EQUALS:
    case CPT_PLUS_EQUALS: case CPT_MINUS_EQUALS: case CPT_STAR_EQUALS: case CPT_SLASH_EQUALS:
    case CPT_PERCENT_EQUALS: case CPT_CAROT_EQUALS: case CPT_AND_AND: case CPT_OR_OR:
    case CPT_PLUS_PLUS: case CPT_MINUS_MINUS: case CPT_LT_QUESTION: case CPT_GT_QUESTION:
        return true;
    default:
        return false;
    }
}

// :: followed by one name form, as a qualified id of class N.
template <class N>
CPParseTree* globalName(CPParseContext& ctx, Routine name, unsigned flags) {
    N* node = make<N>();
    if (!node) return nullptr;
    ctx.mark();
    ctx.take(node);
    CPParseTree* inner = name(ctx, flags);
    if (!inner) return ctx.rollback(node);
    node->addChild(inner);
    return ctx.commit(node);
}

// ::? nested-name-specifier template? unqualified-id
CPParseTree* parseQualifiedClassId(CPParseContext& ctx, unsigned flags) {
    CPQualifiedClassID* node = make<CPQualifiedClassID>();
    if (!node) return nullptr;
    ctx.mark();
    if (!ctx.accept(node, CPT_COLON_COLON)) node->addChild(nullptr);
    CPParseTree* nested = parseNestedNameSpecifier(ctx, flags & CPPARSE_REJECT_VALUE_NAMES);
    if (!nested) return ctx.rollback(node);
    node->addChild(nested);
    if (!ctx.accept(node, CPT_kw_template)) node->addChild(nullptr);
    CPParseTree* id = parseUnqualifiedId(ctx, 0);
    if (!id) return ctx.rollback(node);
    node->addChild(id);
    return ctx.commit(node);
}

// ~ class-name
CPParseTree* parseDestructorId(CPParseContext& ctx) {
    CPDestructorID* node = make<CPDestructorID>();
    if (!node) return nullptr;
    ctx.mark();
    ctx.take(node);
    if (!ctx.require(node, parseClassName(ctx, 0))) return ctx.bail(node);
    return ctx.commit(node);
}

}  // namespace

// identifier:
//     IDENTIFIER | __except | __finally | a keyword allowed as a name by the flags
CPParseTree* parseIdentifier(CPParseContext& ctx, unsigned flags) {
    CPParseNodeType t = ctx.type();
    if (t != CPT_IDENTIFIER && t != CPT_kw___except && t != CPT_kw___finally && !cpIsNameKeyword(t, flags))
        return nullptr;
    CPIdentifier* node = make<CPIdentifier>();
    if (node) ctx.take(node);
    return node;
}

// id-expression:
//     qualified-id | unqualified-id
CPParseTree* parseIdExpression(CPParseContext& ctx, unsigned flags) {
    if (CPParseTree* qualified = parseQualifiedId(ctx, flags)) return qualified;
    return parseUnqualifiedId(ctx, flags);
}

// qualified-id:
//     ::? nested-name-specifier template? unqualified-id
//     :: identifier | :: template-id | :: operator-function-id
CPParseTree* parseQualifiedId(CPParseContext& ctx, unsigned flags) {
    if (CPParseTree* id = parseQualifiedClassId(ctx, flags)) return id;
    if (!ctx.at(CPT_COLON_COLON)) return nullptr;
    CPParseNodeType next = ctx.peek(1);
    if (next == CPT_IDENTIFIER) {
        if (ctx.peek(2) == CPT_LT)
            if (CPParseTree* id = globalName<CPQualifiedTemplateID>(ctx, parseTemplateId, 0)) return id;
        return globalName<CPQualifiedIdentifier>(ctx, parseIdentifier, 0);
    }
    if (next == CPT_kw_operator) return globalName<CPQualifiedOperatorFunctionID>(ctx, parseOperatorFunctionId, 0);
    return nullptr;
}

// unqualified-id:
//     identifier | template-id | operator-function-id | conversion-function-id | ~ class-name
CPParseTree* parseUnqualifiedId(CPParseContext& ctx, unsigned flags) {
    CPParseNodeType t = ctx.type();
    if (t == CPT_IDENTIFIER && ctx.peek(1) == CPT_LT) {
        if (CPParseTree* id = parseTemplateId(ctx, CPPARSE_OPTIONAL)) return id;
        return parseIdentifier(ctx, 0);
    }
    if (t == CPT_IDENTIFIER || t == CPT_kw___except || t == CPT_kw___finally) return parseIdentifier(ctx, 0);
    if (t == CPT_kw_operator) {
        if (isOperatorToken(ctx.peek(1))) {
            if (CPParseTree* id = parseTemplateId(ctx, CPPARSE_OPTIONAL)) return id;
            return parseOperatorFunctionId(ctx, flags);
        }
        return parseConversionFunctionId(ctx, flags);
    }
    if (cpIsIdNameKeyword(t, flags)) return parseIdentifier(ctx, CPPARSE_KEYWORD_NAMES);
    if (t == CPT_TILDE) return parseDestructorId(ctx);
    return nullptr;
}

// operator-function-id:
//     operator ( new []? | delete []? | [ ] | ( ) | operator-token ) ( < > )?
CPParseTree* parseOperatorFunctionId(CPParseContext& ctx, unsigned) {
    if (!ctx.at(CPT_kw_operator)) return nullptr;
    CPOperatorFunctionID* node = make<CPOperatorFunctionID>();
    if (!node) return nullptr;
    ctx.mark();
    ctx.take(node);
    CPParseNodeType t = ctx.type();
    if ((t == CPT_kw_new || t == CPT_kw_delete) && ctx.peek(1) == CPT_LEFT_BRACKET) {
        ctx.take(node);
        t = CPT_LEFT_BRACKET;
    }
    if (t == CPT_LEFT_BRACKET || t == CPT_LEFT_PAREN) {
        ctx.take(node);
        bool bracket = t == CPT_LEFT_BRACKET;
        if (!ctx.accept(node, bracket ? CPT_RIGHT_BRACKET : CPT_RIGHT_PAREN))
            return ctx.failExpecting(node, bracket ? CPT_RIGHT_BRACKET : CPT_RIGHT_PAREN);
    } else if (isOperatorToken(t)) {
        ctx.take(node);
    } else {
        return ctx.failHere(node);
    }
    if (ctx.at(CPT_LT) && ctx.peek(1) == CPT_GT) {
        ctx.take(node);
        ctx.take(node);
    }
    return ctx.commit(node);
}

// conversion-function-id:
//     operator conversion-type-id
// conversion-type-id:
//     type-specifier ptr-operator*
CPParseTree* parseConversionFunctionId(CPParseContext& ctx, unsigned flags) {
    if (!ctx.at(CPT_kw_operator)) return nullptr;
    CPConversionFunctionID* node = make<CPConversionFunctionID>();
    CPConversionTypeID* type = make<CPConversionTypeID>();
    if (!node || !type) {
        cpFree(node);
        cpFree(type);
        return nullptr;
    }
    ctx.mark();
    ctx.take(node);
    CPParseTree* specifier = parseTypeSpecifier(ctx, flags & CPPARSE_REJECT_VALUE_NAMES);
    if (!specifier) {
        cpFree(type);
        return ctx.failHere(node);
    }
    type->addChild(specifier);
    while (CPParseTree* op = parsePointerOperator(ctx, 0)) type->addChild(op);
    node->addChild(type);
    return ctx.commit(node);
}

// pseudo-destructor-name:
//     ::? nested-name-specifier? ( template template-id | type-name )? ::? ~ type-name
CPParseTree* parsePseudoDestructorName(CPParseContext& ctx, unsigned) {
    CPPseudoDestructorName* node = make<CPPseudoDestructorName>();
    if (!node) return nullptr;
    ctx.mark();
    if (!ctx.accept(node, CPT_COLON_COLON)) node->addChild(nullptr);
    node->addChild(parseNestedNameSpecifier(ctx, 0));
    CPParseTree* type = nullptr;
    if (ctx.accept(node, CPT_kw_template)) {
        if (!(type = parseTemplateId(ctx, 0))) return ctx.rollback(node);
    } else {
        node->addChild(nullptr);
        if (!ctx.at(CPT_TILDE)) type = parseTypeName(ctx, 0);
    }
    node->addChild(type);
    if (type && !ctx.accept(node, CPT_COLON_COLON)) return ctx.rollback(node);
    if (!type) node->addChild(nullptr);
    if (!ctx.accept(node, CPT_TILDE)) return ctx.rollback(node);
    CPParseTree* name = parseTypeName(ctx, 0);
    if (!name) return ctx.rollback(node);
    node->addChild(name);
    return ctx.commit(node);
}

}  // namespace cpgrammar
