// Replaying a recording (sim/record/Recording.h): when the board a simulated
// library is given is a recording, the library answers every recorded call
// exactly as recorded, byte for byte. A write the recording did not see is
// accepted, as the simulator accepts writes, and the read that mirrors it
// (VoraGPIOSetLevel's VoraGPIOGetLevel with the same pin) answers the value
// written from then on; with VORA_SIM_STATE naming a file, those writes are
// kept there for the next process and shared with those running, under the
// file's lock, as the simulator keeps its board (State.h); a write that
// cannot be kept fails. Any
// other call the recording lacks answers the library's "not supported" and
// is named once on standard error.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <type_traits>

#include "State.h"
#include "files/Lock.h"
#include "record/Calls.h"
#include "record/Recording.h"

namespace vorasim {

class Replay {
public:
    // The replay of the board this library was given, when it is a
    // recording; null when it is a profile. `error` is set when the
    // recording could not be read (the library then cannot initialise).
    static Replay* active();
    static bool Load(const std::string& text, std::string& error);

    template <typename Result, typename... Args>
    Result answer(const vorarec::Signature& signature, Args... args) {
        JsonPtr in{vorarec::Inputs(signature, args...)};
        const size_t size = vorarec::detail::BufferSize(signature, args...);
        const json_t* status = nullptr;
        std::optional<vorafiles::Lock> lock;
        const bool usable = refresh(signature.writes, lock);
        if (const json_t* written = writtenFor(signature, in.get())) {
            vorarec::Apply(signature, written, size, args...);
            status = success_.get();
        } else if (const auto recorded = recording_.find(signature.function, in.get())) {
            vorarec::Apply(signature, recorded->out, size, args...);
            status = recorded->status;
        } else if (signature.writes) {
            status = usable && remember(signature, in.get()) ? success_.get() : failed_.get();
        } else {
            missing(signature, in.get());
            status = unsupported_.get();
        }
        if constexpr (!std::is_void_v<Result>) {
            return static_cast<Result>(json_integer_value(status));
        }
    }

private:
    struct Release {
        void operator()(json_t* json) const { json_decref(json); }
    };
    using JsonPtr = std::unique_ptr<json_t, Release>;

    explicit Replay(const std::string& generation);
    const json_t* writtenFor(const vorarec::Signature& signature, const json_t* in) const;
    // With kept writes: a write takes the lock, then what other processes
    // wrote is read. False, having said why, when a write cannot be kept.
    bool refresh(bool writes, std::optional<vorafiles::Lock>& lock);
    // Keeps a write; false, having said why, when it cannot be saved.
    bool remember(const vorarec::Signature& signature, const json_t* in);
    void missing(const vorarec::Signature& signature, const json_t* in);
    // Throws vorafiles::FileError.
    void loadWrites();
    bool saveWrites();
    void problem(const std::string& what, const std::string& reason) const;

    vorarec::Recording recording_;
    JsonPtr success_;
    JsonPtr unsupported_;
    JsonPtr failed_;
    std::map<std::string, JsonPtr> written_;  // a read's key -> what it answers now
    std::set<std::string> named_;
    StateFile state_;  // where the writes are kept
};

}  // namespace vorasim
