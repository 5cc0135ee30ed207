// Hostile input from the host: every kind of JSON value (a null pointer
// included) sent to get and set for ids across the whole id space and an item
// of every block, odd capability requests, and calls out of order. Each call
// is held to the module's rules (GetRules, SetRules): its status, its
// messages, what it leaves in the host's value and what reaches the board.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "GetRules.h"
#include "HeapUse.h"
#include "ModuleMessages.h"
#include "SetRules.h"
#include "SimHarness.h"
#include "voradrv.h"

using vtest::Generation;
using vtest::JsonPtr;
using vtest::Own;

namespace {

// The host's values: every JSON type, a null pointer, and strings empty and
// long.
struct HostValue {
    const char* name;
    std::function<json_t*()> make;
};

const std::vector<HostValue>& HostValues() {
    static const std::vector<HostValue> values = {
        {"null pointer", [] { return nullptr; }},
        {"null", [] { return json_null(); }},
        {"true", [] { return json_true(); }},
        {"false", [] { return json_false(); }},
        {"integer 1", [] { return json_integer(1); }},
        {"integer -1", [] { return json_integer(-1); }},
        {"integer 2^40+1", [] { return json_integer((json_int_t{1} << 40) + 1); }},
        {"real", [] { return json_real(1.5); }},
        {"string", [] { return json_string("1"); }},
        {"empty string", [] { return json_string(""); }},
        {"long string", [] { return json_string(std::string(100000, 'x').c_str()); }},
        {"array", [] { return json_pack("[i]", 1); }},
        {"object", [] { return json_pack("{s:i}", "v", 1); }},
    };
    return values;
}

// Ids across the space: 0 and all ones; for every class nibble the group and
// item bytes 0x00, 0x01 and 0xFF; and, for every item given, the item itself
// and its forms with bits 20 to 23 set and another module byte.
std::vector<uint32_t> Ids(const std::vector<uint32_t>& items) {
    std::vector<uint32_t> ids = {0, 0xFFFFFFFF};
    for (uint32_t cls = 0; cls <= 0xF; ++cls) {
        for (uint32_t group : {0x00u, 0x01u, 0xFFu}) {
            for (uint32_t item : {0x00u, 0x01u, 0xFFu}) {
                ids.push_back(0x01000000u | cls << 16 | group << 8 | item);
            }
        }
        ids.push_back(cls << 16);  // the class id alone, without the module byte
    }
    for (uint32_t id : items) {
        ids.insert(ids.end(), {id, id | 0x00F00000u, id & 0x00FFFFFFu, id | 0xFF000000u});
    }
    return ids;
}

// Calls `entry` with standard output captured (the module's messages are
// not what these tests look at).
uint32_t Quietly(uint32_t (*entry)()) {
    vtest::StdoutCapture quiet;
    return entry();
}

std::string Hex(uint32_t value) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%08X", value);
    return text;
}

// One item of every block: the first the document publishes and the first
// settable one; on the network block all sixteen (each has its own rules).
std::vector<uint32_t> ItemsOf(const json_t* document) {
    std::vector<uint32_t> items;
    const char* name;
    json_t* block;
    json_object_foreach(const_cast<json_t*>(document), name, block) {
        std::vector<uint32_t> ids;
        std::function<void(const json_t*)> walk = [&](const json_t* node) {
            size_t i;
            const json_t* element;
            json_array_foreach(json_object_get(node, "e"), i, element) {
                const auto id =
                    static_cast<uint32_t>(json_integer_value(json_object_get(element, "id")));
                const char* access = json_string_value(json_object_get(element, "asm"));
                if (ids.empty() ||
                    (access != nullptr && std::string(access) == "rw" && ids.size() == 1)) {
                    ids.push_back(id);
                }
            }
            const char* key;
            json_t* member;
            json_object_foreach(const_cast<json_t*>(node), key, member) {
                if (json_is_object(member)) {
                    walk(member);
                }
            }
        };
        walk(block);
        items.insert(items.end(), ids.begin(), ids.end());
    }
    for (uint32_t id = 0x10B0001; id <= 0x10B0010; ++id) {
        items.push_back(id);
    }
    return items;
}

