// Postfix and primary expressions: calls, subscripts, member access (with pseudo-destructors),
// increments, the keyword casts, typeid, typename, function-style casts of built-in types,
// literals, `this`, and parentheses around an expression or a GNU statement expression.
#include "CPClasses.h"
#include "CPExpressions.h"
#include "CPGrammar.h"

namespace cpgrammar {

namespace {

// postfix-expression [ expression ]
CPParseTree* arrayAccess(CPParseContext& ctx, CPParseTree* left) {
    CPArrayAccessExpression* node = make<CPArrayAccessExpression>();
    if (!node) return nullptr;
    ctx.mark();
    node->addChild(left);
    ctx.take(node);
    if (!ctx.require(node, parseExpression(ctx, 0))) return ctx.bail(node);
    if (!ctx.expect(node, CPT_RIGHT_BRACKET)) return ctx.bail(node);
    return ctx.commit(node);
}

// postfix-expression ( expression-list? )
CPParseTree* call(CPParseContext& ctx, CPParseTree* left) {
    CPFunctionCallExpression* node = make<CPFunctionCallExpression>();
    if (!node) return nullptr;
    ctx.mark();
    node->addChild(left);
    ctx.take(node);
    node->addChild(parseExpressionList(ctx, CPPARSE_OPTIONAL));
    if (!ctx.expect(node, CPT_RIGHT_PAREN)) return ctx.bail(node);
    return ctx.commit(node);
}

// postfix-expression ( . | -> ) ( template? id-expression | pseudo-destructor-name )
CPParseTree* memberAccess(CPParseContext& ctx, CPParseTree* left) {
    ctx.mark();
    CPToken* op = ctx.source.currentToken();
    op->addRef();
    ctx.source.nextToken();
    CPParseTree* node = nullptr;
    if (CPParseTree* destructor = parsePseudoDestructorName(ctx, 0)) {
        if ((node = make<CPDestructorMemberAccessExpression>())) {
            node->addChild(left);
            node->addChild(op);
            node->addChild(destructor);
        } else {
            cpFree(destructor);
        }
        op->release();
        return node ? ctx.commit(node) : ctx.rollback();
    }
    if (!(node = make<CPMemberAccessExpression>())) {
        op->release();
        return ctx.rollback();
    }
    node->addChild(left);
    node->addChild(op);
    op->release();
    if (!ctx.accept(node, CPT_kw_template)) node->addChild(nullptr);
    CPParseTree* id = parseQualifiedId(ctx, CPPARSE_KEYWORD_NAMES);
    if (!id) id = parseUnqualifiedId(ctx, CPPARSE_KEYWORD_NAMES);
    if (!ctx.require(node, id)) return ctx.bail(node);
    return ctx.commit(node);
}

// postfix-expression ( ++ | -- )
template <class N> CPParseTree* postIncrement(CPParseContext& ctx, CPParseTree* left) {
    N* node = make<N>();
    if (!node) return nullptr;
    node->addChild(left);
    ctx.take(node);
    return node;
}

// One suffix around left, or null (left then stays the caller's).
CPParseTree* suffix(CPParseContext& ctx, CPParseTree* left, unsigned flags, bool& last) {
    bool designator = flags & CPPARSE_DESIGNATOR;
    switch (ctx.type()) {
    case CPT_LEFT_BRACKET: return arrayAccess(ctx, left);
    case CPT_LEFT_PAREN: return designator ? nullptr : call(ctx, left);
    case CPT_DOT: case CPT_DASH_GT: return memberAccess(ctx, left);
    case CPT_PLUS_PLUS:
        last = true;
        return designator ? nullptr : postIncrement<CPPostIncrementExpression>(ctx, left);
    case CPT_MINUS_MINUS:
        last = true;
        return designator ? nullptr : postIncrement<CPPostDecrementExpression>(ctx, left);
    default: return nullptr;
    }
}

// type-specifier ( expression-list? ), for built-in types
CPParseTree* parseFunctionStyleCast(CPParseContext& ctx, unsigned) {
    CPFunctionStyleCastExpression* node = make<CPFunctionStyleCastExpression>();
    if (!node) return nullptr;
    ctx.mark();
    CPParseTree* type = parseTypeSpecifier(ctx, CPPARSE_REJECT_VALUE_NAMES | CPPARSE_TYPE_SEEN);
    if (!type) return ctx.rollback(node);
    node->addChild(type);
    if (!ctx.accept(node, CPT_LEFT_PAREN)) return ctx.rollback(node);
    node->addChild(parseExpressionList(ctx, CPPARSE_OPTIONAL));
    if (!ctx.accept(node, CPT_RIGHT_PAREN)) return ctx.rollback(node);
    return ctx.commit(node);
}

// typename-specifier ( expression-list? )
CPParseTree* parseTypenameExpression(CPParseContext& ctx, unsigned) {
    CPTypenameExpression* node = make<CPTypenameExpression>();
    if (!node) return nullptr;
    ctx.mark();
    CPParseTree* type = parseTypenameSpecifier(ctx, 0);
    if (!type) return ctx.rollback(node);
    node->addChild(type);
    if (!ctx.expect(node, CPT_LEFT_PAREN)) return ctx.bail(node);
    node->addChild(parseExpressionList(ctx, CPPARSE_OPTIONAL));
    if (!ctx.expect(node, CPT_RIGHT_PAREN)) return ctx.bail(node);
    return ctx.commit(node);
}

// ( dynamic_cast | static_cast | reinterpret_cast | const_cast ) < type-id > ( expression )
CPParseTree* parseCppCast(CPParseContext& ctx, unsigned) {
    CPCppCastExpression* node = make<CPCppCastExpression>();
    if (!node) return nullptr;
    ctx.mark();
    ctx.take(node);
    bool ok = ctx.expect(node, CPT_LT) && ctx.require(node, parseTypeId(ctx, 0)) &&
              ctx.expect(node, CPT_GT) && ctx.expect(node, CPT_LEFT_PAREN) &&
              ctx.require(node, parseExpression(ctx, 0)) && ctx.expect(node, CPT_RIGHT_PAREN);
    return ok ? ctx.commit(node) : ctx.bail(node);
}

// typeid ( ( expression | type-id ) )
CPParseTree* parseTypeIdExpression(CPParseContext& ctx, unsigned) {
    CPTypeIDExpression* node = make<CPTypeIDExpression>();
    if (!node) return nullptr;
    ctx.mark();
    ctx.take(node);
    if (!ctx.expect(node, CPT_LEFT_PAREN)) return ctx.bail(node);
    CPParseTree* operand = parseExpression(ctx, 0);
    if (!operand) operand = parseTypeId(ctx, 0);
    bool ok = ctx.require(node, operand) && ctx.expect(node, CPT_RIGHT_PAREN);
    return ok ? ctx.commit(node) : ctx.bail(node);
}

// The start of a postfix expression when no primary expression is there.
CPParseTree* postfixStart(CPParseContext& ctx, unsigned flags) {
    if (CPParseTree* primary = parsePrimary(ctx, flags)) return primary;
    switch (ctx.type()) {
    case CPT_kw_dynamic_cast: case CPT_kw_static_cast: case CPT_kw_reinterpret_cast:
    case CPT_kw_const_cast: return parseCppCast(ctx, flags);
    case CPT_kw_typeid: return parseTypeIdExpression(ctx, flags);
    case CPT_kw_typename: return parseTypenameExpression(ctx, flags);
    default: return nullptr;
    }
}

}  // namespace

// postfix-expression:
//     primary-expression ( [ expression ] | ( expression-list? ) | . id | -> id | ++ | -- )*
CPParseTree* parsePostfix(CPParseContext& ctx, unsigned flags) {
    CPParseTree* node = postfixStart(ctx, flags);
    if (!node) {
        if (!(flags & CPPARSE_DESIGNATOR)) return parseFunctionStyleCast(ctx, flags);
        // A designator's run of [index] and .name has no start.
        if (!ctx.at(CPT_LEFT_BRACKET) && !ctx.at(CPT_DOT)) return nullptr;
    }
    bool last = false;
    while (!last) {
        CPParseTree* next = suffix(ctx, node, flags, last);
        if (!next) break;
        node = next;
    }
    return node;
}

// primary-expression:
//     literal | this | ( expression ) | ( { statement-seq } ) | id-expression
CPParseTree* parsePrimary(CPParseContext& ctx, unsigned flags) {
    switch (ctx.type()) {
    case CPT_kw_false: case CPT_kw_true: case CPT_INTEGER: case CPT_LONG: case CPT_CHARACTER:
    case CPT_STRING: case CPT_WIDE_CHARACTER: case CPT_WIDE_STRING: case CPT_FLOAT: case CPT_DOUBLE:
    case CPT_LONG_DOUBLE:
        return parseLiteral(ctx, flags);
    case CPT_kw_this: {
        CPThisExpression* node = make<CPThisExpression>();
        if (node) ctx.take(node);
        return node;
    }
    case CPT_RIGHT_BRACE: case CPT_RIGHT_BRACKET: case CPT_RIGHT_PAREN: case CPT_SEMICOLON:
        return nullptr;
    case CPT_LEFT_PAREN: return parseParenthesizedExpression(ctx, flags);
    default:
        if (CPParseTree* qualified = parseQualifiedId(ctx, flags & CPPARSE_REJECT_VALUE_NAMES)) return qualified;
        return parseUnqualifiedId(ctx, 0);
    }
}

// literal:
//     one literal token, or adjacent strings of one kind
CPParseTree* parseLiteral(CPParseContext& ctx, unsigned) {
    CPLiteral* node = make<CPLiteral>();
    if (!node) return nullptr;
    CPParseNodeType t = ctx.type();
    ctx.take(node);
    if (t == CPT_STRING || t == CPT_WIDE_STRING)
        while (ctx.at(t)) ctx.take(node);
    return node;
}

// ( expression ) | ( compound-statement )
CPParseTree* parseParenthesizedExpression(CPParseContext& ctx, unsigned) {
    CPDepthGuard guard(ctx);
    if (guard.refused()) return nullptr;
    CPParenthesizedExpression* node = make<CPParenthesizedExpression>();
    if (!node) return nullptr;
    ctx.mark();
    ctx.take(node);
    CPParseTree* inner = ctx.at(CPT_LEFT_BRACE) ? parseBlockStatement(ctx, 0) : parseExpression(ctx, 0);
    if (!inner) return ctx.rollback(node);
    node->addChild(inner);
    if (!ctx.accept(node, CPT_RIGHT_PAREN)) return ctx.rollback(node);
    return ctx.commit(node);
}

}  // namespace cpgrammar
