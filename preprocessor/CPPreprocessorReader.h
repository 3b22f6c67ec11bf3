// The readers of the source tree: recursive descent over the whitespace filter, with the token
// source's mark, rollback and commit. Every token read goes into some node, so the tree prints
// back as the file. Each reader gives a node, or null with the input as it was.
#pragma once

#include "CPPreprocessorConditionals.h"
#include "CPPreprocessorMacros.h"
#include "QBHashTable.h"
#include "TBPTokenSource.h"

typedef TBPTokenSource<CPParseNodeType> CPTokenSource;
// The parameter names of the #define being read.
typedef quernbase::QBHashTable<quernbase::QBString, int> CPFormalSet;

// The whole file, up to and with its EOF.
CPPreprocessorUnit* cpParseUnit(CPTokenSource& source, int depth);
// A text run up to the next NEWLINE.
CPPreprocessorPPTokens* cpParseText(CPTokenSource& source, int depth);
// The directive at the current POUND.
CPPreprocessorFilter* cpParseDirective(CPTokenSource& source, int depth);
CPPreprocessorIncludeArg* cpParseIncludeArg(CPTokenSource& source, int depth);

// Macros.
CPPreprocessorDefine* cpParseDefine(CPTokenSource& source, int depth);
CPPreprocessorUndef* cpParseUndef(CPTokenSource& source, int depth);
// A name and, if it is followed by balanced parentheses, its arguments. formals is set while a
// #define body is read.
CPPreprocessorMacro* cpParseMacroCall(CPTokenSource& source, int depth,
                                      const CPFormalSet* formals);

// Conditionals.
CPPreprocessorIfGroup* cpParseIfGroup(CPTokenSource& source, int depth);
CPPreprocessorFilter* cpParseBranchDirective(CPTokenSource& source, int depth);

// Shared by the readers.
inline bool cpAtLineEnd(int kind) {
    return kind == CPT_NEWLINE || kind == CPT_EOF || kind == CPT_EOS;
}
inline bool cpAtEnd(int kind) { return kind == CPT_EOF || kind == CPT_EOS; }
// Adds the current token to node and moves on.
int cpTakeToken(CPTokenSource& source, CPPreprocessorFilter* node);
// Adds tokens up to the line end (not consumed) to node.
int cpTakeRestOfLine(CPTokenSource& source, CPPreprocessorFilter* node);
// Adds tokens up to kind, and with consume that token too. -1 (and UnexpectedEndOfFile logged)
// at EOF first.
int cpSkipTo(CPTokenSource& source, CPPreprocessorFilter* node, int kind, bool consume);
// Adds child to node; frees child and gives OutOfMemory if that fails (or if child is null).
int cpAdoptChild(CPPreprocessorFilter* node, CPPreprocessorFilter* child);
// Fills node with `# word NAME` and the rest of the line: NAME must be a name or a builtin (a
// builtin keeps its kind with keepBuiltin), and anything behind it is an error. OutOfMemory when
// memory runs out.
int cpReadNamedDirective(CPTokenSource& source, CPPreprocessorFilter* node, bool keepBuiltin);
// A builtin node holding the current token, which it consumes.
CPPreprocessorBuiltin* cpParseBuiltin(CPTokenSource& source);
