// Node classes of declarations, specifier sequences and declarators, with their grammar
// routines (CPDeclarations.cpp, CPDeclarators.cpp).
#pragma once

#include "CPParseTree.h"

CP_DECLARE_NODE(CPCompilationUnit, CPParseTree, CPN_CompilationUnit)
CP_DECLARE_FAMILY(CPDeclaration, CPParseTree, CPN_DeclarationFactory)
CP_DECLARE_FAMILY(CPBlockDeclaration, CPDeclaration, CPN_BlockDeclaration)

CP_DECLARE_NODE(CPDeclSpecifierSequence, CPParseTree, CPN_DeclSpecifierSequence)
CP_DECLARE_NODE(CPDeclarationSequence, CPParseTree, CPN_DeclarationSequence)
CP_DECLARE_NODE(CPEmptyDeclaration, CPBlockDeclaration, CPN_EmptyDeclaration)
CP_DECLARE_NODE(CPSimpleDeclaration, CPBlockDeclaration, CPN_SimpleDeclaration)
CP_DECLARE_NODE(CPASMDefinition, CPBlockDeclaration, CPN_ASMDefinition)
CP_DECLARE_NODE(CPASMInstruction, CPParseTree, CPN_ASMInstruction)
CP_DECLARE_NODE(CPNamespaceAliasDefinition, CPBlockDeclaration, CPN_NamespaceAliasDefinition)
CP_DECLARE_NODE(CPQualifiedNamespaceSpecifier, CPParseTree, CPN_QualifiedNamespaceSpecifier)
CP_DECLARE_NODE(CPUsingDeclaration, CPBlockDeclaration, CPN_UsingDeclaration)
CP_DECLARE_NODE(CPUsingDirective, CPBlockDeclaration, CPN_UsingDirective)
CP_DECLARE_NODE(CPCppCOMAttribute, CPBlockDeclaration, CPN_CppCOMAttribute)
CP_DECLARE_NODE(CPNamespaceDefinition, CPDeclaration, CPN_NamespaceDefinition)
CP_DECLARE_NODE(CPLinkageSpecification, CPDeclaration, CPN_LinkageSpecification)
CP_DECLARE_NODE(CPIfExistsDeclaration, CPDeclaration, CPN_IfExistsDeclaration)
CP_DECLARE_NODE(CPFunctionDefinition, CPDeclaration, CPN_FunctionDefinition)
CP_DECLARE_NODE(CPInitDeclaratorList, CPParseTree, CPN_InitDeclaratorList)
CP_DECLARE_NODE(CPCVQualifier, CPParseTree, CPN_CVQualifier)
CP_DECLARE_NODE(CPCVQualifierSequence, CPParseTree, CPN_CVQualifierSequence)
CP_DECLARE_NODE(CPTypeID, CPParseTree, CPN_TypeID)
CP_DECLARE_NODE(CPTypeSpecifierSequence, CPParseTree, CPN_TypeSpecifierSequence)
CP_DECLARE_NODE(CPParameterDeclarationClause, CPParseTree, CPN_ParameterDeclarationClause)
CP_DECLARE_NODE(CPExceptionSpecification, CPParseTree, CPN_ExceptionSpecification)

// Declarators. A wrapper's declared name and kind are those of the declarator inside it, at
// the child slot `inner`.
class CPDeclarator : public CPParseTree {
public:
    explicit CPDeclarator(CPParseNodeType t = CPN_Declarator, int innerSlot = 0)
        : CPParseTree(t), inner(innerSlot) {}
    Node* clone() const override { return cloneInto(new (std::nothrow) CPDeclarator(type, inner)); }
    bool isKindOf(CPParseNodeType t) const override { return t == CPN_Declarator; }
    int getDeclaratorKind() const override;
    CPParseNode* getDeclaredNameNode() const override;
    int getDeclaredName(quernbase::QBString& out) const override;

protected:
    int inner;
    const CPParseTree* innerDeclarator() const;
};

#define CP_DECLARE_DECLARATOR(Class, Base, number, slot)                                     \
    class Class : public Base {                                                              \
    public:                                                                                  \
        explicit Class(CPParseNodeType t = number, int s = slot) : Base(t, s) {}             \
        Node* clone() const override { return cloneInto(new (std::nothrow) Class(type, inner)); } \
    };

