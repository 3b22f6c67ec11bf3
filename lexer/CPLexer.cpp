#include "CPLexer.h"

#include <cstring>

#include "CPPreprocessorToken.h"
#include "CPScanner.h"

CPLexer::CPLexer(const BPSourceHandle& source, int mode)
    : TBPLexer<CPParseNodeType>(source, mode) {
    TBPParseNode<CPParseNodeType>::setTypeNameFunction(cpParseNodeTypeName);
}

CPLexer::~CPLexer() = default;

int CPLexer::kindInC(int kind, const char* start, const char* end) const {
    if (cpTokenHas(kind, CPTK_CXX_ONLY)) return CPT_IDENTIFIER;
    if (kind == CPT_IDENTIFIER && end - start == 5 && std::memcmp(start, "_Bool", 5) == 0)
        return CPT_kw_bool;
    return kind;
}

bool CPLexer::isIdentifierChar(int c) const { return cpIsIdentifierChar((unsigned char)c); }

TBPToken<CPParseNodeType>* CPLexer::makeToken(CPParseNodeType type,
                                              const BPSourcePosition& position, uint32_t length,
                                              const BPSourcePosition& filePosition) {
    return new (std::nothrow) CPPreprocessorToken(type, position, length, filePosition);
}

CPParseNodeType CPLexer::scanToken() {
    const char* end = top ? top->source->end : nullptr;
    if (!end || top->cursor >= end) {
        // Normally the base stops at the terminator; a scan that starts there ends its source.
        if (getSourceCount() < 2) return CPT_EOF;
        popSource();
        return CPT_EOS;
    }
    CPScanCursor scan{top->cursor, end, top->line, 0, 0};
    int kind = cpScanToken(scan);
    if (readsC) kind = kindInC(kind, top->cursor, scan.cursor);
    top->cursor = scan.cursor;
    top->line = scan.line;
    if (scan.pendingError) pendingError = scan.pendingError;
    if (scan.pendingWarning) pendingWarning = scan.pendingWarning;
    if (kind == CPT_NEWLINE && (mode & BPLEX_LINE_START_HOOK)) onLineStart();
    return CPParseNodeType(kind);
}
