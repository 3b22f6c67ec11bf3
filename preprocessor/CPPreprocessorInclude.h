// Includes and the configuration header: turning an #include argument into a file name, finding
// the file, reading its source tree once per preprocessor, and deciding whether it guards itself.
#pragma once

#include "CPPreprocessorNodes.h"
#include "QBString.h"

// The name an argument spells: a string without its quotes, the joined tokens between < and >,
// or with pp the same of what the argument's macros expand to. Empty when there is none.
quernbase::QBString cpGetIncludeName(CPPreprocessorIncludeArg* arg, CPPreprocessor* pp);

// True when nothing but directives stands outside one #ifndef NAME (or #if !defined NAME) group
// whose body defines NAME, or when the file says #pragma once. guardName gets the name, and
// guardToken the `once` of the pragma.
bool cpHasIncludeGuard(CPPreprocessorUnit* root, quernbase::QBString& guardName,
                       TBPToken<CPParseNodeType>*& guardToken);

// Include nesting stops here: the run's depth counts every level of the tree walk.
enum { CPPP_MAX_INCLUDE_DEPTH = 1025, CPPP_LOCATE_BUFFER = 1024 };
