#include "Replay.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "Sim.h"
#include "Units.h"
#include "files/Path.h"

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
      unsupported_(json_integer(generation == "3" ? kV3Failed : kUnsupported)),
      failed_(json_integer(generation == "3" ? kV3Failed : kError)) {}

Replay* Replay::active() { return Active().get(); }

bool Replay::Load(const std::string& text, std::string& error) {
    const std::string generation = ThisLibrary().generation;
    auto replay = std::unique_ptr<Replay>(new Replay(generation));
    if (!replay->recording_.load(text, error)) {
        return false;
    }
    if (replay->recording_.generation() != generation) {
        error = "library.generation: a recording of the \"" + replay->recording_.generation() +
                "\" library, not of this one (\"" + generation + "\")";
        return false;
    }
    try {
        replay->loadWrites();
    } catch (const std::exception& e) {
        error = "cannot use the board state " + replay->state_.path() + ": " + e.what();
        return false;
    }
    Active() = std::move(replay);
    return true;
}

// The state file: {"replay_writes": {key: what the read answers}}.
void Replay::loadWrites() {
    if (!state_.kept()) {
        return;
    }
    const std::optional<std::string> text = state_.read();
    if (!text) {
        return;
    }
    json_error_t error;
    JsonPtr kept{json_loadb(text->data(), text->size(), 0, &error)};
    if (kept == nullptr) {
        throw vorafiles::FileError(std::string("line ") + std::to_string(error.line) + ": " + error.text);
    }
    written_.clear();
    const char* key;
    json_t* out;
    json_object_foreach(json_object_get(kept.get(), "replay_writes"), key, out) {
        written_[key] = JsonPtr{json_incref(out)};
    }
}

bool Replay::saveWrites() {
    if (!state_.kept()) {
        return true;
    }
    JsonPtr writes{json_object()};
    for (const auto& [key, out] : written_) {
        json_object_set(writes.get(), key.c_str(), out.get());
    }
    JsonPtr kept{json_pack("{s:O}", "replay_writes", writes.get())};
    char* text = json_dumps(kept.get(), JSON_COMPACT);
    try {
        state_.write(text != nullptr ? text : "{}");
        std::free(text);
        return true;
    } catch (const vorafiles::FileError& e) {
        std::free(text);
        problem("cannot save the board state", e.what());
        return false;
    }
}

void Replay::problem(const std::string& what, const std::string& reason) const {
    std::fprintf(stderr, "vorasim: %s: %s %s: %s\n", ThisLibrary().name, what.c_str(),
                 state_.path().c_str(), reason.c_str());
}

bool Replay::refresh(bool writes, std::optional<vorafiles::Lock>& lock) {
    if (!state_.kept()) {
        return true;
    }
    try {
        if (writes) {
            state_.lock(lock);
        }
        if (state_.changed()) {
            loadWrites();
        }
        return true;
    } catch (const std::exception& e) {
        problem(writes ? "cannot change the board kept in" : "cannot read the board kept in", e.what());
        return !writes;
    }
}

// The key of a write's mirroring read is the write's inputs without the
// value written (its last parameter); that value is what the read answers.
bool Replay::remember(const vorarec::Signature& signature, const json_t* in) {
    const std::string read = ReadOf(signature.function);
    if (read.empty() || signature.params.empty()) {
        return true;
    }
    const std::string& value = signature.params.back().name;
    JsonPtr key{json_deep_copy(in)};
    json_object_del(key.get(), value.c_str());
    JsonPtr out{json_object()};
    json_object_set(out.get(), value.c_str(), json_object_get(in, value.c_str()));
    const std::string at = read + "\x1f" + Dump(key.get());
    JsonPtr before = std::move(written_[at]);
    written_[at] = std::move(out);
    if (!saveWrites()) {
        if (before) {
            written_[at] = std::move(before);
        } else {
            written_.erase(at);
        }
        return false;
    }
    return true;
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
