// Statements. The classic ambiguity is settled by order: what can be read as a declaration is
// one (with names known as values rejected as types), else an expression statement, else the
// declaration again for its messages.
#include "CPStatements.h"

#include "CPClasses.h"
#include "CPExpressions.h"
#include "CPGrammar.h"

using quernbase::QBString;

CPStatement::~CPStatement() {
    for (CPParseTree* node : analysisNodes)
        if (node) node->release();
}

namespace cpgrammar {

namespace {

typedef CPParseTree* (*StatementRoutine)(CPParseContext& ctx, unsigned flags);

// keyword ; : break, continue, __leave.
template <class N> CPParseTree* keywordStatement(CPParseContext& ctx, unsigned) {
    N* node = make<N>();
    if (!node) return nullptr;
    ctx.mark();
    ctx.take(node);
    if (!ctx.expect(node, CPT_SEMICOLON)) return ctx.bail(node);
    return ctx.commit(node);
}

// ( condition ) statement, shared by if and while; false after a logged message.
bool conditionAndBody(CPParseContext& ctx, CPParseTree* node, unsigned flags) {
    if (!ctx.expect(node, CPT_LEFT_PAREN)) return false;
    if (!ctx.require(node, parseCondition(ctx, 0))) return false;
    if (!ctx.expect(node, CPT_RIGHT_PAREN)) return false;
    return ctx.require(node, parseStatement(ctx, flags & ~unsigned(CPPARSE_SINGLE_STATEMENT)));
}

// if ( condition ) statement ( else if ( condition ) statement )* ( else statement )?
CPParseTree* parseIf(CPParseContext& ctx, unsigned flags) {
    CPIfStatement* node = make<CPIfStatement>();
    if (!node) return nullptr;
    ctx.mark();
    ctx.take(node);
    if (!conditionAndBody(ctx, node, flags)) return ctx.bail(node);
    while (ctx.at(CPT_kw_else) && ctx.peek(1) == CPT_kw_if) {
        ctx.take(node);
        ctx.take(node);
        if (!conditionAndBody(ctx, node, flags)) return ctx.bail(node);
    }
    if (ctx.accept(node, CPT_kw_else)) {
        if (!ctx.require(node, parseStatement(ctx, flags))) return ctx.bail(node);
    } else {
        node->addChild(nullptr);
        node->addChild(nullptr);
    }
    return ctx.commit(node);
}

// while ( condition ) statement
CPParseTree* parseWhile(CPParseContext& ctx, unsigned flags) {
    CPWhileStatement* node = make<CPWhileStatement>();
    if (!node) return nullptr;
    ctx.mark();
    ctx.take(node);
    if (!conditionAndBody(ctx, node, flags)) return ctx.bail(node);
    return ctx.commit(node);
}

// do statement while ( expression ) ;
CPParseTree* parseDoWhile(CPParseContext& ctx, unsigned flags) {
    CPDoWhileStatement* node = make<CPDoWhileStatement>();
    if (!node) return nullptr;
    ctx.mark();
    ctx.take(node);
    bool ok = ctx.require(node, parseStatement(ctx, flags)) && ctx.expect(node, CPT_kw_while) &&
              ctx.expect(node, CPT_LEFT_PAREN) && ctx.require(node, parseExpression(ctx, 0)) &&
              ctx.expect(node, CPT_RIGHT_PAREN) && ctx.expect(node, CPT_SEMICOLON);
    return ok ? ctx.commit(node) : ctx.bail(node);
}

// for-init-statement:
//     simple-declaration | expression-statement
CPParseTree* parseForInit(CPParseContext& ctx) {
    CPForInitStatement* node = make<CPForInitStatement>();
    if (!node) return nullptr;
    CPParseTree* init = parseSimpleDeclaration(ctx, CPPARSE_IN_STATEMENT);
    if (!init) init = parseExpressionStatement(ctx, 0);
    if (init && init->getType() == CPN_SimpleDeclaration) {
        const CPParseNode* list = init->getChild(1);
        for (unsigned i = 0; list && i < list->getChildCount(); ++i)
            if (list->getChild(i) && list->getChild(i)->isTree())
                cpNoteDeclared(ctx, static_cast<const CPParseTree*>(list->getChild(i)), CPNAME_VALUE);
    }
    ctx.require(node, init);
    return node;
}

// for ( for-init-statement condition? ; expression? ) statement
CPParseTree* parseFor(CPParseContext& ctx, unsigned flags) {
    CPForStatement* node = make<CPForStatement>();
    if (!node) return nullptr;
    ctx.mark();
    ctx.take(node);
    if (!ctx.expect(node, CPT_LEFT_PAREN)) return ctx.bail(node);
    node->addChild(parseForInit(ctx));
    node->addChild(parseCondition(ctx, CPPARSE_OPTIONAL));
    if (!ctx.expect(node, CPT_SEMICOLON)) return ctx.bail(node);
    node->addChild(ctx.at(CPT_RIGHT_PAREN) ? nullptr : parseExpression(ctx, CPPARSE_OPTIONAL));
    if (!ctx.expect(node, CPT_RIGHT_PAREN) || !ctx.require(node, parseStatement(ctx, flags)))
        return ctx.bail(node);
    return ctx.commit(node);
}

// case constant-expression ( ... constant-expression )? : statement-seq? | default : statement-seq?
CPParseTree* parseCaseStatement(CPParseContext& ctx, unsigned flags) {
    if (!ctx.at(CPT_kw_case) && !ctx.at(CPT_kw_default)) return nullptr;
    CPSwitchCaseStatement* node = make<CPSwitchCaseStatement>();
    if (!node) return nullptr;
    ctx.mark();
    bool isCase = ctx.at(CPT_kw_case);
    ctx.take(node);
    if (isCase) {
        if (!ctx.require(node, parseConditionalExpression(ctx, 0))) return ctx.bail(node);
        if (ctx.accept(node, CPT_ELLIPSE)) {
            if (!ctx.require(node, parseConditionalExpression(ctx, 0))) return ctx.bail(node);
        } else {
            node->addChild(nullptr);
            node->addChild(nullptr);
        }
    } else {
        for (int i = 0; i < 3; ++i) node->addChild(nullptr);
    }
    if (!ctx.expect(node, CPT_COLON)) return ctx.bail(node);
    node->addChild(parseStatementSequence(ctx, flags | CPPARSE_OPTIONAL));
    return ctx.commit(node);
}

// The labels of a switch body; a second default is an error at both.
CPParseTree* parseSwitchCases(CPParseContext& ctx, unsigned flags) {
    CPSwitchCaseStatementSequence* node = make<CPSwitchCaseStatementSequence>();
    if (!node) return nullptr;
    ctx.mark();
    node->addChild(parseStatementSequence(ctx, CPPARSE_OPTIONAL | (flags & CPPARSE_SINGLE_STATEMENT)));
    CPParseTree* firstDefault = nullptr;
    int cases = 0;
    while (!ctx.at(CPT_RIGHT_BRACE)) {
        CPParseTree* label = parseCaseStatement(ctx, flags | CPPARSE_OPTIONAL);
        if (!label) break;
        node->addChild(label);
        ++cases;
        if (!label->getChild(1)) {
            if (!firstDefault) {
                firstDefault = label;
            } else {
                label->logErrorAtNode(label, qbmsg::SecondDefaultLabel, QBString("default"));
                firstDefault->logErrorAtNode(firstDefault, qbmsg::EarlierDeclaration, QBString("default"));
            }
        }
        if ((flags & CPPARSE_SINGLE_STATEMENT) && label->getChild(label->getChildCount() - 1)) break;
    }
    if (cases == 0) node->logWarningAtSource(ctx.source, qbmsg::SwitchWithoutLabels);
    return ctx.commit(node);
}

// switch ( condition ) ( { case-sequence } | case-sequence )
CPParseTree* parseSwitch(CPParseContext& ctx, unsigned) {
    CPSwitchStatement* node = make<CPSwitchStatement>();
    if (!node) return nullptr;
    ctx.mark();
    ctx.take(node);
    if (!ctx.expect(node, CPT_LEFT_PAREN) || !ctx.require(node, parseCondition(ctx, 0)) ||
        !ctx.expect(node, CPT_RIGHT_PAREN))
        return ctx.bail(node);
    if (ctx.accept(node, CPT_LEFT_BRACE)) {
        node->addChild(parseSwitchCases(ctx, CPPARSE_OPTIONAL));
        if (!ctx.expect(node, CPT_RIGHT_BRACE)) return ctx.bail(node);
        return ctx.commit(node);
    }
    node->addChild(nullptr);
    if (!ctx.require(node, parseSwitchCases(ctx, CPPARSE_SINGLE_STATEMENT))) return ctx.bail(node);
    node->addChild(nullptr);
    return ctx.commit(node);
}

// return expression? ;
CPParseTree* parseReturn(CPParseContext& ctx, unsigned) {
    CPReturnStatement* node = make<CPReturnStatement>();
    if (!node) return nullptr;
    ctx.mark();
    ctx.take(node);
    node->addChild(ctx.at(CPT_SEMICOLON) ? nullptr : parseExpression(ctx, CPPARSE_OPTIONAL));
    if (!ctx.expect(node, CPT_SEMICOLON)) return ctx.bail(node);
    return ctx.commit(node);
}

// goto identifier ;
CPParseTree* parseGoto(CPParseContext& ctx, unsigned) {
    CPGotoStatement* node = make<CPGotoStatement>();
    if (!node) return nullptr;
    ctx.mark();
    ctx.take(node);
    if (!ctx.require(node, parseIdentifier(ctx, CPPARSE_KEYWORD_NAMES | CPPARSE_ALL_KEYWORD_NAMES)))
        return ctx.bail(node);
    if (!ctx.expect(node, CPT_SEMICOLON)) return ctx.bail(node);
    return ctx.commit(node);
}

// ( __if_exists | __if_not_exists ) ( unary-expression ) { statement-seq? }
CPParseTree* parseIfExists(CPParseContext& ctx, unsigned) {
    CPIfExistsStatement* node = make<CPIfExistsStatement>();
    if (!node) return nullptr;
    ctx.mark();
    if (!readIfExistsHead(ctx, node)) return ctx.bail(node);
    node->addChild(parseStatementSequence(ctx, CPPARSE_OPTIONAL));
    if (!ctx.expect(node, CPT_RIGHT_BRACE)) return ctx.bail(node);
    return ctx.commit(node);
}

// ;
CPParseTree* parseEmpty(CPParseContext& ctx, unsigned) {
    CPEmptyStatement* node = make<CPEmptyStatement>();
    if (node) ctx.take(node);
    return node;
}

StatementRoutine routineFor(CPParseNodeType t) {
    switch (t) {
    case CPT_kw_break: return keywordStatement<CPBreakStatement>;
    case CPT_kw_continue: return keywordStatement<CPContinueStatement>;
    case CPT_kw___leave: return keywordStatement<CPLeaveStatement>;
    case CPT_kw_do: return parseDoWhile;
    case CPT_kw_for: return parseFor;
    case CPT_kw_goto: return parseGoto;
    case CPT_kw_if: return parseIf;
    case CPT_kw_return: return parseReturn;
    case CPT_kw_switch: return parseSwitch;
    case CPT_kw_try: return parseTry;
    case CPT_kw_while: return parseWhile;
    case CPT_kw___try: return parseStructuredTry;
    case CPT_kw___if_exists: case CPT_kw___if_not_exists: return parseIfExists;
    case CPT_LEFT_BRACE: return parseBlockStatement;
    case CPT_SEMICOLON: return parseEmpty;
    default: return nullptr;
    }
}

// identifier : statement
CPParseTree* parseLabeled(CPParseContext& ctx, unsigned flags) {
    CPLabeledStatement* node = make<CPLabeledStatement>();
    if (!node) return nullptr;
    ctx.mark();
    CPParseTree* label = parseIdentifier(ctx, CPPARSE_KEYWORD_NAMES | CPPARSE_ALL_KEYWORD_NAMES);
    if (!label || !ctx.at(CPT_COLON)) {
        cpFree(label);
        return ctx.rollback(node);
    }
    node->addChild(label);
    ctx.take(node);
    QBString name;
    cpSpelledName(label, name);
    cpNoteName(ctx.names, name, CPNAME_LABEL);
    if (!ctx.require(node, parseStatement(ctx, flags))) return ctx.bail(node);
    return ctx.commit(node);
}

// declaration-statement:
//     block-declaration
CPParseTree* parseDeclarationStatement(CPParseContext& ctx, unsigned flags) {
    CPParseTree* declaration = parseBlockDeclaration(ctx, flags | CPPARSE_IN_STATEMENT);
    if (!declaration) return nullptr;
    CPDeclarationStatement* node = make<CPDeclarationStatement>();
    if (!node) {
        cpFree(declaration);
        return nullptr;
    }
    node->addChild(declaration);
    return node;
}

}  // namespace

// statement:
//     labeled | keyword statements | compound | declaration-statement | expression-statement
CPParseTree* parseStatement(CPParseContext& ctx, unsigned flags) {
    CPDepthGuard guard(ctx);
    if (guard.refused()) return nullptr;
    CPParseNodeType t = ctx.type();
    if (t == CPT_RIGHT_BRACE) return nullptr;
    if (StatementRoutine routine = routineFor(t)) return routine(ctx, flags);
    if (cpIsLabelName(t) && ctx.peek(1) == CPT_COLON)
        if (CPParseTree* labeled = parseLabeled(ctx, flags)) return labeled;
    ctx.mark();
    CPParseTree* declaration = parseDeclarationStatement(ctx, flags | CPPARSE_REJECT_VALUE_NAMES);
    if (declaration && !declaration->hasError()) return ctx.commit(declaration);
    ctx.rollback(declaration);
    ctx.mark();
    if (CPParseTree* expression = parseExpressionStatement(ctx, flags)) return ctx.commit(expression);
    ctx.source.rollback();
    return parseDeclarationStatement(ctx, flags);
}

// expression-statement:
//     expression? ;
CPParseTree* parseExpressionStatement(CPParseContext& ctx, unsigned) {
    ctx.mark();
    CPParseTree* expression = parseExpression(ctx, CPPARSE_OPTIONAL);
    if (!expression && !ctx.at(CPT_SEMICOLON)) return ctx.rollback();
    CPExpressionStatement* node = make<CPExpressionStatement>();
    if (!node) return ctx.rollback(expression);
    node->addChild(expression);
    if (ctx.accept(node, CPT_SEMICOLON)) return ctx.commit(node);
    return ctx.failExpecting(node, CPT_SEMICOLON);
}

// compound-statement:
//     { statement-seq? }
CPParseTree* parseBlockStatement(CPParseContext& ctx, unsigned) {
    if (!ctx.at(CPT_LEFT_BRACE)) return nullptr;
    CPBlockStatement* node = make<CPBlockStatement>();
    if (!node) return nullptr;
    ctx.mark();
    ctx.take(node);
    node->addChild(parseStatementSequence(ctx, CPPARSE_OPTIONAL));
    if (!ctx.expect(node, CPT_RIGHT_BRACE)) return ctx.bail(node);
    return ctx.commit(node);
}

// statement-seq:
//     statement+
CPParseTree* parseStatementSequence(CPParseContext& ctx, unsigned flags) {
    CPStatementSequence* node = make<CPStatementSequence>();
    if (!node) return nullptr;
    for (;;) {
        CPParseNodeType t = ctx.type();
        if (t == CPT_RIGHT_BRACE || t == CPT_kw_case || t == CPT_kw_default || t == CPT_EOF) break;
        CPParseTree* statement = parseStatement(ctx, flags & ~unsigned(CPPARSE_OPTIONAL));
        if (!statement) break;
        node->addChild(statement);
        if (flags & CPPARSE_SINGLE_STATEMENT) break;
    }
    if (node->getChildCount() > 0) return node;
    cpFree(node);
    return nullptr;
}

// condition:
//     expression | type-specifier declarator = assignment-expression
CPParseTree* parseCondition(CPParseContext& ctx, unsigned flags) {
    CPCondition* node = make<CPCondition>();
    if (!node) return nullptr;
    ctx.mark();
    ctx.mark();
    CPParseTree* expression = parseExpression(ctx, CPPARSE_OPTIONAL);
    CPParseNodeType t = ctx.type();
    if (!expression || t == CPT_SEMICOLON || t == CPT_RIGHT_PAREN || t == CPT_COMMA || t == CPT_EOF) {
        ctx.source.commit();
        if (expression) {
            node->addChild(expression);
            return ctx.commit(node);
        }
        ctx.mark();  // stands in for the inner mark of the reading below
    }
    ctx.rollback(expression);
    ctx.mark();
    CPAssignmentCondition* assignment = make<CPAssignmentCondition>();
    CPParseTree* type = assignment ? parseTypeSpecifier(ctx, 0) : nullptr;
    CPParseTree* declarator = type ? parseDeclarator(ctx, CPPARSE_KEYWORD_NAMES) : nullptr;
    if (!declarator) {
        // The type's tokens go back, so that the recovery keeps them in the tree.
        cpFree(type);
        cpFree(assignment);
        ctx.rollback();
        if (flags & CPPARSE_OPTIONAL) return ctx.rollback(node);
        return ctx.failHere(node);
    }
    ctx.source.commit();
    assignment->addChild(type);
    assignment->addChild(declarator);
    node->addChild(assignment);
    if (!ctx.expect(assignment, CPT_EQUALS) || !ctx.require(assignment, parseAssignmentExpression(ctx, 0)))
        return ctx.bail(node);
    return ctx.commit(node);
}

}  // namespace cpgrammar
