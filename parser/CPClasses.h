// Node classes of type specifiers, classes, enums and templates, with their grammar routines
// (CPTypeSpecifiers.cpp, CPClasses.cpp, CPTemplates.cpp).
#pragma once

#include <cstdint>

#include "CPDeclarations.h"

// A type specifier records its built-in keywords in simpleTypeBits.
class CPTypeSpecifier : public CPParseTree {
public:
    explicit CPTypeSpecifier(CPParseNodeType t = CPN_TypeSpecifier) : CPParseTree(t) {}
    Node* clone() const override {
        CPTypeSpecifier* copy = static_cast<CPTypeSpecifier*>(
            cloneInto(new (std::nothrow) CPTypeSpecifier(type)));
        if (copy) copy->simpleTypeBits = simpleTypeBits;
        return copy;
    }
    bool isKindOf(CPParseNodeType t) const override { return t == CPN_TypeSpecifier; }
    // Its recovery skips type keywords only (and storage keywords among declaration specifiers).
    bool isSyncToken(CPParseNodeType t) const override;

    uint32_t simpleTypeBits = 0;
    bool declSpecifiers = false;
};

CP_DECLARE_FAMILY(CPSimpleTypeSpecifier, CPTypeSpecifier, CPN_SimpleTypeSpecifier)
CP_DECLARE_NODE(CPSimpleType, CPSimpleTypeSpecifier, CPN_SimpleType)
CP_DECLARE_NODE(CPUserDefinedTypeSpecifier, CPSimpleTypeSpecifier, CPN_UserDefinedTypeSpecifier)
CP_DECLARE_NODE(CPUserDefinedTemplateSpecifier, CPSimpleTypeSpecifier, CPN_UserDefinedTemplateSpecifier)
CP_DECLARE_FAMILY(CPElaboratedTypeSpecifier, CPTypeSpecifier, CPN_ElaboratedTypeSpecifier)
CP_DECLARE_NODE(CPElaboratedClassSpecifier, CPElaboratedTypeSpecifier, CPN_ElaboratedClassSpecifier)
CP_DECLARE_NODE(CPElaboratedEnumSpecifier, CPElaboratedTypeSpecifier, CPN_ElaboratedEnumSpecifier)
CP_DECLARE_NODE(CPForwardClassSpecifier, CPElaboratedTypeSpecifier, CPN_ForwardClassSpecifier)
CP_DECLARE_NODE(CPTypenameTypeSpecifier, CPElaboratedTypeSpecifier, CPN_TypenameTypeSpecifier)
CP_DECLARE_NODE(CPTypeofTypeSpecifier, CPTypeSpecifier, CPN_TypeofTypeSpecifier)
CP_DECLARE_NODE(CPEnumSpecifier, CPTypeSpecifier, CPN_EnumSpecifier)
CP_DECLARE_NODE(CPEnumeratorDefinition, CPTypeSpecifier, CPN_EnumeratorDefinition)

class CPClassSpecifier : public CPTypeSpecifier {
public:
    explicit CPClassSpecifier(CPParseNodeType t = CPN_ClassSpecifier) : CPTypeSpecifier(t) {}
    Node* clone() const override { return cloneInto(new (std::nothrow) CPClassSpecifier(type)); }
    CPParseNode* getDeclaredNameNode() const override { return getChild(2); }
    int getSpelledName(quernbase::QBString& out) const override { return cpSpelledName(getChild(2), out); }
    int getDeclaredName(quernbase::QBString& out) const override { return getSpelledName(out); }
};

CP_DECLARE_NODE(CPTypeName, CPParseTree, CPN_TypeName)
CP_DECLARE_NODE(CPClassName, CPParseTree, CPN_ClassName)
CP_DECLARE_NODE(CPNestedNameSpecifier, CPParseTree, CPN_NestedNameSpecifier)
CP_DECLARE_NODE(CPConversionTypeID, CPParseTree, CPN_ConversionTypeID)
CP_DECLARE_NODE(CPPseudoDestructorName, CPParseTree, CPN_PseudoDestructorName)

CP_DECLARE_FAMILY(CPMemberDeclarationFactory, CPParseTree, CPN_MemberDeclarationFactory)
CP_DECLARE_NODE(CPMemberDeclaration, CPMemberDeclarationFactory, CPN_MemberDeclaration)
CP_DECLARE_NODE(CPInlineMemberFunctionDefinition, CPMemberDeclarationFactory,
                CPN_InlineMemberFunctionDefinition)
CP_DECLARE_NODE(CPForwardMemberDeclaration, CPMemberDeclarationFactory, CPN_ForwardMemberDeclaration)
CP_DECLARE_NODE(CPDefaultMemberFunction, CPMemberDeclarationFactory, CPN_DefaultMemberFunction)
CP_DECLARE_NODE(CPMemberDeclarationSequence, CPParseTree, CPN_MemberDeclarationSequence)
CP_DECLARE_NODE(CPIfExistsMemberDeclarationSequence, CPMemberDeclarationSequence,
                CPN_IfExistsMemberDeclarationSequence)
CP_DECLARE_NODE(CPMemberDeclaratorList, CPParseTree, CPN_MemberDeclaratorList)
CP_DECLARE_DECLARATOR(CPMemberDeclarator, CPDeclarator, CPN_MemberDeclarator, 0)

// A bit-field declares its optional name, child 0, as a value.
class CPBitFieldDeclarator : public CPDeclarator {
public:
    explicit CPBitFieldDeclarator(CPParseNodeType t = CPN_BitFieldDeclarator, int s = 0) : CPDeclarator(t, s) {}
    Node* clone() const override { return cloneInto(new (std::nothrow) CPBitFieldDeclarator(type, inner)); }
    int getDeclaratorKind() const override { return 14; }
    CPParseNode* getDeclaredNameNode() const override { return getChild(0); }
    int getDeclaredName(quernbase::QBString& out) const override {
        return cpSpelledName(getChild(0), out);
    }
};

CP_DECLARE_NODE(CPConstantInitializer, CPParseTree, CPN_ConstantInitializer)
CP_DECLARE_NODE(CPBaseClause, CPParseTree, CPN_BaseClause)
CP_DECLARE_NODE(CPBaseSpecifier, CPParseTree, CPN_BaseSpecifier)
CP_DECLARE_NODE(CPUserDefinedBaseSpecifier, CPParseTree, CPN_UserDefinedBaseSpecifier)
CP_DECLARE_NODE(CPCtorInitializer, CPParseTree, CPN_CtorInitializer)
CP_DECLARE_NODE(CPMemberInitializer, CPParseTree, CPN_MemberInitializer)
CP_DECLARE_NODE(CPMemberInitializerID, CPParseTree, CPN_MemberInitializerID)
CP_DECLARE_NODE(CPTemplateDeclaration, CPDeclaration, CPN_TemplateDeclaration)
CP_DECLARE_NODE(CPTemplateParameterList, CPParseTree, CPN_TemplateParameterList)
CP_DECLARE_NODE(CPTemplateParameter, CPParseTree, CPN_TemplateParameter)
CP_DECLARE_NODE(CPTypeParameter, CPParseTree, CPN_TypeParameter)
CP_DECLARE_NODE(CPTemplateArgument, CPParseTree, CPN_TemplateArgument)
CP_DECLARE_NODE(CPExplicitInstantiation, CPDeclaration, CPN_ExplicitInstantiation)
CP_DECLARE_NODE(CPExplicitSpecialization, CPDeclaration, CPN_ExplicitSpecialization)
