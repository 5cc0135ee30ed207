// The functions a simulated library exports, made from its library's table:
// each answers from the recording it replays (Replay.h) when its board is
// one, and otherwise from the simulated board, through the function of the
// same name in namespace `model` (the library's own code).
#pragma once

#include <type_traits>

#include "Replay.h"
#include "record/Calls.h"

namespace vorasim {

template <typename Result, typename... Args>
struct Answer {
    const vorarec::Signature& signature;
    Result (*model)(Args...);

    Result operator()(Args... args) const {
        if (Replay* replay = Replay::active()) {
            return replay->answer<Result>(signature, args...);
        }
        return model(args...);
    }
};

template <typename Result, typename... Args>
Answer<Result, Args...> Answering(const vorarec::Signature& signature, Result (*model)(Args...)) {
    return {signature, model};
}

}  // namespace vorasim

// The library's own code must take and give exactly what the table says.
#define VORASIM_EXPORT(result, name, parameters, arguments)                                  \
    static_assert(std::is_same_v<decltype(&model::name), result(*) parameters>,             \
                  #name " of the simulator differs from its library's table");             \
    extern "C" result name parameters {                                                      \
        static const vorarec::Signature signature(#name, #parameters);                       \
        return ::vorasim::Answering(signature, &model::name) arguments;                      \
    }