class CPDirectDeclarator : public CPDeclarator {
public:
    explicit CPDirectDeclarator(CPParseNodeType t = CPN_DirectDeclarator, int s = 0) : CPDeclarator(t, s) {}
    bool isKindOf(CPParseNodeType t) const override {
        return t == CPN_DirectDeclarator || CPDeclarator::isKindOf(t);
    }
};

CP_DECLARE_DECLARATOR(CPInitDeclarator, CPDeclarator, CPN_InitDeclarator, 0)
CP_DECLARE_DECLARATOR(CPPointerToDeclarator, CPDeclarator, CPN_PointerToDeclarator, 1)
CP_DECLARE_DECLARATOR(CPArrayDeclarator, CPDirectDeclarator, CPN_ArrayDeclarator, 0)
CP_DECLARE_DECLARATOR(CPParenthesizedDeclarator, CPDirectDeclarator, CPN_ParenthesizedDeclarator, 1)

class CPFunctionDeclarator : public CPDirectDeclarator {
public:
    explicit CPFunctionDeclarator(CPParseNodeType t = CPN_FunctionDeclarator, int s = 0)
        : CPDirectDeclarator(t, s) {}
    Node* clone() const override { return cloneInto(new (std::nothrow) CPFunctionDeclarator(type, inner)); }
    int getDeclaratorKind() const override { return 13; }
};

// The name itself: an id-expression or a constructor's class name.
class CPDeclaratorID : public CPDirectDeclarator {
public:
    explicit CPDeclaratorID(CPParseNodeType t = CPN_DeclaratorID, int s = 0) : CPDirectDeclarator(t, s) {}
    Node* clone() const override { return cloneInto(new (std::nothrow) CPDeclaratorID(type, inner)); }
    int getDeclaratorKind() const override { return 2; }
    CPParseNode* getDeclaredNameNode() const override { return getChild(0); }
    int getDeclaredName(quernbase::QBString& out) const override;
};

CP_DECLARE_FAMILY(CPPointerOperator, CPParseTree, CPN_PointerOperator)
CP_DECLARE_NODE(CPPointerDeclarator, CPPointerOperator, CPN_PointerDeclarator)
CP_DECLARE_NODE(CPReferenceDeclarator, CPPointerOperator, CPN_ReferenceDeclarator)

CP_DECLARE_FAMILY(CPAbstractDeclarator, CPParseTree, CPN_AbstractDeclarator)
CP_DECLARE_FAMILY(CPDirectAbstractDeclarator, CPAbstractDeclarator, CPN_DirectAbstractDeclarator)
CP_DECLARE_NODE(CPPointerToAbstractDeclarator, CPAbstractDeclarator, CPN_PointerToAbstractDeclarator)
CP_DECLARE_NODE(CPFunctionAbstractDeclarator, CPDirectAbstractDeclarator, CPN_FunctionAbstractDeclarator)
CP_DECLARE_NODE(CPFunctionAbstractPointerDeclarator, CPDirectAbstractDeclarator,
                CPN_FunctionAbstractPointerDeclarator)
CP_DECLARE_NODE(CPArrayAbstractDeclarator, CPDirectAbstractDeclarator, CPN_ArrayAbstractDeclarator)
CP_DECLARE_NODE(CPParenthesizedAbstractDeclarator, CPDirectAbstractDeclarator,
                CPN_ParenthesizedAbstractDeclarator)

// A parameter: its own recovery also stops at the comma and parenthesis around it.
class CPParameterDeclaration : public CPParseTree {
public:
    explicit CPParameterDeclaration(CPParseNodeType t = CPN_ParameterDeclaration) : CPParseTree(t) {}
    Node* clone() const override { return cloneInto(new (std::nothrow) CPParameterDeclaration(type)); }
    bool isSyncToken(CPParseNodeType t) const override {
        return t == CPT_COMMA || t == CPT_RIGHT_PAREN || CPParseTree::isSyncToken(t);
    }
    CPParseNode* getDeclaredNameNode() const override;
    int getDeclaredName(quernbase::QBString& out) const override;
};

CP_DECLARE_FAMILY(CPInitializer, CPParseTree, CPN_Initializer)
CP_DECLARE_NODE(CPEqualsInitializer, CPInitializer, CPN_EqualsInitializer)
CP_DECLARE_NODE(CPParenthesizedInitializer, CPInitializer, CPN_ParenthesizedInitializer)

// The spelling of the name a name node stands for, without whitespace: the identifier of a
// template id, the last part of a qualified name, `~X` for a destructor.
int cpSpelledName(const CPParseNode* node, quernbase::QBString& out);
