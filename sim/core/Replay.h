// Replaying a recording (sim/record/Recording.h): when the board a simulated
// library is given is a recording, the library answers every call from it,
// its initialise first: each call's recorded answers in the order the
// library gave them, byte for byte, and the last one again once they are
// all given (each process starts from the first). With VORA_SIM_TIMING=1 a
// call takes as long as it took when recorded.
//
// A write is kept, as the board keeps it: the read that mirrors it
// (VoraGPIOSetLevel's VoraGPIOGetLevel with the same pin; on the third
// generation, a pin's direction in VoraIOQueryMask's directions) answers the
// value written from then on. A write the recording has answers with its
// recorded status, and is kept only when that is success; one it lacks is
// accepted. With VORA_SIM_STATE naming a file, the writes are kept there for
// the next process and shared with those running, under the file's lock, as
// the simulator keeps its board (State.h); a write that cannot be kept
// fails. Any other call the recording lacks answers the library's "not
// supported" and is named once on standard error.
#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <type_traits>

#include "State.h"
#include "files/Lock.h"
#include "record/Calls.h"
#include "record/JsonPath.h"
#include "record/Recording.h"

namespace vorasim {

class Replay {
public:
    // The replay of the board this library was given, when it is a
    // recording; null when it is a profile.
    static Replay* active();
    // Starts replaying `text`; false with `error` set when the recording
    // cannot be read (the library then cannot initialise).
    static bool Load(const std::string& text, std::string& error);

    template <typename Result, typename... Args>
    Result answer(const vorarec::Signature& signature, Args... args) {
        const vorarec::JsonPtr in{vorarec::Inputs(signature, args...)};
        const size_t size = vorarec::detail::BufferSize(signature, args...);
        const Reply reply = signature.writes ? write(signature, in.get()) : read(signature, in.get());
        if (reply.out != nullptr) {
            vorarec::Apply(signature, reply.out.get(), size, args...);
        }
        pace(reply.seconds);
        if constexpr (!std::is_void_v<Result>) {
            return static_cast<Result>(reply.status);
        }
    }

    // The recording's library, date and redaction, as a JSON object's text.
    std::string header() const;

private:
    struct Reply {
        uint32_t status = 0;
        vorarec::JsonPtr out;
        double seconds = 0.0;  // how long the call took when recorded
    };

    explicit Replay(const std::string& generation);
    Reply read(const vorarec::Signature& signature, const json_t* in);
    Reply write(const vorarec::Signature& signature, const json_t* in);
    void pace(double seconds) const;
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
    uint32_t ok_;
    uint32_t unsupported_;
    uint32_t failed_;
    bool timing_ = false;
    // A read's key -> what was written shows in its answer: outputs by name,
    // and under "bits" single bits of an output ({"mask": {"5": 1}}).
    std::map<std::string, vorarec::JsonPtr> written_;
    std::set<std::string> named_;
    StateFile state_;  // where the writes are kept
};

}  // namespace vorasim
