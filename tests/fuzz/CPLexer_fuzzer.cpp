// libFuzzer target: any bytes, through the lexer alone and behind the whitespace filter, with a
// mark and rollback in the middle, must come back byte for byte, without a crash or a leak.
// Build and run: scripts/fuzz-lexer.sh [seconds]
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "BPSourceText.h"
#include "CPLexer.h"
#include "CPWhitespaceFilter.h"

namespace {

typedef TBPToken<CPParseNodeType> Token;

quernbase::QBString drain(TBPTokenSource<CPParseNodeType>* source, size_t markAt) {
    quernbase::QBString text("");
    size_t n = 0;
    bool marked = false;
    for (Token* t = source->nextToken(); t; t = source->nextToken()) {
        if (n++ == markAt && !marked) {  // read a little ahead and take it back
            marked = true;
            source->mark();
            source->nextToken();
            source->nextToken();
            source->rollback();
            t = source->currentToken();
        }
        t->getText(text);
        if (t->getType() == CPT_EOF) break;
    }
    return text;
}

void check(const uint8_t* data, size_t size, bool filtered) {
    BPSourceHandle source;
    if (source.setText(quernbase::QBString(reinterpret_cast<const char*>(data), unsigned(size))))
        return;
    CPLexer* lexer = new CPLexer(source, 0);
    lexer->addRef();
    TBPTokenSource<CPParseNodeType>* stream = lexer;
    if (filtered) {
        stream = new CPWhitespaceFilter(lexer);
        stream->addRef();
    }
    quernbase::QBString text = drain(stream, size % 7);
    if (text.length() != size || (size && std::memcmp(text.get(), data, size) != 0)) std::abort();
    if (stream != lexer) stream->release();
    lexer->release();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    check(data, size, false);
    check(data, size, true);
    return 0;
}
