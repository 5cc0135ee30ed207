#include "NetworkReaders.h"

#include <cstdarg>
#include <cstdio>

#include "binding/VORA4Handle.h"
#include "module/Status.h"
#include "network/NetworkItems.h"

namespace voradrv::network {

namespace {

// The words of board value `id`, zeroed first; see kMaxWords for the size.
uint32_t ReadWords(unsigned int id, Words& words) {
    words.fill(0);
    return VORA4Handle::mVoraBoardGetValue(id, words.data());
}

// vsnprintf into `out` of `len` bytes, with out[len - 1] zero in any case.
__attribute__((format(printf, 3, 4))) void Format(char* out, unsigned char len,
                                                  const char* format, ...) {
    if (len == 0) {
        return;  // no room even for the terminator
    }
    std::va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(out, len, format, arguments);
    va_end(arguments);
    out[len - 1] = '\0';
}

}  // namespace

uint32_t getStr(const unsigned int* words, char* out, unsigned char count) {
    for (unsigned i = 0; i < count; ++i) {
        out[i] = static_cast<char>(words[i] & 0xFF);
    }
    return STATUS_SUCCESS;
}

uint32_t getHostName(unsigned int id, char* out) {
    Words words;
    const uint32_t status = ReadWords(id, words);
    if (status != STATUS_SUCCESS) {
        return status;
    }
    return getStr(words.data(), out, kHostNameChars);
}

uint32_t getDomainServerName(unsigned int id, char* out) {
    Words words;
    const uint32_t status = ReadWords(id, words);
    if (status != STATUS_SUCCESS) {
        return status;
    }
    return getStr(words.data(), out, kServerNameChars);
}

uint32_t getIPConfig(unsigned int id, char* out, unsigned char len) {
    Words w;
    const uint32_t status = ReadWords(id, w);
    if (status == STATUS_SUCCESS) {
        Format(out, len, "%u.%u.%u.%u", w[0], w[1], w[2], w[3]);
    }
    return status;
}

uint32_t getMacAddr(unsigned int id, char* out, unsigned char len) {
    Words w;
    const uint32_t status = ReadWords(id, w);
    if (status == STATUS_SUCCESS) {
        Format(out, len, "%02X:%02X:%02X:%02X:%02X:%02X", w[0], w[1], w[2], w[3], w[4], w[5]);
    }
    return status;
}

uint32_t getIPPort(unsigned int id, char* out, unsigned char len) {
    Words w;
    const uint32_t status = ReadWords(id, w);
    if (status == STATUS_SUCCESS) {
        Format(out, len, "%u.%u.%u.%u:%u", w[0], w[1], w[2], w[3], w[4]);
    }
    return status;
}

}  // namespace voradrv::network
