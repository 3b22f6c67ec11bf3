// The macro family: #define with its parameters and body, #undef, macro calls and their
// arguments, the operators # and ##, and the builtin names. See CPPreprocessorMacros.cpp for how
// an expansion walks these nodes.
#pragma once

#include "CPPreprocessorNodes.h"

class CPPreprocessorDefine;

// A name the preprocessor answers itself: __LINE__, __FILE__ and the like.
class CPPreprocessorBuiltin : public CPPreprocessorFilter {
    CP_PREPROCESSOR_NODE(CPPreprocessorBuiltin, CPPreprocessorFilter, CPN_PreprocessorBuiltin)
    int preprocess(CPPreprocessor* pp, CPPreprocessorFilter* target, bool flat,
                   CPPreprocessorMacro* call, int depth) override;
};

// A name, with its parenthesised arguments if it was written as a call. Every name of a text
// run is one of these; running it decides whether a macro of that name applies.
class CPPreprocessorMacro : public CPPreprocessorFilter {
    CP_PREPROCESSOR_NODE(CPPreprocessorMacro, CPPreprocessorFilter, CPN_PreprocessorMacro)
    int preprocess(CPPreprocessor* pp, CPPreprocessorFilter* target, bool flat,
                   CPPreprocessorMacro* call, int depth) override;

    bool hasParentheses() const { return getChildCount() > 1; }
    unsigned actualCount() const { return getChildCount() > 1 ? (getChildCount() - 1) / 2 : 0; }
    class CPPreprocessorMacroArgument* getActual(unsigned i) const;
    // The name, expanding a parameter or paste that stands in its place.
    quernbase::QBString getMacroName(CPPreprocessor* pp, CPPreprocessorMacro* enclosingCall);

private:
    int expand(CPPreprocessor* pp, CPPreprocessorDefine* define, CPPreprocessorFilter* target,
               bool flat, CPPreprocessorMacro* enclosingCall, int depth);
    CPPreprocessorMacro* makeArguments(CPPreprocessor* pp, CPPreprocessorDefine* define,
                                       bool flat, CPPreprocessorMacro* enclosingCall, int depth,
                                       int& status);
    int emitCall(CPPreprocessor* pp, CPPreprocessorFilter* target, bool flat,
                 CPPreprocessorMacro* enclosingCall, unsigned start);
    int emitIdentifierCall(CPPreprocessorFilter* target, bool flat);
    CPPreprocessorDefine* chaseAlias(CPPreprocessor* pp, CPPreprocessorDefine* define,
                                     CPPreprocessorMacro* enclosingCall);
};

class CPPreprocessorMacroArgument : public CPPreprocessorFilter {
    CP_PREPROCESSOR_NODE(CPPreprocessorMacroArgument, CPPreprocessorFilter,
                         CPN_PreprocessorMacroArg)
};

// A parameter's place in a body.
class CPPreprocessorDefineArgument : public CPPreprocessorFilter {
    CP_PREPROCESSOR_NODE(CPPreprocessorDefineArgument, CPPreprocessorFilter,
                         CPN_PreprocessorDefineArg)
    int preprocess(CPPreprocessor* pp, CPPreprocessorFilter* target, bool flat,
                   CPPreprocessorMacro* call, int depth) override;
};

class CPPreprocessorDefineBody : public CPPreprocessorFilter {
    CP_PREPROCESSOR_NODE(CPPreprocessorDefineBody, CPPreprocessorFilter,
                         CPN_PreprocessorDefineBody)
};

// a ## b ## c: operands at even indices (null for a missing one), POUND_POUND between.
class CPPreprocessorDefineConcat : public CPPreprocessorFilter {
    CP_PREPROCESSOR_NODE(CPPreprocessorDefineConcat, CPPreprocessorFilter,
                         CPN_PreprocessorDefineConcat)
    int preprocess(CPPreprocessor* pp, CPPreprocessorFilter* target, bool flat,
                   CPPreprocessorMacro* call, int depth) override;

private:
    int pastedText(CPPreprocessor* pp, CPPreprocessorMacro* call, int depth,
                   quernbase::QBString& text);
};

// #x, L#x or S#x.
class CPPreprocessorDefineString : public CPPreprocessorFilter {
    CP_PREPROCESSOR_NODE(CPPreprocessorDefineString, CPPreprocessorFilter,
                         CPN_PreprocessorDefineString)
    int preprocess(CPPreprocessor* pp, CPPreprocessorFilter* target, bool flat,
                   CPPreprocessorMacro* call, int depth) override;

private:
    int argumentsText(CPPreprocessor* pp, CPPreprocessorMacro* call, quernbase::QBString& text);
};

// POUND define NAME [ ( params ) ] body?
class CPPreprocessorDefine : public CPPreprocessorDirective {
    CP_PREPROCESSOR_NODE(CPPreprocessorDefine, CPPreprocessorDirective, CPN_PreprocessorDefine)
    int preprocess(CPPreprocessor* pp, CPPreprocessorFilter* target, bool flat,
                   CPPreprocessorMacro* call, int depth) override;
    CPPreprocessorUnit* getOwningUnit() override { return nullptr; }

    bool undefined = false;
    bool expanding = false;

    Token* getNameToken() const { return getTokenChild(2); }
    quernbase::QBString getName() const;
    bool isFunctionLike() const;
    unsigned formalCount() const { return getChildCount() > 5 ? (getChildCount() - 5) / 2 : 0; }
    bool isVariadic() const;
    quernbase::QBString getFormal(unsigned i) const;
    int formalIndex(const quernbase::QBString& name) const;
    bool isLastFormal(const quernbase::QBString& name) const;
    // The last child when it is a body, else null.
    CPPreprocessorDefineBody* getBody() const;
};

class CPPreprocessorUndef : public CPPreprocessorDirective {
    CP_PREPROCESSOR_NODE(CPPreprocessorUndef, CPPreprocessorDirective, CPN_PreprocessorUndef)
    int preprocess(CPPreprocessor* pp, CPPreprocessorFilter* target, bool flat,
                   CPPreprocessorMacro* call, int depth) override;
};

// The define that a call to name takes, or null; see the lookup rules in the .cpp.
CPPreprocessorDefine* cpFindDefine(CPPreprocessorMacro* call, const quernbase::QBString& name,
                                   CPPreprocessor* pp);
