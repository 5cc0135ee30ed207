#include "ModulePass.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <map>
#include <set>

#include "voradrv.h"

namespace vtest {

namespace {

struct Item {
    uint32_t id;
    std::string type;
    bool writable;
};

const json_t* ValueOf(const json_t* element) {
    for (const char* key : {"v", "sv", "bv"}) {
        if (const json_t* value = json_object_get(element, key)) {
            return value;
        }
    }
    return nullptr;
}

std::string TypeOf(const json_t* value) {
    return json_is_real(value) ? "real" : json_is_string(value) ? "string" : "integer";
}

// Every element of the document, depth first in document order; an id met
// again (slots shared by several sensors) is read once.
void Collect(const json_t* node, std::vector<Item>& items, std::set<uint32_t>& seen) {
    size_t i;
    const json_t* element;
    json_array_foreach(json_object_get(node, "e"), i, element) {
        const json_t* value = ValueOf(element);
        const auto id = static_cast<uint32_t>(json_integer_value(json_object_get(element, "id")));
        if (value == nullptr || !seen.insert(id).second) {
            continue;
        }
        const char* access = json_string_value(json_object_get(element, "asm"));
        items.push_back({id, TypeOf(value), access != nullptr && std::string(access) == "rw"});
    }
    const char* key;
    json_t* member;
    json_object_foreach(const_cast<json_t*>(node), key, member) {
        if (json_is_object(member)) {
            Collect(member, items, seen);
        }
    }
}

std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    size_t start = 0;
    while (start < text.size()) {
        const size_t end = text.find('\n', start);
        lines.push_back(text.substr(start, end == std::string::npos ? end : end - start));
        start = end == std::string::npos ? text.size() : end + 1;
    }
    return lines;
}

}  // namespace

std::string Step::key() const {
    char id_[16];
    std::snprintf(id_, sizeof id_, "0x%X", id);
    return op + " " + id_ + " " + type + " " + input;
}

json_t* Sentinel(const std::string& type) {
    return type == "real"     ? json_real(-7.5)
           : type == "string" ? json_string("?")
                              : json_integer(-7);
}

OutputTap::OutputTap() {
    std::fflush(stdout);
    char path[] = "/tmp/voradrv-tap-XXXXXX";
    file_ = ::mkstemp(path);
    ::unlink(path);
    saved_ = ::dup(1);
    ::dup2(file_, 1);
}

OutputTap::~OutputTap() {
    std::fflush(stdout);
    ::dup2(saved_, 1);
    ::close(saved_);
    ::close(file_);
}

std::string OutputTap::take() {
    std::fflush(stdout);
    std::string text;
    char chunk[4096];
    ssize_t n;
    while ((n = ::pread(file_, chunk, sizeof chunk, offset_)) > 0) {
        text.append(chunk, static_cast<size_t>(n));
        offset_ += n;
    }
    return text;
}

ModulePass::ModulePass(SimControl& sim, OutputTap& tap, std::function<void()> afterCapability)
    : sim_(sim), tap_(tap), afterCapability_(std::move(afterCapability)) {}

template <typename Call>
Step ModulePass::step(const std::string& op, Call call) {
    tap_.take();
    sim_.clearLog();
    Step s;
    s.op = op;
    call(s);
    s.printed = tap_.take();
    s.calls = Lines(sim_.log());
    return s;
}

std::vector<Step> ModulePass::run() {
    sim_.startLog();
    std::vector<Step> steps;
    steps.push_back(step("init", [](Step& s) { s.status = VoraIoTInitialize(); }));

    JsonPtr document = Own(json_object());
    steps.push_back(
        step("caps", [&](Step& s) { s.status = VoraIoTGetMDCapability(document.get()); }));
    std::vector<Item> items;
    std::set<uint32_t> seen;
    if (steps.back().status == 0) {
        Collect(document.get(), items, seen);
    }

    if (afterCapability_) {
        afterCapability_();
    }
    std::map<uint32_t, JsonPtr> present;
    for (const Item& item : items) {
        steps.push_back(step("get", [&](Step& s) {
            s.id = item.id;
            s.type = item.type;
            JsonPtr value = Own(Sentinel(item.type));
            s.status = VoraIoTGetMDValue(item.id, value.get());
            s.output = Dump(value.get());
            if (s.status == 0) {
                present.emplace(item.id, std::move(value));
            }
        }));
    }
    // An item whose present value could not be read is not written: the
    // value published at initialise may no longer be what the board holds.
    for (const Item& item : items) {
        auto read = present.find(item.id);
        if (!item.writable || read == present.end()) {
            continue;
        }
        steps.push_back(step("set", [&](Step& s) {
            s.id = item.id;
            s.type = item.type;
            JsonPtr value = Own(json_deep_copy(read->second.get()));
            s.input = Dump(value.get());
            s.status = VoraIoTSetMDValue(item.id, value.get());
        }));
    }
    // The host lets go of its document before the module's shut-down.
    present.clear();
    document.reset();
    steps.push_back(step("uninit", [](Step& s) { s.status = VoraIoTUninitialize(); }));
    return steps;
}

}  // namespace vtest
