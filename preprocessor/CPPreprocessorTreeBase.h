// The base of the preprocessor's node classes. It stands in for the common base of every C and
// C++ node until that class exists; then the preprocessor's nodes derive from it and this header
// goes.
#pragma once

#include "CPParseNodeType.h"
#include "TBPParseTree.h"

class CPPreprocessorTreeBase : public TBPParseTree<CPParseNodeType> {
public:
    explicit CPPreprocessorTreeBase(CPParseNodeType kind) : TBPParseTree<CPParseNodeType>(kind) {}
    // True for the nodes of the two preprocessor trees; analysis passes them over.
    virtual bool isPreprocessorNode() const { return false; }
};
