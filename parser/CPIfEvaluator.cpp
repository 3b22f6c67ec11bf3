// The `#if` evaluator: the expression is read with the conditional-expression grammar and
// evaluated on its tree in signed 64 bits. There are no unsigned values, both sides of && and
// || are always evaluated (so a division by zero on the right is still reported), literals are
// read digit by digit without checks, and a character literal is its first byte, unescaped.
#include "CPDeclarations.h"
#include "CPExpressions.h"
#include "CPGrammar.h"
#include "CPParse.h"

using quernbase::QBString;

CPParseTree* cpParseCompilationUnit(CPTokenSource& source) {
    CPDeclaredNames names(cpHashName);
    CPParseContext ctx(source, names);
    return cpgrammar::parseCompilationUnit(ctx);
}

namespace {

struct Evaluator {
    CPMacroQuery query;
    void* context;
    int errors = 0;

    int64_t value(CPParseNode* node);
    int64_t binary(CPParseNode* node);
    int64_t unary(CPParseNode* node);
    int64_t defined(CPParseNode* node);
    int64_t call(CPParseNode* node);
};

int64_t digitValue(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

int64_t literalValue(const CPToken* token) {
    QBString text;
    token->getSpellingInto(text);
    const char* p = text.isNull() ? "" : text.get();
    switch (token->getType()) {
    case CPT_kw_true: return 1;
    case CPT_CHARACTER: return text.length() > 1 ? int64_t(static_cast<signed char>(p[1])) : 0;
    case CPT_INTEGER: case CPT_LONG: break;
    default: return 0;
    }
    uint64_t base = 10;
    if (p[0] == '0' && (p[1] == 'x' || p[1] == 'X')) base = 16, p += 2;
    else if (p[0] == '0') base = 8, p += 1;
    uint64_t result = 0;
    for (; *p; ++p) {
        int64_t digit = digitValue(*p);
        if (digit >= 0) result = result * base + uint64_t(digit);
    }
    return int64_t(result);
}

CPParseNodeType operatorOf(CPParseNode* node) {
    CPParseNode* op = node->getChild(1);
    return op ? op->getType() : CPT_NULL;
}

int64_t Evaluator::binary(CPParseNode* node) {
    int64_t a = value(node->getChild(0));
    int64_t b = value(node->getChild(2));
    uint64_t ua = uint64_t(a), ub = uint64_t(b);
    switch (operatorOf(node)) {
    case CPT_STAR: return int64_t(ua * ub);
    case CPT_SLASH: case CPT_PERCENT:
        if (b == 0) {
            ++errors;
            node->logErrorAtNode(node, qbmsg::DivisionByZero);
            return 0;
        }
        if (b == -1) return operatorOf(node) == CPT_SLASH ? int64_t(0 - ua) : 0;
        return operatorOf(node) == CPT_SLASH ? a / b : a % b;
    case CPT_PLUS: return int64_t(ua + ub);
    case CPT_MINUS: return int64_t(ua - ub);
    case CPT_LT_LT: return int64_t(ua << (b & 63));
    case CPT_GT_GT: return a >> (b & 63);
    case CPT_LT: return a < b;
    case CPT_GT: return a > b;
    case CPT_LT_EQUALS: return a <= b;
    case CPT_GT_EQUALS: return a >= b;
    case CPT_EQUALS_EQUALS: return a == b;
    case CPT_NOT_EQUALS: case CPT_kw_not_eq: return a != b;
    case CPT_AND: case CPT_kw_bitand: return a & b;
    case CPT_CAROT: case CPT_kw_xor: return a ^ b;
    case CPT_OR: case CPT_kw_bitor: return a | b;
    case CPT_AND_AND: case CPT_kw_and: return a && b;
    case CPT_OR_OR: case CPT_kw_or: return a || b;
    case CPT_LT_QUESTION: return a < b ? a : b;
    case CPT_GT_QUESTION: return a > b ? a : b;
    default: return 0;
    }
}

int64_t Evaluator::unary(CPParseNode* node) {
    int64_t a = value(node->getChild(1));
    switch (node->getChild(0) ? node->getChild(0)->getType() : CPT_NULL) {
    case CPT_TILDE: case CPT_kw_compl: return ~a;
    case CPT_NOT: case CPT_kw_not: return !a;
    case CPT_PLUS: return a;
    case CPT_MINUS: return int64_t(0 - uint64_t(a));
    default: return 0;
    }
}

int64_t Evaluator::defined(CPParseNode* node) {
    CPToken* name = node->getTokenChild(2);
    if (!name) {
        ++errors;
        node->logErrorAtNode(node, qbmsg::NothingToWorkOn);
        return 0;
    }
    if (cpTokenHas(name->getType(), CPTK_BUILTIN)) return 1;
    return query ? query(context, name, false) : 0;
}

// `defined(name)` when `defined` came through as a plain name.
int64_t Evaluator::call(CPParseNode* node) {
    CPParseNode* callee = node->getChild(0);
    CPParseNode* list = node->getChild(2);
    CPParseNode* argument = list ? list->getChild(0) : nullptr;
    QBString text;
    if (!callee || callee->getType() != CPN_Identifier || !argument || argument->getType() != CPN_Identifier)
        return 0;
    cpSpelledName(callee, text);
    if (text != "defined") return 0;
    CPToken* name = argument->getTokenChild(0);
    return query && name ? query(context, name, true) : 0;
}

int64_t Evaluator::value(CPParseNode* node) {
    if (!node) return 0;
    switch (node->getType()) {
    case CPN_Expression: return node->getChildCount() ? value(node->getChild(0)) : 0;
    case CPN_Literal: return node->getTokenChild(0) ? literalValue(node->getTokenChild(0)) : 0;
    case CPN_ParenthesizedExpression: {
        CPParseNode* inner = node->getChild(1);
        return inner && inner->getType() == CPN_Expression ? value(inner) : 0;
    }
    case CPN_FunctionCallExpression: return call(node);
    case CPN_UnaryOperatorExpression: return unary(node);
    case CPN_DefinedExpression: return defined(node);
    case CPN_ConditionalExpression:
        return value(node->getChild(0)) ? value(node->getChild(2)) : value(node->getChild(4));
    case CPN_MultiplicativeExpression: case CPN_AdditiveExpression: case CPN_ShiftExpression:
    case CPN_RelationalExpression: case CPN_EqualityExpression: case CPN_AndExpression:
    case CPN_ExclusiveOrExpression: case CPN_InclusiveOrExpression: case CPN_LogicalAndExpression:
    case CPN_LogicalOrExpression: case CPN_MinMaxExpression:
        return binary(node);
    default: return 0;
    }
}

}  // namespace

int cpEvaluateIfExpression(CPTokenSource& source, int64_t& value, CPMacroQuery query, void* context,
                           int* errorCount) {
    value = 0;
    if (errorCount) *errorCount = 0;
    CPDeclaredNames names(cpHashName);
    CPParseContext ctx(source, names);
    CPParseTree* expression = cpgrammar::parseConditionalExpression(ctx, 0);
    if (!expression) return -1;
    expression->addRef();
    int status = 0;
    if (expression->hasError()) {
        status = -1;
    } else {
        Evaluator evaluator{query, context};
        value = evaluator.value(expression);
        if (errorCount) *errorCount = evaluator.errors;
    }
    expression->release();
    return status;
}
