// Namespaces, extern "C" blocks, using, inline assembly, bracketed attributes and
// `__if_exists` at namespace level.
#include "CPClasses.h"
#include "CPExpressions.h"
#include "CPGrammar.h"

using quernbase::QBString;

namespace cpgrammar {

// namespace-definition:
//     namespace identifier? { declaration-seq? }
CPParseTree* parseNamespaceDefinition(CPParseContext& ctx, unsigned flags) {
    if (!ctx.at(CPT_kw_namespace)) return nullptr;
    CPNamespaceDefinition* node = make<CPNamespaceDefinition>();
    if (!node) return nullptr;
    ctx.mark();
    ctx.take(node);
    CPParseTree* name = parseIdentifier(ctx, CPPARSE_OPTIONAL);
    node->addChild(name);
    if (!ctx.expect(node, CPT_LEFT_BRACE)) return ctx.bail(node);
    node->addChild(parseDeclarationSequence(ctx, flags | CPPARSE_OPTIONAL));
    if (!ctx.expect(node, CPT_RIGHT_BRACE)) return ctx.bail(node);
    QBString text;
    cpSpelledName(name, text);
    cpNoteName(ctx.names, text, CPNAME_NAMESPACE);
    return ctx.commit(node);
}

// namespace-alias-definition:
//     namespace identifier = qualified-namespace-specifier ;
CPParseTree* parseNamespaceAlias(CPParseContext& ctx, unsigned) {
    CPNamespaceAliasDefinition* node = make<CPNamespaceAliasDefinition>();
    if (!node) return nullptr;
    ctx.mark();
    ctx.take(node);
    CPParseTree* name = parseIdentifier(ctx, 0);
    if (!name || !ctx.at(CPT_EQUALS)) {
        cpFree(name);
        return ctx.rollback(node);
    }
    node->addChild(name);
    ctx.take(node);
    CPQualifiedNamespaceSpecifier* target = make<CPQualifiedNamespaceSpecifier>();
    if (!target) return ctx.rollback(node);
    ctx.mark();
    if (!ctx.accept(target, CPT_COLON_COLON)) target->addChild(nullptr);
    target->addChild(parseNestedNameSpecifier(ctx, 0));
    CPParseTree* last = parseIdentifier(ctx, 0);
    if (!last) {
        ctx.rollback(target);
        return ctx.failHere(node);
    }
    target->addChild(last);
    node->addChild(ctx.commit(target));
    if (!ctx.expect(node, CPT_SEMICOLON)) return ctx.bail(node);
    QBString text;
    cpSpelledName(name, text);
    cpNoteName(ctx.names, text, CPNAME_NAMESPACE);
    return ctx.commit(node);
}

// linkage-block:
//     extern string-literal { declaration-seq? }
//     extern string-literal declaration
CPParseTree* parseLinkageSpecification(CPParseContext& ctx, unsigned flags) {
    if (!ctx.at(CPT_kw_extern)) return nullptr;
    CPLinkageSpecification* node = make<CPLinkageSpecification>();
    if (!node) return nullptr;
    ctx.mark();
    ctx.take(node);
    CPParseTree* literal = parsePrimary(ctx, 0);
    if (literal && literal->getType() != CPN_Literal) {
        cpFree(literal);
        return ctx.rollback(node);
    }
    if (!ctx.require(node, literal)) return ctx.bail(node);
    if (ctx.accept(node, CPT_LEFT_BRACE)) {
        node->addChild(parseDeclarationSequence(ctx, flags | CPPARSE_OPTIONAL));
        if (!ctx.expect(node, CPT_RIGHT_BRACE)) return ctx.bail(node);
        return ctx.commit(node);
    }
    node->addChild(nullptr);
    CPParseTree* declaration = parseDeclaration(ctx, flags);
    if (!declaration) return ctx.failHere(node);
    node->addChild(declaration);
    node->addChild(nullptr);
    return ctx.commit(node);
}

// using-declaration:
//     using typename? ::? nested-name-specifier? unqualified-id ;
CPParseTree* parseUsingDeclaration(CPParseContext& ctx, unsigned) {
    CPUsingDeclaration* node = make<CPUsingDeclaration>();
    if (!node) return nullptr;
    ctx.mark();
    ctx.take(node);
    bool typenameSeen = ctx.accept(node, CPT_kw_typename);
    if (!typenameSeen) node->addChild(nullptr);
    bool global = ctx.accept(node, CPT_COLON_COLON);
    if (!global) node->addChild(nullptr);
    CPParseTree* nested = parseNestedNameSpecifier(ctx, 0);
    if (!nested && (!global || typenameSeen)) return ctx.failHere(node);
    node->addChild(nested);
    CPParseTree* id = parseUnqualifiedId(ctx, 0);
    if (!id) return ctx.failHere(node);
    node->addChild(id);
    if (!ctx.expect(node, CPT_SEMICOLON)) return ctx.bail(node);
    return ctx.commit(node);
}

// using-directive:
//     using namespace ::? nested-name-specifier? identifier ;
CPParseTree* parseUsingDirective(CPParseContext& ctx, unsigned) {
    CPUsingDirective* node = make<CPUsingDirective>();
    if (!node) return nullptr;
    ctx.mark();
    ctx.take(node);
    if (!ctx.expect(node, CPT_kw_namespace)) return ctx.bail(node);
    if (!ctx.accept(node, CPT_COLON_COLON)) node->addChild(nullptr);
    node->addChild(parseNestedNameSpecifier(ctx, 0));
    CPParseTree* name = parseIdentifier(ctx, 0);
    if (!name) return ctx.failHere(node);
    node->addChild(name);
    if (!ctx.expect(node, CPT_SEMICOLON)) return ctx.bail(node);
    return ctx.commit(node);
}

namespace {

CPParseNodeType closerOf(CPParseNodeType opener) {
    return opener == CPT_LEFT_PAREN ? CPT_RIGHT_PAREN : CPT_RIGHT_BRACE;
}

// The instructions of an assembly block: all of them inside braces, else one.
void readInstructions(CPParseContext& ctx, CPParseTree* node, bool braces) {
    do {
        CPParseTree* instruction = parseAsmInstruction(ctx, 0);
        if (!instruction) return;
        node->addChild(instruction);
    } while (braces);
}

}  // namespace

// asm-definition:
//     ( asm | __asm ) volatile? ( ( | { )? asm-instruction* ( ) | } )? ;?
CPParseTree* parseAsmDefinition(CPParseContext& ctx, unsigned flags) {
    if (!ctx.at(CPT_kw_asm) && !ctx.at(CPT_kw___asm)) return nullptr;
    CPASMDefinition* node = make<CPASMDefinition>();
    if (!node) return nullptr;
    ctx.mark();
    ctx.take(node);
    if (!ctx.accept(node, CPT_kw_volatile)) node->addChild(nullptr);
    CPParseNodeType opener = ctx.type();
    bool closed = opener == CPT_LEFT_PAREN || opener == CPT_LEFT_BRACE;
    if (closed) ctx.take(node);
    else node->addChild(nullptr);
    if (!ctx.at(CPT_SEMICOLON)) readInstructions(ctx, node, opener == CPT_LEFT_BRACE);
    if (closed) {
        if (!ctx.accept(node, closerOf(opener))) return ctx.failHere(node);
    } else {
        node->addChild(nullptr);
    }
    if ((flags & CPPARSE_ASM_LABEL) || !ctx.accept(node, CPT_SEMICOLON)) node->addChild(nullptr);
    return ctx.commit(node);
}

// asm-instruction:
//     any tokens up to ; } asm __asm or an unmatched ), a ; included
CPParseTree* parseAsmInstruction(CPParseContext& ctx, unsigned) {
    CPASMInstruction* node = make<CPASMInstruction>();
    if (!node) return nullptr;
    int depth = 0;
    for (;;) {
        CPParseNodeType t = ctx.type();
        if (t == CPT_RIGHT_BRACE || t == CPT_EOF || t == CPT_EOS || t == CPT_kw_asm ||
            t == CPT_kw___asm || (t == CPT_RIGHT_PAREN && depth == 0))
            break;
        if (t == CPT_LEFT_PAREN) ++depth;
        if (t == CPT_RIGHT_PAREN) --depth;
        ctx.take(node);
        if (t == CPT_SEMICOLON) break;
    }
    if (node->getChildCount() > 0) return node;
    cpFree(node);
    return nullptr;
}

namespace {

bool isAttributeToken(CPParseNodeType t) {
    switch (t) {
    case CPT_IDENTIFIER: case CPT_kw_case: case CPT_kw_default: case CPT_kw_export:
    case CPT_kw_false: case CPT_kw_public: case CPT_kw_true: case CPT_INTEGER: case CPT_LONG:
    case CPT_CHARACTER: case CPT_STRING: case CPT_WIDE_CHARACTER: case CPT_WIDE_STRING:
    case CPT_FLOAT: case CPT_DOUBLE: case CPT_LONG_DOUBLE: case CPT_LEFT_PAREN:
    case CPT_RIGHT_PAREN: case CPT_kw_include: case CPT_kw_pragma: case CPT_COMMA: case CPT_PLUS:
    case CPT_MINUS: case CPT_STAR: case CPT_SLASH: case CPT_PERCENT: case CPT_CAROT: case CPT_AND:
    case CPT_OR: case CPT_TILDE: case CPT_NOT: case CPT_LT_LT: case CPT_GT_GT: case CPT_EQUALS:
        return true;
    default:
        return false;
    }
}

}  // namespace

// attribute:
//     [ attribute-token* ] ;?
CPParseTree* parseComAttribute(CPParseContext& ctx, unsigned) {
    if (!ctx.at(CPT_LEFT_BRACKET)) return nullptr;
    CPCppCOMAttribute* node = make<CPCppCOMAttribute>();
    if (!node) return nullptr;
    ctx.mark();
    ctx.take(node);
    while (isAttributeToken(ctx.type())) ctx.take(node);
    if (!ctx.expect(node, CPT_RIGHT_BRACKET)) return ctx.bail(node);
    ctx.accept(node, CPT_SEMICOLON);
    return ctx.commit(node);
}

// Reads `( unary-expression ) {` of the three __if_exists forms into node; false after a
// logged message.
bool readIfExistsHead(CPParseContext& ctx, CPParseTree* node) {
    ctx.take(node);
    if (!ctx.expect(node, CPT_LEFT_PAREN)) return false;
    if (!ctx.require(node, parseUnary(ctx, 0))) return false;
    return ctx.expect(node, CPT_RIGHT_PAREN) && ctx.expect(node, CPT_LEFT_BRACE);
}

// __if_exists-declaration:
//     ( __if_exists | __if_not_exists ) ( unary-expression ) { declaration-seq? }
CPParseTree* parseIfExistsDeclaration(CPParseContext& ctx, unsigned flags) {
    CPIfExistsDeclaration* node = make<CPIfExistsDeclaration>();
    if (!node) return nullptr;
    ctx.mark();
    if (!readIfExistsHead(ctx, node)) return ctx.bail(node);
    node->addChild(parseDeclarationSequence(ctx, flags | CPPARSE_OPTIONAL));
    if (!ctx.expect(node, CPT_RIGHT_BRACE)) return ctx.bail(node);
    return ctx.commit(node);
}

}  // namespace cpgrammar