class Host {
public:
    explicit Host(Generation generation) : generation_(generation), sim_(generation) {
        sim_.startLog();
    }

    // Reads and writes `id` with every host value; returns the calls made.
    int tryItem(uint32_t id, const vtest::Published& published) {
        int calls = 0;
        for (const HostValue& v : HostValues()) {
            JsonPtr value = Own(v.make());
            const std::string what = Hex(id) + " with " + v.name;
            const std::string before = vtest::Dump(value.get());

            const vtest::GetExpectation get =
                vtest::ExpectGet(generation_, id, value.get(), published);
            sim_.clearLog();
            vtest::StdoutCapture getOut;
            const uint32_t getStatus = VoraIoTGetMDValue(id, value.get());
            const std::string getPrinted = getOut.finish();
            EXPECT_EQ(Hex(get.status), Hex(getStatus)) << "get " << what;
            EXPECT_EQ(Printed(get.message, id, getStatus, true), getPrinted) << "get " << what;
            if (getStatus != 0) {
                EXPECT_EQ(before, vtest::Dump(value.get())) << "a failed get changed " << what;
            }
            ExpectNoWrite("get " + what);

            JsonPtr sent = Own(v.make());
            const vtest::SetExpectation set =
                vtest::ExpectSet(generation_, id, sent.get(), published.mapped(id));
            sim_.clearLog();
            vtest::StdoutCapture setOut;
            const uint32_t setStatus = VoraIoTSetMDValue(id, sent.get());
            const std::string setPrinted = setOut.finish();
            ExpectWrite(set, setStatus, setPrinted, id, "set " + what);
            calls += 2;
        }
        return calls;
    }

    vtest::SimControl& sim() { return sim_; }

private:
    // Whether the module has a block for the id's class.
    bool Routed(uint32_t id) const {
        switch (id & VORADRV_ID_CLASS_MASK) {
            case VORADRV_CLASS_INFO:
            case VORADRV_CLASS_HWM:
            case VORADRV_CLASS_GPIO:
            case VORADRV_CLASS_BKL:
                return true;
            case VORADRV_CLASS_NETWORK:
                return generation_ == Generation::Vora4;
            default:
                return false;
        }
    }

    // The block's message, then the entry point's line for a failure.
    std::string Printed(const std::string& message, uint32_t id, uint32_t status, bool get) const {
        if (!Routed(id)) {
            return get ? "VORADrv get value: function id not found\n"
                       : "VORADrv set value: function id not found\n";
        }
        if (status == 0) {
            return message;
        }
        const std::string block = vtest::BlockName(id & VORADRV_ID_CLASS_MASK);
        return message + (get ? vtest::GetFailedLine(block, status) : vtest::SetFailedLine(block));
    }

    void ExpectNoWrite(const std::string& what) {
        for (const std::string& line : Lines()) {
            EXPECT_FALSE(vtest::IsWriteCall(line)) << what << " wrote: " << line;
        }
    }

    void ExpectWrite(const vtest::SetExpectation& set, uint32_t status, const std::string& printed,
                     uint32_t id, const std::string& what) {
        std::vector<std::string> writes;
        for (const std::string& line : Lines()) {
            if (vtest::IsWriteCall(line)) {
                writes.push_back(line);
            }
        }
        EXPECT_EQ("", vtest::UnknownOutput(printed)) << what;
        switch (set.rule) {
            case vtest::WriteRule::Refused:
            case vtest::WriteRule::NoEffect:
                EXPECT_TRUE(writes.empty()) << what << " reached the board: " << writes.front();
                EXPECT_EQ(Hex(set.status), Hex(status)) << what;
                EXPECT_EQ(Printed(vtest::SetTypeMessage(id, status), id, status, false), printed)
                    << what;
                break;
            case vtest::WriteRule::Written:
            case vtest::WriteRule::WrittenIfChanged:
                EXPECT_LE(writes.size(), 1u) << what;
                if (set.rule == vtest::WriteRule::Written) {
                    EXPECT_EQ(1u, writes.size()) << what << " did not reach the board";
                }
                if (!writes.empty() && !set.words.empty()) {
                    EXPECT_TRUE(vtest::SameWords(vtest::LoggedWords(writes.front()), set.words))
                        << what << " wrote " << writes.front();
                }
                EXPECT_EQ(Printed("", id, status, false), printed) << what;
                break;
        }
    }

