// Node classes of expressions, names and initializers, with their grammar routines
// (CPExpressions.cpp, CPUnaryExpressions.cpp, CPPostfixExpressions.cpp, CPNames.cpp,
// CPInitializers.cpp).
//
// The classes of the binary levels inherit in the order of precedence, so that a node answers
// isKindOf for every level looser than its own: a shape that asks for a MultiplicativeExpression
// accepts anything that binds tighter.
#pragma once

#include "CPParseTree.h"

CP_DECLARE_FAMILY(CPExpression, CPParseTree, CPN_Expression)
CP_DECLARE_FAMILY(CPAssignmentExpression, CPExpression, CPN_AssignmentExpression)
CP_DECLARE_FAMILY(CPConditionalExpression, CPAssignmentExpression, CPN_ConditionalExpression)
CP_DECLARE_FAMILY(CPLogicalOrExpression, CPConditionalExpression, CPN_LogicalOrExpression)
CP_DECLARE_FAMILY(CPLogicalAndExpression, CPLogicalOrExpression, CPN_LogicalAndExpression)
CP_DECLARE_FAMILY(CPInclusiveOrExpression, CPLogicalAndExpression, CPN_InclusiveOrExpression)
CP_DECLARE_FAMILY(CPExclusiveOrExpression, CPInclusiveOrExpression, CPN_ExclusiveOrExpression)
CP_DECLARE_FAMILY(CPAndExpression, CPExclusiveOrExpression, CPN_AndExpression)
CP_DECLARE_FAMILY(CPEqualityExpression, CPAndExpression, CPN_EqualityExpression)
CP_DECLARE_FAMILY(CPRelationalExpression, CPEqualityExpression, CPN_RelationalExpression)
CP_DECLARE_FAMILY(CPShiftExpression, CPRelationalExpression, CPN_ShiftExpression)
CP_DECLARE_FAMILY(CPAdditiveExpression, CPShiftExpression, CPN_AdditiveExpression)
CP_DECLARE_FAMILY(CPMultiplicativeExpression, CPAdditiveExpression, CPN_MultiplicativeExpression)
CP_DECLARE_FAMILY(CPPMExpression, CPMultiplicativeExpression, CPN_PMExpression)
CP_DECLARE_FAMILY(CPCastExpression, CPPMExpression, CPN_CastExpression)
CP_DECLARE_FAMILY(CPUnaryExpression, CPCastExpression, CPN_UnaryExpression)
CP_DECLARE_FAMILY(CPPostfixExpression, CPUnaryExpression, CPN_PostfixExpression)
CP_DECLARE_FAMILY(CPPrimaryExpression, CPPostfixExpression, CPN_PrimaryExpression)
CP_DECLARE_FAMILY(CPIDExpression, CPPrimaryExpression, CPN_IDExpression)
CP_DECLARE_FAMILY(CPUnqualifiedID, CPIDExpression, CPN_UnqualifiedID)
CP_DECLARE_FAMILY(CPQualifiedID, CPIDExpression, CPN_QualifiedID)

CP_DECLARE_NODE(CPMinMaxExpression, CPAssignmentExpression, CPN_MinMaxExpression)
CP_DECLARE_NODE(CPThrowExpression, CPAssignmentExpression, CPN_ThrowExpression)
CP_DECLARE_FAMILY(CPCondition, CPExpression, CPN_Condition)
CP_DECLARE_NODE(CPAssignmentCondition, CPCondition, CPN_AssignmentCondition)
CP_DECLARE_NODE(CPCStyleCastExpression, CPCastExpression, CPN_CStyleCastExpression)

CP_DECLARE_NODE(CPUnaryOperatorExpression, CPUnaryExpression, CPN_UnaryOperatorExpression)
CP_DECLARE_NODE(CPPreIncrementExpression, CPUnaryExpression, CPN_PreIncrementExpression)
CP_DECLARE_NODE(CPPreDecrementExpression, CPUnaryExpression, CPN_PreDecrementExpression)
CP_DECLARE_NODE(CPSizeofExpression, CPUnaryExpression, CPN_SizeofExpression)
CP_DECLARE_NODE(CPDefinedExpression, CPUnaryExpression, CPN_DefinedExpression)
CP_DECLARE_NODE(CPNewExpression, CPUnaryExpression, CPN_NewExpression)
CP_DECLARE_NODE(CPDeleteExpression, CPUnaryExpression, CPN_DeleteExpression)
CP_DECLARE_NODE(CPCppTypeTrait, CPUnaryExpression, CPN_CppTypeTrait)

