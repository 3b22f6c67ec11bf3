// The host's message texts, reached from the layers below the host through one hook.
// The host layer installs its message-file reader at load; until then texts fall back to
// "message <code>", so that nothing below the host depends on the host being there.
#pragma once

class BPHostMessages {
public:
    typedef const char* (*GetMessageFunction)(int code);
    typedef void (*SetParameterFunction)(int index, const char* text);

    static void install(GetMessageFunction get, SetParameterFunction set);
    // The text for a message number with its parameters filled in. The result lives in a
    // buffer the next call overwrites: use it at once.
    static const char* getMessage(int code);
    // Parameter slots 0 to 9 (%s0 to %s9 in message texts).
    static void setMessageParameter(int index, const char* text);
};
