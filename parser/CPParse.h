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
