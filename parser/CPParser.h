// CPParser: what a transaction holds for one source file, and the driver of that file's front end.
//
// This is the parser's outer shell: its settings, its host callbacks with the cancel rule, its
// collected messages, and the stage calls of parse and preprocess. The front end behind it (the
// source cache, lexer, preprocessor, grammar and analysis) is not built yet; each stage that
// belongs to it says so where it would run, and produces nothing.
#pragma once

#include <cstdint>

#include "CPParseNodeType.h"
#include "QBArray.h"
#include "QBMemory.h"
#include "QBString.h"
#include "TBPErrorLog.h"

class BPSourceCache;

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

    // Preprocessor settings; they must all be given before the first parse.
    int addUserIncludePath(const quernbase::QBString& path);
    int addSystemIncludePath(const quernbase::QBString& path);
    int addDefineOption(const quernbase::QBString& option);
    int setConfigFile(const quernbase::QBString& path);
    void setSourceCache(BPSourceCache* cache) { sourceCache = cache; }
    const quernbase::QBArray<quernbase::QBString>& getUserIncludePaths() const { return userIncludePaths; }
    const quernbase::QBArray<quernbase::QBString>& getSystemIncludePaths() const { return systemIncludePaths; }
    const quernbase::QBString& getConfigFile() const { return configFile; }
    // True once the preprocessor has made its output tree: the file is parsed.
    bool hasOutputTree() const { return false; }

    // The pipeline
    int open(const quernbase::QBString& name);
    int parse();
    int preprocess(quernbase::QBString& out, bool addLineMarkers);
    int analyzeFirstPass();
    int analyzeSecondPass();

    // Collected messages
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
    int checkCancelled() const { return cancelled ? -2038 : 0; }

private:
    quernbase::QBString sourceText;
    bool sourceLoaded = false;
    BPSourceCache* sourceCache = nullptr;
    quernbase::QBArray<quernbase::QBString> userIncludePaths;
    quernbase::QBArray<quernbase::QBString> systemIncludePaths;
    quernbase::QBArray<quernbase::QBString> defines;
    quernbase::QBString configFile;
    TBPErrorLog<CPParseNodeType> errors;

    static int addIncludePath(quernbase::QBArray<quernbase::QBString>& list,
                              const quernbase::QBString& path);
};
