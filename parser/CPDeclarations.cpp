// Declarations: the compilation unit, the choice among declaration forms, simple declarations
// with their specifier sequences, function definitions, namespaces, linkage, using, inline
// assembly and the Microsoft forms.
//
// The one trick: every declaration is first read as a block declaration, which is what almost
// all of a header is. A function definition fails there at its `{` and is then read again by
// the keyword-directed second attempt; when that fails as well, the first attempt runs again so
// that its messages are the ones kept.
#include "CPClasses.h"
#include "CPExpressions.h"
#include "CPGrammar.h"
#include "CPStatements.h"

using quernbase::QBString;

namespace cpgrammar {

namespace {

// True if the token n ahead is spelled text.
bool spelledAhead(CPParseContext& ctx, int n, const char* text) {
    ctx.mark();
    CPToken* token = ctx.source.currentToken();
    for (int i = 0; i < n && token; ++i) token = ctx.source.nextToken();
    bool same = token && token->getSpelling() == text;
    ctx.source.rollback();
    return same;
}

// The second attempt of parseDeclaration, chosen by the first token.
CPParseTree* declarationByKeyword(CPParseContext& ctx, CPParseNodeType first, unsigned flags) {
    CPParseNodeType second = ctx.peek(1);
    switch (first) {
    case CPT_kw_export: return parseTemplateDeclaration(ctx, flags);
    case CPT_kw_extern:
        if (second == CPT_STRING || second == CPT_WIDE_STRING) return parseLinkageSpecification(ctx, flags);
        if (second == CPT_kw_template) return parseExplicitInstantiation(ctx, flags);
        return parseFunctionDefinition(ctx, flags);
    case CPT_kw_inline:
    case CPT_kw_static:
        if (second == CPT_kw_template) return parseExplicitInstantiation(ctx, flags);
        return parseFunctionDefinition(ctx, flags);
    case CPT_kw_namespace: return parseNamespaceDefinition(ctx, flags);
    case CPT_kw_template:
        if (second != CPT_LT) return parseExplicitInstantiation(ctx, flags);
        if (ctx.peek(2) == CPT_GT) return parseExplicitSpecialization(ctx, flags);
        return parseTemplateDeclaration(ctx, flags);
    default: return parseFunctionDefinition(ctx, flags);
    }
}

bool isStorageKeyword(CPParseNodeType t) {
    return t == CPT_kw_auto || t == CPT_kw_extern || t == CPT_kw_mutable ||
           t == CPT_kw_register || t == CPT_kw_static;
}

}  // namespace

// translation-unit:
//     declaration* EOF
CPParseTree* parseCompilationUnit(CPParseContext& ctx) {
    CPCompilationUnit* unit = make<CPCompilationUnit>();
    if (!unit) return nullptr;
    ctx.mark();
    while (!ctx.at(CPT_EOF) && !ctx.at(CPT_EOS)) {
        CPParseTree* declaration = parseDeclaration(ctx, CPPARSE_OPTIONAL);
        if (!declaration) break;
        unit->addChild(declaration);
    }
    if (ctx.at(CPT_EOF) || ctx.at(CPT_EOS)) {
        if (CPToken* end = ctx.source.currentToken()) unit->addChild(end);
        return ctx.commit(unit);
    }
    unit->logErrorAtSource(ctx.source, qbmsg::SyntaxError, ctx.currentText());
    unit->logErrorAtSource(ctx.source, qbmsg::ExpectedToken, cpTokenKindName(CPT_EOF));
    // Nothing behind this point is parsed, but its tokens stay so that the text is whole.
    unit->recoverTo(ctx.source, CPT_EOF, true);
    ctx.source.commitWithError(unit);
    return unit;
}

// declaration:
//     block-declaration | function-definition | template-declaration
//     | explicit-instantiation | explicit-specialization | linkage-block
//     | namespace-definition | __if_exists-declaration
CPParseTree* parseDeclaration(CPParseContext& ctx, unsigned flags) {
    CPDepthGuard guard(ctx);
    if (guard.refused()) return nullptr;
    CPParseNodeType first = ctx.type();
    if (first == CPT_kw___if_exists || first == CPT_kw___if_not_exists)
        return parseIfExistsDeclaration(ctx, flags);
    ctx.mark();
    CPParseTree* block = parseBlockDeclaration(ctx, flags);
    if (block && !block->hasError()) return ctx.commit(block);
    bool hadError = block != nullptr;
    ctx.rollback(block);
    CPParseTree* result = declarationByKeyword(ctx, first, flags);
    if (result || !hadError) return result;
    return parseBlockDeclaration(ctx, flags);
}

// block-declaration:
//     asm-definition | namespace-alias-definition | using-declaration | using-directive
//     | [ attribute ] | ; | simple-declaration
CPParseTree* parseBlockDeclaration(CPParseContext& ctx, unsigned flags) {
    unsigned other = flags & ~unsigned(CPPARSE_REJECT_VALUE_NAMES);
    switch (ctx.type()) {
    case CPT_kw_asm:
    case CPT_kw___asm: return parseAsmDefinition(ctx, other);
    case CPT_kw_namespace: return parseNamespaceAlias(ctx, other);
    case CPT_kw_using:
        return ctx.peek(1) == CPT_kw_namespace ? parseUsingDirective(ctx, other)
                                               : parseUsingDeclaration(ctx, other);
    case CPT_LEFT_BRACKET:
        switch (ctx.peek(1)) {
        case CPT_IDENTIFIER: case CPT_kw_case: case CPT_kw_default: case CPT_kw_export:
        case CPT_kw_public: case CPT_kw_include: case CPT_kw_pragma:
            return parseComAttribute(ctx, other);
        default: return parseSimpleDeclaration(ctx, flags);
        }
    case CPT_SEMICOLON: {
        CPEmptyDeclaration* empty = make<CPEmptyDeclaration>();
        if (empty) ctx.take(empty);
        return empty;
    }
    default: return parseSimpleDeclaration(ctx, flags);
    }
}

namespace {

// With no specifiers, only a conversion function or destructor may start a declaration.
bool startsSpecialMember(CPParseContext& ctx, unsigned flags) {
    if (!(flags & (CPPARSE_CONVERSION_OK | CPPARSE_DESTRUCTOR_OK))) return false;
    ctx.mark();
    CPParseTree* id = parseIdExpression(ctx, 0);
    bool ok = id && ctx.at(CPT_LEFT_PAREN) &&
              (((flags & CPPARSE_CONVERSION_OK) && id->getType() == CPN_ConversionFunctionID) ||
               ((flags & CPPARSE_DESTRUCTOR_OK) && id->getType() == CPN_DestructorID));
    ctx.rollback(id);
    return ok;
}

// static, extern or a cv-qualifier: what makes `static x;` a declaration without a type.
bool holdsQualifier(const CPParseTree* specifiers) {
    return holdsKeyword(specifiers, CPT_kw_static) || holdsKeyword(specifiers, CPT_kw_extern) ||
           holdsKeyword(specifiers, CPT_kw_const) || holdsKeyword(specifiers, CPT_kw_volatile);
}

// The second reading of a simple declaration, where the supposed type was the declarator's
// name: `A(int);` or `x(1);`. Called inside the outer mark; null with it rolled back.
bool rereadWithoutType(CPParseContext& ctx, unsigned flags, CPParseTree*& specifiers,
                       CPParseTree*& declarators) {
    bool qualified = holdsQualifier(specifiers);
    cpFree(specifiers);
    specifiers = nullptr;
    ctx.source.rollback();  // the inner mark
    if (!qualified && (flags & CPPARSE_IN_STATEMENT)) return false;
    ctx.mark();
    specifiers = parseDeclSpecifiers(ctx, flags | CPPARSE_NO_TYPE_SPECIFIER);
    declarators = parseInitDeclaratorList(ctx, flags);
    if (declarators) return true;
    cpFree(specifiers);
    specifiers = nullptr;
    ctx.source.rollback();
    return false;
}

}  // namespace

// simple-declaration:
//     decl-specifier-seq? init-declarator-list? ;
CPParseTree* parseSimpleDeclaration(CPParseContext& ctx, unsigned flags) {
    ctx.mark();
    ctx.mark();
    CPParseTree* specifiers = parseDeclSpecifiers(ctx, flags);
    if (!specifiers && !startsSpecialMember(ctx, flags)) {
        ctx.source.rollback();
        return ctx.rollback();
    }
    bool needsDeclarator = !declaresTypeOnly(specifiers);
    CPParseTree* declarators = parseInitDeclaratorList(ctx, flags);
    if (!declarators && needsDeclarator && !rereadWithoutType(ctx, flags, specifiers, declarators))
        return ctx.rollback();
    ctx.source.commit();
    if (!specifiers) specifiers = make<CPDeclSpecifierSequence>();
    noteDeclarators(ctx, specifiers, declarators);
    CPSimpleDeclaration* node = make<CPSimpleDeclaration>();
    if (!node) {
        cpFree(specifiers);
        cpFree(declarators);
        return ctx.rollback();
    }
    node->addChild(specifiers);
    node->addChild(declarators);
    if (ctx.accept(node, CPT_SEMICOLON)) return ctx.commit(node);
    return ctx.failHere(node);
}

// decl-specifier-seq:
//     ( storage-class | function-specifier | friend | typedef | type-specifier | cv-qualifier )+
CPParseTree* parseDeclSpecifiers(CPParseContext& ctx, unsigned flags) {
    CPDeclSpecifierSequence* node = make<CPDeclSpecifierSequence>();
    if (!node) return nullptr;
    ctx.mark();
    bool storage = false, typeRead = false, typedefSeen = false, lastPass = false;
    for (;;) {
        CPParseNodeType t = ctx.type();
        if (!lastPass && !typedefSeen) {
            if (isStorageKeyword(t)) {
                if (!storage) {
                    storage = true;
                    ctx.take(node);
                    continue;
                }
                lastPass = true;
            } else if (t == CPT_kw_explicit || t == CPT_kw_inline || t == CPT_kw_virtual ||
                       (t == CPT_kw_friend && !(flags & CPPARSE_KEYWORD_NAMES))) {
                ctx.take(node);
                continue;
            } else if (t == CPT_kw_typedef && !storage) {
                typedefSeen = true;
                ctx.take(node);
                continue;
            }
        }
        CPParseTree* part = nullptr;
        if (!typeRead && !(flags & CPPARSE_NO_TYPE_SPECIFIER)) {
            part = parseTypeSpecifier(ctx, flags | CPPARSE_DECL_SPECIFIERS);
            typeRead = part != nullptr;
        }
        if (!part) part = parseCVQualifiers(ctx, flags);
        if (!part) break;
        node->addChild(part);
        if (lastPass) break;
    }
    if (node->getChildCount() == 0) return ctx.rollback(node);
    return ctx.commit(node);
}

// cv-qualifier-seq:
//     ( const | volatile | restrict )+
CPParseTree* parseCVQualifiers(CPParseContext& ctx, unsigned) {
    CPCVQualifierSequence* node = nullptr;
    while (ctx.at(CPT_kw_const) || ctx.at(CPT_kw_volatile) || ctx.at(CPT_kw_restrict)) {
        if (!node && !(node = make<CPCVQualifierSequence>())) return nullptr;
        CPCVQualifier* qualifier = make<CPCVQualifier>();
        if (!qualifier) break;
        ctx.take(qualifier);
        node->addChild(qualifier);
    }
    return node;
}

// declaration-seq:
//     declaration+
CPParseTree* parseDeclarationSequence(CPParseContext& ctx, unsigned flags) {
    CPDeclarationSequence* node = make<CPDeclarationSequence>();
    if (!node) return nullptr;
    while (!ctx.at(CPT_RIGHT_BRACE) && !ctx.at(CPT_EOF)) {
        CPParseTree* declaration = parseDeclaration(ctx, flags & ~unsigned(CPPARSE_IN_CLASS));
        if (!declaration) break;
        node->addChild(declaration);
    }
    if (node->getChildCount() > 0) return node;
    cpFree(node);
    return nullptr;
}

namespace {

// The specifiers and declarator of a function definition, in the three readings: with a type,
// without one (`A::A()`), and with no specifiers at all. False with nothing read.
bool readFunctionHead(CPParseContext& ctx, CPParseTree*& specifiers, CPParseTree*& declarator) {
    static const unsigned kReadings[] = {CPPARSE_OPTIONAL, CPPARSE_OPTIONAL | CPPARSE_NO_TYPE_SPECIFIER};
    for (unsigned flags : kReadings) {
        ctx.mark();
        specifiers = parseDeclSpecifiers(ctx, flags);
        declarator = parseDeclarator(ctx, 0);
        if (declarator && holdsFunctionDeclarator(declarator)) {
            ctx.source.commit();
            return true;
        }
        cpFree(specifiers);
        cpFree(declarator);
        ctx.source.rollback();
    }
    specifiers = nullptr;
    declarator = parseDeclarator(ctx, 0);
    return declarator != nullptr;
}

// `= 0` behind the declarator, kept in the definition; or two null children.
void readPureMark(CPParseContext& ctx, CPParseTree* node) {
    if (ctx.at(CPT_EQUALS) && ctx.peek(1) == CPT_INTEGER && spelledAhead(ctx, 1, "0")) {
        ctx.take(node);
        ctx.take(node);
        return;
    }
    node->addChild(nullptr);
    node->addChild(nullptr);
}

// A body out of a system header keeps only the signature and an empty block.
void trimSystemBody(CPParseTree* node, CPParseTree* block) {
    CPToken* first = block->getFirstToken();
    const BPSourcePosition* position = first ? first->getPosition() : nullptr;
    if (!position || position->source.isNull() || !position->source->isSystem) return;
    if (block->getChildCount() == 3) block->setChild(1, nullptr);
    node->setChild(5, nullptr);
    node->setChild(7, nullptr);
}

}  // namespace

// function-definition:
//     decl-specifier-seq? declarator (= 0)? try? ctor-initializer? compound-statement
//     handler-seq?
CPParseTree* parseFunctionDefinition(CPParseContext& ctx, unsigned) {
    ctx.mark();
    CPParseTree *specifiers = nullptr, *declarator = nullptr;
    if (!readFunctionHead(ctx, specifiers, declarator)) return ctx.rollback();
    CPFunctionDefinition* node = make<CPFunctionDefinition>();
    if (!node) {
        cpFree(specifiers);
        cpFree(declarator);
        return ctx.rollback();
    }
    node->addChild(specifiers);
    node->addChild(declarator);
    readPureMark(ctx, node);
    bool tryBlock = ctx.at(CPT_kw_try);
    if (!ctx.accept(node, CPT_kw_try)) node->addChild(nullptr);
    node->addChild(ctx.at(CPT_COLON) ? parseCtorInitializer(ctx, 0) : nullptr);
    CPParseTree* block = parseBlockStatement(ctx, 0);
    if (!block) return ctx.failHere(node);
    node->addChild(block);
    if (tryBlock) {
        CPParseTree* handlers = parseHandlerSequence(ctx, 0);
        if (!handlers) return ctx.failHere(node);
        node->addChild(handlers);
    } else {
        node->addChild(nullptr);
    }
    trimSystemBody(node, block);
    cpNoteDeclared(ctx, declarator, CPNAME_FUNCTION);
    return ctx.commit(node);
}

// ctor-initializer:
//     : mem-initializer ( , mem-initializer )*
CPParseTree* parseCtorInitializer(CPParseContext& ctx, unsigned flags) {
    CPCtorInitializer* node = make<CPCtorInitializer>();
    if (!node) return nullptr;
    ctx.mark();
    ctx.take(node);
    while (!ctx.at(CPT_LEFT_BRACE) && !ctx.at(CPT_RIGHT_BRACE) && !ctx.at(CPT_kw_try)) {
        CPParseTree* member = parseMemberInitializer(ctx, flags);
        if (!member) break;
        node->addChild(member);
        if (!ctx.accept(node, CPT_COMMA)) break;
    }
    if (node->getChildCount() < 2) return ctx.failHere(node);
    return ctx.commit(node);
}

// mem-initializer:
//     mem-initializer-id ( expression-list? )
CPParseTree* parseMemberInitializer(CPParseContext& ctx, unsigned flags) {
    ctx.mark();
    CPParseTree* base = parseUserDefinedBaseSpecifier(ctx, flags);
    if (!base) return ctx.rollback();
    CPMemberInitializerID* id = make<CPMemberInitializerID>();
    CPMemberInitializer* node = make<CPMemberInitializer>();
    if (!id || !node) {
        cpFree(id);
        cpFree(node);
        return ctx.rollback(base);
    }
    id->addChild(base);
    node->addChild(id);
    if (!ctx.expect(node, CPT_LEFT_PAREN)) return ctx.bail(node);
    node->addChild(parseExpressionList(ctx, CPPARSE_OPTIONAL));
    if (!ctx.expect(node, CPT_RIGHT_PAREN)) return ctx.bail(node);
    return ctx.commit(node);
}

}  // namespace cpgrammar