    std::vector<std::string> Lines() {
        std::vector<std::string> lines;
        const std::string log = sim_.log();
        size_t start = 0;
        while (start < log.size()) {
            const size_t end = log.find('\n', start);
            lines.push_back(log.substr(start, end - start));
            start = end == std::string::npos ? log.size() : end + 1;
        }
        return lines;
    }

    Generation generation_;
    vtest::SimControl sim_;
};

void EveryValueToEveryId(Generation generation) {
    vtest::UseSimulator(generation);
    Host host(generation);
    ASSERT_EQ(0u, Quietly(VoraIoTInitialize));
    JsonPtr document = vtest::ModuleCapability();
    const vtest::Published published = vtest::PublishedBy(generation, document.get());
    int calls = 0;
    for (uint32_t id : Ids(ItemsOf(document.get()))) {
        calls += host.tryItem(id, published);
    }
    ::testing::Test::RecordProperty("calls", calls);
    std::printf("%d hostile get and set calls\n", calls);
    document.reset();
    Quietly(VoraIoTUninitialize);
}

}  // namespace

TEST(HostileInput, EveryValueToEveryIdOnTheFourthGeneration) {
    EveryValueToEveryId(Generation::Vora4);
}

TEST(HostileInput, EveryValueToEveryIdOnTheThirdGeneration) {
    EveryValueToEveryId(Generation::Vora3);
}

TEST(HostileInput, EveryValueToEveryIdOnTheEApiLibrary) { EveryValueToEveryId(Generation::EApi); }

namespace {

// The capability request's answer to `argument`, with what it printed.
uint32_t Capability(json_t* argument, std::string& printed) {
    vtest::StdoutCapture out;
    const uint32_t status = VoraIoTGetMDCapability(argument);
    printed = out.finish();
    return status;
}

std::vector<JsonPtr> NonObjects() {
    std::vector<JsonPtr> values;
    for (const HostValue& v : HostValues()) {
        json_t* value = v.make();
        if (value != nullptr && !json_is_object(value)) {
            values.push_back(Own(value));
        } else {
            json_decref(value);
        }
    }
    return values;
}

// Every id and value to get and set, each answered "function id not found"
// with STATUS_UNSUPPORTED and no board call.
void NothingIsRouted(vtest::SimControl& sim) {
    for (uint32_t id : Ids({0x1010402, 0x1020201, 0x1040201, 0x1050501, 0x10B0003})) {
        for (const HostValue& v : HostValues()) {
            JsonPtr value = Own(v.make());
            sim.clearLog();
            vtest::StdoutCapture out;
            EXPECT_EQ(VORADRV_STATUS_UNSUPPORTED, VoraIoTGetMDValue(id, value.get()));
            EXPECT_EQ(VORADRV_STATUS_UNSUPPORTED, VoraIoTSetMDValue(id, value.get()));
            EXPECT_EQ(
                "VORADrv get value: function id not found\n"
                "VORADrv set value: function id not found\n",
                out.finish())
                << Hex(id) << " with " << v.name;
            EXPECT_EQ("", sim.log()) << Hex(id) << " with " << v.name;
        }
    }
}

}  // namespace

