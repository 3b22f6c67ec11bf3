#include "BPHostMessages.h"

#include <cstdio>

namespace {
BPHostMessages::GetMessageFunction installedGet = nullptr;
BPHostMessages::SetParameterFunction installedSet = nullptr;
char fallback[32];
}  // namespace

void BPHostMessages::install(GetMessageFunction get, SetParameterFunction set) {
    installedGet = get;
    installedSet = set;
}

const char* BPHostMessages::getMessage(int code) {
    if (installedGet) return installedGet(code);
    std::snprintf(fallback, sizeof fallback, "message %d", code);
    return fallback;
}

void BPHostMessages::setMessageParameter(int index, const char* text) {
    if (installedSet) installedSet(index, text);
}
