// Templates: declarations, parameters, explicit instantiation and specialization, and the
// template-id, which settles `<` as an argument list or as less-than.
//
// The settling works by scanning: from the `<`, tokens are copied while parentheses and angle
// brackets are counted (angles only outside parentheses) until the `>` that balances. A `;`, the
// end, or an `&&`, `||` or `?` outside parentheses means less-than. The copied tokens are then
// parsed as arguments from an array source; all of them must be used. `>>` is one token and
// closes nothing, so `a<b<c>>` is no template id: the language level read here wants `> >`.
#include "CPClasses.h"
#include "CPExpressions.h"
#include "CPGrammar.h"

using quernbase::QBArray;
using quernbase::QBString;

namespace cpgrammar {

int scanAngleList(CPParseContext& ctx, QBArray<CPToken*>& out, bool stopAtLogical) {
    int angles = 1, parens = 0;
    for (;;) {
        CPParseNodeType t = ctx.type();
        if (t == CPT_SEMICOLON || t == CPT_EOF || t == CPT_EOS) return 0;
        bool logical = t == CPT_kw_and || t == CPT_kw_or || t == CPT_AND_AND || t == CPT_OR_OR ||
                       t == CPT_QUESTION;
        if (stopAtLogical && parens == 0 && logical) return -1;
        if (t == CPT_LEFT_PAREN) ++parens;
        if (t == CPT_RIGHT_PAREN && --parens < 0) return 0;
        if (parens == 0 && t == CPT_LT) ++angles;
        if (parens == 0 && t == CPT_GT && --angles == 0) return 1;
        out.add(ctx.source.currentToken());
        ctx.source.nextToken();
    }
}

namespace {

// Parses the copied tokens with routine into node, which then also keeps any tokens left over
// so that none is lost. True when the list was used up.
bool parseCopied(CPParseContext& ctx, const QBArray<CPToken*>& tokens, CPParseTree* node,
                 bool arguments) {
    TBPArrayTokenSource<CPParseNodeType>* array = new (std::nothrow) TBPArrayTokenSource<CPParseNodeType>(tokens);
    if (!array) return false;
    array->addRef();
    CPParseContext sub(*array, ctx);
    if (arguments) {
        while (!sub.at(CPT_EOF)) {
            CPParseTree* argument = parseTemplateArgument(sub, 0);
            if (!argument) break;
            node->addChild(argument);
            if (!sub.accept(node, CPT_COMMA)) break;
        }
    } else if (!sub.require(node, parseTemplateParameterList(sub, 0))) {
        // logged on node
    }
    bool usedUp = sub.at(CPT_EOF);
    if (!arguments && !usedUp) node->logErrorAtSource(sub.source, qbmsg::SyntaxError, sub.currentText());
    while (!arguments && !sub.at(CPT_EOF)) sub.take(node);
    array->release();
    return usedUp;
}

}  // namespace

// template-id:
//     ( identifier | operator-function-id ) < ( template-argument , )* template-argument? >
CPParseTree* parseTemplateId(CPParseContext& ctx, unsigned) {
    CPParseNodeType t = ctx.type();
    if (t != CPT_kw_operator && (!cpIsLabelName(t) || ctx.peek(1) != CPT_LT)) return nullptr;
    CPDepthGuard guard(ctx);
    if (guard.refused()) return nullptr;
    CPTemplateID* node = make<CPTemplateID>();
    if (!node) return nullptr;
    ctx.mark();
    CPParseTree* name = t == CPT_kw_operator ? parseOperatorFunctionId(ctx, 0)
                                             : parseIdentifier(ctx, CPPARSE_KEYWORD_NAMES);
    if (!name || !ctx.at(CPT_LT)) {
        cpFree(name);
        return ctx.rollback(node);
    }
    node->addChild(name);
    ctx.take(node);
    QBArray<CPToken*> tokens;
    if (scanAngleList(ctx, tokens, true) != 1 || !parseCopied(ctx, tokens, node, true))
        return ctx.rollback(node);
    ctx.take(node);
    return ctx.commit(node);
}

// template-argument:
//     assignment-expression | type-id
CPParseTree* parseTemplateArgument(CPParseContext& ctx, unsigned) {
    CPTemplateArgument* node = make<CPTemplateArgument>();
    if (!node) return nullptr;
    ctx.mark();
    ctx.mark();
    CPParseTree* value = parseAssignmentExpression(ctx, 0);
    CPParseNodeType next = ctx.type();
    bool stands = value && !value->hasError() &&
                  (next == CPT_EOF || next == CPT_EOS || next == CPT_COMMA || next == CPT_GT);
    if (stands) {
        ctx.source.commit();
    } else {
        ctx.rollback(value);
        value = parseTypeId(ctx, 0);
        if (!value) return ctx.rollback(node);
    }
    node->addChild(value);
    return ctx.commit(node);
}

// template-declaration:
//     export? template < template-parameter-list > ( declaration | member-declaration )
CPParseTree* parseTemplateDeclaration(CPParseContext& ctx, unsigned flags) {
    CPTemplateDeclaration* node = make<CPTemplateDeclaration>();
    if (!node) return nullptr;
    ctx.mark();
    bool exported = ctx.accept(node, CPT_kw_export);
    if (!exported) node->addChild(nullptr);
    if (!ctx.accept(node, CPT_kw_template)) {
        if (exported) return ctx.failExpecting(node, CPT_kw_template);
        return ctx.rollback(node);
    }
    if (!ctx.expect(node, CPT_LT)) return ctx.bail(node);
    QBArray<CPToken*> tokens;
    bool closed = scanAngleList(ctx, tokens, false) == 1;
    parseCopied(ctx, tokens, node, false);
    if (!closed) return ctx.failHere(node);
    if (!ctx.expect(node, CPT_GT)) return ctx.bail(node);
    CPParseTree* inner = (flags & CPPARSE_IN_CLASS) ? parseMember(ctx, CPPARSE_CONVERSION_OK)
                                                    : parseDeclaration(ctx, CPPARSE_CONVERSION_OK);
    if (!inner) return ctx.failHere(node);
    node->addChild(inner);
    return ctx.commit(node);
}

namespace {

// The places of `=` and the default, so that both kinds of parameter keep fixed positions.
void addDefaultSlots(CPParseTree* node) {
    node->addChild(nullptr);
    node->addChild(nullptr);
}

// class-or-typename identifier? ( = type-id )?
CPParseTree* typeParameter(CPParseContext& ctx, CPParseTree* node) {
    for (int i = 0; i < 4; ++i) node->addChild(nullptr);
    ctx.take(node);
    CPParseTree* name = parseIdentifier(ctx, CPPARSE_OPTIONAL);
    node->addChild(name);
    CPParseNodeType next = ctx.type();
    if (next != CPT_COMMA && next != CPT_EQUALS && next != CPT_EOF && next != CPT_GT) return ctx.rollback(node);
    if (ctx.accept(node, CPT_EQUALS)) {
        if (!ctx.require(node, parseTypeId(ctx, 0))) return ctx.bail(node);
    } else {
        addDefaultSlots(node);
    }
    return ctx.commit(node);
}

// template < template-parameter-list > class identifier? ( = id-expression )?
CPParseTree* templateTemplateParameter(CPParseContext& ctx, CPParseTree* node) {
    ctx.take(node);
    if (!ctx.expect(node, CPT_LT)) return ctx.bail(node);
    QBArray<CPToken*> tokens;
    bool closed = scanAngleList(ctx, tokens, false) == 1;
    parseCopied(ctx, tokens, node, false);
    if (!closed || !ctx.accept(node, CPT_GT)) return ctx.failExpecting(node, CPT_GT);
    if (!ctx.accept(node, CPT_kw_class)) return ctx.failHere(node);
    CPParseTree* name = parseIdentifier(ctx, CPPARSE_OPTIONAL);
    node->addChild(name);
    if (ctx.accept(node, CPT_EQUALS)) {
        if (!ctx.require(node, parseIdExpression(ctx, 0))) return ctx.bail(node);
    } else {
        addDefaultSlots(node);
    }
    QBString text;
    cpSpelledName(name, text);
    cpNoteName(ctx.names, text, CPNAME_TEMPLATE_TEMPLATE);
    return ctx.commit(node);
}

// type-parameter:
//     ( class | typename ) identifier? ( = type-id )?
//     template < template-parameter-list > class identifier? ( = id-expression )?
CPParseTree* parseTypeParameter(CPParseContext& ctx) {
    CPParseNodeType t = ctx.type();
    if (t != CPT_kw_class && t != CPT_kw_typename && t != CPT_kw_template) return nullptr;
    CPTypeParameter* node = make<CPTypeParameter>();
    if (!node) return nullptr;
    ctx.mark();
    return t == CPT_kw_template ? templateTemplateParameter(ctx, node) : typeParameter(ctx, node);
}

// template-parameter:
//     type-parameter | parameter-declaration
CPParseTree* parseTemplateParameter(CPParseContext& ctx, unsigned flags) {
    CPParseTree* parameter = parseTypeParameter(ctx);
    if (!parameter) parameter = parseParameter(ctx, flags | CPPARSE_NAMED_PARAMETER_FIRST);
    if (!parameter) return nullptr;
    CPTemplateParameter* node = make<CPTemplateParameter>();
    if (!node) {
        cpFree(parameter);
        return nullptr;
    }
    node->addChild(parameter);
    return node;
}

// The declaration behind `template` or `template < >`.
CPParseTree* explicitInner(CPParseContext& ctx, unsigned flags, unsigned extra) {
    if (flags & CPPARSE_IN_CLASS) return parseMember(ctx, extra);
    return parseDeclaration(ctx, extra);
}

}  // namespace

// template-parameter-list:
//     template-parameter ( , template-parameter )*
CPParseTree* parseTemplateParameterList(CPParseContext& ctx, unsigned flags) {
    CPTemplateParameterList* node = make<CPTemplateParameterList>();
    if (!node) return nullptr;
    while (!ctx.at(CPT_EOF)) {
        CPParseTree* parameter = parseTemplateParameter(ctx, flags);
        if (!parameter) break;
        node->addChild(parameter);
        if (!ctx.accept(node, CPT_COMMA)) break;
    }
    if (node->getChildCount() > 0) return node;
    cpFree(node);
    return nullptr;
}

// explicit-instantiation:
//     ( extern | static | inline )? template declaration
CPParseTree* parseExplicitInstantiation(CPParseContext& ctx, unsigned flags) {
    CPExplicitInstantiation* node = make<CPExplicitInstantiation>();
    if (!node) return nullptr;
    ctx.mark();
    if (ctx.at(CPT_kw_extern) || ctx.at(CPT_kw_static) || ctx.at(CPT_kw_inline)) ctx.take(node);
    if (!ctx.accept(node, CPT_kw_template)) return ctx.rollback(node);
    CPParseTree* inner = explicitInner(
        ctx, flags, CPPARSE_TEMPLATE_NAME_OK | CPPARSE_CONVERSION_OK | CPPARSE_DESTRUCTOR_OK);
    if (!inner) return ctx.rollback(node);
    node->addChild(inner);
    return ctx.commit(node);
}

// explicit-specialization:
//     template < > declaration
CPParseTree* parseExplicitSpecialization(CPParseContext& ctx, unsigned flags) {
    if (!ctx.at(CPT_kw_template)) return nullptr;
    CPExplicitSpecialization* node = make<CPExplicitSpecialization>();
    if (!node) return nullptr;
    ctx.mark();
    ctx.take(node);
    if (!ctx.accept(node, CPT_LT)) return ctx.rollback(node);
    if (!ctx.expect(node, CPT_GT)) return ctx.bail(node);
    CPParseTree* inner = explicitInner(ctx, flags, CPPARSE_CONVERSION_OK | CPPARSE_DESTRUCTOR_OK);
    if (!inner) return ctx.failHere(node);
    node->addChild(inner);
    return ctx.commit(node);
}

}  // namespace cpgrammar
