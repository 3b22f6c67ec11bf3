// A log's messages as "file:line:column:code:argument", one a line, the file by its last part
// only and the message's first argument; a warning says so behind. A test that compares these
// sees where each message stands and what it names, not only its number.
#pragma once

#include <string>

#include "CPParseNodeType.h"
#include "TBPErrorLog.h"

inline std::string messageLines(const TBPErrorLog<CPParseNodeType>& log) {
    std::string text;
    for (int i = 0; i < log.getCount(); ++i) {
        const TBPErrorInfo<CPParseNodeType>* r = log.getRecord(i);
        auto argument = [r](unsigned a) {
            bool given = a < r->arguments.count() && !r->arguments[a].isNull();
            return given ? std::string(r->arguments[a].get()) : std::string();
        };
        std::string file = argument(0);
        text += file.substr(file.rfind('/') + 1);
        for (unsigned a = 1; a <= 4; ++a) text += ":" + argument(a);
        text += r->isWarning() ? " (warning)\n" : "\n";
    }
    return text;
}
