// qbRefactorLexFile: what the front end sees of a file, for people and for round-trip checks.
// Not a macro command: the command-line host finds it by name.
#include <cstring>

#include "BPSourceText.h"
#include "CPLexer.h"
#include "CPWhitespaceFilter.h"
#include "QBRefactorExport.h"

using quernbase::QBString;

QBREFACTOR_EXPORT int qbRefactorOutput(const char* text);

namespace {

enum { LEX_FILTERED = 1, LEX_EMIT = 2, LEX_ROUNDTRIP = 4 };
typedef TBPToken<CPParseNodeType> Token;

// The spelling with line ends, quotes, backslashes and unprintable bytes escaped.
void appendPrintable(QBString& out, const Token* token) {
    QBString spelling;
    token->getSpellingInto(spelling);
    static const char hex[] = "0123456789abcdef";
    for (unsigned i = 0; i < spelling.length(); ++i) {
        unsigned char c = (unsigned char)spelling[i];
        switch (c) {
        case '\n': out.append("\\n"); break;
        case '\r': out.append("\\r"); break;
        case '\t': out.append("\\t"); break;
        case '\\': out.append("\\\\"); break;
        case '"': out.append("\\\""); break;
        default:
            if (c >= 32 && c < 127) {
                out.append(char(c));
            } else {
                char esc[5] = {'\\', 'x', hex[c >> 4], hex[c & 15], 0};
                out.append(esc);
            }
        }
    }
}

// KIND number @seek line:column "spelling" [whitespace count] diagnostics
void appendTokenLine(QBString& out, const Token* token, bool filtered) {
    const char* name = cpTokenKindName(token->getType());
    out.append(name ? name : "CUSTOM");
    out.append(' ');
    out.appendNumber(int32_t(token->getType()), 10);
    out.append(" @");
    out.appendNumber(uint32_t(token->getSeekPosition()), 10);
    out.append(' ');
    out.appendNumber(uint32_t(token->getLine()), 10);
    out.append(':');
    out.appendNumber(uint32_t(token->getColumn(0)), 10);
    out.append(" \"");
    appendPrintable(out, token);
    out.append('"');
    if (filtered && token->getWhitespaceCount()) {
        out.append(" +");
        out.appendNumber(uint32_t(token->getWhitespaceCount()), 10);
        out.append(" whitespace");
    }
    QBString errors;
    token->appendErrors(errors);
    if (errors.isNotEmpty()) {
        out.append("  ");
        out.append(errors);
        while (out.last_char() == '\n') out.trim(1);
    }
    out.append('\n');
}

// Large outputs go to the host in pieces.
void flushIfLarge(QBString& out, bool force) {
    if (out.isEmpty() || (!force && out.length() < 65536)) return;
    qbRefactorOutput(out.get());
    out.makeEmpty();
}

int walk(TBPTokenSource<CPParseNodeType>& source, int options, QBString& text) {
    QBString out("");
    const bool filtered = options & LEX_FILTERED;
    const bool listing = !(options & (LEX_EMIT | LEX_ROUNDTRIP));
    for (;;) {
        Token* token = source.nextToken();
        if (!token) break;
        if (listing) {
            appendTokenLine(out, token, filtered);
            flushIfLarge(out, false);
        } else if (int rc = token->getText(text)) {
            return rc;
        }
        if (token->getType() == CPT_EOF) break;
    }
    flushIfLarge(out, true);
    return 0;
}

}  // namespace

// Lists the tokens of a file through qbRefactorOutput; with LEX_EMIT copies the text made again
// from them into buffer (when it fits: files may hold zero bytes) and returns its length; with
// LEX_ROUNDTRIP compares that text with the file: 0 when equal, 1 when not. Round trips go
// through the whitespace filter, as the parser reads. A file that can't be read gives its status.
QBREFACTOR_EXPORT int qbRefactorLexFile(const char* fileName, int options, char* buffer,
                                        int size) {
    BPSourceHandle source;
    if (int rc = source.load(QBString(fileName))) return rc;
    if (options & LEX_ROUNDTRIP) options |= LEX_FILTERED;
    CPLexer* lexer = new (std::nothrow) CPLexer(source, 0);
    if (!lexer) return qbmsg::OutOfMemory;
    lexer->addRef();
    TBPTokenSource<CPParseNodeType>* stream = lexer;
    if (options & LEX_FILTERED) {
        stream = new (std::nothrow) CPWhitespaceFilter(lexer);
        if (!stream) {
            lexer->release();
            return qbmsg::OutOfMemory;
        }
        stream->addRef();
    }
    QBString text("");
    int rc = walk(*stream, options, text);
    if (rc == 0 && (options & LEX_EMIT)) {
        if (buffer && text.length() <= unsigned(size > 0 ? size : 0))
            std::memcpy(buffer, text.get(), text.length());
        rc = int(text.length());
    }
    if (rc == 0 && (options & LEX_ROUNDTRIP))
        rc = text.length() == source->length &&
                     (text.length() == 0 || std::memcmp(text.get(), source->begin, text.length()) == 0)
                 ? 0
                 : 1;
    if (stream != lexer) stream->release();
    lexer->release();
    return rc;
}