CP_DECLARE_NODE(CPArrayAccessExpression, CPPostfixExpression, CPN_ArrayAccessExpression)
CP_DECLARE_NODE(CPFunctionCallExpression, CPPostfixExpression, CPN_FunctionCallExpression)
CP_DECLARE_NODE(CPFunctionStyleCastExpression, CPPostfixExpression, CPN_FunctionStyleCastExpression)
CP_DECLARE_NODE(CPTypenameExpression, CPPostfixExpression, CPN_TypenameExpression)
CP_DECLARE_NODE(CPMemberAccessExpression, CPPostfixExpression, CPN_MemberAccessExpression)
CP_DECLARE_NODE(CPDestructorMemberAccessExpression, CPPostfixExpression,
                CPN_DestructorMemberAccessExpression)
CP_DECLARE_NODE(CPDestructorPointerAccessExpression, CPPostfixExpression,
                CPN_DestructorPointerAccessExpression)
CP_DECLARE_NODE(CPPostIncrementExpression, CPPostfixExpression, CPN_PostIncrementExpression)
CP_DECLARE_NODE(CPPostDecrementExpression, CPPostfixExpression, CPN_PostDecrementExpression)
CP_DECLARE_NODE(CPCppCastExpression, CPPostfixExpression, CPN_CppCastExpression)
CP_DECLARE_NODE(CPTypeIDExpression, CPPostfixExpression, CPN_TypeIDExpression)

CP_DECLARE_NODE(CPLiteral, CPPrimaryExpression, CPN_Literal)
CP_DECLARE_NODE(CPThisExpression, CPPrimaryExpression, CPN_ThisExpression)
CP_DECLARE_NODE(CPParenthesizedExpression, CPPrimaryExpression, CPN_ParenthesizedExpression)

// A name token.
class CPIdentifier : public CPUnqualifiedID {
public:
    explicit CPIdentifier(CPParseNodeType t = CPN_Identifier) : CPUnqualifiedID(t) {}
    Node* clone() const override { return cloneInto(new (std::nothrow) CPIdentifier(type)); }
    int getSpelledName(quernbase::QBString& out) const override;
};

CP_DECLARE_NODE(CPDestructorID, CPUnqualifiedID, CPN_DestructorID)
CP_DECLARE_NODE(CPTemplateID, CPUnqualifiedID, CPN_TemplateID)
CP_DECLARE_NODE(CPOperatorFunctionID, CPUnqualifiedID, CPN_OperatorFunctionID)
CP_DECLARE_NODE(CPConversionFunctionID, CPUnqualifiedID, CPN_ConversionFunctionID)
CP_DECLARE_NODE(CPQualifiedClassID, CPQualifiedID, CPN_QualifiedClassID)
CP_DECLARE_NODE(CPQualifiedIdentifier, CPQualifiedID, CPN_QualifiedIdentifier)
CP_DECLARE_NODE(CPQualifiedOperatorFunctionID, CPQualifiedID, CPN_QualifiedOperatorFunctionID)
CP_DECLARE_NODE(CPQualifiedTemplateID, CPQualifiedID, CPN_QualifiedTemplateID)

CP_DECLARE_NODE(CPExpressionList, CPParseTree, CPN_ExpressionList)
CP_DECLARE_NODE(CPNewPlacement, CPParseTree, CPN_NewPlacement)
CP_DECLARE_NODE(CPNewTypeID, CPParseTree, CPN_NewTypeID)
CP_DECLARE_NODE(CPNewInitializer, CPParseTree, CPN_NewInitializer)
CP_DECLARE_FAMILY(CPNewDeclarator, CPParseTree, CPN_NewDeclarator)
CP_DECLARE_NODE(CPPointerToNewDeclarator, CPNewDeclarator, CPN_PointerToNewDeclarator)
CP_DECLARE_FAMILY(CPDirectNewDeclarator, CPNewDeclarator, CPN_DirectNewDeclarator)
CP_DECLARE_NODE(CPScalarNewDeclarator, CPDirectNewDeclarator, CPN_ScalarNewDeclarator)
CP_DECLARE_NODE(CPScalarConstantNewDeclarator, CPDirectNewDeclarator, CPN_ScalarConstantNewDeclarator)

// An initializer clause; analysis adds its own operations here.
class CPInitializerClause : public CPParseTree {
public:
    explicit CPInitializerClause(CPParseNodeType t = CPN_InitializerClause) : CPParseTree(t) {}
    Node* clone() const override { return cloneInto(new (std::nothrow) CPInitializerClause(type)); }
};
CP_DECLARE_NODE(CPIfExistsInitializerClause, CPInitializerClause, CPN_IfExistsInitializerClause)
CP_DECLARE_NODE(CPInitializerList, CPParseTree, CPN_InitializerList)
