// The host's own reading of its message file, for statuses it shows to the user.
#include <cstdio>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "qbapi_host.h"
#include "qbmessagefile.h"

namespace {

struct MessageTexts {
    bool loaded = false;
    std::string path;
    std::string failure;
    std::map<int, std::string> byCode;
};

MessageTexts& texts() {
    static MessageTexts* t = new MessageTexts;
    return *t;
}

void load(MessageTexts& t) {
    t.loaded = true;
    quernbase::QBString root = qbpsGetEnv("QBROOT");
    t.path = std::string(root.isEmpty() ? "" : root.get()) + "qbedit.qbb";
    quernbase::QBString data;
    auto status = qbmessagefile::UNREADABLE;
    if (qbReadFileToString(quernbase::QBString(t.path.c_str()), data, 0, 0, 2) >= 0)
        status = qbmessagefile::forEachEntry(
            data.get(), data.length(),
            [&](int code, const char* text) { t.byCode[code] = text; });
    if (const char* failure = qbmessagefile::failureText(status)) {
        std::vector<char> line(std::strlen(failure) + t.path.size() + 1);
        std::snprintf(line.data(), line.size(), failure, t.path.c_str());
        t.failure = line.data();
    }
}

}  // namespace

extern "C" const char* qbHostMessageText(int code) {
    MessageTexts& t = texts();
    if (!t.loaded) load(t);
    if (!t.failure.empty()) return t.failure.c_str();
    auto it = t.byCode.find(code > 0 ? 0 : code);
    if (it == t.byCode.end()) it = t.byCode.find(0);
    return it == t.byCode.end() ? "" : it->second.c_str();
}