TEST(HostileInput, CapabilityRequestsWithNullNonObjectsAndCrowdedObjects) {
    vtest::UseSimulator(Generation::Vora4);
    ASSERT_EQ(0u, Quietly(VoraIoTInitialize));
    std::string printed;
    EXPECT_EQ(VORADRV_STATUS_ERROR, Capability(nullptr, printed));
    EXPECT_EQ("VORADrv get Cap: parameter json is null\n", printed);
    for (const JsonPtr& value : NonObjects()) {
        const std::string before = vtest::Dump(value.get());
        EXPECT_EQ(VORADRV_STATUS_ERROR, Capability(value.get(), printed)) << before;
        EXPECT_EQ("VORADrv get Cap: unable to update an empty object with an empty object\n",
                  printed)
            << before;
        EXPECT_EQ(before, vtest::Dump(value.get()));
    }

    // A crowded object keeps its own members; one named like a block is
    // replaced by the block.
    constexpr int kMembers = 10000;
    JsonPtr crowded = Own(json_object());
    for (int i = 0; i < kMembers; ++i) {
        json_object_set_new(crowded.get(), ("m" + std::to_string(i)).c_str(), json_integer(i));
    }
    json_object_set_new(crowded.get(), "GPIO", json_integer(7));
    EXPECT_EQ(0u, Capability(crowded.get(), printed));
    EXPECT_EQ("", printed);
    EXPECT_EQ(static_cast<size_t>(kMembers) + 5, json_object_size(crowded.get()));
    EXPECT_EQ(kMembers - 1, json_integer_value(json_object_get(crowded.get(), "m9999")));
    EXPECT_TRUE(json_is_object(json_object_get(crowded.get(), "GPIO")));
    crowded.reset();
    EXPECT_EQ(0u, Quietly(VoraIoTUninitialize));
}

TEST(HostileInput, CallsBeforeInitialise) {
    vtest::UseSimulator(Generation::Vora4);
    vtest::SimControl sim(Generation::Vora4);
    sim.startLog();
    NothingIsRouted(sim);
    std::string printed;
    EXPECT_EQ(VORADRV_STATUS_UNSUPPORTED, Capability(nullptr, printed));
    EXPECT_EQ("VORADrv get Cap: jasonCapabilityPackage is null\n", printed);
    JsonPtr host = Own(json_object());
    EXPECT_EQ(VORADRV_STATUS_UNSUPPORTED, Capability(host.get(), printed));
    EXPECT_EQ(0u, json_object_size(host.get()));
    EXPECT_EQ(0u, VoraIoTSetMDEventHandler(nullptr));
    EXPECT_EQ(VORADRV_STATUS_UNSUPPORTED, VoraIoTUninitialize());
    EXPECT_EQ(1u, VoraIoTGetModuleID());
    EXPECT_EQ("", sim.log());
}

TEST(HostileInput, CallsAfterUninitialise) {
    vtest::UseSimulator(Generation::Vora4);
    vtest::SimControl sim(Generation::Vora4);
    ASSERT_EQ(0u, Quietly(VoraIoTInitialize));
    ASSERT_EQ(0u, Quietly(VoraIoTUninitialize));
    sim.startLog();
    NothingIsRouted(sim);
    std::string printed;
    JsonPtr host = Own(json_object());
    EXPECT_EQ(VORADRV_STATUS_UNSUPPORTED, Capability(host.get(), printed));
    EXPECT_EQ("VORADrv get Cap: jasonCapabilityPackage is null\n", printed);
    EXPECT_EQ(VORADRV_STATUS_UNSUPPORTED, VoraIoTSetMDEventHandler(nullptr));
    EXPECT_EQ(1u, VoraIoTGetModuleID());
}

// A second initialise without uninitialise rebuilds the same document and
// releases the first: repeating it leaves the heap where it was.
TEST(HostileInput, SecondInitialiseWithoutUninitialise) {
    vtest::UseSimulator(Generation::Vora4);
    ASSERT_EQ(0u, Quietly(VoraIoTInitialize));
    const std::string first = vtest::Dump(vtest::ModuleCapability().get());
    size_t heap[3] = {};
    for (size_t& inUse : heap) {
        ASSERT_EQ(0u, Quietly(VoraIoTInitialize));
        EXPECT_EQ(first, vtest::Dump(vtest::ModuleCapability().get()));
        inUse = vtest::HeapInUse();
    }
    EXPECT_LE(heap[2], heap[1]) << "bytes in use after the 3rd and the 4th initialise";
    JsonPtr name = vtest::ReadItem(0x1010402, JSON_STRING);
    EXPECT_STREQ("VB-4410", json_string_value(name.get()));
    EXPECT_EQ(0u, Quietly(VoraIoTUninitialize));
}
