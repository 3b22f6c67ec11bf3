// Exception handling: C++ try blocks with their handlers (also behind a function try block),
// and the Microsoft structured form with __except and __finally.
#include "CPClasses.h"
#include "CPExpressions.h"
#include "CPGrammar.h"
#include "CPStatements.h"

namespace cpgrammar {

namespace {

// exception-declaration:
//     ... | type-specifier ( declarator | abstract-declarator )?
CPParseTree* parseExceptionDeclaration(CPParseContext& ctx) {
    CPExceptionDeclaration* node = make<CPExceptionDeclaration>();
    if (!node) return nullptr;
    ctx.mark();
    if (ctx.accept(node, CPT_ELLIPSE)) return ctx.commit(node);
    if (!ctx.require(node, parseTypeSpecifier(ctx, 0))) return ctx.bail(node);
    ctx.mark();
    CPParseTree* abstract = parseAbstractDeclarator(ctx, CPPARSE_OPTIONAL);
    CPParseNodeType t = ctx.type();
    if (abstract && (t == CPT_EOF || t == CPT_RIGHT_PAREN || t == CPT_COMMA)) {
        node->addChild(ctx.commit(abstract));
        return ctx.commit(node);
    }
    ctx.rollback(abstract);
    node->addChild(parseDeclarator(ctx, CPPARSE_KEYWORD_NAMES));
    cpNoteDeclared(ctx, static_cast<const CPParseTree*>(node->getChild(1)), CPNAME_VALUE);
    return ctx.commit(node);
}

// A required compound statement, or SyntaxError; false after the message.
bool requireBlock(CPParseContext& ctx, CPParseTree* node) {
    return ctx.require(node, parseBlockStatement(ctx, 0));
}

}  // namespace

// handler:
//     catch ( exception-declaration ) compound-statement
CPParseTree* parseHandler(CPParseContext& ctx, unsigned) {
    if (!ctx.at(CPT_kw_catch)) return nullptr;
    CPHandler* node = make<CPHandler>();
    if (!node) return nullptr;
    ctx.mark();
    ctx.take(node);
    bool ok = ctx.expect(node, CPT_LEFT_PAREN) && ctx.require(node, parseExceptionDeclaration(ctx)) &&
              ctx.expect(node, CPT_RIGHT_PAREN) && requireBlock(ctx, node);
    return ok ? ctx.commit(node) : ctx.bail(node);
}

// handler-seq:
//     handler+
CPParseTree* parseHandlerSequence(CPParseContext& ctx, unsigned flags) {
    CPHandlerSequence* node = make<CPHandlerSequence>();
    if (!node) return nullptr;
    while (ctx.at(CPT_kw_catch)) {
        CPParseTree* handler = parseHandler(ctx, flags);
        if (!handler) break;
        node->addChild(handler);
    }
    if (node->getChildCount() > 0) return node;
    cpFree(node);
    return nullptr;
}

// try-block:
//     try compound-statement handler* ( __finally compound-statement )?
CPParseTree* parseTry(CPParseContext& ctx, unsigned) {
    CPTryBlock* node = make<CPTryBlock>();
    if (!node) return nullptr;
    ctx.mark();
    ctx.take(node);
    if (!requireBlock(ctx, node)) return ctx.bail(node);
    bool handled = false;
    while (ctx.at(CPT_kw_catch)) {
        CPParseTree* handler = parseHandler(ctx, 0);
        if (!handler) break;
        node->addChild(handler);
        handled = true;
    }
    if (ctx.accept(node, CPT_kw___finally)) {
        if (!requireBlock(ctx, node)) return ctx.bail(node);
        return ctx.commit(node);
    }
    node->addChild(nullptr);
    node->addChild(nullptr);
    if (handled) return ctx.commit(node);
    node->logErrorAtNode(node, qbmsg::TryWithoutHandler);
    return ctx.failHere(node);
}

// __try compound-statement ( __finally compound-statement
//     | __except ( expression ) compound-statement ( __finally compound-statement )? )
CPParseTree* parseStructuredTry(CPParseContext& ctx, unsigned) {
    CPStructuredTryBlock* node = make<CPStructuredTryBlock>();
    if (!node) return nullptr;
    ctx.mark();
    ctx.take(node);
    if (!requireBlock(ctx, node)) return ctx.bail(node);
    if (ctx.at(CPT_kw___finally)) {
        for (int i = 0; i < 5; ++i) node->addChild(nullptr);
    } else if (ctx.accept(node, CPT_kw___except)) {
        bool ok = ctx.expect(node, CPT_LEFT_PAREN) && ctx.require(node, parseExpression(ctx, 0)) &&
                  ctx.expect(node, CPT_RIGHT_PAREN) && requireBlock(ctx, node);
        if (!ok) return ctx.bail(node);
    } else {
        return ctx.failExpecting(node, CPT_kw___except);
    }
    if (ctx.accept(node, CPT_kw___finally) && !requireBlock(ctx, node)) return ctx.bail(node);
    return ctx.commit(node);
}

}  // namespace cpgrammar
