// Initializers: `= clause`, `( expression-list )`, brace lists with the C99 designators, the
// GNU `name:` form and `__if_exists` items.
#include "CPDeclarations.h"
#include "CPExpressions.h"
#include "CPGrammar.h"

namespace cpgrammar {

namespace {

// = initializer-clause
CPParseTree* equalsInitializer(CPParseContext& ctx) {
    CPEqualsInitializer* node = make<CPEqualsInitializer>();
    if (!node) return nullptr;
    ctx.mark();
    ctx.take(node);
    if (!ctx.require(node, parseInitializerClause(ctx, 0))) return ctx.bail(node);
    return ctx.commit(node);
}

// ( expression-list )
CPParseTree* parenthesizedInitializer(CPParseContext& ctx) { return parseParenthesizedList<CPParenthesizedInitializer>(ctx); }

// ( __if_exists | __if_not_exists ) ( unary-expression ) { ( assignment-expression |
//     initializer-list ) ,? }
CPParseTree* parseIfExistsInitializer(CPParseContext& ctx) {
    CPIfExistsInitializerClause* node = make<CPIfExistsInitializerClause>();
    if (!node) return nullptr;
    ctx.mark();
    if (!readIfExistsHead(ctx, node)) return ctx.bail(node);
    CPParseTree* value = ctx.at(CPT_LEFT_BRACE) ? parseInitializerList(ctx, 0) : parseAssignmentExpression(ctx, 0);
    if (!ctx.require(node, value)) return ctx.bail(node);
    if (!ctx.accept(node, CPT_COMMA)) node->addChild(nullptr);
    if (!ctx.expect(node, CPT_RIGHT_BRACE)) return ctx.bail(node);
    return ctx.commit(node);
}

// The designator part of a clause: `.x[2] =`, or `name :`; two null children otherwise.
void readDesignator(CPParseContext& ctx, CPParseTree* node) {
    if (ctx.at(CPT_DOT) || ctx.at(CPT_LEFT_BRACKET)) {
        ctx.mark();
        CPParseTree* designator = parsePostfix(ctx, CPPARSE_DESIGNATOR);
        if (designator && ctx.at(CPT_EQUALS)) {
            node->addChild(designator);
            ctx.take(node);
            ctx.source.commit();
            return;
        }
        ctx.rollback(designator);
    }
    if (ctx.at(CPT_IDENTIFIER) && ctx.peek(1) == CPT_COLON) {
        node->addChild(parseIdentifier(ctx, 0));
        ctx.take(node);
        return;
    }
    node->addChild(nullptr);
    node->addChild(nullptr);
}

}  // namespace

// initializer:
//     = initializer-clause | ( expression-list )
CPParseTree* parseInitializer(CPParseContext& ctx, unsigned) {
    if (ctx.at(CPT_EQUALS)) return equalsInitializer(ctx);
    if (ctx.at(CPT_LEFT_PAREN)) return parenthesizedInitializer(ctx);
    return nullptr;
}

// initializer-clause:
//     designator? ( assignment-expression | initializer-list )
CPParseTree* parseInitializerClause(CPParseContext& ctx, unsigned) {
    CPInitializerClause* node = make<CPInitializerClause>();
    if (!node) return nullptr;
    ctx.mark();
    readDesignator(ctx, node);
    CPParseTree* value = ctx.at(CPT_LEFT_BRACE) ? parseInitializerList(ctx, 0) : parseAssignmentExpression(ctx, 0);
    if (!value) return ctx.rollback(node);
    node->addChild(value);
    return ctx.commit(node);
}

// initializer-list:
//     { ( initializer-clause , )* initializer-clause? }
CPParseTree* parseInitializerList(CPParseContext& ctx, unsigned) {
    if (!ctx.at(CPT_LEFT_BRACE)) return nullptr;
    CPDepthGuard guard(ctx);
    if (guard.refused()) return nullptr;
    CPInitializerList* node = make<CPInitializerList>();
    if (!node) return nullptr;
    ctx.mark();
    ctx.take(node);
    while (!ctx.at(CPT_RIGHT_BRACE)) {
        bool ifExists = ctx.at(CPT_kw___if_exists) || ctx.at(CPT_kw___if_not_exists);
        CPParseTree* item = ifExists ? parseIfExistsInitializer(ctx) : parseInitializerClause(ctx, CPPARSE_OPTIONAL);
        if (!item) break;
        node->addChild(item);
        if (!ctx.accept(node, CPT_COMMA)) {
            if (!ifExists) break;
            node->addChild(nullptr);
        }
    }
    if (!ctx.expect(node, CPT_RIGHT_BRACE)) return ctx.bail(node);
    return ctx.commit(node);
}

}  // namespace cpgrammar
