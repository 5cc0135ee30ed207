#include "Pass.h"

#include <map>

namespace vtest {

std::string Step::key() const {
    if (op != "get" && op != "set") {
        return op;
    }
    const char* kind = type == JSON_REAL ? "real" : type == JSON_STRING ? "string" : "integer";
    return op + " " + Hex(id) + " " + kind + (input.empty() ? "" : " " + input);
}

std::vector<Step> RunPass(SimControl& sim, StdoutCapture& out,
                          const std::function<void()>& afterCapability) {
    sim.startLog();
    std::vector<Step> steps;
    auto step = [&](const std::string& op, const std::function<void(Step&)>& call) {
        out.take();
        sim.takeLog();
        Step s;
        s.op = op;
        call(s);
        s.printed = out.take();
        s.calls = Lines(sim.takeLog());
        steps.push_back(s);
    };
    step("init", [](Step& s) { s.status = Module().initialize(); });
    JsonPtr document = Own(json_object());
    step("caps", [&](Step& s) {
        s.status = Module().capability(document.get());
        s.document = Dump(document.get());
    });
    const std::vector<Item> items = steps.back().status == 0 ? Items(document.get())
                                                             : std::vector<Item>{};
    if (afterCapability) {
        afterCapability();
    }
    std::map<uint32_t, JsonPtr> present;
    for (const Item& item : items) {
        step("get", [&](Step& s) {
            s.id = item.id;
            s.type = item.type;
            JsonPtr value = Own(Sentinel(item.type));
            s.status = Module().get(item.id, value.get());
            s.output = Dump(value.get());
            if (s.status == 0) {
                present.emplace(item.id, std::move(value));
            }
        });
    }
    // An item whose present value could not be read is not written: the
    // value published at initialise may no longer be what the board holds.
    for (const Item& item : items) {
        const auto read = present.find(item.id);
        if (item.writable && read != present.end()) {
            step("set", [&](Step& s) {
                s.id = item.id;
                s.type = item.type;
                JsonPtr value = Own(json_deep_copy(read->second.get()));
                s.input = Dump(value.get());
                s.status = Module().set(item.id, value.get());
            });
        }
    }
    // The host lets go of its document before the module's shut-down.
    present.clear();
    document.reset();
    step("uninit", [](Step& s) { s.status = Module().uninitialize(); });
    return steps;
}

std::vector<Made> CallsMade(const std::vector<Step>& steps) {
    std::vector<Made> made;
    std::map<std::string, size_t> index;
    for (const Step& step : steps) {
        for (const std::string& line : step.calls) {
            // The function and, when the log gives one, its key argument.
            const size_t name = line.find(' ');
            const size_t key = line.find(' ', name + 1);
            std::string call = line.substr(0, key);
            if (name != std::string::npos && line.compare(name + 1, 2, "0x") != 0) {
                call = line.substr(0, name);
            }
            const auto [at, added] = index.emplace(call, made.size());
            if (added) {
                made.push_back({call});
            }
            (step.op == "init" ? made[at->second].atInit : made[at->second].later) = true;
        }
    }
    return made;
}

}  // namespace vtest
