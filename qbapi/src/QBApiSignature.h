// Reading a command signature as the module registers it:
//   [_command] int|void module:name(type name [QBDEFAULT(value)], ...)
// with type one of int, QBPSZ, QBHREFVAR.
#pragma once

#include <string>
#include <vector>

#include "qbapi_host.h"

namespace qbapi {

struct Param {
    int type = QBPARAM_INT;
    std::string name;
    bool hasDefault = false;
    std::string defaultText;
};

struct Signature {
    std::string text;
    std::string module;
    std::string name;
    bool isCommand = false;
    bool returnsVoid = false;
    std::vector<Param> params;
};

// 0, or qbmsg::BadSignature with out left in an unspecified state.
int parseSignature(const char* text, Signature& out);

// The value a default stands for: NULL and 0 give 0, numbers their value.
long long defaultValue(const std::string& text);

}  // namespace qbapi
