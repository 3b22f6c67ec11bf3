// The preprocessed file as text: the served tokens, one line of output per written line that
// starts with a token, indented by bracket depth, with `#line` markers where the file or the
// line jumps. Tokens are spaced only where they would otherwise fuse.
#include "CPPreprocessedToken.h"
#include "CPPreprocessorFilter.h"
#include "CPPreprocessor.h"
#include "QBCharType.h"

using quernbase::QBString;

namespace {

enum { INDENT_STEP = 3 };

struct TextState {
    QBString& out;
    bool addLineMarkers;
    QBString lastFile;
    int64_t line = -1;
    int indent = 0;
};

bool isSymbolChar(char c) { return quernbase::QBCharType::getInstance().isCSym((unsigned char)c); }

// The token whose whitespace and place tell where a served token stood in the file.
TBPToken<CPParseNodeType>* placeOf(TBPToken<CPParseNodeType>* token) {
    CPPreprocessedToken* served = dynamic_cast<CPPreprocessedToken*>(token);
    TBPToken<CPParseNodeType>* written = served ? served->getWrittenToken() : nullptr;
    return written ? written : token;
}

bool startsLine(TBPToken<CPParseNodeType>* token) { return placeOf(token)->isFirstOnLine(); }

QBString spellingOf(TBPToken<CPParseNodeType>* token) {
    CPPreprocessedToken* served = dynamic_cast<CPPreprocessedToken*>(token);
    return served ? served->getSpelling() : token->getSpellingConst();
}

void newLine(TextState& s) {
    s.out.append('\n');
    if (s.indent > 0) s.out.pad(s.out.length() + unsigned(s.indent));
}

void fileMarker(TextState& s, const QBString& file, uint32_t line) {
    s.lastFile = file;
    s.line = line;
    if (!s.addLineMarkers) return;
    QBString path(file);
    path.replaceAll('\\', '/');
    s.out.append("\n\n#line ");
    s.out.append(int(line));
    s.out.append(" \"");
    s.out.append(path);
    s.out.append("\"\n");
}

void lineMarker(TextState& s, uint32_t line) {
    s.line = line;
    if (!s.addLineMarkers) return;
    s.out.append("\n\n#line ");
    s.out.append(int(line));
    s.out.append('\n');
}

// The first two characters of every longer punctuator and digraph in the token table, and of
// the two comment openers: neighbours that would fuse into one of those.
struct FusingPairs {
    bool pair[128][128] = {};
    FusingPairs() {
        for (int kind = 0; kind <= CPT_LAST_TOKEN; ++kind)
            if (!cpTokenHas(kind, CPTK_KEYWORD)) {
                add(cpTokenSpelling(kind));
                add(cpTokenDigraph(kind));
            }
        add("//");
        add("/*");
    }
    void add(const char* spelling) {
        if (spelling && spelling[0] && spelling[1])
            pair[(unsigned char)spelling[0] & 127][(unsigned char)spelling[1] & 127] = true;
    }
    bool fuse(char last, char first) const {
        unsigned a = (unsigned char)last, b = (unsigned char)first;
        return a < 128 && b < 128 && pair[a][b];
    }
};

// One blank where the two neighbours would read as another token: `+ ++x` must not print as
// `+++x`, nor `a / *p` as the start of a comment, nor `1 .5` as a number.
bool needsBlank(char last, char first) {
    static const FusingPairs fusing;
    if (isSymbolChar(last) && isSymbolChar(first)) return true;
    if (fusing.fuse(last, first)) return true;
    bool digitLast = last >= '0' && last <= '9', digitFirst = first >= '0' && first <= '9';
    return (digitLast && first == '.') || (last == '.' && digitFirst);
}

// File and line come from the written token, so an expansion stands where its call stands; a
// token from a pasted text or a command-line definition never switches files, and only a token
// that starts a line does.
void placeToken(TextState& s, TBPToken<CPParseNodeType>* token, const QBString& text) {
    TBPToken<CPParseNodeType>* place = placeOf(token);
    const BPSourceHandle& source = place->getPosition()->source;
    bool inFile = !source.isNull() && source->isFile();
    QBString file = inFile ? place->getFileName() : s.lastFile;
    uint32_t line = place->getLine();
    if (startsLine(token)) {
        ++s.line;
        bool sameLine = int64_t(line) == s.line;
        if (file != s.lastFile) fileMarker(s, file, line);
        else if (!sameLine && inFile) lineMarker(s, line);
        newLine(s);
    } else if (needsBlank(s.out.last_char(), text.first_char())) {
        s.out.append(' ');
    }
}

}  // namespace

int CPPreprocessor::writePreprocessedText(QBString& out, bool addLineMarkers) {
    if (out.makeNotNull() < 0) return qbmsg::OutOfMemory;
    TextState state{out, addLineMarkers, QBString(""), -1, 0};
    Token* token = currentToken();
    if (!token) return isCancelled() ? qbmsg::Cancelled : 0;
    if (token->getType() != CPT_EOF) {
        // The first token opens the file: it gets the marker and sets the line.
        QBString file = token->getFileName();
        unsigned start = out.length();
        fileMarker(state, file, token->getLine());
        if (addLineMarkers) out.remove(start, 2);
        out.append(spellingOf(token));
    }
    for (token = nextToken(); token && token->getType() != CPT_EOF; token = nextToken()) {
        int kind = token->getType();
        if (kind == CPT_RIGHT_BRACE || kind == CPT_RIGHT_BRACKET || kind == CPT_RIGHT_PAREN)
            state.indent -= INDENT_STEP;
        QBString text = spellingOf(token);
        placeToken(state, token, text);
        if (out.append(text) < 0) return qbmsg::OutOfMemory;
        if (kind == CPT_LEFT_BRACE || kind == CPT_LEFT_BRACKET || kind == CPT_LEFT_PAREN)
            state.indent += INDENT_STEP;
    }
    return isCancelled() ? qbmsg::Cancelled : 0;
}
