// Writing a file so that it is never left half-written: the text goes to a temporary beside the
// file, which takes the file's permissions and is renamed over it on close. An interrupted write
// leaves the old text in place.
#pragma once

#include "QBString.h"

class QBReplacingFile {
public:
    QBReplacingFile() = default;
    ~QBReplacingFile() { abandon(); }
    QBReplacingFile(const QBReplacingFile&) = delete;
    QBReplacingFile& operator=(const QBReplacingFile&) = delete;

    // A handle of 0 or more, FileNotFound (no such folder) or CannotOpenForWriting (not writable).
    int open(const quernbase::QBString& path);
    // The number of bytes written; fewer than asked means failure.
    unsigned write(const char* data, unsigned length);
    // Puts the new text in place; negative if that fails, and the old text stays.
    int close();
    // Drops the temporary; the file stays as it was.
    void abandon();

private:
    int fd = -1;
    quernbase::QBString target;
    quernbase::QBString temporary;
};
