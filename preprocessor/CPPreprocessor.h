// CPPreprocessor: the token source between the lexer and the parser.
//
// On the first request it reads the whole file into a source tree (every directive, text run,
// macro call and every branch of every conditional), runs that tree once into an output tree,
// and from then on serves the output tree's leaves, each wrapped as a CPPreprocessedToken that
// leads back to what was written. Both trees live as long as this object.
#pragma once

#include <cstdint>

#include "BPSourceCache.h"
#include "CPMacroTable.h"
#include "CPParseNodeType.h"
#include "QBArray.h"
#include "QBString.h"
#include "TBPParseCache.h"
#include "TBPTokenSource.h"

class CPLexer;
class CPPreprocessorFilter;
class CPPreprocessorInclude;
class CPPreprocessorMacro;
class CPPreprocessorUnit;

// What the preprocessor asks of the parser that owns it: the cancel flag and the host's
// callbacks. A negative answer of a callback cancels.
class CPPreprocessorHost {
public:
    virtual ~CPPreprocessorHost() = default;
    virtual bool isCancelled() const = 0;
    virtual int reportMessage(const char* text, int flag) = 0;
    virtual int reportProgress(int64_t current, int64_t total, int phase) = 0;
    // 0 with the path of includeName in buffer; anything else when the host has none.
    virtual int locateFile(const char* includeName, char* buffer, int size) = 0;
};

class CPPreprocessor : public TBPTokenFilter<CPParseNodeType> {
public:
    typedef TBPToken<CPParseNodeType> Token;
    // Evaluates the expanded tokens of an #if or #elif condition (the grammar's expression
    // routine, installed by the parser layer). status < 0 marks the condition false.
    typedef int64_t (*IfEvaluator)(CPPreprocessor* pp, CPPreprocessorFilter* tokens, int& status);

    explicit CPPreprocessor(TBPTokenSource<CPParseNodeType>* source,
                            CPPreprocessorHost* host = nullptr);
    ~CPPreprocessor() override;

    Token* readToken() override;

    // Settings; all before the first token.
    int addUserIncludePath(const quernbase::QBString& path);
    int addSystemIncludePath(const quernbase::QBString& path);
    int setConfigFile(const char* path);
    void setSourceCache(BPSourceCache* cache) { BPRefCountObject::assign(sourceCache, cache); }
    // -Dname[=value][,...], -Uname[,...], a bare name[=value]; quotes around it are dropped.
    int addDefineOption(const quernbase::QBString& option);
    // Whether the file and its headers are C: every lexer made here then reads C's keywords.
    void setReadsC(bool c) { readsC = c; }
    bool getReadsC() const { return readsC; }
    // A lexer on source in the given mode, for the file's language; null when out of memory.
    CPLexer* makeLexer(const BPSourceHandle& source, int mode) const;

    // The two trees, made on demand. 0, or a negative status.
    int readSourceTree();
    int run();
    CPPreprocessorUnit* getSourceTree() const { return sourceTree; }
    CPPreprocessorUnit* getOutputTree() const { return outputTree; }
    unsigned getTokenCount() const { return tokenCount; }

    int collectErrors(TBPErrorLog<CPParseNodeType>& log);
    // Whether a tree of the file carries an error: its source and output trees, and the source
    // trees of its headers and configuration header.
    bool hasErrors() const;
    // The served tokens as text: macros expanded, active branches only, with #line markers on
    // file and line changes when asked. The caller adds the final newline.
    int writePreprocessedText(quernbase::QBString& out, bool addLineMarkers);

    // For the node family.
    CPMacroTable& getMacroTable() { return macroTable; }
    BPSourceCache* getSourceCache();
    // The source trees of the headers read so far, by path; made on first use.
    TBPParseCache<CPParseNodeType>* getParseCache();
    const quernbase::QBString& getDateText() const { return dateText; }
    const quernbase::QBString& getTimeText() const { return timeText; }
    const quernbase::QBArray<quernbase::QBString>& getUserIncludePaths() const {
        return userIncludePaths;
    }
    const quernbase::QBArray<quernbase::QBString>& getSystemIncludePaths() const {
        return systemIncludePaths;
    }
    CPPreprocessorHost* getHost() const { return host; }
    // Expansions nest by recursion (a body's call runs inside the body); past the limit a
    // call is left as written, with an error.
    bool mayExpandDeeper() const { return expansionDepth < MAX_EXPANSION_DEPTH; }
    void enterExpansion() { ++expansionDepth; }
    void leaveExpansion() { --expansionDepth; }
    bool isCancelled() const { return host && host->isCancelled(); }

    static void setIfEvaluator(IfEvaluator evaluator) { ifEvaluator = evaluator; }
    static IfEvaluator getIfEvaluator() { return ifEvaluator; }

private:
    quernbase::QBArray<quernbase::QBString> userIncludePaths;
    quernbase::QBArray<quernbase::QBString> systemIncludePaths;
    CPMacroTable macroTable;
    BPSourceCache* sourceCache = nullptr;  // counted
    TBPParseCache<CPParseNodeType>* parseCache = nullptr;  // counted
    quernbase::QBString dateText;
    quernbase::QBString timeText;
    quernbase::QBString configFile;
    CPPreprocessorUnit* sourceTree = nullptr;  // counted
    CPPreprocessorUnit* outputTree = nullptr;  // counted
    class CPOutputWalker* walker = nullptr;
    unsigned tokenCount = 0;
    enum { MAX_EXPANSION_DEPTH = 1000 };
    int expansionDepth = 0;
    uint64_t served = 0;
    bool readsC = false;
    CPPreprocessorHost* host;

    static inline IfEvaluator ifEvaluator = nullptr;

    void formatDateAndTime();
    int addOneDefine(const quernbase::QBString& piece);
    int undefineNames(const quernbase::QBString& names);
    int reportMessageCode(int code);
    Token* nextServedToken();
};
