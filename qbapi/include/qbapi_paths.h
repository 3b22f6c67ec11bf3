// Path operations of the file access layer.
//
// Separators are '/' (and '\\' on Windows). A path may carry a drive: "X:" or, for a network
// path, "//server/share". Paths on different drives have no relative form.
#pragma once

#include "QBString.h"

enum {
    // relativePath may climb out of base with ".." steps; without it a path outside base comes
    // back unchanged.
    QBPATH_CLIMB = 1,
};

// path made absolute against base (the current directory when base is empty), with "." and ".."
// steps and repeated separators resolved. An empty path comes back as it is.
quernbase::QBString absolutePath(const quernbase::QBString& path, const quernbase::QBString& base);

// path relative to the directory base. Both are made absolute first. The path comes back
// unchanged when it lies on another drive than base, or outside base without QBPATH_CLIMB.
quernbase::QBString relativePath(const quernbase::QBString& path, const quernbase::QBString& base,
                                 int flags);
