// CPParser: what a transaction holds for one source file, and the driver of that file's front end.
//
// It owns the pipeline of the file: the source text, the lexer and the preprocessor (both by
// value, so one allocation makes them), the compilation unit the grammar builds from the
// preprocessor's output, and the file's collected messages. The preprocessor reaches back here
// for the cancel flag and the host's callbacks.
//
// The new text of a file is its source tree's text, not that of the compilation unit: macro
// calls and inactive branches live only in the source tree.
#pragma once

#include <cstdint>

#include "BPSourceText.h"
#include "CPLexer.h"
#include "CPParseNodeType.h"
#include "CPPreprocessor.h"
#include "QBArray.h"
#include "QBMemory.h"
#include "QBString.h"
#include "TBPErrorLog.h"

class BPSourceCache;
class CPParseTree;
class CPPreprocessorUnit;

class CPParser : public quernbase::QBMemory {
public:
    typedef int (*MessageCallback)(const char* text, int flag);
    typedef int (*ProgressCallback)(int64_t current, int64_t total);
    typedef int (*LocateFileCallback)(int transactionId, const char* sourceFile,
                                      const char* includedFile, char* buffer, int size);

    CPParser();
    virtual ~CPParser();
    CPParser(const CPParser&) = delete;
    CPParser& operator=(const CPParser&) = delete;

    quernbase::QBString fileName;
    MessageCallback messageCallback = nullptr;
    ProgressCallback progressCallback = nullptr;
    LocateFileCallback locateFileCallback = nullptr;
    bool cancelled = false;
    quernbase::QBString defineOptions;
    int transactionId = -1;

    // Preprocessor settings; they must all be given before the first parse. An empty include
    // path is passed over.
    int addUserIncludePath(const quernbase::QBString& path);
    int addSystemIncludePath(const quernbase::QBString& path);
    int addDefineOption(const quernbase::QBString& option);
    int setConfigFile(const quernbase::QBString& path);
    void setSourceCache(BPSourceCache* cache) { preprocessor.setSourceCache(cache); }
    const quernbase::QBArray<quernbase::QBString>& getUserIncludePaths() const {
        return preprocessor.getUserIncludePaths();
    }
    const quernbase::QBArray<quernbase::QBString>& getSystemIncludePaths() const {
        return preprocessor.getSystemIncludePaths();
    }
    const quernbase::QBString& getConfigFile() const { return configFile; }
    // True once the preprocessor has made its output tree: the file is parsed.
    bool hasOutputTree() const { return preprocessor.getOutputTree() != nullptr; }

    // The pipeline. parse gives 0, SyntaxError when a tree has errors, Cancelled, or the load
    // status.
    int open(const quernbase::QBString& name);
    int parse(const quernbase::QBString& name);
    int parse() { return parse(fileName); }
    // The preprocessed text into out, with a final line feed; SyntaxError when a tree has errors.
    int preprocess(quernbase::QBString& out, bool addLineMarkers);
    int analyzeFirstPass();
    int analyzeSecondPass();

    // The trees, for the refactorings and tools.
    CPParseTree* getRoot() const { return root; }
    CPPreprocessor& getPreprocessor() { return preprocessor; }
    CPPreprocessorUnit* getSourceTree() const { return preprocessor.getSourceTree(); }

    // Collected messages: the load failure, then those of the source tree, the headers, the
    // output tree and the compilation unit.
    int collectAllErrors();
    int getErrorCount() const;
    int getWarningCount() const;
    int getErrorTexts(quernbase::QBArray<quernbase::QBString>& out) const;
    // A message about the file as a whole (one that can't be read): no line or column.
    int logError(int code, int severity, const quernbase::QBString& argument);

    // Host callbacks; a negative answer of the message or progress callback cancels the parser.
    int reportMessage(const char* text, int flag);
    int reportProgress(int64_t current, int64_t total, int phase);
    int locateFile(const char* includeName, char* buffer, int size);
    int checkCancelled() const { return cancelled ? qbmsg::Cancelled : 0; }

private:
    // The preprocessor's view of this parser.
    class Host : public CPPreprocessorHost {
    public:
        explicit Host(CPParser& owner) : parser(owner) {}
        bool isCancelled() const override { return parser.cancelled; }
        int reportMessage(const char* text, int flag) override;
        int reportProgress(int64_t current, int64_t total, int phase) override;
        int locateFile(const char* name, char* buffer, int size) override;

    private:
        CPParser& parser;
    };

    BPSourceHandle source;
    Host host;
    CPLexer lexer;
    CPPreprocessor preprocessor;
    CPParseTree* root = nullptr;  // counted
    TBPErrorLog<CPParseNodeType> errors;
    TBPErrorLog<CPParseNodeType> loadErrors;
    quernbase::QBString configFile;

    int treeStatus() const;
};
