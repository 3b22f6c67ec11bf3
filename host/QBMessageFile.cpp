#include "QBMessageFile.h"

#include <cstdio>
#include <cstring>

#include "QBArray.h"
#include "QBString.h"
#include "qbapi.h"
#include "qbmessagefile.h"

using quernbase::QBArray;
using quernbase::QBString;

namespace {

enum { PATH_LIMIT = 512, PARAMETER_COUNT = 10, PARAMETER_LIMIT = 1024 };

char messageFilePath[PATH_LIMIT + 1];
bool needsLoad = true;
char* contents = nullptr;            // the whole file, on the host's heap
QBArray<const char*> texts;          // by the positive form of the number
const char* loadFailure = nullptr;   // the fallback text when the file couldn't be used
char parameters[PARAMETER_COUNT][PARAMETER_LIMIT];
QBString output;

int addText(int code, const char* text) {
    unsigned index = unsigned(-int64_t(code));
    while (texts.count() <= index)
        if (texts.add(nullptr) < 0) return qbmsg::OutOfMemory;
    texts[index] = text;
    return 0;
}

// Reads the file once; a failure leaves the text that every request then gives.
void load() {
    needsLoad = false;
    QBString data;
    if (qbReadFileToString(QBString(messageFilePath), data, 0, 0, 2) < 0) {
        loadFailure = qbmessagefile::failureText(qbmessagefile::UNREADABLE);
        return;
    }
    contents = static_cast<char*>(qbAlloc(data.length() + 1));
    if (!contents) {
        loadFailure = qbmessagefile::failureText(qbmessagefile::INVALID);
        return;
    }
    std::memcpy(contents, data.get(), data.length());
    contents[data.length()] = 0;
    auto status = qbmessagefile::forEachEntry(
        contents, data.length(), [](int code, const char* text) { addText(code, text); });
    loadFailure = qbmessagefile::failureText(status);
}

void appendParameter(char slot) {
    if (slot >= '0' && slot <= '9') {
        output.append(parameters[slot - '0']);
        return;
    }
    output.append("%s");
    output.append(slot);
    output.append(" index too large");
}

// %% is %, %s<digit> a parameter, any other % stands for itself.
void expand(const char* text) {
    output = "";
    for (const char* p = text; *p; ++p) {
        if (*p != '%') {
            output.append(*p);
        } else if (p[1] == '%') {
            output.append('%');
            ++p;
        } else if (p[1] == 's' && p[2]) {
            appendParameter(p[2]);
            p += 2;
        } else {
            output.append('%');
        }
    }
}

const char* textOf(int code) {
    unsigned index = code > 0 ? 0u : unsigned(-int64_t(code));
    const char* text = index < texts.count() ? texts[index] : nullptr;
    if (!text && texts.count() > 0) text = texts[0];
    return text ? text : "";
}

}  // namespace

const char* getMessage(int code) {
    if (needsLoad) load();
    if (loadFailure) {
        char line[PATH_LIMIT + 64];
        std::snprintf(line, sizeof line, loadFailure, messageFilePath);
        output = line;
        return output.get() ? output.get() : "";
    }
    expand(textOf(code));
    return output.get() ? output.get() : "";
}

void setMessageParameter(int index, const char* text) {
    if (index < 0 || index >= PARAMETER_COUNT) return;
    std::snprintf(parameters[index], PARAMETER_LIMIT, "%s", text ? text : "");
}

void setMessageFilePath(const char* path) {
    std::snprintf(messageFilePath, sizeof messageFilePath, "%s", path ? path : "");
    messageFilePath[PATH_LIMIT] = 0;
    if (contents) qbFree(contents);
    contents = nullptr;
    texts.clear();
    loadFailure = nullptr;
    needsLoad = true;
}

void formMessageFilePath(const char* modulePath) {
    QBString root = qbpsGetEnv("QBROOT");
    if (root.isEmpty()) root = modulePath && *modulePath ? modulePath : ".";
    root.append("qbedit.qbb");
    setMessageFilePath(root.get());
}

const char* getMessageFilePath() { return messageFilePath; }
