// Expressions from the comma down to the cast: assignment, `?:` (with the GNU empty middle),
// the `<?` and `>?` extensions, the table-driven binary levels, and the C-style cast, which
// is tried before a parenthesized expression and kept when an operand follows.
#include "CPExpressions.h"

#include "CPClasses.h"
#include "CPGrammar.h"

using quernbase::QBString;

namespace cpgrammar {

namespace {

bool endsExpression(CPParseNodeType t) {
    return t == CPT_RIGHT_BRACE || t == CPT_RIGHT_BRACKET || t == CPT_RIGHT_PAREN ||
           t == CPT_SEMICOLON || t == CPT_COLON;
}

// assignment-expression ( , assignment-expression )* into node.
CPParseTree* commaList(CPParseContext& ctx, CPParseTree* node) {
    while (CPParseTree* operand = parseAssignmentExpression(ctx, 0)) {
        node->addChild(operand);
        if (!ctx.at(CPT_COMMA)) break;
        ctx.take(node);
    }
    if (node->getChildCount() > 0) return node;
    cpFree(node);
    return nullptr;
}

bool isAssignmentOperator(CPParseNodeType t) { return cpTokenHas(t, CPTK_ASSIGNMENT); }

// left ? expression? : assignment-expression, with the source marked by the caller.
CPParseTree* conditionalTail(CPParseContext& ctx, CPParseTree* left, bool full) {
    CPConditionalExpression* node = make<CPConditionalExpression>();
    if (!node) return ctx.rollback(left);
    node->addChild(left);
    ctx.take(node);
    node->addChild(ctx.at(CPT_COLON) ? nullptr : parseExpression(ctx, CPPARSE_OPTIONAL));
    if (!ctx.expect(node, CPT_COLON)) return ctx.bail(node);
    CPParseTree* right = full ? parseAssignmentExpression(ctx, 0) : parseConditionalExpression(ctx, 0);
    if (!ctx.require(node, right)) return ctx.bail(node);
    return ctx.commit(node);
}

// left op right, for assignment and min/max, with the source marked by the caller.
template <class N>
CPParseTree* rightOperand(CPParseContext& ctx, CPParseTree* left, Routine right) {
    N* node = make<N>();
    if (!node) return ctx.rollback(left);
    node->addChild(left);
    ctx.take(node);
    if (!ctx.require(node, right(ctx, 0))) return ctx.bail(node);
    return ctx.commit(node);
}

}  // namespace

// expression:
//     assignment-expression ( , assignment-expression )*
CPParseTree* parseExpression(CPParseContext& ctx, unsigned) {
    if (endsExpression(ctx.type())) return nullptr;
    CPExpression* node = make<CPExpression>();
    return node ? commaList(ctx, node) : nullptr;
}

// expression-list:
//     assignment-expression ( , assignment-expression )*
CPParseTree* parseExpressionList(CPParseContext& ctx, unsigned) {
    if (ctx.at(CPT_RIGHT_PAREN)) return nullptr;
    CPExpressionList* node = make<CPExpressionList>();
    return node ? commaList(ctx, node) : nullptr;
}

// assignment-expression:
//     throw-expression | conditional-expression | logical-or-expression <? expression
//     | logical-or-expression assignment-operator assignment-expression
CPParseTree* parseAssignmentExpression(CPParseContext& ctx, unsigned flags) {
    CPDepthGuard guard(ctx);
    if (guard.refused()) return nullptr;
    if (ctx.at(CPT_kw_throw)) {
        CPThrowExpression* node = make<CPThrowExpression>();
        if (node) ctx.take(node), node->addChild(parseAssignmentExpression(ctx, CPPARSE_OPTIONAL));
        return node;
    }
    ctx.mark();
    CPParseTree* left = parseLogicalOr(ctx, flags);
    if (!left) return ctx.rollback();
    CPParseNodeType t = ctx.type();
    if (t == CPT_QUESTION) return conditionalTail(ctx, left, true);
    if (t == CPT_LT_QUESTION || t == CPT_GT_QUESTION) return rightOperand<CPMinMaxExpression>(ctx, left, parseExpression);
    if (isAssignmentOperator(t)) return rightOperand<CPAssignmentExpression>(ctx, left, parseAssignmentExpression);
    return ctx.commit(left);
}

// conditional-expression:
//     logical-or-expression ( ? expression? : conditional-expression )?
CPParseTree* parseConditionalExpression(CPParseContext& ctx, unsigned flags) {
    CPDepthGuard guard(ctx);
    if (guard.refused()) return nullptr;
    ctx.mark();
    CPParseTree* left = parseLogicalOr(ctx, flags);
    if (!left) return ctx.rollback();
    if (ctx.at(CPT_QUESTION)) return conditionalTail(ctx, left, false);
    return ctx.commit(left);
}

namespace {

struct BinaryLevel {
    CPParseTree* (*make)();
    CPParseNodeType operators[3];
};

template <class N> CPParseTree* makeNode() { return make<N>(); }

// From the loosest to the tightest; the PM level reads cast expressions.
const BinaryLevel kLevels[] = {
    {makeNode<CPLogicalOrExpression>, {CPT_OR_OR, CPT_kw_or, CPT_NULL}},
    {makeNode<CPLogicalAndExpression>, {CPT_AND_AND, CPT_kw_and, CPT_NULL}},
    {makeNode<CPInclusiveOrExpression>, {CPT_OR, CPT_kw_bitor, CPT_NULL}},
    {makeNode<CPExclusiveOrExpression>, {CPT_CAROT, CPT_kw_xor, CPT_NULL}},
    {makeNode<CPAndExpression>, {CPT_AND, CPT_kw_bitand, CPT_NULL}},
    {makeNode<CPEqualityExpression>, {CPT_EQUALS_EQUALS, CPT_NOT_EQUALS, CPT_kw_not_eq}},
    {makeNode<CPRelationalExpression>, {CPT_LT, CPT_GT, CPT_LT_EQUALS}},
    {makeNode<CPShiftExpression>, {CPT_LT_LT, CPT_GT_GT, CPT_NULL}},
    {makeNode<CPAdditiveExpression>, {CPT_PLUS, CPT_MINUS, CPT_NULL}},
    {makeNode<CPMultiplicativeExpression>, {CPT_STAR, CPT_SLASH, CPT_PERCENT}},
    {makeNode<CPPMExpression>, {CPT_DOT_STAR, CPT_DASH_GT_STAR, CPT_NULL}},
};
const int kLevelCount = int(sizeof kLevels / sizeof kLevels[0]);

bool isOperatorOf(int level, CPParseNodeType t) {
    if (level == 6 && t == CPT_GT_EQUALS) return true;  // the relational level has four
    for (CPParseNodeType op : kLevels[level].operators)
        if (op != CPT_NULL && op == t) return true;
    return false;
}

CPParseTree* parseLevel(CPParseContext& ctx, unsigned flags, int level) {
    if (level == kLevelCount) return parseCastExpression(ctx, flags);
    CPParseTree* left = parseLevel(ctx, flags, level + 1);
    while (left && isOperatorOf(level, ctx.type())) {
        CPParseTree* node = kLevels[level].make();
        if (!node) break;
        ctx.mark();
        node->addChild(left);
        ctx.take(node);
        left = node;
        CPParseTree* right = parseLevel(ctx, flags, level + 1);
        if (!right) return ctx.failHere(node);
        node->addChild(right);
        ctx.source.commit();
    }
    return left;
}

}  // namespace

// logical-or-expression:
//     logical-and-expression ( ( || | or ) logical-and-expression )*
//     ... and so on down to pm-expression: cast-expression ( ( .* | ->* ) cast-expression )*
CPParseTree* parseLogicalOr(CPParseContext& ctx, unsigned flags) { return parseLevel(ctx, flags, 0); }

namespace {

// The operand of a cast: another cast, a unary expression, or a compound literal's braces.
CPParseTree* castOperand(CPParseContext& ctx, unsigned flags);

// ( type-id ) cast-operand
CPParseTree* parseCStyleCast(CPParseContext& ctx, unsigned flags) {
    CPCStyleCastExpression* node = make<CPCStyleCastExpression>();
    if (!node) return nullptr;
    ctx.mark();
    ctx.take(node);
    CPParseTree* type = parseTypeId(ctx, CPPARSE_REJECT_VALUE_NAMES);
    if (!type) return ctx.rollback(node);
    node->addChild(type);
    if (!ctx.accept(node, CPT_RIGHT_PAREN)) return ctx.rollback(node);
    CPParseTree* operand = castOperand(ctx, flags);
    if (!operand || holdsOwnMessage(operand)) {
        cpFree(operand);
        return ctx.rollback(node);
    }
    node->addChild(operand);
    return ctx.commit(node);
}

CPParseTree* castOperand(CPParseContext& ctx, unsigned flags) {
    CPParseTree* operand = ctx.at(CPT_LEFT_PAREN) ? parseCStyleCast(ctx, flags) : nullptr;
    if (!operand) operand = parseUnary(ctx, flags);
    if (!operand && ctx.at(CPT_LEFT_BRACE)) operand = parseInitializerList(ctx, 0);
    return operand;
}

}  // namespace

// cast-expression:
//     ( type-id ) cast-expression | unary-expression
CPParseTree* parseCastExpression(CPParseContext& ctx, unsigned flags) {
    CPDepthGuard guard(ctx);
    if (guard.refused()) return nullptr;
    if (ctx.at(CPT_LEFT_PAREN))
        if (CPParseTree* cast = parseCStyleCast(ctx, flags)) return cast;
    return parseUnary(ctx, flags);
}

}  // namespace cpgrammar
