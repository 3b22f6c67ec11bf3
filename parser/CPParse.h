// The entry points of the grammar for callers outside the parser: a whole file, and the
// evaluation of a preprocessor `#if` expression.
#pragma once

#include <cstdint>

#include "CPParseTree.h"

// Parses a compilation unit from source with a fresh table of declared names. The unit (count
// 0, the caller takes it) or null when memory runs out.
CPParseTree* cpParseCompilationUnit(CPTokenSource& source);

// Looks up a macro name for `defined`: 1 if defined, 0 if not; with anyEntry the answer of
// "has any entry at all", undefined ones included. Null context: nothing is defined.
typedef int (*CPMacroQuery)(void* context, const CPToken* name, bool anyEntry);

// Parses a conditional expression from source and evaluates it in signed 64 bits. Gives 0 with
// value set, or -1 when no expression could be read (value 0). Messages of the evaluation
// (division by zero) are logged on the tree, which is freed; errorCount counts them.
int cpEvaluateIfExpression(CPTokenSource& source, int64_t& value, CPMacroQuery query = nullptr,
                           void* context = nullptr, int* errorCount = nullptr);

// The repairs of analysis: the tokens of a node read again by another rule, once types have
// shown that the first reading was wrong. Each gives a new node (count 0, the caller puts it in
// the old node's place) whose parent pointer is the old node's parent, or null when the tokens
// don't make the other reading whole and clean; the old node is left as it was, though the
// tokens the new node took now name it as their parent.
//
// `T x(a);` where a is no type: the declarator read as a variable with an initializer, as an
// InitDeclarator.
CPParseTree* cpReparseAsVariable(CPParseTree* declarator);
// `(a) - b` where a is no type: a binary expression with the parenthesized name as its left
// operand, or `(a)(b)` as a call. Null for other operands, and for a compound literal.
CPParseTree* cpReparseCast(CPParseTree* cast);
// A member that looked like a data member with a type but is a constructor: read without a type
// specifier, as a MemberDeclaration.
CPParseTree* cpReparseMemberDeclaration(CPParseTree* member);
