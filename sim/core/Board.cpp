#include "Board.h"

namespace vorasim {

const Sensor* Board::sensor(SensorKind kind, unsigned index) const {
    for (const Sensor& s : sensors[kind]) {
        if (s.index == index) {
            return &s;
        }
    }
    return nullptr;
}

Pin* Board::pin(unsigned number) {
    for (Pin& p : pins) {
        if (p.pin == number) {
            return &p;
        }
    }
    return nullptr;
}

Panel* Board::panel(unsigned number) {
    for (Panel& p : panels) {
        if (p.panel == number) {
            return &p;
        }
    }
    return nullptr;
}

const std::string* Board::text(const std::string& key) const {
    auto it = strings.find(key);
    return it == strings.end() ? nullptr : &it->second;
}

const uint32_t* Board::value(const std::string& key) const {
    auto it = values.find(key);
    return it == values.end() ? nullptr : &it->second;
}

}  // namespace vorasim
