// The repairs: analysis found that the parser's first reading of some tokens was wrong, and asks
// for another. Each repair reads the node's own leaves again, with a fresh table of declared
// names, and accepts the new reading only if it uses every token and logs nothing.
#include "CPClasses.h"
#include "CPDeclarations.h"
#include "CPExpressions.h"
#include "CPGrammar.h"
#include "CPParse.h"
#include "CPTreeTokenSource.h"

using quernbase::QBArray;

namespace {

typedef CPParseTree* (*Reading)(CPParseContext& ctx);

void appendLeaves(CPParseNode* node, QBArray<CPToken*>& out) {
    if (!node) return;
    if (node->isToken()) {
        out.add(static_cast<CPToken*>(node));
        return;
    }
    for (unsigned i = 0; i < node->getChildCount(); ++i) appendLeaves(node->getChild(i), out);
}

// Runs reading over source; the result if it took every token without an error.
CPParseTree* readWhole(CPTokenSource& source, Reading reading) {
    CPDeclaredNames names(cpHashName);
    CPParseContext ctx(source, names);
    CPParseTree* result = reading(ctx);
    if (result && (result->hasError() || !ctx.at(CPT_EOF))) {
        cpFree(result);
        return nullptr;
    }
    return result;
}

CPParseTree* readTokens(const QBArray<CPToken*>& tokens, Reading reading) {
    TBPArrayTokenSource<CPParseNodeType>* source = new (std::nothrow) TBPArrayTokenSource<CPParseNodeType>(tokens);
    if (!source) return nullptr;
    source->addRef();
    CPParseTree* result = readWhole(*source, reading);
    source->release();
    return result;
}

CPParseTree* readTree(CPParseTree* node, Reading reading) {
    CPTreeTokenSource* source = new (std::nothrow) CPTreeTokenSource(node);
    if (!source) return nullptr;
    source->addRef();
    CPParseTree* result = readWhole(*source, reading);
    source->release();
    return result;
}

CPParseTree* adopt(CPParseTree* result, const CPParseTree* old) {
    if (result) result->setParent(old->getParent());
    return result;
}

// declarator-without-parameters initializer?
CPParseTree* variableReading(CPParseContext& ctx) {
    unsigned flags = CPPARSE_NO_FUNCTION_DECLARATOR | CPPARSE_KEYWORD_NAMES;
    CPParseTree* declarator = cpgrammar::parsePointerToDeclarator(ctx, flags);
    if (!declarator) declarator = cpgrammar::parseDirectDeclarator(ctx, flags);
    if (!declarator) return nullptr;
    CPInitDeclarator* node = cpgrammar::make<CPInitDeclarator>();
    if (!node) {
        cpFree(declarator);
        return nullptr;
    }
    node->addChild(declarator);
    node->addChild(nullptr);
    node->addChild(cpgrammar::parseInitializer(ctx, CPPARSE_OPTIONAL));
    return node;
}

CPParseTree* memberReading(CPParseContext& ctx) {
    return cpgrammar::parseMemberDeclaration(ctx, CPPARSE_NO_TYPE_SPECIFIER | CPPARSE_IN_CLASS);
}

CPParseTree* parenthesizedReading(CPParseContext& ctx) { return cpgrammar::parseParenthesizedExpression(ctx, 0); }

CPParseTree* postfixReading(CPParseContext& ctx) { return cpgrammar::parsePostfix(ctx, 0); }

// The binary node that `( name ) op operand` becomes, by the unary operator's token.
CPParseTree* binaryFor(CPParseNodeType op) {
    switch (op) {
    case CPT_PLUS:
    case CPT_MINUS:
        return cpgrammar::make<CPAdditiveExpression>();
    case CPT_STAR:
        return cpgrammar::make<CPMultiplicativeExpression>();
    case CPT_AND:
        return cpgrammar::make<CPAndExpression>();
    default:
        return nullptr;
    }
}

// ( type-id ) op operand  ->  ( name ) op operand
CPParseTree* castAsBinary(CPParseTree* cast, CPParseTree* unary) {
    CPParseNode* op = unary->getChild(0);
    CPParseTree* node = op ? binaryFor(op->getType()) : nullptr;
    if (!node) return nullptr;
    QBArray<CPToken*> tokens;
    for (unsigned i = 0; i < 3; ++i) appendLeaves(cast->getChild(i), tokens);
    CPParseTree* left = readTokens(tokens, parenthesizedReading);
    if (!left) {
        cpFree(node);
        return nullptr;
    }
    node->addChild(left);
    node->addChild(op);
    node->addChild(unary->getChild(1));
    return node;
}

}  // namespace

CPParseTree* cpReparseAsVariable(CPParseTree* declarator) {
    if (!declarator) return nullptr;
    return adopt(readTree(declarator, variableReading), declarator);
}

CPParseTree* cpReparseMemberDeclaration(CPParseTree* member) {
    if (!member) return nullptr;
    return adopt(readTree(member, memberReading), member);
}

CPParseTree* cpReparseCast(CPParseTree* cast) {
    if (!cast || cast->getType() != CPN_CStyleCastExpression || cast->getChildCount() != 4) return nullptr;
    CPParseNode* operand = cast->getChild(3);
    if (!operand || operand->isToken()) return nullptr;
    CPParseTree* result = nullptr;
    if (operand->getType() == CPN_UnaryOperatorExpression) {
        result = castAsBinary(cast, static_cast<CPParseTree*>(operand));
    } else if (operand->getType() == CPN_ParenthesizedExpression) {
        // ( name ) ( arguments ) as a call of the parenthesized name: the cast's parentheses
        // stay in the tree, so that no byte is lost.
        QBArray<CPToken*> tokens;
        for (unsigned i = 0; i < 4; ++i) appendLeaves(cast->getChild(i), tokens);
        result = readTokens(tokens, postfixReading);
    }
    return adopt(result, cast);
}
