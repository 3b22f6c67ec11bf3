// The grammar routines of C and C++. Each gives a node, or null with the input as it was; see
// CPParseContext.h for the discipline they share. The productions stand above the routines.
#pragma once

#include "CPParseContext.h"

namespace cpgrammar {

typedef CPParseTree* (*Routine)(CPParseContext& ctx, unsigned flags);

// Declarations (CPDeclarations.cpp)
CPParseTree* parseCompilationUnit(CPParseContext& ctx);
CPParseTree* parseDeclaration(CPParseContext& ctx, unsigned flags);
CPParseTree* parseBlockDeclaration(CPParseContext& ctx, unsigned flags);
CPParseTree* parseSimpleDeclaration(CPParseContext& ctx, unsigned flags);
CPParseTree* parseDeclSpecifiers(CPParseContext& ctx, unsigned flags);
CPParseTree* parseCVQualifiers(CPParseContext& ctx, unsigned flags);
CPParseTree* parseDeclarationSequence(CPParseContext& ctx, unsigned flags);
CPParseTree* parseFunctionDefinition(CPParseContext& ctx, unsigned flags);
CPParseTree* parseCtorInitializer(CPParseContext& ctx, unsigned flags);
CPParseTree* parseMemberInitializer(CPParseContext& ctx, unsigned flags);
CPParseTree* parseNamespaceDefinition(CPParseContext& ctx, unsigned flags);
CPParseTree* parseNamespaceAlias(CPParseContext& ctx, unsigned flags);
CPParseTree* parseLinkageSpecification(CPParseContext& ctx, unsigned flags);
CPParseTree* parseUsingDeclaration(CPParseContext& ctx, unsigned flags);
CPParseTree* parseUsingDirective(CPParseContext& ctx, unsigned flags);
CPParseTree* parseAsmDefinition(CPParseContext& ctx, unsigned flags);
CPParseTree* parseAsmInstruction(CPParseContext& ctx, unsigned flags);
CPParseTree* parseComAttribute(CPParseContext& ctx, unsigned flags);
CPParseTree* parseIfExistsDeclaration(CPParseContext& ctx, unsigned flags);

// Declarators (CPDeclarators.cpp)
CPParseTree* parseDeclarator(CPParseContext& ctx, unsigned flags);
CPParseTree* parsePointerToDeclarator(CPParseContext& ctx, unsigned flags);
CPParseTree* parsePointerOperator(CPParseContext& ctx, unsigned flags);
CPParseTree* parseDirectDeclarator(CPParseContext& ctx, unsigned flags);
CPParseTree* parseDeclaratorId(CPParseContext& ctx, unsigned flags);
CPParseTree* parseParameterClause(CPParseContext& ctx, unsigned flags);
CPParseTree* parseParameter(CPParseContext& ctx, unsigned flags);
CPParseTree* parseInitDeclaratorList(CPParseContext& ctx, unsigned flags);
CPParseTree* parseInitDeclarator(CPParseContext& ctx, unsigned flags);
CPParseTree* parseAbstractDeclarator(CPParseContext& ctx, unsigned flags);
CPParseTree* parseTypeId(CPParseContext& ctx, unsigned flags);
CPParseTree* parseExceptionSpecification(CPParseContext& ctx, unsigned flags);

// Type specifiers, classes and enums (CPTypeSpecifiers.cpp, CPClasses.cpp)
CPParseTree* parseTypeSpecifier(CPParseContext& ctx, unsigned flags);
CPParseTree* parseElaborated(CPParseContext& ctx, unsigned flags);
CPParseTree* parseTypenameSpecifier(CPParseContext& ctx, unsigned flags);
CPParseTree* parseTypeof(CPParseContext& ctx, unsigned flags);
CPParseTree* parseUserDefinedType(CPParseContext& ctx, unsigned flags);
CPParseTree* parseUserDefinedTemplate(CPParseContext& ctx, unsigned flags);
CPParseTree* parseTypeName(CPParseContext& ctx, unsigned flags);
CPParseTree* parseClassName(CPParseContext& ctx, unsigned flags);
CPParseTree* parseNestedNameSpecifier(CPParseContext& ctx, unsigned flags);
CPParseTree* parseClassSpecifier(CPParseContext& ctx, unsigned flags);
CPParseTree* parseBaseClause(CPParseContext& ctx, unsigned flags);
CPParseTree* parseUserDefinedBaseSpecifier(CPParseContext& ctx, unsigned flags);
CPParseTree* parseMemberSequence(CPParseContext& ctx, unsigned flags);
CPParseTree* parseMember(CPParseContext& ctx, unsigned flags);
CPParseTree* parseMemberDeclaration(CPParseContext& ctx, unsigned flags);
CPParseTree* parseIfExistsMembers(CPParseContext& ctx, unsigned flags);
CPParseTree* parseEnumSpecifier(CPParseContext& ctx, unsigned flags);

// Templates (CPTemplates.cpp)
CPParseTree* parseTemplateDeclaration(CPParseContext& ctx, unsigned flags);
CPParseTree* parseTemplateParameterList(CPParseContext& ctx, unsigned flags);
CPParseTree* parseTemplateId(CPParseContext& ctx, unsigned flags);
CPParseTree* parseTemplateArgument(CPParseContext& ctx, unsigned flags);
CPParseTree* parseExplicitInstantiation(CPParseContext& ctx, unsigned flags);
CPParseTree* parseExplicitSpecialization(CPParseContext& ctx, unsigned flags);

// Names (CPNames.cpp)
CPParseTree* parseIdentifier(CPParseContext& ctx, unsigned flags);
CPParseTree* parseIdExpression(CPParseContext& ctx, unsigned flags);
CPParseTree* parseQualifiedId(CPParseContext& ctx, unsigned flags);
CPParseTree* parseUnqualifiedId(CPParseContext& ctx, unsigned flags);
CPParseTree* parseOperatorFunctionId(CPParseContext& ctx, unsigned flags);
CPParseTree* parseConversionFunctionId(CPParseContext& ctx, unsigned flags);
CPParseTree* parsePseudoDestructorName(CPParseContext& ctx, unsigned flags);

// Statements (CPStatements.cpp, CPTryBlocks.cpp)
CPParseTree* parseStatement(CPParseContext& ctx, unsigned flags);
CPParseTree* parseStatementSequence(CPParseContext& ctx, unsigned flags);
CPParseTree* parseBlockStatement(CPParseContext& ctx, unsigned flags);
CPParseTree* parseExpressionStatement(CPParseContext& ctx, unsigned flags);
CPParseTree* parseCondition(CPParseContext& ctx, unsigned flags);
CPParseTree* parseTry(CPParseContext& ctx, unsigned flags);
CPParseTree* parseStructuredTry(CPParseContext& ctx, unsigned flags);
CPParseTree* parseHandler(CPParseContext& ctx, unsigned flags);
CPParseTree* parseHandlerSequence(CPParseContext& ctx, unsigned flags);

// Expressions (CPExpressions.cpp, CPUnaryExpressions.cpp, CPPostfixExpressions.cpp)
CPParseTree* parseExpression(CPParseContext& ctx, unsigned flags);
CPParseTree* parseExpressionList(CPParseContext& ctx, unsigned flags);
CPParseTree* parseAssignmentExpression(CPParseContext& ctx, unsigned flags);
CPParseTree* parseConditionalExpression(CPParseContext& ctx, unsigned flags);
CPParseTree* parseLogicalOr(CPParseContext& ctx, unsigned flags);
CPParseTree* parseCastExpression(CPParseContext& ctx, unsigned flags);
CPParseTree* parseUnary(CPParseContext& ctx, unsigned flags);
CPParseTree* parsePostfix(CPParseContext& ctx, unsigned flags);
CPParseTree* parsePrimary(CPParseContext& ctx, unsigned flags);
CPParseTree* parseParenthesizedExpression(CPParseContext& ctx, unsigned flags);

// Initializers (CPInitializers.cpp)
CPParseTree* parseInitializer(CPParseContext& ctx, unsigned flags);
CPParseTree* parseInitializerList(CPParseContext& ctx, unsigned flags);
CPParseTree* parseInitializerClause(CPParseContext& ctx, unsigned flags);

// Helpers shared by the families.
// Reads `keyword ( unary-expression ) {` of the __if_exists forms; false after a message.
bool readIfExistsHead(CPParseContext& ctx, CPParseTree* node);
CPParseTree* parseLiteral(CPParseContext& ctx, unsigned flags);
// A node of class N, or null when memory runs out.
template <class N> N* make() { return new (std::nothrow) N(); }
// ( expression-list ) as a node of class N; null, with the input as it was, when no list
// follows the parenthesis.
template <class N> CPParseTree* parseParenthesizedList(CPParseContext& ctx) {
    N* node = make<N>();
    if (!node) return nullptr;
    ctx.mark();
    ctx.take(node);
    CPParseTree* list = parseExpressionList(ctx, 0);
    if (!list) return ctx.rollback(node);
    node->addChild(list);
    if (!ctx.expect(node, CPT_RIGHT_PAREN)) return ctx.bail(node);
    return ctx.commit(node);
}
// True if the node or a child it holds is one of the function declarator kinds.
bool holdsFunctionDeclarator(const CPParseNode* node);
// True if the node or one of its subtrees carries an error message of its own.
bool holdsOwnMessage(const CPParseNode* node);
// True if the specifier sequence holds one of the kinds that need no declarator.
bool declaresTypeOnly(const CPParseTree* specifiers);
// True if the specifier sequence holds the keyword.
bool holdsKeyword(const CPParseNode* node, CPParseNodeType keyword);
// Notes the names of every declarator in a declarator list (typedef names as 11).
void noteDeclarators(CPParseContext& ctx, const CPParseTree* specifiers, const CPParseTree* list);
// The tokens from the current one up to the GT that closes an angle bracket list already
// opened, counting parentheses; null-terminated scan results: 1 closed, 0 not, -1 an
// expression operator at the top level (only when stopAtLogical).
int scanAngleList(CPParseContext& ctx, quernbase::QBArray<CPToken*>& out, bool stopAtLogical);

}  // namespace cpgrammar
