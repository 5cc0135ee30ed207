#include "Replay.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "Delay.h"
#include "Mirror.h"
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

// The bits a write set in an output of a read: {"mask": {"5": 1}} sets bit 5
// of "mask" in `out` and clears what is 0 there.
void SetBits(const json_t* bits, json_t* out) {
    const char* output;
    json_t* each;
    json_object_foreach(const_cast<json_t*>(bits), output, each) {
        json_t* value = json_object_get(out, output);
        if (!json_is_integer(value)) {
            continue;
        }
        json_int_t word = json_integer_value(value);
        const char* bit;
        json_t* set;
        json_object_foreach(each, bit, set) {
            const long n = std::strtol(bit, nullptr, 10);
            if (n >= 0 && n < 32) {
                word = json_integer_value(set) != 0 ? word | (json_int_t{1} << n) : word & ~(json_int_t{1} << n);
            }
        }
        json_integer_set(value, word);
    }
}

}  // namespace

Replay::Replay(const std::string& generation)
    : ok_(generation == "3" ? kV3Ok : kOk),
      unsupported_(generation == "3" ? kV3Failed : kUnsupported),
      failed_(generation == "3" ? kV3Failed : kError) {
    const char* timing = std::getenv("VORA_SIM_TIMING");
    timing_ = timing != nullptr && std::strcmp(timing, "1") == 0;
}

// The first call into the library reads its board, so that even the
// library's initialise is answered from a recording.
Replay* Replay::active() {
    Sim::get();
    return Active().get();
}

bool Replay::Load(const std::string& text, std::string& error) {
    const std::string generation = ThisLibrary().generation;
    auto replay = std::unique_ptr<Replay>(new Replay(generation));
    if (!replay->recording_.load(text, error)) {
        return false;
    }
    if (replay->recording_.generation() != generation) {
        error = "library.generation: expected \"" + generation + "\", the generation of " +
                ThisLibrary().name + ", found \"" + replay->recording_.generation() + "\"";
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

std::string Replay::header() const {
    const vorarec::JsonPtr header(json_pack(
        "{s:s, s:s, s:s, s:s, s:b}", "name", recording_.name().c_str(), "generation",
        recording_.generation().c_str(), "path", recording_.path().c_str(), "recorded",
        recording_.recorded().c_str(), "redacted", recording_.redacted()));
    return Dump(header.get());
}

Replay::Reply Replay::read(const vorarec::Signature& signature, const json_t* in) {
    std::optional<vorafiles::Lock> lock;
    refresh(false, lock);
    Reply reply;
    const auto recorded = recording_.next(signature.function, in);
    if (recorded) {
        reply.status = static_cast<uint32_t>(json_integer_value(recorded->status));
        reply.out.reset(json_deep_copy(recorded->out));
        reply.seconds = recorded->seconds;
    }
    const auto written = written_.find(vorarec::Recording::Key(signature.function, in));
    if (written != written_.end()) {
        const vorarec::JsonPtr whole(json_deep_copy(written->second.get()));
        json_object_del(whole.get(), "bits");
        if (json_object_size(whole.get()) > 0) {
            reply.out.reset(json_incref(whole.get()));
            reply.status = ok_;
        }
        if (reply.out != nullptr) {
            SetBits(json_object_get(written->second.get(), "bits"), reply.out.get());
        }
    }
    if (reply.out == nullptr) {
        missing(signature, in);
        reply.status = unsupported_;
    }
    return reply;
}

Replay::Reply Replay::write(const vorarec::Signature& signature, const json_t* in) {
    std::optional<vorafiles::Lock> lock;
    const bool usable = refresh(true, lock);
    Reply reply;
    reply.status = ok_;
    if (const auto recorded = recording_.next(signature.function, in)) {
        reply.status = static_cast<uint32_t>(json_integer_value(recorded->status));
        reply.out.reset(json_deep_copy(recorded->out));
        reply.seconds = recorded->seconds;
    }
    if (reply.status == ok_ && !(usable && remember(signature, in))) {
        reply.status = failed_;
    }
    return reply;
}

void Replay::pace(double seconds) const {
    if (timing_) {
        Wait(seconds);
    }
}

// The state file: {"replay_writes": {key: what was written, as written_}}.
void Replay::loadWrites() {
    if (!state_.kept()) {
        return;
    }
    const std::optional<std::string> text = state_.read();
    if (!text) {
        return;
    }
    json_error_t error;
    const vorarec::JsonPtr kept{json_loadb(text->data(), text->size(), 0, &error)};
    if (kept == nullptr) {
        throw vorafiles::FileError(std::string("line ") + std::to_string(error.line) + ": " + error.text);
    }
    written_.clear();
    const char* key;
    json_t* out;
    json_object_foreach(json_object_get(kept.get(), "replay_writes"), key, out) {
        if (json_is_object(out)) {
            written_[key] = vorarec::JsonPtr{json_incref(out)};
        }
    }
}

bool Replay::saveWrites() {
    if (!state_.kept()) {
        return true;
    }
    const vorarec::JsonPtr writes{json_object()};
    for (const auto& [key, out] : written_) {
        json_object_set(writes.get(), key.c_str(), out.get());
    }
    const vorarec::JsonPtr kept{json_pack("{s:O}", "replay_writes", writes.get())};
    try {
        state_.write(Dump(kept.get()));
        return true;
    } catch (const vorafiles::FileError& e) {
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

bool Replay::remember(const vorarec::Signature& signature, const json_t* in) {
    const std::optional<Mirror> mirror = MirrorOf(signature, in);
    if (!mirror) {
        return true;
    }
    vorarec::JsonPtr& written = written_[mirror->read];
    const vorarec::JsonPtr before(written != nullptr ? json_deep_copy(written.get()) : nullptr);
    if (written == nullptr) {
        written.reset(json_object());
    }
    if (mirror->bit) {
        json_t* bits = json_object_get(written.get(), "bits");
        if (bits == nullptr) {
            json_object_set_new(written.get(), "bits", bits = json_object());
        }
        json_t* output = json_object_get(bits, mirror->output.c_str());
        if (output == nullptr) {
            json_object_set_new(bits, mirror->output.c_str(), output = json_object());
        }
        json_object_set(output, std::to_string(*mirror->bit).c_str(), mirror->value.get());
    } else {
        json_object_set(written.get(), mirror->output.c_str(), mirror->value.get());
    }
    if (saveWrites()) {
        return true;
    }
    written.reset(before != nullptr ? json_incref(before.get()) : nullptr);
    if (written == nullptr) {
        written_.erase(mirror->read);
    }
    return false;
}

void Replay::missing(const vorarec::Signature& signature, const json_t* in) {
    const std::string call = signature.function + " " + Dump(in);
    if (named_.insert(call).second) {
        std::fprintf(stderr, "vorasim: %s: the recording has no answer to %s\n", ThisLibrary().name,
                     call.c_str());
    }
}

}  // namespace vorasim
