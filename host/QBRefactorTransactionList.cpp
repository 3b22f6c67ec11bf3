// The open transactions of the process, and the two ways a transaction ends.
#include <new>

#include "QBRefactorCallbacks.h"
#include "QBMessageCodes.h"
#include "QBRefactorTransaction.h"
#include "QBReplacingFile.h"

using quernbase::QBArray;
using quernbase::QBString;

namespace {

QBArray<QBRefactorTransaction*> transactions;
int nextTransactionId = 0;

int indexOf(int handle) {
    for (unsigned i = 0; i < transactions.count(); ++i) {
        QBRefactorTransaction* t = transactions[i];
        if (!t) break;
        if (t->id == handle) return int(i);
    }
    return -1;
}

void destroyAt(int index) {
    QBRefactorTransaction* t = transactions[unsigned(index)];
    transactions.removeAt(unsigned(index));
    delete t;
}

// One file of a commit. What the result becomes follows the file layer's old contract: a failed
// open or a lost text is a failure, while a failed write or close leaves the handle (0 or more)
// as the result. Either way the file on disk keeps its old text unless all went well.
int writeOne(QBRefactorTransaction* t, const QBString& name, int number, int count,
             int result) {
    const QBString* text = t->modifiedFiles.find(name);
    if (!text) return qbmsg::NoParser;
    qbRefactorFileMessage(name.get(), number, count);
    if (sendMessage(qbmsg::WritingFile) < 0) return qbmsg::Cancelled;
    QBReplacingFile file;
    int handle = file.open(name);
    if (handle < 0) return handle;
    if (file.write(text->get(), text->length()) < text->length()) {
        file.abandon();
        return handle;
    }
    if (file.close() < 0) return handle;
    return result;
}

}  // namespace

QBRefactorTransaction* findTransaction(int handle) {
    int i = indexOf(handle);
    return i < 0 ? nullptr : transactions[unsigned(i)];
}

int beginTransaction() {
    // A handle is never reused, even one whose transaction failed to come about.
    QBRefactorTransaction* t = new (std::nothrow) QBRefactorTransaction(nextTransactionId++);
    if (!t) return qbmsg::OutOfMemory;
    if (!t->isComplete()) {
        delete t;
        return qbmsg::OutOfMemory;
    }
    if (transactions.add(t) < 0) {
        delete t;
        return qbmsg::OutOfMemory;
    }
    return t->id;
}

// A cancel by the host stops the walk before the next file is touched.
int commitTransaction(int handle) {
    int index = indexOf(handle);
    if (index < 0) return qbmsg::NoTransaction;
    QBRefactorTransaction* t = transactions[unsigned(index)];
    int count = t->modifiedFiles.count();
    QBString* names = t->modifiedFiles.keys();
    if (count > 0 && !names) return qbmsg::OutOfMemory;
    int result = 0;
    for (int i = 0; i < count; ++i) {
        result = writeOne(t, names[i], i + 1, count, result);
        if (result == qbmsg::Cancelled) break;
    }
    delete[] names;
    if (result < 0) return result;
    destroyAt(index);
    return 0;
}

int cancelTransaction(int handle) {
    int index = indexOf(handle);
    if (index < 0) return qbmsg::NoTransaction;
    destroyAt(index);
    return 0;
}
