// The preprocessor's structural nodes and the directives that need no family of their own:
// files, text runs, conditional bodies, and #pragma, #line, #error, #using, #import, #include.
#pragma once

#include "BPSourceText.h"
#include "CPPreprocessorFilter.h"

// A file: its directives, text runs and groups, each followed by its NEWLINE, then EOF.
class CPPreprocessorUnit : public CPPreprocessorFilter {
    CP_PREPROCESSOR_NODE(CPPreprocessorUnit, CPPreprocessorFilter, CPN_PreprocessorUnit)
    int preprocess(CPPreprocessor* pp, CPPreprocessorFilter* target, bool flat,
                   CPPreprocessorMacro* call, int depth) override;
    CPPreprocessorUnit* getOwningUnit() override;
    void setModified() override;

    // The file's source record; set on the root of a file's source tree.
    BPSourceHandle source;
};

// A run of tokens: in the source tree one text run, in the output tree any produced tokens.
class CPPreprocessorPPTokens : public CPPreprocessorFilter {
    CP_PREPROCESSOR_NODE(CPPreprocessorPPTokens, CPPreprocessorFilter, CPN_PreprocessorPPTokens)
    int preprocess(CPPreprocessor* pp, CPPreprocessorFilter* target, bool flat,
                   CPPreprocessorMacro* call, int depth) override;
};

// The tokens of an #if or #elif condition.
class CPPreprocessorIfExpression : public CPPreprocessorPPTokens {
    CP_PREPROCESSOR_NODE(CPPreprocessorIfExpression, CPPreprocessorPPTokens,
                         CPN_PreprocessorIfExpression)
};

// What stands behind #include: a string, <...>, or tokens to expand.
class CPPreprocessorIncludeArg : public CPPreprocessorPPTokens {
    CP_PREPROCESSOR_NODE(CPPreprocessorIncludeArg, CPPreprocessorPPTokens,
                         CPN_PreprocessorIncludeArg)
};

// One branch of a conditional group.
class CPPreprocessorIfBody : public CPPreprocessorFilter {
    CP_PREPROCESSOR_NODE(CPPreprocessorIfBody, CPPreprocessorFilter, CPN_PreprocessorIfBody)
    int preprocess(CPPreprocessor* pp, CPPreprocessorFilter* target, bool flat,
                   CPPreprocessorMacro* call, int depth) override;
};

// POUND, the keyword, the rest of the line. Running one produces nothing unless a class says so.
class CPPreprocessorDirective : public CPPreprocessorFilter {
    CP_PREPROCESSOR_NODE(CPPreprocessorDirective, CPPreprocessorFilter, CPN_PreprocessorDirective)
    int preprocess(CPPreprocessor*, CPPreprocessorFilter*, bool, CPPreprocessorMacro*,
                   int) override {
        return 0;
    }
};

class CPPreprocessorEmpty : public CPPreprocessorDirective {
    CP_PREPROCESSOR_NODE(CPPreprocessorEmpty, CPPreprocessorDirective, CPN_PreprocessorEmpty)
};

class CPPreprocessorUnknown : public CPPreprocessorDirective {
    CP_PREPROCESSOR_NODE(CPPreprocessorUnknown, CPPreprocessorDirective, CPN_PreprocessorUnknown)
};

class CPPreprocessorError : public CPPreprocessorDirective {
    CP_PREPROCESSOR_NODE(CPPreprocessorError, CPPreprocessorDirective, CPN_PreprocessorError)
};

// #line changes no position: tokens always tell their physical place.
class CPPreprocessorLine : public CPPreprocessorDirective {
    CP_PREPROCESSOR_NODE(CPPreprocessorLine, CPPreprocessorDirective, CPN_PreprocessorLine)
};

class CPPreprocessorPragma : public CPPreprocessorDirective {
    CP_PREPROCESSOR_NODE(CPPreprocessorPragma, CPPreprocessorDirective, CPN_PreprocessorPragma)
    int preprocess(CPPreprocessor* pp, CPPreprocessorFilter* target, bool flat,
                   CPPreprocessorMacro* call, int depth) override;
    // POUND pragma once, nothing more.
    bool isPragmaOnce() const;
};

class CPPreprocessorUsing : public CPPreprocessorDirective {
    CP_PREPROCESSOR_NODE(CPPreprocessorUsing, CPPreprocessorDirective, CPN_PreprocessorUsing)
};

class CPPreprocessorImport : public CPPreprocessorDirective {
    CP_PREPROCESSOR_NODE(CPPreprocessorImport, CPPreprocessorDirective, CPN_PreprocessorImport)
};

// #include. Running it finds, reads and runs the named file (CPPreprocessorInclude.cpp).
class CPPreprocessorInclude : public CPPreprocessorDirective {
    CP_PREPROCESSOR_NODE(CPPreprocessorInclude, CPPreprocessorDirective, CPN_PreprocessorInclude)
    int preprocess(CPPreprocessor* pp, CPPreprocessorFilter* target, bool flat,
                   CPPreprocessorMacro* call, int depth) override;
    CPPreprocessorIncludeArg* getArgument() const;
};

// The compiler's configuration header, run ahead of the file's first line.
class CPPreprocessorConfigFile : public CPPreprocessorDirective {
    CP_PREPROCESSOR_NODE(CPPreprocessorConfigFile, CPPreprocessorDirective,
                         CPN_PreprocessorConfigFile)
    int preprocess(CPPreprocessor* pp, CPPreprocessorFilter* target, bool flat,
                   CPPreprocessorMacro* call, int depth) override;

    quernbase::QBString path;
};
