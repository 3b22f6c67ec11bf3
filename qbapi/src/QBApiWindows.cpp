// Windows: text buffers by id, each with a cursor where inserted text goes.
#include <cstring>
#include <map>
#include <string>

#include "qbapi_host.h"

namespace {

struct Window {
    std::string text;
    size_t cursor = 0;
    bool hasEmptyFirstLine = false;  // an added line that holds no characters yet
};

struct Windows {
    std::map<int, Window> byId;
    int next = 1;
};

Windows& windows() {
    static Windows* w = new Windows;
    return *w;
}

Window* find(int wid) {
    auto it = windows().byId.find(wid);
    return it == windows().byId.end() ? nullptr : &it->second;
}

// Lines as an editor counts them: an empty buffer has none, and a last line without its line
// end still counts.
int lineCount(const Window& w) {
    if (w.text.empty()) return w.hasEmptyFirstLine ? 1 : 0;
    int lines = 0;
    for (char c : w.text)
        if (c == '\n') ++lines;
    return w.text.back() == '\n' ? lines : lines + 1;
}

}  // namespace

extern "C" {

int qbHostWindowCreate(const char* text) {
    Windows& all = windows();
    int wid = all.next++;
    Window& w = all.byId[wid];
    w.text = text ? text : "";
    w.cursor = w.text.size();
    return wid;
}

int qbHostWindowDestroy(int wid) {
    return windows().byId.erase(wid) ? 0 : qbmsg::NoWindow;
}

const char* qbHostWindowText(int wid, size_t* length) {
    Window* w = find(wid);
    if (length) *length = w ? w->text.size() : 0;
    return w ? w->text.c_str() : nullptr;
}

int qbHostWindowSetText(int wid, const char* text, size_t length) {
    Window* w = find(wid);
    if (!w) return qbmsg::NoWindow;
    w->text.assign(text ? text : "", text ? length : 0);
    w->cursor = w->text.size();
    return 0;
}

int qbHostWindowSetCursor(int wid, size_t offset) {
    Window* w = find(wid);
    if (!w) return qbmsg::NoWindow;
    if (offset > w->text.size()) return qbmsg::WrongArguments;
    w->cursor = offset;
    return 0;
}

int64_t qbWindowGetProperty(int wid, int property) {
    Window* w = find(wid);
    if (!w) return qbmsg::NoWindow;
    if (property != QBWINDOW_TEXT_SIZE) return qbmsg::WrongArguments;
    return int64_t(w->text.size());
}

int qbWindowReadText(int wid, int64_t size, int, char* buffer, int) {
    Window* w = find(wid);
    if (!w) return qbmsg::NoWindow;
    if (size < 0 || (size > 0 && !buffer)) return qbmsg::WrongArguments;
    size_t n = size_t(size) < w->text.size() ? size_t(size) : w->text.size();
    if (n) std::memcpy(buffer, w->text.data(), n);
    return int(n);
}

int qbWindowInsert(int wid, const char* text, int64_t length, int, int, int) {
    Window* w = find(wid);
    if (!w) return qbmsg::NoWindow;
    if (length < 0 || (length > 0 && !text)) return qbmsg::WrongArguments;
    w->text.insert(w->cursor, text ? text : "", size_t(length));
    w->cursor += size_t(length);
    return 0;
}

int qbWindowLineQuery(int wid, int line) {
    Window* w = find(wid);
    if (!w) return qbmsg::NoWindow;
    return line >= 1 && line <= lineCount(*w) ? 1 : 0;
}

int qbWindowLineAdd(int wid) {
    Window* w = find(wid);
    if (!w) return qbmsg::NoWindow;
    if (w->text.empty() && !w->hasEmptyFirstLine) {
        w->hasEmptyFirstLine = true;
        return 0;
    }
    w->text.insert(w->cursor, "\n");
    ++w->cursor;
    return 0;
}

}  // extern "C"
