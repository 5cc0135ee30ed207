#include "Vora3INFO.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "binding/VORA3Handle.h"
#include "info/InfoItems.h"
#include "module/ModuleState.h"
#include "module/Status.h"
#include "module/StringUtil.h"

using namespace voradrv::info;

namespace {

constexpr uint32_t kBoardNameId = 0x1010402;
constexpr uint32_t kBiosRevisionId = 0x1010405;
constexpr uint32_t kDriverVersionId = 0x1010201;

// The library answers 1 when it has a text to give.
constexpr uint32_t kLibraryOk = 1;

// Upper bound of a text buffer, whatever length the library answers: a
// broken answer must not make the module allocate without bound. Board names
// and BIOS revisions are a few dozen bytes; a longer text is cut.
constexpr uint64_t kMaxTextBuffer = 4096;

using GetTextFn = uint32_t (*)(char* buffer, unsigned int* length);

// Reads one text through the library's length protocol: a call with a null
// buffer asks for the length, a second call with a buffer of twice that
// length fetches the text. `length` is the caller's one length variable,
// shared by every text and never reset: each query starts from what the
// calls before it left there. Returns false when the library does not offer
// the text (the query did not answer 1).
bool ReadText(GetTextFn get, unsigned int& length, std::string& text) {
    if (get(nullptr, &length) != kLibraryOk) {
        return false;
    }
    length = static_cast<unsigned int>(
        std::min<uint64_t>(2 * static_cast<uint64_t>(length), kMaxTextBuffer));
    // Zeroed, so a call that writes nothing leaves an empty text, and never
    // empty, so that even a length of 0 goes with a buffer and not with the
    // null that asks for the length. Released on return; only the text is kept.
    std::vector<char> buffer(std::max(length, 1u), '\0');
    get(buffer.data(), &length);  // the result is not looked at
    // The library's length may count the terminator or not, and may claim
    // more than the buffer holds: the text ends at its terminator, or at the
    // end of the length or of the buffer, whichever comes first.
    const size_t size = std::min<size_t>(length, buffer.size());
    text.assign(buffer.data(), strnlen(buffer.data(), size));
    return true;
}

// Builds one library text as the item `id`. Returns false when the item
// could not be packed or appended, which ends the build.
bool BuildText(json_t* array, GetTextFn get, unsigned int& length, uint32_t id,
               const char* label, const char* builder) {
    std::string text;
    if (!ReadText(get, length, text)) {
        return true;
    }
    // Kept even when the entry fails: the map is written before the check,
    // and before the entry is made, which nothing may come between and its
    // append (so that an exception there cannot lose it).
    idtoStringValueMap[id] = text;
    return AppendEntry(array, TextEntry(label, text.c_str(), id), builder);
}

}  // namespace

Vora3INFO::Vora3INFO() = default;

void Vora3INFO::createIPSOInfoPackage(json_t* array) {
    unsigned int length = 1;
    if (!BuildText(array, &VORA3Handle::mVoraCoreGetPlatformName, length, kBoardNameId,
                   kStringLabels[1], "get platform name") ||
        !BuildText(array, &VORA3Handle::mVoraCoreGetBIOSVersion, length, kBiosRevisionId,
                   kStringLabels[4], "get BIOS revision")) {
        return;
    }
    // Left as they are when the library lacks the call: the version reads 0.0.
    unsigned int major = 0;
    unsigned int minor = 0;
    VORA3Handle::mVoraDllGetVersion(&major, &minor);
    char text[32];  // "4294967295.4294967295" at most
    StringSprintf(text, sizeof text, "%u.%u", major, minor);
    idtoStringValueMap[kDriverVersionId] = text;
    // The version has no messages of its own: its failures print the BIOS
    // revision's.
    AppendEntry(array, TextEntry(kVersionLabels[0], text, kDriverVersionId), "get BIOS revision");
}

uint32_t Vora3INFO::VoraIoTGetMDValue(uint32_t id, json_t* value) {
    if (!json_is_string(value)) {
        std::puts("VORADRV Info Get Value: not a json string");
        return STATUS_INVALID_VALUE;
    }
    if (id != kBoardNameId && id != kBiosRevisionId && id != kDriverVersionId) {
        return STATUS_NOT_FOUND;
    }
    // An item never published reads as an empty text (the key is entered).
    const std::string& text = idtoStringValueMap[id];
    // A text that is not UTF-8 cannot be carried by a JSON string: the value
    // then keeps what it held, and the read still succeeds.
    json_string_set(value, text.c_str());
    return STATUS_SUCCESS;
}

uint32_t Vora3INFO::VoraIoTSetMDValue(uint32_t, json_t*) { return STATUS_UNSUPPORTED; }
