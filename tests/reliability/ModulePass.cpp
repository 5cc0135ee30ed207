#include "ModulePass.h"

#include <map>

#include "voradrv.h"

namespace vtest {

std::string Step::key() const {
    const char* kind = type == JSON_REAL ? "real" : type == JSON_STRING ? "string" : "integer";
    return op + " " + Hex(id) + " " + (op == "get" || op == "set" ? kind : "") + " " + input;
}

std::vector<Step> RunPass(SimControl& sim, StdoutCapture& out,
                          const std::function<void()>& afterCapability) {
    sim.startLog();
    std::vector<Step> steps;
    auto step = [&](const std::string& op, const std::function<void(Step&)>& call) {
        out.take();
        sim.clearLog();
        Step s;
        s.op = op;
        call(s);
        s.printed = out.take();
        s.calls = Lines(sim.log());
        steps.push_back(s);
    };
    step("init", [](Step& s) { s.status = VoraIoTInitialize(); });
    JsonPtr document = Own(json_object());
    step("caps", [&](Step& s) { s.status = VoraIoTGetMDCapability(document.get()); });
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
            s.status = VoraIoTGetMDValue(item.id, value.get());
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
                s.status = VoraIoTSetMDValue(item.id, value.get());
            });
        }
    }
    // The host lets go of its document before the module's shut-down.
    present.clear();
    document.reset();
    step("uninit", [](Step& s) { s.status = VoraIoTUninitialize(); });
    return steps;
}

}  // namespace vtest
