// Unary expressions: prefix operators, sizeof, new and delete, the type trait, and `defined`,
// which only an `#if` expression meets.
#include "CPClasses.h"
#include "CPExpressions.h"
#include "CPGrammar.h"

namespace cpgrammar {

namespace {

// operator cast-expression, for the prefix operators and increments.
template <class N> CPParseTree* prefixOperator(CPParseContext& ctx, unsigned flags) {
    N* node = make<N>();
    if (!node) return nullptr;
    ctx.mark();
    ctx.take(node);
    CPParseTree* operand = parseCastExpression(ctx, flags);
    if (!operand) return ctx.rollback(node);
    node->addChild(operand);
    return ctx.commit(node);
}

// ::? delete ( [ ] )? cast-expression
CPParseTree* parseDelete(CPParseContext& ctx, unsigned flags) {
    CPDeleteExpression* node = make<CPDeleteExpression>();
    if (!node) return nullptr;
    ctx.mark();
    if (!ctx.accept(node, CPT_COLON_COLON)) node->addChild(nullptr);
    if (!ctx.accept(node, CPT_kw_delete)) return ctx.rollback(node);
    if (ctx.accept(node, CPT_LEFT_BRACKET)) {
        if (!ctx.expect(node, CPT_RIGHT_BRACKET)) return ctx.bail(node);
    } else {
        node->addChild(nullptr);
        node->addChild(nullptr);
    }
    CPParseTree* operand = parseCastExpression(ctx, flags);
    if (!operand) return ctx.rollback(node);
    node->addChild(operand);
    return ctx.commit(node);
}

// new-placement:
//     ( expression-list )
CPParseTree* parseNewPlacement(CPParseContext& ctx) { return parseParenthesizedList<CPNewPlacement>(ctx); }

// new-initializer:
//     ( expression-list? )
CPParseTree* parseNewInitializer(CPParseContext& ctx) {
    if (!ctx.at(CPT_LEFT_PAREN)) return nullptr;
    CPNewInitializer* node = make<CPNewInitializer>();
    if (!node) return nullptr;
    ctx.mark();
    ctx.take(node);
    node->addChild(parseExpressionList(ctx, CPPARSE_OPTIONAL));
    if (!ctx.expect(node, CPT_RIGHT_PAREN)) return ctx.bail(node);
    return ctx.commit(node);
}

// direct-new-declarator:
//     [ expression ] ( [ constant-expression ] )*
CPParseTree* parseDirectNewDeclarator(CPParseContext& ctx) {
    CPParseTree* node = nullptr;
    while (ctx.at(CPT_LEFT_BRACKET)) {
        CPParseTree* next = node ? static_cast<CPParseTree*>(make<CPScalarConstantNewDeclarator>())
                                 : make<CPScalarNewDeclarator>();
        if (!next) break;
        if (node) next->addChild(node);
        node = next;
        ctx.take(node);
        CPParseTree* size = node->getChildCount() > 1 ? parseConditionalExpression(ctx, 0) : parseExpression(ctx, 0);
        if (!ctx.require(node, size) || !ctx.expect(node, CPT_RIGHT_BRACKET)) break;
    }
    return node;
}

// new-declarator:
//     ptr-operator new-declarator? | direct-new-declarator
CPParseTree* parseNewDeclarator(CPParseContext& ctx) {
    CPDepthGuard guard(ctx);
    if (guard.refused()) return nullptr;
    ctx.mark();
    if (CPParseTree* op = parsePointerOperator(ctx, 0)) {
        CPPointerToNewDeclarator* node = make<CPPointerToNewDeclarator>();
        if (!node) return ctx.rollback(op);
        node->addChild(op);
        node->addChild(parseNewDeclarator(ctx));
        return ctx.commit(node);
    }
    ctx.source.commit();
    return parseDirectNewDeclarator(ctx);
}

// new-type-id:
//     type-specifier new-declarator?
CPParseTree* parseNewTypeId(CPParseContext& ctx) {
    CPParseTree* type = parseTypeSpecifier(ctx, 0);
    if (!type) return nullptr;
    CPNewTypeID* node = make<CPNewTypeID>();
    if (!node) {
        cpFree(type);
        return nullptr;
    }
    node->addChild(type);
    node->addChild(parseNewDeclarator(ctx));
    return node;
}

// ::? new new-placement? ( ( type-id ) | new-type-id ) new-initializer?
CPParseTree* parseNewBody(CPParseContext& ctx, bool allowPlacement) {
    CPNewExpression* node = make<CPNewExpression>();
    if (!node) return nullptr;
    ctx.mark();
    if (!ctx.accept(node, CPT_COLON_COLON)) node->addChild(nullptr);
    if (!ctx.accept(node, CPT_kw_new)) return ctx.rollback(node);
    if (allowPlacement && ctx.at(CPT_LEFT_PAREN)) node->addChild(parseNewPlacement(ctx));
    else node->addChild(nullptr);
    if (ctx.accept(node, CPT_LEFT_PAREN)) {
        if (!ctx.require(node, parseTypeId(ctx, 0))) return ctx.bail(node);
        if (!ctx.expect(node, CPT_RIGHT_PAREN)) return ctx.bail(node);
    } else {
        node->addChild(nullptr);
        if (!ctx.require(node, parseNewTypeId(ctx))) return ctx.bail(node);
        node->addChild(nullptr);
    }
    node->addChild(parseNewInitializer(ctx));
    return ctx.commit(node);
}

// new-expression: `new (T)` against `new (place) T`, by which reading holds no message.
CPParseTree* parseNew(CPParseContext& ctx, unsigned) {
    ctx.mark();
    CPParseTree* first = parseNewBody(ctx, true);
    if (first && !holdsOwnMessage(first)) return ctx.commit(first);
    ctx.rollback(first);
    return parseNewBody(ctx, false);
}

// sizeof unary-expression | sizeof ( type-id )
CPParseTree* parseSizeof(CPParseContext& ctx, unsigned flags) {
    CPSizeofExpression* node = make<CPSizeofExpression>();
    if (!node) return nullptr;
    ctx.mark();
    ctx.take(node);
    if (CPParseTree* operand = parseUnary(ctx, flags)) {
        node->addChild(nullptr);
        node->addChild(operand);
        node->addChild(nullptr);
        return ctx.commit(node);
    }
    bool ok = ctx.expect(node, CPT_LEFT_PAREN) && ctx.require(node, parseTypeId(ctx, 0)) &&
              ctx.expect(node, CPT_RIGHT_PAREN);
    return ok ? ctx.commit(node) : ctx.bail(node);
}

// __is_base_of ( type-id , type-id )
CPParseTree* parseTypeTrait(CPParseContext& ctx, unsigned) {
    CPCppTypeTrait* node = make<CPCppTypeTrait>();
    if (!node) return nullptr;
    ctx.mark();
    ctx.take(node);
    bool ok = ctx.expect(node, CPT_LEFT_PAREN) && ctx.require(node, parseTypeId(ctx, 0)) &&
              ctx.expect(node, CPT_COMMA) && ctx.require(node, parseTypeId(ctx, 0)) &&
              ctx.expect(node, CPT_RIGHT_PAREN);
    return ok ? ctx.commit(node) : ctx.bail(node);
}

// The name behind `defined`: an identifier or any word of the token table; false when there is
// none. A builtin keeps its kind.
bool takeDefinedName(CPParseContext& ctx, CPParseTree* node) {
    CPToken* token = ctx.source.currentToken();
    CPParseNodeType t = ctx.type();
    bool builtin = cpTokenHas(t, CPTK_BUILTIN);
    if (!token || (t != CPT_IDENTIFIER && !cpTokenHas(t, CPTK_KEYWORD))) return false;
    if (!builtin) token->setType(CPT_IDENTIFIER);
    ctx.take(node);
    return true;
}

// defined identifier | defined ( identifier )
CPParseTree* parseDefined(CPParseContext& ctx, unsigned) {
    CPDefinedExpression* node = make<CPDefinedExpression>();
    if (!node) return nullptr;
    ctx.mark();
    ctx.take(node);
    bool parenthesized = ctx.accept(node, CPT_LEFT_PAREN);
    if (!parenthesized) node->addChild(nullptr);
    if (!takeDefinedName(ctx, node)) {
        node->logErrorAtSource(ctx.source, qbmsg::NameRequired);
        ctx.source.commitWithError(node);
        return node;
    }
    if (!parenthesized) node->addChild(nullptr);
    else if (ctx.accept(node, CPT_RIGHT_PAREN)) {}
    else if (ctx.at(CPT_NEWLINE) || ctx.at(CPT_EOF) || ctx.at(CPT_EOS)) {
        node->logWarningAtSource(ctx.source, qbmsg::ExpectedToken,
                                 cpTokenSpelling(CPT_RIGHT_PAREN));
        node->addChild(nullptr);
    } else {
        node->logErrorAtSource(ctx.source, qbmsg::ExpectedToken, cpTokenSpelling(CPT_RIGHT_PAREN));
    }
    return ctx.commit(node);
}

}  // namespace

// unary-expression:
//     postfix-expression | ++ cast-expression | -- cast-expression | unary-operator cast-expression
//     | sizeof | new-expression | delete-expression | __is_base_of | defined
CPParseTree* parseUnary(CPParseContext& ctx, unsigned flags) {
    switch (ctx.type()) {
    case CPT_kw_compl: case CPT_kw_not: case CPT_PLUS: case CPT_MINUS: case CPT_STAR: case CPT_AND:
    case CPT_TILDE: case CPT_NOT:
        return prefixOperator<CPUnaryOperatorExpression>(ctx, flags);
    case CPT_PLUS_PLUS: return prefixOperator<CPPreIncrementExpression>(ctx, flags);
    case CPT_MINUS_MINUS: return prefixOperator<CPPreDecrementExpression>(ctx, flags);
    case CPT_kw_delete: return parseDelete(ctx, flags);
    case CPT_kw_new: return parseNew(ctx, flags);
    case CPT_kw_sizeof: return parseSizeof(ctx, flags);
    case CPT_kw___is_base_of: return parseTypeTrait(ctx, flags);
    case CPT_kw_defined: return parseDefined(ctx, flags);
    default: break;
    }
    if (CPParseTree* postfix = parsePostfix(ctx, flags)) return postfix;
    if (!ctx.at(CPT_COLON_COLON)) return nullptr;
    if (CPParseTree* allocation = parseNew(ctx, flags)) return allocation;
    return parseDelete(ctx, flags);
}

}  // namespace cpgrammar
