#include "Mirror.h"

#include <cstring>

#include "record/Recording.h"

namespace vorasim {

namespace {

// The read that mirrors a write: "Set" (or "Write") becomes "Get" ("Read").
std::string ReadOf(const std::string& write) {
    std::string read = write;
    for (const auto& [from, to] : {std::pair{"Set", "Get"}, std::pair{"Write", "Read"}}) {
        const size_t at = read.find(from);
        if (at != std::string::npos) {
            return read.replace(at, std::strlen(from), to);
        }
    }
    return "";
}

}  // namespace

std::optional<Mirror> MirrorOf(const vorarec::Signature& signature, const json_t* in) {
    if (signature.function == "VoraIOSetDirection") {
        const vorarec::JsonPtr selector(json_pack("{s:i}", "selector", 32));
        const json_int_t pin = json_integer_value(json_object_get(in, "pin"));
        const json_int_t direction = json_integer_value(json_object_get(in, "direction"));
        return Mirror{vorarec::Recording::Key("VoraIOQueryMask", selector.get()), "mask",
                      static_cast<unsigned>(pin), vorarec::JsonPtr(json_integer(direction & 1))};
    }
    const std::string read = ReadOf(signature.function);
    if (read.empty() || signature.params.empty()) {
        return std::nullopt;
    }
    // The value written is the write's last parameter; the rest say where.
    const std::string& value = signature.params.back().name;
    const vorarec::JsonPtr key(json_deep_copy(in));
    json_object_del(key.get(), value.c_str());
    return Mirror{vorarec::Recording::Key(read, key.get()), value, std::nullopt,
                  vorarec::JsonPtr(json_incref(json_object_get(in, value.c_str())))};
}

}  // namespace vorasim
