// Classes and enums: class specifiers with base clauses, member sequences, the readings of a
// member (using, templates, forward, declaration with and without a type, inline definition),
// member declarators and bit-fields, enum specifiers.
#include "CPClasses.h"
#include "CPExpressions.h"
#include "CPGrammar.h"

using quernbase::QBString;

namespace cpgrammar {

namespace {

bool isAccess(CPParseNodeType t) {
    return t == CPT_kw_private || t == CPT_kw_protected || t == CPT_kw_public;
}

void noteSpelled(CPParseContext& ctx, const CPParseNode* name, int kind) {
    QBString text;
    cpSpelledName(name, text);
    cpNoteName(ctx.names, text, kind);
}

// The members between the braces of a class: sequences and __if_exists groups.
void readMembers(CPParseContext& ctx, CPParseTree* node) {
    while (!ctx.at(CPT_RIGHT_BRACE) && !ctx.at(CPT_EOF)) {
        bool ifExists = ctx.at(CPT_kw___if_exists) || ctx.at(CPT_kw___if_not_exists);
        CPParseTree* part = ifExists ? parseIfExistsMembers(ctx, 0) : parseMemberSequence(ctx, 0);
        if (!part) return;
        node->addChild(part);
    }
}

}  // namespace

// class-specifier:
//     class-key nested-name-specifier? ( template-id | identifier )? base-clause? { member* }
CPParseTree* parseClassSpecifier(CPParseContext& ctx, unsigned) {
    CPClassSpecifier* node = make<CPClassSpecifier>();
    if (!node) return nullptr;
    bool isUnion = ctx.at(CPT_kw_union);
    ctx.mark();
    ctx.take(node);
    CPParseTree* nested = parseNestedNameSpecifier(ctx, 0);
    node->addChild(nested);
    CPParseTree* name = parseTemplateId(ctx, CPPARSE_OPTIONAL);
    if (!name) name = parseIdentifier(ctx, 0);
    if (nested && !name) return ctx.rollback(node);
    node->addChild(name);
    CPParseTree* bases = ctx.at(CPT_COLON) ? parseBaseClause(ctx, 0) : nullptr;
    node->addChild(bases);
    if (!ctx.at(CPT_LEFT_BRACE)) {
        if (!bases) return ctx.rollback(node);
        return ctx.failExpecting(node, CPT_LEFT_BRACE);
    }
    ctx.take(node);
    noteSpelled(ctx, name, isUnion ? CPNAME_UNION : CPNAME_CLASS);
    readMembers(ctx, node);
    if (!ctx.expect(node, CPT_RIGHT_BRACE)) return ctx.bail(node);
    return ctx.commit(node);
}

// base-specifier:
//     ( virtual access? | access virtual? )? ::? nested-name-specifier? class-name
CPParseTree* parseBaseSpecifier(CPParseContext& ctx) {
    CPBaseSpecifier* node = make<CPBaseSpecifier>();
    if (!node) return nullptr;
    ctx.mark();
    int taken = 0;
    if (isAccess(ctx.type())) {
        ctx.take(node);
        taken = 1 + ctx.accept(node, CPT_kw_virtual);
    } else if (ctx.accept(node, CPT_kw_virtual)) {
        taken = 1;
        if (isAccess(ctx.type())) taken += (ctx.take(node), 1);
    }
    for (; taken < 2; ++taken) node->addChild(nullptr);
    CPParseTree* base = parseUserDefinedBaseSpecifier(ctx, 0);
    if (!base) return ctx.rollback(node);
    node->addChild(base);
    return ctx.commit(node);
}

// base-clause:
//     : base-specifier ( , base-specifier )*
CPParseTree* parseBaseClause(CPParseContext& ctx, unsigned) {
    CPBaseClause* node = make<CPBaseClause>();
    if (!node) return nullptr;
    ctx.mark();
    ctx.take(node);
    while (!ctx.at(CPT_LEFT_BRACE)) {
        CPParseTree* base = parseBaseSpecifier(ctx);
        if (!base) break;
        node->addChild(base);
        if (!ctx.accept(node, CPT_COMMA)) break;
    }
    if (node->getChildCount() < 2) return ctx.failHere(node);
    return ctx.commit(node);
}

// user-defined-base-specifier:
//     ::? nested-name-specifier? class-name
CPParseTree* parseUserDefinedBaseSpecifier(CPParseContext& ctx, unsigned flags) {
    CPUserDefinedBaseSpecifier* node = make<CPUserDefinedBaseSpecifier>();
    if (!node) return nullptr;
    ctx.mark();
    if (!ctx.accept(node, CPT_COLON_COLON)) node->addChild(nullptr);
    node->addChild(parseNestedNameSpecifier(ctx, flags));
    CPParseTree* name = parseClassName(ctx, flags);
    if (!name) return ctx.rollback(node);
    node->addChild(name);
    return ctx.commit(node);
}

namespace {

// Members until a brace, an access label or __if_exists.
void readMemberRun(CPParseContext& ctx, CPParseTree* node) {
    for (;;) {
        CPParseNodeType t = ctx.type();
        if (t == CPT_RIGHT_BRACE || t == CPT_EOF || isAccess(t) || t == CPT_kw___if_exists ||
            t == CPT_kw___if_not_exists)
            return;
        CPParseTree* member = parseMember(ctx, 0);
        if (!member) return;
        node->addChild(member);
    }
}

}  // namespace

// member-list:
//     ( access-specifier : )? member-declaration*
CPParseTree* parseMemberSequence(CPParseContext& ctx, unsigned) {
    CPMemberDeclarationSequence* node = make<CPMemberDeclarationSequence>();
    if (!node) return nullptr;
    ctx.mark();
    if (isAccess(ctx.type())) {
        ctx.take(node);
        if (!ctx.accept(node, CPT_COLON)) {
            node->logErrorAtSource(ctx.source, qbmsg::ExpectedToken, cpTokenSpelling(CPT_COLON));
            ctx.source.commitWithError(node);
            return node;
        }
    } else {
        node->addChild(nullptr);
        node->addChild(nullptr);
    }
    readMemberRun(ctx, node);
    if (node->getChildCount() == 2 && !node->getChild(0)) return ctx.rollback(node);
    return ctx.commit(node);
}

// __if_exists-member-list:
//     ( __if_exists | __if_not_exists ) ( unary-expression ) { ( access : )? member* }
CPParseTree* parseIfExistsMembers(CPParseContext& ctx, unsigned) {
    CPIfExistsMemberDeclarationSequence* node = make<CPIfExistsMemberDeclarationSequence>();
    if (!node) return nullptr;
    ctx.mark();
    if (!readIfExistsHead(ctx, node)) return ctx.bail(node);
    if (isAccess(ctx.type())) {
        ctx.take(node);
        if (!ctx.expect(node, CPT_COLON)) return ctx.bail(node);
    }
    readMemberRun(ctx, node);
    if (!ctx.expect(node, CPT_RIGHT_BRACE)) return ctx.bail(node);
    return ctx.commit(node);
}

namespace {

// qualified-class-id ; : a member named by its qualified name alone.
CPParseTree* parseForwardMember(CPParseContext& ctx) {
    if (!ctx.at(CPT_COLON_COLON) && ctx.peek(1) != CPT_COLON_COLON) return nullptr;
    CPForwardMemberDeclaration* node = make<CPForwardMemberDeclaration>();
    if (!node) return nullptr;
    ctx.mark();
    CPParseTree* id = parseQualifiedId(ctx, 0);
    if (!id || id->getType() != CPN_QualifiedClassID || !ctx.at(CPT_SEMICOLON)) {
        cpFree(id);
        return ctx.rollback(node);
    }
    node->addChild(id);
    ctx.take(node);
    return ctx.commit(node);
}

// function-definition ;?
CPParseTree* parseInlineMember(CPParseContext& ctx) {
    CPParseTree* definition = parseFunctionDefinition(ctx, 0);
    if (!definition) return nullptr;
    CPInlineMemberFunctionDefinition* node = make<CPInlineMemberFunctionDefinition>();
    if (!node) {
        cpFree(definition);
        return nullptr;
    }
    node->addChild(definition);
    ctx.accept(node, CPT_SEMICOLON);
    return node;
}

CPParseTree* templateMember(CPParseContext& ctx, unsigned flags) {
    flags |= CPPARSE_IN_CLASS;
    if (ctx.peek(1) != CPT_LT) return parseExplicitInstantiation(ctx, flags);
    if (ctx.peek(2) == CPT_GT) return parseExplicitSpecialization(ctx, flags);
    return parseTemplateDeclaration(ctx, flags);
}

}  // namespace

// member-declaration:
//     using-declaration | template-declaration | forward-member | member-declaration
//     | function-definition ;? | attribute
CPParseTree* parseMember(CPParseContext& ctx, unsigned flags) {
    CPDepthGuard guard(ctx);
    if (guard.refused()) return nullptr;
    switch (ctx.type()) {
    case CPT_kw_using: return parseUsingDeclaration(ctx, flags);
    case CPT_kw_export: return parseTemplateDeclaration(ctx, flags | CPPARSE_IN_CLASS);
    case CPT_kw_template: return templateMember(ctx, flags);
    default: break;
    }
    if (CPParseTree* member = parseForwardMember(ctx)) return member;
    if (CPParseTree* member = parseMemberDeclaration(ctx, flags)) return member;
    if (CPParseTree* member = parseMemberDeclaration(ctx, flags | CPPARSE_KEYWORD_NAMES)) return member;
    if (CPParseTree* member = parseInlineMember(ctx)) return member;
    if (ctx.at(CPT_LEFT_BRACKET) && ctx.peek(1) == CPT_IDENTIFIER) return parseComAttribute(ctx, flags);
    return nullptr;
}

namespace {

// bit-field:
//     identifier? : constant-expression
CPParseTree* parseBitField(CPParseContext& ctx) {
    CPBitFieldDeclarator* node = make<CPBitFieldDeclarator>();
    if (!node) return nullptr;
    ctx.mark();
    node->addChild(parseIdentifier(ctx, CPPARSE_KEYWORD_NAMES | CPPARSE_OPTIONAL));
    ctx.take(node);
    if (!ctx.require(node, parseConditionalExpression(ctx, 0))) return ctx.bail(node);
    return ctx.commit(node);
}

// member-declarator:
//     bit-field | declarator asm-label? ( = constant-expression )?
CPParseTree* parseMemberDeclarator(CPParseContext& ctx, unsigned flags) {
    if (ctx.at(CPT_COLON) || (ctx.at(CPT_IDENTIFIER) && ctx.peek(1) == CPT_COLON)) return parseBitField(ctx);
    ctx.mark();
    CPParseTree* declarator = parseDeclarator(ctx, flags & CPPARSE_KEYWORD_NAMES);
    CPMemberDeclarator* node = declarator ? make<CPMemberDeclarator>() : nullptr;
    if (!node) return ctx.rollback(declarator);
    node->addChild(declarator);
    node->addChild(parseAsmDefinition(ctx, CPPARSE_OPTIONAL | CPPARSE_ASM_LABEL));
    if (ctx.accept(node, CPT_EQUALS)) {
        if (!ctx.require(node, parseConditionalExpression(ctx, 0))) return ctx.bail(node);
    } else {
        node->addChild(nullptr);
        node->addChild(nullptr);
    }
    return ctx.commit(node);
}

// member-declarator-list:
//     member-declarator ( , member-declarator )*
CPParseTree* parseMemberDeclaratorList(CPParseContext& ctx, unsigned flags) {
    CPMemberDeclaratorList* node = make<CPMemberDeclaratorList>();
    if (!node) return nullptr;
    while (!ctx.at(CPT_SEMICOLON)) {
        CPParseTree* declarator = parseMemberDeclarator(ctx, flags);
        if (!declarator) break;
        node->addChild(declarator);
        if (!ctx.accept(node, CPT_COMMA)) break;
    }
    if (node->getChildCount() > 0) return node;
    cpFree(node);
    return nullptr;
}

// One reading of a member declaration: the specifiers by flags, then the declarators; true if
// the declarators stand (or aren't needed) with the SEMICOLON behind them.
bool readMemberParts(CPParseContext& ctx, unsigned flags, bool withSpecifiers, CPParseTree*& specifiers,
                     CPParseTree*& declarators) {
    specifiers = withSpecifiers ? parseDeclSpecifiers(ctx, flags) : nullptr;
    bool needs = !declaresTypeOnly(specifiers);
    declarators = parseMemberDeclaratorList(ctx, flags | (needs ? 0u : unsigned(CPPARSE_OPTIONAL)));
    if (!needs || (declarators && ctx.at(CPT_SEMICOLON))) return true;
    cpFree(specifiers);
    cpFree(declarators);
    specifiers = declarators = nullptr;
    return false;
}

}  // namespace

// member-declaration:
//     decl-specifier-seq? member-declarator-list? ;
CPParseTree* parseMemberDeclaration(CPParseContext& ctx, unsigned flags) {
    CPParseTree *specifiers = nullptr, *declarators = nullptr;
    ctx.mark();
    bool read = false;
    for (int reading = 0; reading < 3 && !read; ++reading) {
        ctx.mark();
        unsigned readingFlags = reading == 1 ? flags | CPPARSE_NO_TYPE_SPECIFIER : flags;
        read = readMemberParts(ctx, readingFlags, reading < 2, specifiers, declarators);
        if (read) ctx.source.commit();
        else ctx.source.rollback();
    }
    CPMemberDeclaration* node = read && ctx.at(CPT_SEMICOLON) ? make<CPMemberDeclaration>() : nullptr;
    if (!node) {
        cpFree(specifiers);
        cpFree(declarators);
        return ctx.rollback();
    }
    noteDeclarators(ctx, specifiers, declarators);
    node->addChild(specifiers);
    node->addChild(declarators);
    ctx.take(node);
    return ctx.commit(node);
}

namespace {

// enumerator-definition:
//     identifier ( = constant-expression )?
CPParseTree* parseEnumerator(CPParseContext& ctx) {
    CPParseTree* name = parseIdentifier(ctx, CPPARSE_KEYWORD_NAMES | CPPARSE_ALL_KEYWORD_NAMES);
    if (!name) return nullptr;
    CPEnumeratorDefinition* node = make<CPEnumeratorDefinition>();
    if (!node) {
        cpFree(name);
        return nullptr;
    }
    node->addChild(name);
    noteSpelled(ctx, name, CPNAME_VALUE);
    if (!ctx.accept(node, CPT_EQUALS)) {
        node->addChild(nullptr);
        node->addChild(nullptr);
    } else if (!ctx.require(node, parseConditionalExpression(ctx, 0))) {
        node->setErrorFlag(false);
    }
    return node;
}

}  // namespace

// enum-specifier:
//     enum nested-name-specifier? identifier? { ( enumerator-definition , )* enumerator-definition? }
CPParseTree* parseEnumSpecifier(CPParseContext& ctx, unsigned) {
    CPEnumSpecifier* node = make<CPEnumSpecifier>();
    if (!node) return nullptr;
    ctx.mark();
    ctx.take(node);
    CPParseTree* nested = parseNestedNameSpecifier(ctx, 0);
    CPParseTree* name = parseIdentifier(ctx, 0);
    node->addChild(nested);
    node->addChild(name);
    if ((nested && !name) || !ctx.at(CPT_LEFT_BRACE)) return ctx.rollback(node);
    ctx.take(node);
    noteSpelled(ctx, name, CPNAME_ENUM);
    while (!ctx.at(CPT_RIGHT_BRACE)) {
        CPParseTree* enumerator = parseEnumerator(ctx);
        if (!enumerator) break;
        node->addChild(enumerator);
        if (!ctx.accept(node, CPT_COMMA)) break;
    }
    if (!ctx.expect(node, CPT_RIGHT_BRACE)) return ctx.bail(node);
    return ctx.commit(node);
}

}  // namespace cpgrammar
