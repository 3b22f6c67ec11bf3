// Connects the preprocessor's #if hook to the grammar's expression evaluator.
#pragma once

#include <cstdint>

class CPPreprocessor;
class CPPreprocessorFilter;

// Evaluates the expanded condition tokens: parses them as a conditional expression and gives its
// value; status is negative when no expression could be read. A division by zero is logged on
// the condition as written.
int64_t cpEvaluatePreprocessorCondition(CPPreprocessor* pp, CPPreprocessorFilter* tokens,
                                        int& status);
// Installs the evaluator above into the preprocessor; idempotent.
void cpInstallIfEvaluator();
