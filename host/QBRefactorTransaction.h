// QBRefactorTransaction: the unit of work between the host and the engine. A set of files, each
// with its own parser, plus the new text of every changed file and the messages of every file
// that failed. Nothing in it survives it; no parse tree is kept from one file to the next.
#pragma once

#include "BPRefCountObject.h"
#include "QBArray.h"
#include "QBHashTable.h"
#include "QBMemory.h"
#include "QBString.h"
#include "TBPParseCache.h"
#include "CPParseNodeType.h"

class BPSourceCache;
class CPParser;

class QBRefactorTransaction : public quernbase::QBMemory {
public:
    typedef quernbase::QBString QBString;
    typedef quernbase::QBArray<QBString> QBStringArray;

    explicit QBRefactorTransaction(int id);
    ~QBRefactorTransaction();
    QBRefactorTransaction(const QBRefactorTransaction&) = delete;
    QBRefactorTransaction& operator=(const QBRefactorTransaction&) = delete;

    // False when a table or the parser block could not be allocated.
    bool isComplete() const;

    int id;
    quernbase::QBArray<CPParser*> parsers;
    // Shared by every parser of the transaction, so each text is read once (counted).
    BPSourceCache* sourceCache = nullptr;
    // Made and released with the transaction; each preprocessor keeps a tree cache of its own.
    TBPParseCache<CPParseNodeType>* parseCache = nullptr;
    quernbase::QBHashTable<QBString, QBString> modifiedFiles;
    quernbase::QBHashTable<QBString, QBStringArray> errorFiles;
    BPRefCountObject* refactoringData = nullptr;

    void setRefactoringData(BPRefCountObject* data) { BPRefCountObject::assign(refactoringData, data); }
    int setModifiedFile(const QBString& name, const QBString& text);

    // The first live parser with that file name, or null with index -1.
    CPParser* findParser(const QBString& fileName, int& index) const;
    int addFile(const QBString& fileName, const QBString& userIncludePath,
                const QBString& systemIncludePath, const QBString& defineOptions,
                const QBString& compilerConfig, int slot);
    int removeFile(const QBString& fileName);
    int releaseParser(int index);
    int reloadParser(int index);
    int storeErrors(CPParser* parser);
};

// Parsers run in the order of extension, then name, both ignoring case; nulls go last.
int compareParsers(CPParser* const& a, CPParser* const& b);
// The platform's file name rule; 0 for equal.
int compareFileNames(quernbase::QBString a, quernbase::QBString b);

// The global list of open transactions.
QBRefactorTransaction* findTransaction(int handle);
int beginTransaction();
int commitTransaction(int handle);
int cancelTransaction(int handle);
