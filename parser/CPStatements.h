// Node classes of statements, with their grammar routines (CPStatements.cpp, CPTryBlocks.cpp).
#pragma once

#include "CPParseTree.h"
#include "QBArray.h"

// A statement carries a list of counted nodes that analysis fills.
class CPStatement : public CPParseTree {
public:
    explicit CPStatement(CPParseNodeType t = CPN_Statement) : CPParseTree(t) {}
    ~CPStatement() override;
    Node* clone() const override { return cloneInto(new (std::nothrow) CPStatement(type)); }
    bool isKindOf(CPParseNodeType t) const override { return t == CPN_Statement; }

    quernbase::QBArray<CPParseTree*> analysisNodes;
};

#define CP_DECLARE_CLASS(Class, Base)                                                        \
    class Class : public Base {                                                              \
    public:                                                                                  \
        explicit Class(CPParseNodeType t) : Base(t) {}                                       \
    };

CP_DECLARE_CLASS(CPSelectionStatement, CPStatement)
CP_DECLARE_CLASS(CPIterationStatement, CPStatement)
CP_DECLARE_CLASS(CPJumpStatement, CPStatement)

CP_DECLARE_NODE(CPStatementSequence, CPStatement, CPN_StatementSequence)
CP_DECLARE_NODE(CPLabeledStatement, CPStatement, CPN_LabeledStatement)
CP_DECLARE_NODE(CPDeclarationStatement, CPStatement, CPN_DeclarationStatement)
CP_DECLARE_NODE(CPConditionStatement, CPStatement, CPN_ConditionStatement)
CP_DECLARE_NODE(CPExpressionStatement, CPStatement, CPN_ExpressionStatement)
CP_DECLARE_NODE(CPBlockStatement, CPStatement, CPN_BlockStatement)
CP_DECLARE_NODE(CPEmptyStatement, CPStatement, CPN_EmptyStatement)
CP_DECLARE_NODE(CPIfStatement, CPSelectionStatement, CPN_IfStatement)
CP_DECLARE_NODE(CPIfExistsStatement, CPStatement, CPN_IfExistsStatement)
CP_DECLARE_NODE(CPSwitchStatement, CPSelectionStatement, CPN_SwitchStatement)
CP_DECLARE_NODE(CPSwitchCaseStatement, CPStatement, CPN_SwitchCaseStatement)
CP_DECLARE_NODE(CPSwitchCaseStatementSequence, CPParseTree, CPN_SwitchCaseStatementSequence)
CP_DECLARE_NODE(CPWhileStatement, CPIterationStatement, CPN_WhileStatement)
CP_DECLARE_NODE(CPDoWhileStatement, CPIterationStatement, CPN_DoWhileStatement)
CP_DECLARE_NODE(CPForInitStatement, CPStatement, CPN_ForInitStatement)
CP_DECLARE_NODE(CPBreakStatement, CPJumpStatement, CPN_BreakStatement)
CP_DECLARE_NODE(CPContinueStatement, CPJumpStatement, CPN_ContinueStatement)
CP_DECLARE_NODE(CPReturnStatement, CPJumpStatement, CPN_ReturnStatement)
CP_DECLARE_NODE(CPGotoStatement, CPJumpStatement, CPN_GotoStatement)
CP_DECLARE_NODE(CPLeaveStatement, CPJumpStatement, CPN_LeaveStatement)
CP_DECLARE_NODE(CPTryBlock, CPStatement, CPN_TryBlock)
CP_DECLARE_NODE(CPFunctionTryBlock, CPStatement, CPN_FunctionTryBlock)
CP_DECLARE_NODE(CPStructuredTryBlock, CPStatement, CPN_StructuredTryBlock)
CP_DECLARE_NODE(CPHandlerSequence, CPParseTree, CPN_HandlerSequence)
CP_DECLARE_NODE(CPHandler, CPParseTree, CPN_Handler)
CP_DECLARE_NODE(CPExceptionDeclaration, CPParseTree, CPN_ExceptionDeclaration)

// A for statement's recovery also stops at the closing parenthesis of its header.
class CPForStatement : public CPIterationStatement {
public:
    explicit CPForStatement(CPParseNodeType t = CPN_ForStatement) : CPIterationStatement(t) {}
    Node* clone() const override { return cloneInto(new (std::nothrow) CPForStatement(type)); }
    bool isSyncToken(CPParseNodeType t) const override {
        return t == CPT_RIGHT_PAREN || CPIterationStatement::isSyncToken(t);
    }
};
