// Making paths absolute and relative. Paths are taken apart into a drive, an absolute flag and
// their steps; "." and ".." are resolved on the steps, never by asking the file system, so a
// path need not exist.
#include "qbapi_paths.h"

#include <unistd.h>

#include <cctype>
#include <string>
#include <vector>

using quernbase::QBString;

namespace {

#ifdef _WIN32
const char kSeparator = '\\';
bool isSeparator(char c) { return c == '/' || c == '\\'; }
bool sameStep(const std::string& a, const std::string& b) {
    if (a.size() != b.size()) return false;
    for (size_t i = 0; i < a.size(); ++i)
        if (std::tolower((unsigned char)a[i]) != std::tolower((unsigned char)b[i])) return false;
    return true;
}
#else
const char kSeparator = '/';
bool isSeparator(char c) { return c == '/'; }
bool sameStep(const std::string& a, const std::string& b) { return a == b; }
#endif

struct PathParts {
    std::string drive;  // "X:" or "//server/share"; empty for none
    bool absolute = false;
    std::vector<std::string> steps;
};

// Drive paths come from Windows hosts, so there the backslash separates steps on every system.
std::vector<std::string> splitSteps(const std::string& text, size_t from, bool backslashToo) {
    std::vector<std::string> steps;
    std::string step;
    for (size_t i = from; i <= text.size(); ++i) {
        if (i == text.size() || isSeparator(text[i]) || (backslashToo && text[i] == '\\')) {
            if (!step.empty()) steps.push_back(step);
            step.clear();
        } else {
            step += text[i];
        }
    }
    return steps;
}

bool hasLetterDrive(const std::string& text) {
    return text.size() >= 2 && std::isalpha((unsigned char)text[0]) && text[1] == ':';
}

// \\server\share; on Windows //server/share too (elsewhere that is just the root).
bool isNetworkPath(const std::string& text) {
    bool lead = text.size() > 2 && text[1] == text[0] &&
                (text[0] == '\\' || (kSeparator == '\\' && text[0] == '/'));
    return lead && text[2] != '/' && text[2] != '\\';
}

PathParts takeApart(const std::string& text) {
    PathParts parts;
    size_t rest = 0;
    if (hasLetterDrive(text)) {
        parts.drive = text.substr(0, 2);
        rest = 2;
        parts.absolute = rest < text.size() && (text[rest] == '/' || text[rest] == '\\');
    } else if (isNetworkPath(text)) {
        std::vector<std::string> all = splitSteps(text, 2, true);
        parts.drive = std::string(2, text[0]) + (all.empty() ? "" : all[0]);
        if (all.size() > 1) parts.drive += text[0] + all[1];
        parts.absolute = true;
        parts.steps.assign(all.begin() + (all.size() > 1 ? 2 : all.size()), all.end());
        return parts;
    } else {
        parts.absolute = !text.empty() && isSeparator(text[0]);
    }
    parts.steps = splitSteps(text, rest, !parts.drive.empty());
    return parts;
}

bool sameDrive(const std::string& a, const std::string& b) {
    if (a.size() != b.size()) return false;
    for (size_t i = 0; i < a.size(); ++i)
        if (std::tolower((unsigned char)a[i]) != std::tolower((unsigned char)b[i])) return false;
    return true;
}

// Resolves "." and ".." in place; ".." at the root stays at the root.
void resolveDots(std::vector<std::string>& steps) {
    std::vector<std::string> out;
    for (const std::string& s : steps) {
        if (s == ".") continue;
        if (s == "..") {
            if (!out.empty()) out.pop_back();
            continue;
        }
        out.push_back(s);
    }
    steps.swap(out);
}

std::string currentDirectory() {
    std::vector<char> buffer(4096);
    if (!getcwd(buffer.data(), buffer.size())) return std::string(1, kSeparator);
    return buffer.data();
}

PathParts absoluteParts(const std::string& path, const std::string& base) {
    PathParts parts = takeApart(path);
    if (parts.absolute) {
        resolveDots(parts.steps);
        return parts;
    }
    if (!parts.drive.empty()) {  // "X:name" is taken from the root of its drive
        parts.absolute = true;
        resolveDots(parts.steps);
        return parts;
    }
    PathParts whole = absoluteParts(base.empty() ? currentDirectory() : base,
                                    base.empty() ? std::string() : currentDirectory());
    whole.steps.insert(whole.steps.end(), parts.steps.begin(), parts.steps.end());
    resolveDots(whole.steps);
    return whole;
}

std::string join(const std::vector<std::string>& steps, size_t from) {
    std::string text;
    for (size_t i = from; i < steps.size(); ++i) {
        if (i > from) text += kSeparator;
        text += steps[i];
    }
    return text;
}

std::string putTogether(const PathParts& parts) {
    std::string text = parts.drive;
    if (parts.absolute) text += kSeparator;
    return text + join(parts.steps, 0);
}

std::string toStd(const QBString& s) { return s.isNull() ? std::string() : std::string(s.get(), s.length()); }

QBString fromStd(const std::string& s) { return QBString(s.c_str(), unsigned(s.size())); }

}  // namespace

QBString absolutePath(const QBString& path, const QBString& base) {
    if (path.isEmpty()) return path;
    return fromStd(putTogether(absoluteParts(toStd(path), toStd(base))));
}

QBString relativePath(const QBString& path, const QBString& base, int flags) {
    if (path.isEmpty()) return path;
    PathParts target = absoluteParts(toStd(path), toStd(base));
    PathParts from = absoluteParts(toStd(base), std::string());
    if (!sameDrive(target.drive, from.drive)) return path;
    size_t common = 0;
    while (common < target.steps.size() && common < from.steps.size() &&
           sameStep(target.steps[common], from.steps[common]))
        ++common;
    size_t climb = from.steps.size() - common;
    if (climb > 0 && !(flags & QBPATH_CLIMB)) return path;
    std::vector<std::string> steps(climb, "..");
    steps.insert(steps.end(), target.steps.begin() + common, target.steps.end());
    return fromStd(steps.empty() ? std::string(".") : join(steps, 0));
}
