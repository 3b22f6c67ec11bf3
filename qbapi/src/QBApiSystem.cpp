// Files, environment, the heap and output, as the host provides them.
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "qbapi_host.h"

using quernbase::QBString;

namespace {

QBHostOutputSink outputSink = nullptr;
void* outputUser = nullptr;

void emit(const std::string& text) {
    if (outputSink) {
        outputSink(outputUser, text.c_str());
        return;
    }
    std::fwrite(text.data(), 1, text.size(), stdout);
    std::fflush(stdout);
}

// Only %s and %% have a meaning; the engine passes "%s".
std::string format(const char* fmt, const char* text) {
    std::string out;
    for (const char* p = fmt; *p; ++p) {
        if (*p == '%' && p[1] == 's') {
            out += text ? text : "(null)";
            ++p;
        } else if (*p == '%' && p[1] == '%') {
            out += '%';
            ++p;
        } else {
            out += *p;
        }
    }
    return out;
}

int statusOfErrno(int error) {
    return error == ENOENT || error == ENOTDIR ? qbmsg::FileNotFound : qbmsg::FileUnreadable;
}

}  // namespace

extern "C" {

int qbShowText(const char* text) {
    emit(std::string(text ? text : "") + "\n");
    return 0;
}

int qbPrint(const char* fmt, const char* text) {
    std::string out = format(fmt ? fmt : "%s", text);
    emit(out);
    return int(out.size());
}

void qbHostSetOutputSink(QBHostOutputSink sink, void* user) {
    outputSink = sink;
    outputUser = user;
}

void* qbAlloc(size_t size) { return std::malloc(size ? size : 1); }
void* qbRealloc(void* block, size_t size) { return std::realloc(block, size ? size : 1); }
void qbFree(void* block) { std::free(block); }

}  // extern "C"

int qbReadFileToString(const QBString& fileName, QBString& out, int, int, int) {
    if (fileName.isEmpty()) return qbmsg::InvalidArgument;
    std::FILE* f = std::fopen(fileName.get(), "rb");
    if (!f) return statusOfErrno(errno);
    std::string data;
    char chunk[65536];
    size_t n;
    while ((n = std::fread(chunk, 1, sizeof chunk, f)) > 0) data.append(chunk, n);
    bool failed = std::ferror(f) != 0;
    std::fclose(f);
    if (failed) return qbmsg::FileUnreadable;
    if (data.size() > 0xFFFFFFF0u) return qbmsg::OutOfMemory;
    QBString text;
    if (text.set(data.data(), unsigned(data.size())) < 0) return qbmsg::OutOfMemory;
    out = text;
    return 0;
}

QBString qbpsGetEnv(const char* name) {
    const char* value = name ? std::getenv(name) : nullptr;
    return value ? QBString(value) : QBString();
}
