#include "Vora4Network.h"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <memory>
#include <string>

#include "binding/VORA4Handle.h"
#include "module/Status.h"
#include "network/AddressText.h"
#include "network/NetworkItems.h"
#include "network/NetworkReaders.h"

using namespace voradrv::network;

namespace {

constexpr char kGroupName[] = "OOBNetwork0";
constexpr int kGroupId = 0x10B0000;

// Room for the longest text (the server domain name) and a terminator, which
// the one-character-per-word readers do not write.
using Text = char[kServerNameChars + 1];

bool IsText(Form form) { return form != Form::Number; }

// The text of a text item, through its reader; `text` is zeroed first.
uint32_t ReadText(uint32_t boardValueId, Form form, Text& text) {
    std::fill(std::begin(text), std::end(text), '\0');
    switch (form) {
        case Form::HostName: return getHostName(boardValueId, text);
        case Form::ServerName: return getDomainServerName(boardValueId, text);
        case Form::Mac: return getMacAddr(boardValueId, text, kMacTextSize);
        case Form::Address: return getIPConfig(boardValueId, text, kAddressTextSize);
        case Form::AddressPort: return getIPPort(boardValueId, text, kAddressPortTextSize);
        case Form::Number: break;
    }
    return STATUS_ERROR;
}

// The first word of a value. The whole array is handed over, zeroed, since
// the library fills the id's whole word array; only word 0 is meant.
uint32_t ReadNumber(uint32_t boardValueId, unsigned int& number) {
    Words words{};
    const uint32_t status = VORA4Handle::mVoraBoardGetValue(boardValueId, words.data());
    number = words[0];
    return status;
}

// The capability element of an item, or null when the library cannot read
// it (or packing fails, as for a text that is not UTF-8).
json_t* Element(uint32_t boardValueId) {
    const ItemInfo& item = Item(boardValueId);
    const int id = static_cast<int>(ItemId(boardValueId));
    if (IsText(item.form)) {
        Text text;
        if (ReadText(boardValueId, item.form, text) != STATUS_SUCCESS) {
            return nullptr;
        }
        return json_pack("{s:s, s:s, s:s, s:s, s:i}", "n", item.label, "sv", text, "u",
                         item.unit, "asm", item.access, "id", id);
    }
    unsigned int number = 0;
    if (ReadNumber(boardValueId, number) != STATUS_SUCCESS) {
        return nullptr;
    }
    const int v = static_cast<int>(number);
    if (boardValueId == kErrorCode) {
        // The error code alone has no limits.
        return json_pack("{s:s, s:i, s:s, s:s, s:i}", "n", item.label, "v", v, "u", item.unit,
                         "asm", item.access, "id", id);
    }
    return json_pack("{s:s, s:i, s:i, s:i, s:s, s:s, s:i}", "n", item.label, "v", v, "max",
                     item.max, "min", 0, "u", item.unit, "asm", item.access, "id", id);
}

}  // namespace

Vora4Network::Vora4Network() { items.reserve(1); }

Vora4Network::~Vora4Network() { releaseArray(); }

void Vora4Network::releaseArray() {
    if (array_ != nullptr) {
        json_array_clear(array_);
        json_decref(array_);
        array_ = nullptr;
    }
}

void Vora4Network::createIPSONetworkPackage() {
    releaseArray();
    for (uint32_t b = kFirstValue; b <= kLastValue; ++b) {
        // Mapped before the read, so a value the library cannot read now is
        // still reached by later requests.
        idtoLibIDMap[ItemId(b)] = b;
        json_t* element = Element(b);
        if (element == nullptr) {
            continue;
        }
        if (array_ == nullptr) {
            array_ = json_array();
        }
        // The array takes the element over, also when appending fails.
        if (json_array_append_new(array_, element) != 0) {
            std::puts("VORADrv Network : cap dir unable to append new value");
        }
    }
    if (array_ == nullptr || !json_is_array(array_) || json_array_size(array_) == 0) {
        releaseArray();
        return;
    }
    auto record = std::make_unique<Network>(kGroupName);
    // The packager takes the array's reference over, whatever it returns.
    json_t* array = array_;
    array_ = nullptr;
    record->group =
        IPSO_Capability_Packager(array, kGroupName, "info", kBaseTime, kLayoutVersion, kGroupId);
    if (record->group == nullptr || !json_is_object(record->group) ||
        json_object_size(record->group) == 0) {
        std::puts("VORADrv network: ipso cap json_pack array failed");
    }
    // Appended even without a group; the family then publishes no group.
    items.push_back(record.get());
    record.release();
}

uint32_t Vora4Network::VoraIoTGetMDValue(uint32_t id, json_t* value) {
    const auto mapped = idtoLibIDMap.find(id);
    if (mapped == idtoLibIDMap.end()) {
        return STATUS_NOT_FOUND;
    }
    if (value == nullptr) {
        return STATUS_ERROR;
    }
    const uint32_t boardValueId = mapped->second;
    if (json_is_integer(value)) {
        unsigned int number = 0;
        if (ReadNumber(boardValueId, number) != STATUS_SUCCESS) {
            return STATUS_ERROR;
        }
        json_integer_set(value, static_cast<json_int_t>(number));
        return STATUS_SUCCESS;
    }
    if (!json_is_string(value)) {
        return STATUS_ERROR;
    }
    const Form form = Item(boardValueId).form;
    if (!IsText(form)) {
        return STATUS_ERROR;
    }
    Text text;
    if (ReadText(boardValueId, form, text) != STATUS_SUCCESS) {
        return STATUS_READ_ERROR;
    }
    // A text that is not UTF-8 cannot be carried by a JSON string: the value
    // then keeps what it held, and the read still succeeds.
    json_string_set(value, text);
    return STATUS_SUCCESS;
}

uint32_t Vora4Network::VoraIoTSetMDValue(uint32_t id, json_t* value) {
    const auto mapped = idtoLibIDMap.find(id);
    if (mapped == idtoLibIDMap.end()) {
        return STATUS_NOT_FOUND;
    }
    const uint32_t boardValueId = mapped->second;
    // Zeroed and as large as the largest array: the library reads the id's
    // whole word array, also when only word 0 carries the value.
    Words words{};
    if (json_is_integer(value)) {
        // Cut to 32 bits.
        words[0] = static_cast<unsigned int>(json_integer_value(value));
        return VORA4Handle::mVoraBoardSetValue(boardValueId, words.data());
    }
    // Neither an integer nor a string (a null pointer included) gives
    // nothing to write: refused, and the board is not called.
    if (!json_is_string(value)) {
        return STATUS_ERROR;
    }
    const std::string text = json_string_value(value);
    if (boardValueId == kHostName) {
        if (!HostNameWords(text, words)) {
            return STATUS_ERROR;
        }
    } else if (boardValueId == kMacAddress) {
        if (!ChkMacStr(text)) {
            return STATUS_ERROR;
        }
        MacWords(text, words);
    } else if (boardValueId >= kFirstModified && boardValueId <= kLastModified) {
        if (!ChkIpStr(text)) {
            return STATUS_ERROR;
        }
        AddressWords(text, words);
    } else {
        // No string form to write: accepted without effect.
        return STATUS_SUCCESS;
    }
    return VORA4Handle::mVoraBoardSetValue(boardValueId, words.data());
}
