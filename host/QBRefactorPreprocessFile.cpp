// qbRefactorPreprocessorSourceFile: a file's source tree on its own, for people and for round-trip
// checks. Only the reading half of the preprocessor runs, so no include is opened and no macro
// expanded: every branch of every conditional is in the tree, and the tree must give back the
// file byte for byte. Not a macro command: the command-line host finds it by name.
#include <climits>
#include <cstring>
#include <new>

#include "BPSourceText.h"
#include "CPLexer.h"
#include "CPPreprocessor.h"
#include "CPPreprocessorNodes.h"
#include "QBRefactorExport.h"
#include "QBMessageCodes.h"

using quernbase::QBString;

QBREFACTOR_EXPORT int qbRefactorOutput(const char* text);

namespace {

enum { SOURCE_PRINT = 0, SOURCE_EMIT = 1, SOURCE_ROUNDTRIP = 2 };
enum { RESULT_DIFFERS = 1, RESULT_ERRORS = 2 };

// A lexer and a preprocessor over one loaded file, released together.
class SourceTreeReader {
public:
    SourceTreeReader() = default;
    SourceTreeReader(const SourceTreeReader&) = delete;
    SourceTreeReader& operator=(const SourceTreeReader&) = delete;
    ~SourceTreeReader() {
        if (preprocessor) preprocessor->release();
        if (lexer) lexer->release();
    }

    // 0 with the tree read, or a negative status.
    int read(const BPSourceHandle& source) {
        lexer = new (std::nothrow) CPLexer(source, 0);
        if (!lexer) return qbmsg::OutOfMemory;
        lexer->addRef();
        preprocessor = new (std::nothrow) CPPreprocessor(lexer);
        if (!preprocessor) return qbmsg::OutOfMemory;
        preprocessor->addRef();
        int rc = preprocessor->readSourceTree();
        if (rc == 0 && !preprocessor->getSourceTree()) rc = qbmsg::OutOfMemory;
        return rc;
    }
    CPPreprocessorUnit* tree() const { return preprocessor->getSourceTree(); }

private:
    CPLexer* lexer = nullptr;
    CPPreprocessor* preprocessor = nullptr;
};

bool sameBytes(const QBString& text, const BPSourceText& source) {
    return text.length() == source.length &&
           (text.length() == 0 || std::memcmp(text.get(), source.begin, text.length()) == 0);
}

int printTree(CPPreprocessorUnit& tree) {
    QBString out("");
    if (tree.printToString(out, 0, false) != 0) return qbmsg::OutOfMemory;
    qbRefactorOutput(out.get());
    return 0;
}

// The text's length, with the text in buffer when it fits (it may hold zero bytes).
int emitText(const QBString& text, char* buffer, int size) {
    if (text.length() > unsigned(INT_MAX)) return qbmsg::OutOfMemory;
    if (buffer && size > 0 && text.length() > 0 && text.length() <= unsigned(size))
        std::memcpy(buffer, text.get(), text.length());
    return int(text.length());
}

}  // namespace

// Reads a file's source tree and prints it through qbRefactorOutput (options 0), or copies the
// tree's text into buffer and gives its length, which may exceed size: then call again with a
// larger buffer (1), or compares that text with the file (2). Printing and comparing give bit 0
// when the text differs and bit 1 when the tree carries errors. A file that can't be read, or
// an unknown option, gives its status.
QBREFACTOR_EXPORT int qbRefactorPreprocessorSourceFile(const char* fileName, int options,
                                                       char* buffer, int size) {
    if (!fileName || options < SOURCE_PRINT || options > SOURCE_ROUNDTRIP)
        return qbmsg::InvalidArgument;
    BPSourceHandle source;
    if (int rc = source.load(QBString(fileName))) return rc;
    SourceTreeReader reader;
    if (int rc = reader.read(source)) return rc;
    CPPreprocessorUnit& tree = *reader.tree();
    int errors = tree.hasError() ? RESULT_ERRORS : 0;
    if (options == SOURCE_PRINT) {
        int rc = printTree(tree);
        return rc < 0 ? rc : errors;
    }
    QBString text("");
    if (tree.getText(text) < 0) return qbmsg::OutOfMemory;
    if (options == SOURCE_EMIT) return emitText(text, buffer, size);
    return (sameBytes(text, *source.get()) ? 0 : RESULT_DIFFERS) | errors;
}
