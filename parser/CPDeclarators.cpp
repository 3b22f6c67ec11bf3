// Declarators, abstract declarators, parameters and type ids, and the declared-name queries of
// the declarator classes.
#include "CPClasses.h"
#include "CPExpressions.h"
#include "CPGrammar.h"

using quernbase::QBString;

// --- declared names ---

int cpSpelledName(const CPParseNode* node, QBString& out) {
    out.makeEmpty();
    if (!node) return 0;
    if (node->isToken()) return static_cast<const CPToken*>(node)->getSpellingInto(out);
    unsigned count = node->getChildCount();
    switch (node->getType()) {
    case CPN_Identifier: case CPN_TemplateID: case CPN_ClassName: case CPN_TypeName:
    case CPN_DeclaratorID:
        return cpSpelledName(node->getChild(0), out);
    case CPN_UserDefinedTypeSpecifier: case CPN_QualifiedClassID: case CPN_QualifiedIdentifier:
    case CPN_QualifiedTemplateID: case CPN_QualifiedOperatorFunctionID:
        return cpSpelledName(count ? node->getChild(count - 1) : nullptr, out);
    default:
        for (unsigned i = 0; i < count; ++i) {
            QBString part;
            cpSpelledName(node->getChild(i), part);
            out.append(part);
        }
        return 0;
    }
}

const CPParseTree* CPDeclarator::innerDeclarator() const {
    CPParseNode* child = getChild(unsigned(inner));
    return child && child->isTree() ? static_cast<const CPParseTree*>(child) : nullptr;
}

int CPDeclarator::getDeclaratorKind() const {
    const CPParseTree* declarator = innerDeclarator();
    return declarator ? declarator->getDeclaratorKind() : 0;
}

CPParseNode* CPDeclarator::getDeclaredNameNode() const {
    const CPParseTree* declarator = innerDeclarator();
    return declarator ? declarator->getDeclaredNameNode() : nullptr;
}

int CPDeclarator::getDeclaredName(QBString& out) const {
    const CPParseTree* declarator = innerDeclarator();
    return declarator ? declarator->getDeclaredName(out) : out.makeEmpty();
}

int CPDeclaratorID::getDeclaredName(QBString& out) const { return cpSpelledName(getChild(0), out); }

CPParseNode* CPParameterDeclaration::getDeclaredNameNode() const {
    CPParseNode* declarator = getChild(2);
    return declarator && declarator->isKindOf(CPN_Declarator)
               ? static_cast<CPParseTree*>(declarator)->getDeclaredNameNode()
               : nullptr;
}

int CPParameterDeclaration::getDeclaredName(QBString& out) const {
    CPParseNode* declarator = getChild(2);
    if (!declarator || !declarator->isKindOf(CPN_Declarator)) return out.makeEmpty();
    return static_cast<CPParseTree*>(declarator)->getDeclaredName(out);
}

