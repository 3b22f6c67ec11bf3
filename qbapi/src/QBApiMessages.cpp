// The host's own reading of its message file, for statuses it shows to the user.
#include <cstdio>
#include <map>
#include <string>

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
    if (qbReadFileToString(quernbase::QBString(t.path.c_str()), data, 0, 0, 2) < 0) {
        t.failure = "Unable to open message file '" + t.path + "' not found";
        return;
    }
    auto status = qbmessagefile::forEachEntry(
        data.get(), data.length(),
        [&](int code, const char* text) { t.byCode[code] = text; });
    if (status == qbmessagefile::EMPTY) t.failure = "Message file '" + t.path + "' empty";
    else if (status != qbmessagefile::VALID) t.failure = "Message file '" + t.path + "' not valid";
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
