// Edits of the text behind preprocessed tokens.
//
// A refactoring edits the parse tree, whose leaves wrap leaves of the output tree; what reaches
// the file is the source tree. These operations put new tokens (typically those of a parsed
// fragment) into every preprocessor node that holds an anchor token, so the source tree and the
// output tree change together, and turn the new tokens' places in their own tree into wrappers
// of the copies that went in, so that tree and file stay one. Nodes inside a #define are left
// alone: a body is shared by every expansion, so an edit there belongs to the define itself.
//
// A list holds borrowed tokens. On return its entries are the fresh copies, held by the trees
// that took them; an entry that nothing took is freed and set to null.
#pragma once

#include "CPPreprocessedToken.h"
#include "CPPreprocessorFilter.h"
#include "QBArray.h"

class CPPreprocessorEdits {
public:
    typedef TBPToken<CPParseNodeType> Token;
    typedef quernbase::QBArray<Token*> TokenList;

    // Replaces each token of tokens by a fresh copy (text, place, copied whitespace, no
    // owners); in the old token's parent a CPPreprocessedToken of the copy, owned by node,
    // takes the old token's place. The copies carry one count each for the caller of this
    // step: see the operations below, which drop it.
    static int cloneForEdit(CPPreprocessorFilter* node, TokenList& tokens);
    // Puts list in front of token in every owner of it.
    static int insertBeforeToken(CPPreprocessorToken* token, TokenList& list);
    // Puts list behind token in every owner of it.
    static int insertAfterToken(CPPreprocessorToken* token, TokenList& list);
    // Puts list in the place of node's child at childIndex in every owner of that token; a
    // child that isn't a token is cleared and node pruned.
    static int replaceToken(CPPreprocessorFilter* node, unsigned childIndex, TokenList& list);

private:
    static int insertNextTo(CPPreprocessorToken* token, TokenList& list, bool after);
    // Drops the counts cloneForEdit gave; a copy that no tree took leaves the list.
    static void settle(TokenList& list);
};
