// Writes the message table as the host's binary message file.
//   qbmsgc OUTPUT
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "QBMessageTexts.h"
#include "qbmessagefile.h"

namespace {

void putWord(std::string& out, int32_t value) {
    uint32_t v = uint32_t(value);
    for (int i = 0; i < 4; ++i) out += char((v >> (8 * i)) & 0xFF);
}

std::string build() {
    const size_t n = qbmsg::kEntryCount;
    std::string header, texts;
    putWord(header, qbmessagefile::MAGIC);
    putWord(header, int32_t(qbmessagefile::HEADER_BYTES + qbmessagefile::ENTRY_BYTES * (n + 1)));
    for (const qbmsg::Entry& m : qbmsg::kEntries) {
        putWord(header, m.code);
        putWord(header, int32_t(texts.size()));
        texts += m.text;
        texts += '\0';
    }
    putWord(header, 0);
    putWord(header, -1);
    return header + texts;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: qbmsgc OUTPUT\n");
        return 2;
    }
    std::string image = build();
    std::FILE* f = std::fopen(argv[1], "wb");
    if (!f) {
        std::perror(argv[1]);
        return 1;
    }
    bool ok = std::fwrite(image.data(), 1, image.size(), f) == image.size();
    ok = std::fclose(f) == 0 && ok;
    if (!ok) std::fprintf(stderr, "qbmsgc: cannot write %s\n", argv[1]);
    return ok ? 0 : 1;
}
