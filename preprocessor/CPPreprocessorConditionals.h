// Conditional groups. Every branch is read into the source tree; running the group produces the
// chosen branch only, and clears the error marks of the others, so that foreign text in an
// inactive branch never fails a file.
#pragma once

#include "CPPreprocessorNodes.h"

// #if/#ifdef/#ifndef NEWLINE body (#elif NEWLINE body)* (#else NEWLINE body)? #endif
class CPPreprocessorIfGroup : public CPPreprocessorDirective {
    CP_PREPROCESSOR_NODE(CPPreprocessorIfGroup, CPPreprocessorDirective, CPN_PreprocessorIfGroup)
    int preprocess(CPPreprocessor* pp, CPPreprocessorFilter* target, bool flat,
                   CPPreprocessorMacro* call, int depth) override;

    unsigned getElifCount() const;
    CPPreprocessorIfBody* getElseBody() const;
};

class CPPreprocessorIfBase : public CPPreprocessorDirective {
    CP_PREPROCESSOR_NODE(CPPreprocessorIfBase, CPPreprocessorDirective, CPN_PreprocessorIfBase)
    virtual bool isTrue(CPPreprocessor*) { return false; }
};

class CPPreprocessorIf : public CPPreprocessorIfBase {
    CP_PREPROCESSOR_NODE(CPPreprocessorIf, CPPreprocessorIfBase, CPN_PreprocessorIf)
    bool isTrue(CPPreprocessor* pp) override;
};

class CPPreprocessorIfdef : public CPPreprocessorIfBase {
    CP_PREPROCESSOR_NODE(CPPreprocessorIfdef, CPPreprocessorIfBase, CPN_PreprocessorIfdef)
    bool isTrue(CPPreprocessor* pp) override;
};

class CPPreprocessorIfndef : public CPPreprocessorIfBase {
    CP_PREPROCESSOR_NODE(CPPreprocessorIfndef, CPPreprocessorIfBase, CPN_PreprocessorIfndef)
    bool isTrue(CPPreprocessor* pp) override;
};

class CPPreprocessorElif : public CPPreprocessorIfBase {
    CP_PREPROCESSOR_NODE(CPPreprocessorElif, CPPreprocessorIfBase, CPN_PreprocessorElif)
    bool isTrue(CPPreprocessor* pp) override;
};

class CPPreprocessorElse : public CPPreprocessorDirective {
    CP_PREPROCESSOR_NODE(CPPreprocessorElse, CPPreprocessorDirective, CPN_PreprocessorElse)
};

class CPPreprocessorEndif : public CPPreprocessorDirective {
    CP_PREPROCESSOR_NODE(CPPreprocessorEndif, CPPreprocessorDirective, CPN_PreprocessorEndif)
};

// Runs the condition of an #if or #elif: expands it and hands the tokens to the installed
// evaluator. Negative statuses of the expansion count as true, as a failed expansion should not
// hide code.
int64_t cpEvaluateIfExpression(CPPreprocessorIfExpression* expression, CPPreprocessor* pp,
                               bool& evaluated);
