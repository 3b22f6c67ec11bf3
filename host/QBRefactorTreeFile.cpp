// qbRefactorTreeFile: the parse tree of a file, for people and for round-trip checks, until the
// parser driver reads files through the preprocessor. Directive lines are passed over: they are
// hung on the next token as whitespace, so the text still comes back whole.
#include <cstring>

#include "BPSourceText.h"
#include "CPLexer.h"
#include "CPParse.h"
#include "CPWhitespaceFilter.h"
#include "QBRefactorExport.h"

using quernbase::QBString;

QBREFACTOR_EXPORT int qbRefactorOutput(const char* text);

namespace {

enum { TREE_PRINT = 0, TREE_ROUNDTRIP = 1, TREE_ERRORS = 2 };
typedef TBPToken<CPParseNodeType> Token;

// Folds each directive line into the whitespace of the token behind it, and turns the words
// that only the preprocessor knows into names, as the preprocessor's output would.
class CPDirectiveSkipper : public TBPTokenFilter<CPParseNodeType> {
public:
    explicit CPDirectiveSkipper(TBPTokenSource<CPParseNodeType>* source)
        : TBPTokenFilter<CPParseNodeType>(source) {}

    Token* readToken() override {
        TokenList skipped;
        Token* token = next();
        while (token && (token->getType() == CPT_NEWLINE || token->getType() == CPT_POUND)) {
            bool directive = token->getType() == CPT_POUND;
            keep(skipped, token);
            while (directive && (token = next()) && token->getType() != CPT_NEWLINE &&
                   token->getType() != CPT_EOF)
                keep(skipped, token);
            if (directive && token && token->getType() == CPT_NEWLINE) keep(skipped, token);
            if (token && token->getType() == CPT_EOF) break;
            token = next();
        }
        if (!token) {
            for (Token* t : skipped) t->release();
            return nullptr;
        }
        for (unsigned i = 0; i < skipped.count(); ++i) {
            token->insertWhitespace(skipped[i], int(i));  // the directives come first
            skipped[i]->release();
        }
        CPParseNodeType t = token->getType();
        if ((t >= CPT_kw_define && t <= CPT_kw_undef) || (t >= CPT_kw___cplusplus && t <= CPT_kw___TIMESTAMP__))
            token->setType(CPT_IDENTIFIER);
        return token;
    }

private:
    static void keep(TokenList& list, Token* token) {
        token->addRef();
        list.add(token);
    }
};

void flush(QBString& out) {
    if (out.isNotEmpty()) qbRefactorOutput(out.get());
    out.makeEmpty();
}

}  // namespace

// Parses a file and prints its tree through qbRefactorOutput (options 0), or compares the text of
// the tree with the file (1: 0 when equal, 1 when not), or prints the messages (2). Gives the
// number of errors behind that in the high bits: status = result + 2 * errors for options 1.
QBREFACTOR_EXPORT int qbRefactorTreeFile(const char* fileName, int options) {
    BPSourceHandle source;
    if (int rc = source.load(QBString(fileName))) return rc;
    CPLexer* lexer = new (std::nothrow) CPLexer(source, 0);
    if (!lexer) return -8;
    lexer->addRef();
    CPWhitespaceFilter* filter = new (std::nothrow) CPWhitespaceFilter(lexer);
    CPDirectiveSkipper* skipper = filter ? new (std::nothrow) CPDirectiveSkipper(filter) : nullptr;
    int rc = -8;
    if (skipper) {
        skipper->addRef();
        CPParseTree* unit = cpParseCompilationUnit(*skipper);
        if (unit) {
            unit->addRef();
            QBString out("");
            if (options == TREE_ROUNDTRIP) {
                unit->getText(out);
                bool same = out.length() == source->length &&
                            (out.length() == 0 || std::memcmp(out.get(), source->begin, out.length()) == 0);
                rc = (same ? 0 : 1) + (unit->hasError() ? 2 : 0);
            } else {
                if (options == TREE_ERRORS) unit->appendErrors(out);
                else unit->printToString(out, 0, false);
                flush(out);
                rc = unit->hasError() ? 1 : 0;
            }
            unit->release();
        }
        skipper->release();
    } else if (filter) {
        delete filter;
    }
    lexer->release();
    return rc;
}
