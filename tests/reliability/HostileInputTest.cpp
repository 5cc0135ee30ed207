// Hostile input from the host: every kind of JSON value (a null pointer
// included) sent to get and set for ids across the whole id space and an item
// of every block, odd capability requests, and calls out of order. Each call
// is held to the module's rules (HostRules): its status, its messages, what
// it leaves in the host's value and what reaches the board.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "HostRules.h"
#include "ModuleMessages.h"
#include "SimHarness.h"
#include "voradrv.h"

using namespace vtest;

namespace {

// The host's values: every JSON type, a null pointer, and strings empty and
// long.
const std::vector<std::pair<const char*, std::function<json_t*()>>> kHostValues = {
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

// One item of every block: the first the document publishes and the first
// settable one; on the network block all sixteen (each has its own rules).
std::vector<uint32_t> ItemsOf(const json_t* document) {
    std::vector<uint32_t> items;
    const char* name;
    json_t* block;
    json_object_foreach(const_cast<json_t*>(document), name, block) {
        const size_t first = items.size();
        for (const Item& item : Items(block)) {
            if (items.size() == first || (item.writable && items.size() == first + 1)) {
                items.push_back(item.id);
            }
        }
    }
    for (uint32_t id = 0x10B0001; id <= 0x10B0010; ++id) {
        items.push_back(id);
    }
    return items;
}

// Whether the module has a block for the id's class.
bool Routed(Generation generation, uint32_t id) {
    const uint32_t cls = id & VORADRV_ID_CLASS_MASK;
    return cls == VORADRV_CLASS_INFO || cls == VORADRV_CLASS_HWM || cls == VORADRV_CLASS_GPIO ||
           cls == VORADRV_CLASS_BKL ||
           (cls == VORADRV_CLASS_NETWORK && generation == Generation::Vora4);
}

// The block's message, then the entry point's line for a failure.
std::string Printed(Generation generation, const std::string& message, uint32_t id,
                    uint32_t status, bool get) {
    if (!Routed(generation, id)) {
        return std::string("VORADrv ") + (get ? "get" : "set") + " value: function id not found\n";
    }
    if (status == 0) {
        return message;
    }
    const std::string block = BlockName(id & VORADRV_ID_CLASS_MASK);
    return message + (get ? GetFailedLine(block, status) : SetFailedLine(block));
}

// Reads and writes `id` with every host value; returns the calls made.
int TryItem(Generation generation, SimControl& sim, uint32_t id, const Published& published) {
    for (const auto& [name, make] : kHostValues) {
        const std::string what = Hex(id) + " with " + name;
        JsonPtr value = Own(make());
        const std::string before = Dump(value.get());
        const GetExpectation get = ExpectGet(generation, id, value.get(), published);
        sim.clearLog();
        StdoutCapture getOut;
        const uint32_t getStatus = VoraIoTGetMDValue(id, value.get());
        EXPECT_EQ(Printed(generation, get.message, id, getStatus, true), getOut.finish())
            << "get " << what;
        EXPECT_EQ(Hex(get.status), Hex(getStatus)) << "get " << what;
        if (getStatus != 0) {
            EXPECT_EQ(before, Dump(value.get())) << "a failed get changed " << what;
        }
        EXPECT_EQ(std::vector<std::string>{}, WriteCalls(Lines(sim.log()))) << "get " << what;

        JsonPtr sent = Own(make());
        const SetExpectation set = ExpectSet(generation, id, sent.get(), published.mapped(id));
        sim.clearLog();
        StdoutCapture setOut;
        const uint32_t status = VoraIoTSetMDValue(id, sent.get());
        const std::string printed = setOut.finish();
        const std::vector<std::string> writes = WriteCalls(Lines(sim.log()));
        EXPECT_EQ("", UnknownOutput(printed)) << "set " << what;
        if (set.rule == WriteRule::Refused || set.rule == WriteRule::NoEffect) {
            EXPECT_EQ(std::vector<std::string>{}, writes) << "set " << what << " reached the board";
            EXPECT_EQ(Hex(set.status), Hex(status)) << "set " << what;
            EXPECT_EQ(Printed(generation, SetTypeMessage(id, status), id, status, false), printed)
                << "set " << what;
        } else {
            EXPECT_EQ(set.rule == WriteRule::Written ? 1u : writes.size(), writes.size())
                << "set " << what << " did not reach the board";
            EXPECT_LE(writes.size(), 1u) << "set " << what;
            if (!writes.empty() && !set.words.empty()) {
                EXPECT_TRUE(WroteWords(writes.front(), set.words)) << what << ": " << writes[0];
            }
            EXPECT_EQ(Printed(generation, "", id, status, false), printed) << "set " << what;
        }
    }
    return 2 * static_cast<int>(kHostValues.size());
}

void EveryValueToEveryId(Generation generation) {
    UseSimulator(generation);
    SimControl sim(generation);
    sim.startLog();
    ASSERT_EQ(0u, Quietly(VoraIoTInitialize));
    JsonPtr document = ModuleCapability();
    const Published published = PublishedBy(generation, document.get());
    int calls = 0;
    for (uint32_t id : Ids(ItemsOf(document.get()))) {
        calls += TryItem(generation, sim, id, published);
    }
    ::testing::Test::RecordProperty("calls", calls);
    std::printf("%d hostile get and set calls\n", calls);
    document.reset();
    Quietly(VoraIoTUninitialize);
}

// The capability request's answer to `argument`, with what it printed.
uint32_t Capability(json_t* argument, std::string& printed) {
    StdoutCapture out;
    const uint32_t status = VoraIoTGetMDCapability(argument);
    printed = out.finish();
    return status;
}

// Every id and value to get and set, each answered "function id not found"
// with STATUS_UNSUPPORTED and no board call; the capability request with null
// and with an object, which it leaves empty.
void NothingIsServed(SimControl& sim) {
    for (uint32_t id : Ids({0x1010402, 0x1020201, 0x1040201, 0x1050501, 0x10B0003})) {
        for (const auto& [name, make] : kHostValues) {
            JsonPtr value = Own(make());
            sim.clearLog();
            StdoutCapture out;
            EXPECT_EQ(VORADRV_STATUS_UNSUPPORTED, VoraIoTGetMDValue(id, value.get()));
            EXPECT_EQ(VORADRV_STATUS_UNSUPPORTED, VoraIoTSetMDValue(id, value.get()));
            EXPECT_EQ(
                "VORADrv get value: function id not found\n"
                "VORADrv set value: function id not found\n",
                out.finish())
                << Hex(id) << " with " << name;
            EXPECT_EQ("", sim.log()) << Hex(id) << " with " << name;
        }
    }
    std::string printed;
    JsonPtr host = Own(json_object());
    for (json_t* argument : {static_cast<json_t*>(nullptr), host.get()}) {
        EXPECT_EQ(VORADRV_STATUS_UNSUPPORTED, Capability(argument, printed));
        EXPECT_EQ("VORADrv get Cap: jasonCapabilityPackage is null\n", printed);
    }
    EXPECT_EQ(0u, json_object_size(host.get()));
    EXPECT_EQ(1u, VoraIoTGetModuleID());
}

}  // namespace

TEST(HostileInput, EveryValueToEveryIdOnTheFourthGeneration) {
    EveryValueToEveryId(Generation::Vora4);
}

TEST(HostileInput, EveryValueToEveryIdOnTheThirdGeneration) {
    EveryValueToEveryId(Generation::Vora3);
}

TEST(HostileInput, EveryValueToEveryIdOnTheEApiLibrary) { EveryValueToEveryId(Generation::EApi); }

TEST(HostileInput, CapabilityRequestsWithNullNonObjectsAndCrowdedObjects) {
    UseSimulator(Generation::Vora4);
    ASSERT_EQ(0u, Quietly(VoraIoTInitialize));
    std::string printed;
    EXPECT_EQ(VORADRV_STATUS_ERROR, Capability(nullptr, printed));
    EXPECT_EQ("VORADrv get Cap: parameter json is null\n", printed);
    for (const auto& [name, make] : kHostValues) {
        JsonPtr value = Own(make());
        if (value == nullptr || json_is_object(value.get())) {
            continue;
        }
        EXPECT_EQ(VORADRV_STATUS_ERROR, Capability(value.get(), printed)) << name;
        EXPECT_EQ("VORADrv get Cap: unable to update an empty object with an empty object\n",
                  printed)
            << name;
        EXPECT_EQ(Dump(Own(make()).get()), Dump(value.get())) << name;
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
    UseSimulator(Generation::Vora4);
    SimControl sim(Generation::Vora4);
    sim.startLog();
    NothingIsServed(sim);
    EXPECT_EQ(0u, VoraIoTSetMDEventHandler(nullptr));
    EXPECT_EQ(VORADRV_STATUS_UNSUPPORTED, VoraIoTUninitialize());
    EXPECT_EQ("", sim.log());
}

TEST(HostileInput, CallsAfterUninitialise) {
    UseSimulator(Generation::Vora4);
    SimControl sim(Generation::Vora4);
    ASSERT_EQ(0u, Quietly(VoraIoTInitialize));
    ASSERT_EQ(0u, Quietly(VoraIoTUninitialize));
    sim.startLog();
    NothingIsServed(sim);
    EXPECT_EQ(VORADRV_STATUS_UNSUPPORTED, VoraIoTSetMDEventHandler(nullptr));
}

// A second initialise without uninitialise appends five more blocks and
// initialises every block again: the document is the same, and capability
// objects the host got from the first stay whole. When it fails at a block,
// the earlier document and blocks stay in use. Uninitialise releases all
// (the sanitizers and memcheck see a block left behind).
TEST(HostileInput, SecondInitialiseWithoutUninitialise) {
    UseSimulator(Generation::Vora4);
    SimControl sim(Generation::Vora4);
    ASSERT_EQ(0u, Quietly(VoraIoTInitialize));
    const JsonPtr held = ModuleCapability();
    const std::string first = Dump(held.get());
    ASSERT_EQ(0u, Quietly(VoraIoTInitialize));
    EXPECT_EQ(first, Dump(ModuleCapability().get()));
    EXPECT_EQ(first, Dump(held.get()));

    // No platform information can be read, so the first block fails.
    sim.addFault(R"({"function": "VoraBoardGetValue", "status": 1})");
    sim.addFault(R"({"function": "VoraBoardGetStringA", "status": 1})");
    StdoutCapture out;
    EXPECT_EQ(VORADRV_STATUS_ERROR, VoraIoTInitialize());
    EXPECT_EQ("VORADrv Info init: json_pack array failed\nVORADrvnInit: module Init failed\n",
              out.finish());
    EXPECT_EQ(first, Dump(ModuleCapability().get()));
    sim.clearFaults();
    EXPECT_EQ("VB-4410", ReadText(0x1010402));
    EXPECT_EQ(0u, Quietly(VoraIoTUninitialize));
}