namespace cpgrammar {

// declarator:
//     ptr-declarator | direct-declarator
CPParseTree* parseDeclarator(CPParseContext& ctx, unsigned flags) {
    CPDepthGuard guard(ctx);
    if (guard.refused()) return nullptr;
    if (CPParseTree* pointer = parsePointerToDeclarator(ctx, flags)) return pointer;
    return parseDirectDeclarator(ctx, flags);
}

// ptr-declarator:
//     ptr-operator ( ptr-declarator | direct-declarator )
CPParseTree* parsePointerToDeclarator(CPParseContext& ctx, unsigned flags) {
    CPDepthGuard guard(ctx);
    if (guard.refused()) return nullptr;
    ctx.mark();
    CPParseTree* op = parsePointerOperator(ctx, flags);
    if (!op) return ctx.rollback();
    unsigned inner = flags | CPPARSE_KEYWORD_NAMES;
    CPParseTree* declarator = parsePointerToDeclarator(ctx, inner);
    if (!declarator) declarator = parseDirectDeclarator(ctx, inner);
    CPPointerToDeclarator* node = declarator ? make<CPPointerToDeclarator>() : nullptr;
    if (!node) {
        cpFree(declarator);
        return ctx.rollback(op);
    }
    node->addChild(op);
    node->addChild(declarator);
    return ctx.commit(node);
}

// ptr-operator:
//     & | ::? nested-name-specifier? * cv-qualifier-seq?
CPParseTree* parsePointerOperator(CPParseContext& ctx, unsigned) {
    if (ctx.at(CPT_AND)) {
        CPReferenceDeclarator* reference = make<CPReferenceDeclarator>();
        if (reference) ctx.take(reference);
        return reference;
    }
    if (!ctx.at(CPT_STAR) && !ctx.at(CPT_COLON_COLON) && !cpIsLabelName(ctx.type())) return nullptr;
    CPPointerDeclarator* node = make<CPPointerDeclarator>();
    if (!node) return nullptr;
    ctx.mark();
    bool global = ctx.accept(node, CPT_COLON_COLON);
    if (!global) node->addChild(nullptr);
    CPParseTree* nested = ctx.at(CPT_STAR) ? nullptr : parseNestedNameSpecifier(ctx, 0);
    if (global && !nested) return ctx.rollback(node);
    node->addChild(nested);
    if (!ctx.accept(node, CPT_STAR)) return ctx.rollback(node);
    node->addChild(parseCVQualifiers(ctx, 0));
    return ctx.commit(node);
}

namespace {

// [ constant-expression? ] or the C99 [ * ], around what has been read; null base allowed.
CPParseTree* arraySuffix(CPParseContext& ctx, CPParseTree* base, CPParseTree* node) {
    node->addChild(base);
    ctx.take(node);
    if (ctx.at(CPT_STAR) && ctx.peek(1) == CPT_RIGHT_BRACKET) {
        node->addChild(nullptr);
        ctx.take(node);
    } else {
        node->addChild(ctx.at(CPT_RIGHT_BRACKET) ? nullptr : parseConditionalExpression(ctx, CPPARSE_OPTIONAL));
        node->addChild(nullptr);
    }
    ctx.expect(node, CPT_RIGHT_BRACKET);
    return node;
}

// ( parameter-declaration-clause ) cv-qualifier-seq? throw-list?
CPParseTree* functionSuffix(CPParseContext& ctx, CPParseTree* base, CPParseTree* node) {
    node->addChild(base);
    ctx.take(node);
    ctx.mark();
    CPParseTree* clause = parseParameterClause(ctx, CPPARSE_NAMED_PARAMETER_FIRST);
    if (!ctx.at(CPT_RIGHT_PAREN)) {
        ctx.rollback(clause);
        ctx.mark();
        clause = parseParameterClause(ctx, 0);
    }
    ctx.source.commit();
    if (!ctx.require(node, clause) || !ctx.expect(node, CPT_RIGHT_PAREN)) return node;
    bool cv = ctx.at(CPT_kw_const) || ctx.at(CPT_kw_volatile);
    node->addChild(cv ? parseCVQualifiers(ctx, 0) : nullptr);
    node->addChild(ctx.at(CPT_kw_throw) ? parseExceptionSpecification(ctx, 0) : nullptr);
    return node;
}

// ( declarator )
CPParseTree* parseParenthesizedDeclarator(CPParseContext& ctx, unsigned flags) {
    CPParenthesizedDeclarator* node = make<CPParenthesizedDeclarator>();
    if (!node) return nullptr;
    ctx.mark();
    ctx.take(node);
    CPParseTree* inner = parseDeclarator(ctx, flags);
    if (!inner) return ctx.rollback(node);
    node->addChild(inner);
    if (!ctx.accept(node, CPT_RIGHT_PAREN)) return ctx.rollback(node);
    return ctx.commit(node);
}

}  // namespace

// direct-declarator:
//     ( declarator-id | ( declarator ) ) ( [ constant-expression? ] )* ( ( parameters ) )?
CPParseTree* parseDirectDeclarator(CPParseContext& ctx, unsigned flags) {
    CPDepthGuard guard(ctx);
    if (guard.refused()) return nullptr;
    ctx.mark();
    CPParseTree* node = ctx.at(CPT_LEFT_PAREN) ? parseParenthesizedDeclarator(ctx, flags)
                                               : parseDeclaratorId(ctx, flags);
    if (!node) return ctx.rollback();
    bool function = false;
    for (;;) {
        CPParseTree* suffix = nullptr;
        if (ctx.at(CPT_LEFT_BRACKET) && (suffix = make<CPArrayDeclarator>()))
            node = arraySuffix(ctx, node, suffix);
        else if (ctx.at(CPT_LEFT_PAREN) && !function && !(flags & CPPARSE_NO_FUNCTION_DECLARATOR) &&
                 (suffix = make<CPFunctionDeclarator>()))
            node = functionSuffix(ctx, node, suffix), function = true;
        else
            break;
    }
    return ctx.commit(node);
}

// declarator-id:
//     id-expression | ::? nested-name-specifier? class-name
CPParseTree* parseDeclaratorId(CPParseContext& ctx, unsigned flags) {
    CPParseTree* id = parseIdExpression(ctx, flags | CPPARSE_OPTIONAL);
    if (!id) id = parseUserDefinedType(ctx, flags);
    if (!id && (flags & CPPARSE_KEYWORD_NAMES)) id = parseIdentifier(ctx, flags);
    if (!id) return nullptr;
    CPDeclaratorID* node = make<CPDeclaratorID>();
    if (!node) {
        cpFree(id);
        return nullptr;
    }
    node->addChild(id);
    return node;
}

// parameter-declaration-clause:
//     ( parameter-declaration ( , parameter-declaration )* )? ( ,? ... )?
CPParseTree* parseParameterClause(CPParseContext& ctx, unsigned flags) {
    CPParameterDeclarationClause* node = make<CPParameterDeclarationClause>();
    if (!node) return nullptr;
    while (!ctx.at(CPT_RIGHT_PAREN)) {
        if (ctx.accept(node, CPT_ELLIPSE)) break;
        CPParseTree* parameter = parseParameter(ctx, flags);
        if (!parameter) break;
        node->addChild(parameter);
        if (!ctx.accept(node, CPT_COMMA)) break;
    }
    return node;
}

namespace {

// The declarator of a parameter: named or abstract, by the order the flag asks for.
CPParseTree* parameterDeclarator(CPParseContext& ctx, unsigned flags) {
    if (flags & CPPARSE_NAMED_PARAMETER_FIRST) {
        if (CPParseTree* named = parseDeclarator(ctx, CPPARSE_KEYWORD_NAMES)) return named;
        return parseAbstractDeclarator(ctx, CPPARSE_OPTIONAL);
    }
    ctx.mark();
    CPParseTree* abstract = parseAbstractDeclarator(ctx, CPPARSE_OPTIONAL);
    CPParseNodeType next = ctx.type();
    if (abstract && (next == CPT_EOF || next == CPT_RIGHT_PAREN || next == CPT_COMMA || next == CPT_EQUALS))
        return ctx.commit(abstract);
    ctx.rollback(abstract);
    return parseDeclarator(ctx, CPPARSE_KEYWORD_NAMES);
}

}  // namespace

// parameter-declaration:
//     attribute? decl-specifier-seq ( declarator | abstract-declarator? ) ( = assignment-expression )?
CPParseTree* parseParameter(CPParseContext& ctx, unsigned flags) {
    CPParameterDeclaration* node = make<CPParameterDeclaration>();
    if (!node) return nullptr;
    ctx.mark();
    node->addChild(ctx.at(CPT_LEFT_BRACKET) ? parseComAttribute(ctx, 0) : nullptr);
    CPParseTree* specifiers = parseDeclSpecifiers(ctx, flags & ~unsigned(CPPARSE_NAMED_PARAMETER_FIRST));
    if (!specifiers) return ctx.rollback(node);
    node->addChild(specifiers);
    node->addChild(parameterDeclarator(ctx, flags));
    if (ctx.accept(node, CPT_EQUALS)) {
        if (!ctx.require(node, parseAssignmentExpression(ctx, 0))) return ctx.bail(node);
    } else {
        node->addChild(nullptr);
        node->addChild(nullptr);
    }
    cpNoteDeclared(ctx, node, CPNAME_VALUE);
    return ctx.commit(node);
}

// init-declarator-list:
//     init-declarator ( , init-declarator )*
CPParseTree* parseInitDeclaratorList(CPParseContext& ctx, unsigned flags) {
    CPInitDeclaratorList* node = make<CPInitDeclaratorList>();
    if (!node) return nullptr;
    ctx.mark();
    while (!ctx.at(CPT_SEMICOLON)) {
        CPParseTree* declarator = parseInitDeclarator(ctx, flags);
        if (!declarator) break;
        node->addChild(declarator);
        if (!ctx.accept(node, CPT_COMMA)) break;
    }
    if (node->getChildCount() == 0) return ctx.rollback(node);
    return ctx.commit(node);
}

namespace {

bool isFailedFunction(const CPParseTree* declarator) {
    if (!declarator->hasError()) return false;
    if (declarator->getType() == CPN_FunctionDeclarator) return true;
    const CPParseNode* inner = declarator->getType() == CPN_PointerToDeclarator ? declarator->getChild(1) : nullptr;
    return inner && inner->getType() == CPN_FunctionDeclarator;
}

CPParseTree* pointerOrDirect(CPParseContext& ctx, unsigned flags) {
    if (CPParseTree* pointer = parsePointerToDeclarator(ctx, flags)) return pointer;
    return parseDirectDeclarator(ctx, flags);
}

}  // namespace

// init-declarator:
//     declarator asm-label? initializer?
CPParseTree* parseInitDeclarator(CPParseContext& ctx, unsigned flags) {
    ctx.mark();
    ctx.mark();
    unsigned named = flags | CPPARSE_KEYWORD_NAMES;
    CPParseTree* declarator = pointerOrDirect(ctx, named);
    if (declarator && isFailedFunction(declarator)) {
        // The parentheses aren't a parameter list: `T x(a + 1);`.
        ctx.rollback(declarator);
        ctx.mark();
        declarator = pointerOrDirect(ctx, named | CPPARSE_NO_FUNCTION_DECLARATOR);
    }
    if (!declarator) {
        ctx.source.rollback();
        return ctx.rollback();
    }
    ctx.source.commit();
    CPInitDeclarator* node = make<CPInitDeclarator>();
    if (!node) return ctx.rollback(declarator);
    node->addChild(declarator);
    node->addChild(parseAsmDefinition(ctx, CPPARSE_OPTIONAL | CPPARSE_ASM_LABEL));
    node->addChild(parseInitializer(ctx, CPPARSE_OPTIONAL));
    return ctx.commit(node);
}

namespace {

// ( abstract-declarator )
CPParseTree* parenthesizedAbstract(CPParseContext& ctx, unsigned flags) {
    CPParenthesizedAbstractDeclarator* node = make<CPParenthesizedAbstractDeclarator>();
    if (!node) return nullptr;
    ctx.mark();
    ctx.take(node);
    CPParseTree* inner = parseAbstractDeclarator(ctx, flags & ~unsigned(CPPARSE_OPTIONAL));
    if (!inner) return ctx.rollback(node);
    node->addChild(inner);
    if (!ctx.accept(node, CPT_RIGHT_PAREN)) return ctx.rollback(node);
    return ctx.commit(node);
}

// ptr-operator abstract-declarator?
CPParseTree* pointerToAbstract(CPParseContext& ctx, unsigned flags) {
    ctx.mark();
    CPParseTree* op = parsePointerOperator(ctx, flags);
    if (!op) return ctx.rollback();
    CPPointerToAbstractDeclarator* node = make<CPPointerToAbstractDeclarator>();
    if (!node) return ctx.rollback(op);
    node->addChild(op);
    node->addChild(parseAbstractDeclarator(ctx, flags | CPPARSE_OPTIONAL));
    return ctx.commit(node);
}

}  // namespace

// abstract-declarator:
//     ptr-operator abstract-declarator?
//     ( ( abstract-declarator ) )? ( [ constant-expression? ] )* ( ( parameters ) )?
CPParseTree* parseAbstractDeclarator(CPParseContext& ctx, unsigned flags) {
    CPDepthGuard guard(ctx);
    if (guard.refused()) return nullptr;
    if (CPParseTree* pointer = pointerToAbstract(ctx, flags)) return pointer;
    ctx.mark();
    CPParseTree* node = ctx.at(CPT_LEFT_PAREN) ? parenthesizedAbstract(ctx, flags) : nullptr;
    bool function = false;
    for (;;) {
        CPParseTree* suffix = nullptr;
        if (ctx.at(CPT_LEFT_BRACKET) && (suffix = make<CPArrayAbstractDeclarator>())) {
            node = arraySuffix(ctx, node, suffix);
        } else if (ctx.at(CPT_LEFT_PAREN) && !function) {
            suffix = node ? static_cast<CPParseTree*>(make<CPFunctionAbstractDeclarator>())
                          : make<CPFunctionAbstractPointerDeclarator>();
            if (!suffix) break;
            node = functionSuffix(ctx, node, suffix);
            function = true;
        } else {
            break;
        }
    }
    if (!node) return ctx.rollback();
    return ctx.commit(node);
}

// type-id:
//     type-specifier abstract-declarator?
CPParseTree* parseTypeId(CPParseContext& ctx, unsigned flags) {
    CPParseTree* specifier = parseTypeSpecifier(ctx, flags);
    if (!specifier) return nullptr;
    CPTypeID* node = make<CPTypeID>();
    if (!node) {
        cpFree(specifier);
        return nullptr;
    }
    node->addChild(specifier);
    node->addChild(parseAbstractDeclarator(ctx, flags | CPPARSE_OPTIONAL));
    return node;
}

// throw-list:
//     throw ( ( type-id ( , type-id )* | ... )? )
CPParseTree* parseExceptionSpecification(CPParseContext& ctx, unsigned) {
    if (!ctx.at(CPT_kw_throw)) return nullptr;
    CPExceptionSpecification* node = make<CPExceptionSpecification>();
    if (!node) return nullptr;
    ctx.mark();
    ctx.take(node);
    if (!ctx.expect(node, CPT_LEFT_PAREN)) return ctx.bail(node);
    if (!ctx.accept(node, CPT_ELLIPSE)) {
        while (!ctx.at(CPT_RIGHT_PAREN)) {
            CPParseTree* type = parseTypeId(ctx, 0);
            if (!type) break;
            node->addChild(type);
            if (!ctx.accept(node, CPT_COMMA)) break;
        }
    }
    if (!ctx.expect(node, CPT_RIGHT_PAREN)) return ctx.bail(node);
    return ctx.commit(node);
}

// --- helpers shared by the families ---

bool holdsFunctionDeclarator(const CPParseNode* node) {
    if (!node || !node->isTree()) return false;
    CPParseNodeType t = node->getType();
    if (t == CPN_FunctionDeclarator || t == CPN_FunctionAbstractDeclarator) return true;
    if (!node->isKindOf(CPN_Declarator)) return false;
    for (unsigned i = 0; i < node->getChildCount(); ++i)
        if (holdsFunctionDeclarator(node->getChild(i))) return true;
    return false;
}

bool holdsOwnMessage(const CPParseNode* node) {
    if (!node) return false;
    if (node->getAttributes() && node->getAttributes()->getErrorCount() > 0) return true;
    for (unsigned i = 0; i < node->getChildCount(); ++i)
        if (holdsOwnMessage(node->getChild(i))) return true;
    return false;
}

bool declaresTypeOnly(const CPParseTree* specifiers) {
    if (!specifiers) return false;
    for (unsigned i = 0; i < specifiers->getChildCount(); ++i) {
        const CPParseNode* child = specifiers->getChild(i);
        if (!child) continue;
        switch (child->getType()) {
        case CPN_EnumSpecifier: case CPN_ElaboratedClassSpecifier: case CPN_ElaboratedEnumSpecifier:
        case CPN_ForwardClassSpecifier: case CPN_TypenameTypeSpecifier: case CPN_ClassSpecifier:
            return true;
        case CPN_TypeSpecifier:
            if (declaresTypeOnly(static_cast<const CPParseTree*>(child))) return true;
            break;
        default:
            break;
        }
    }
    return false;
}

bool holdsKeyword(const CPParseNode* node, CPParseNodeType keyword) {
    if (!node) return false;
    if (node->isToken()) return node->getType() == keyword;
    for (unsigned i = 0; i < node->getChildCount(); ++i) {
        const CPParseNode* child = node->getChild(i);
        bool specifierLevel = child && (child->isToken() || child->getType() == CPN_TypeSpecifier ||
                                        child->getType() == CPN_CVQualifierSequence ||
                                        child->getType() == CPN_CVQualifier);
        if (specifierLevel && holdsKeyword(child, keyword)) return true;
    }
    return false;
}

void noteDeclarators(CPParseContext& ctx, const CPParseTree* specifiers, const CPParseTree* list) {
    if (!list) return;
    int kind = holdsKeyword(specifiers, CPT_kw_typedef) ? CPNAME_TYPEDEF : 0;
    for (unsigned i = 0; i < list->getChildCount(); ++i) {
        const CPParseNode* child = list->getChild(i);
        if (child && child->isTree()) cpNoteDeclared(ctx, static_cast<const CPParseTree*>(child), kind);
    }
}

}  // namespace cpgrammar
