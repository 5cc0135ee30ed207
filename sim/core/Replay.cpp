#include "Replay.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <memory>
#include <sstream>

#include "Sim.h"
#include "Units.h"

namespace vorasim {

namespace {

std::unique_ptr<Replay>& Active() {
    static std::unique_ptr<Replay> replay;
    return replay;
}

std::string Dump(const json_t* json) {
    char* text = json_dumps(json, JSON_COMPACT | JSON_SORT_KEYS);
    std::string result = text != nullptr ? text : "";
    std::free(text);
    return result;
}

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

Replay::Replay(const std::string& generation)
    : success_(json_integer(generation == "3" ? kV3Ok : kOk)),
      unsupported_(json_integer(generation == "3" ? kV3Failed : kUnsupported)) {}

Replay* Replay::active() { return Active().get(); }

bool Replay::Load(const std::string& path, std::string& error) {
    std::ifstream in(path);
    std::ostringstream text;
    text << in.rdbuf();
    auto replay = std::unique_ptr<Replay>(new Replay("4"));
    if (!replay->recording_.load(text.str(), error)) {
        return false;
    }
    const std::string generation = replay->recording_.generation();
    if (generation != ThisLibrary().generation) {
        error = "library.generation: a recording of the \"" + generation +
                "\" library, not of this one (\"" + ThisLibrary().generation + "\")";
        return false;
    }
    replay->success_.reset(json_integer(generation == "3" ? kV3Ok : kOk));
    replay->unsupported_.reset(json_integer(generation == "3" ? kV3Failed : kUnsupported));
    const char* state = std::getenv("VORA_SIM_STATE");
    replay->state_ = state != nullptr ? state : "";
    replay->loadWrites();
    Active() = std::move(replay);
    return true;
}

// The state file: {"replay_writes": {key: what the read answers}}.
void Replay::loadWrites() {
    if (state_.empty()) {
        return;
    }
    JsonPtr kept{json_load_file(state_.c_str(), 0, nullptr)};
    const char* key;
    json_t* out;
    json_object_foreach(json_object_get(kept.get(), "replay_writes"), key, out) {
        written_[key] = JsonPtr{json_incref(out)};
    }
}

void Replay::saveWrites() const {
    if (state_.empty()) {
        return;
    }
    JsonPtr writes{json_object()};
    for (const auto& [key, out] : written_) {
        json_object_set(writes.get(), key.c_str(), out.get());
    }
    JsonPtr kept{json_pack("{s:O}", "replay_writes", writes.get())};
    const std::string temporary = state_ + ".tmp";
    if (json_dump_file(kept.get(), temporary.c_str(), JSON_COMPACT) != 0 ||
        std::rename(temporary.c_str(), state_.c_str()) != 0) {
        std::fprintf(stderr, "vorasim: %s: cannot write the board state %s\n", ThisLibrary().name,
                     state_.c_str());
    }
}

// The key of a write's mirroring read is the write's inputs without the
// value written (its last parameter); that value is what the read answers.
void Replay::remember(const vorarec::Signature& signature, const json_t* in) {
    const std::string read = ReadOf(signature.function);
    if (read.empty() || signature.params.empty()) {
        return;
    }
    const std::string& value = signature.params.back().name;
    JsonPtr key{json_deep_copy(in)};
    json_object_del(key.get(), value.c_str());
    JsonPtr out{json_object()};
    json_object_set(out.get(), value.c_str(), json_object_get(in, value.c_str()));
    written_[read + "\x1f" + Dump(key.get())] = std::move(out);
    saveWrites();
}

const json_t* Replay::writtenFor(const vorarec::Signature& signature, const json_t* in) const {
    const auto at = written_.find(signature.function + "\x1f" + Dump(in));
    return at == written_.end() ? nullptr : at->second.get();
}

void Replay::missing(const vorarec::Signature& signature, const json_t* in) {
    const std::string call = signature.function + " " + Dump(in);
    if (named_.insert(call).second) {
        std::fprintf(stderr, "vorasim: %s: the recording has no answer to %s\n", ThisLibrary().name,
                     call.c_str());
    }
}

}  // namespace vorasim
