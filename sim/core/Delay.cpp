#include "Delay.h"

#include <time.h>
#include <unistd.h>

#include <cerrno>
#include <cmath>
#include <random>

namespace vorasim {

void Wait(double seconds) {
    if (!(seconds > 0.0)) {
        return;
    }
    timespec left{static_cast<time_t>(seconds),
                  static_cast<long>(std::fmod(seconds, 1.0) * 1e9)};
    while (nanosleep(&left, &left) != 0 && errno == EINTR) {
    }
}

void Hang() {
    for (;;) {
        pause();
    }
}

void Delay(const Fault& fault) {
    if (fault.hang) {
        Hang();
    }
    double milliseconds = fault.latencyMs;
    if (fault.jitterMs > 0.0) {
        static thread_local std::mt19937 random{std::random_device{}()};
        milliseconds += std::uniform_real_distribution<double>(0.0, fault.jitterMs)(random);
    }
    Wait(milliseconds / 1000.0);
}

}  // namespace vorasim
