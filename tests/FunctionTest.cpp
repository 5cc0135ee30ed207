// The function base, the JSON layout rules and the family classes.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <memory>

#include "SimHarness.h"
#include "binding/VORA3Handle.h"
#include "binding/VORA4Handle.h"
#include "function/FuncBKL.h"
#include "function/FuncGPIO.h"
#include "function/FuncHWM.h"
#include "function/FuncINFO.h"
#include "function/FuncNetwork.h"
#include "hwm/Vora4HWM.h"
#include "info/Vora4INFO.h"
#include "module/Status.h"

using vtest::Dump;
using vtest::Generation;
using vtest::Own;

namespace {

// A block with the given id whose value operations are never used.
class Block : public Function {
public:
    explicit Block(uint32_t id = 0x1020000) : Function(id, "Block") {}
    uint32_t VoraIoTInitialize() override { return 0; }
    uint32_t VoraIoTUninitialize() override { return 0; }
    uint32_t VoraIoTGetMDCapability(json_t*) override { return 0; }
    uint32_t VoraIoTSetMDEventHandler(VoraIoTEventHandler) override { return 0; }
    uint32_t VoraIoTGetMDValue(uint32_t, json_t*) override { return 0; }
    uint32_t VoraIoTSetMDValue(uint32_t, json_t*) override { return 0; }
};

// A hardware-monitor block whose builder appends the given groups (a null
// group object where the name is prefixed with '-').
class Monitor : public FuncHWM {
public:
    explicit Monitor(std::vector<std::string> names) : names_(std::move(names)) {}
    void createIPSOHWMPackage() override {
        for (const std::string& name : names_) {
            auto* record = new HWMInfo(name);
            if (name[0] != '-') {
                record->group = IPSO_Capability_Packager(json_array(), name.c_str(), "V",
                                                         kBaseTime, kLayoutVersion, 0x20200);
                json_array_append_new(json_object_get(record->group, "e"), json_integer(1));
            }
            items.push_back(record);
        }
    }
    uint32_t VoraIoTGetMDValue(uint32_t, json_t*) override { return 0; }
    uint32_t VoraIoTSetMDValue(uint32_t, json_t*) override { return 0; }
    json_t* packageObject() const { return package; }

private:
    std::vector<std::string> names_;
};

class Panels : public FuncBKL {
public:
    void createIPSOBKLPackage() override {
        auto* record = new Backlight("LVDS");
        record->group = json_pack("{s:i}", "id", 0x1050101);
        items.push_back(record);
    }
    uint32_t VoraIoTGetMDValue(uint32_t, json_t*) override { return 0; }
    uint32_t VoraIoTSetMDValue(uint32_t, json_t*) override { return 0; }
};

class Information : public FuncINFO {
public:
    explicit Information(bool withItem) : withItem_(withItem) {}
    void createIPSOInfoPackage(json_t* array) override {
        if (withItem_) {
            json_array_append_new(array, json_pack("{s:s}", "n", "Board name"));
        }
    }
    uint32_t VoraIoTGetMDValue(uint32_t, json_t*) override { return 0; }
    uint32_t VoraIoTSetMDValue(uint32_t, json_t*) override { return 0; }

private:
    bool withItem_;
};

// The virtual-table slot (1 for the destructor) a virtual member function
// pointer refers to, as the Itanium C++ ABI lays member pointers out.
template <class Member>
size_t SlotOf(Member member) {
    static_assert(sizeof(Member) == 2 * sizeof(uintptr_t), "an Itanium member pointer");
    uintptr_t raw = 0;
    std::memcpy(&raw, &member, sizeof raw);
    return (raw - 1) / sizeof(void*) + 1;
}

}  // namespace

TEST(FunctionBase, CapabilityPackagerKeyOrderAndFailures) {
    Block block;
    auto group = Own(block.IPSO_Capability_Packager(json_array(), "Voltage", "V", kBaseTime,
                                                     kLayoutVersion, 0x20200));
    EXPECT_EQ(R"({"e":[],"bn":"Voltage","bt":1276020076,"bu":"V","ver":1,"id":131584})",
              Dump(group.get()));
    // The array's reference is taken over even on failure (no leak under ASan).
    EXPECT_EQ(nullptr, block.IPSO_Capability_Packager(json_array(), nullptr, "V", 1, 1, 1));
    EXPECT_EQ(nullptr, block.IPSO_Capability_Packager(nullptr, "Voltage", "V", 1, 1, 1));
    auto data = Own(block.IPSO_Data_Packager(json_array(), "Voltage", 0x20200));
    EXPECT_EQ(R"({"e":[],"bn":"Voltage","id":131584})", Dump(data.get()));
}

TEST(FunctionBase, ClassIdNameAndUiProperty) {
    Block network(0x10B0000);
    EXPECT_EQ(0xB0000u, network.getClassID());
    EXPECT_EQ("Block", network.getName());
    EXPECT_STREQ("label", network.getUIProperty("r"));
    EXPECT_STREQ("TextBox", network.getUIProperty("rw"));
    EXPECT_STREQ("TextBox", network.getUIProperty("R"));
    EXPECT_STREQ("TextBox", network.getUIProperty(""));
    EXPECT_STREQ("TextBox", network.getUIProperty("N/A"));
}

TEST(Families, GroupPackageJoinsRecordsAndSkipsEmptyOnes) {
    Monitor monitor({"Voltage", "-Fan Speed", "Temperature"});
    EXPECT_EQ(0u, monitor.VoraIoTInitialize());
    auto host = Own(json_pack("{s:i}", "Hardware Monitor", 5));
    EXPECT_EQ(0u, monitor.VoraIoTGetMDCapability(host.get()));
    const json_t* package = monitor.packageObject();
    std::string keys;
    const char* key;
    json_t* member;
    json_object_foreach(const_cast<json_t*>(package), key, member) {
        keys += std::string(keys.empty() ? "" : ",") + key;
    }
    EXPECT_EQ("id,bn,Voltage,Temperature", keys);
    EXPECT_EQ(0x20000, json_integer_value(json_object_get(package, "id")));
    EXPECT_STREQ("Hardware Monitor", json_string_value(json_object_get(package, "bn")));
    EXPECT_EQ(4u, json_object_size(package));
    EXPECT_EQ(nullptr, json_object_get(package, "-Fan Speed"));
    // The caller's object received the members, sharing them by reference.
    EXPECT_EQ(json_object_get(package, "Voltage"), json_object_get(host.get(), "Voltage"));
    EXPECT_EQ(0u, monitor.VoraIoTUninitialize());
    EXPECT_EQ(0u, monitor.VoraIoTSetMDEventHandler(nullptr));
}

TEST(Families, BlockWithNothingToOfferHasNoCapability) {
    Monitor monitor({});
    EXPECT_EQ(0u, monitor.VoraIoTInitialize());
    EXPECT_EQ(nullptr, monitor.packageObject());
    vtest::StdoutCapture out;
    auto host = Own(json_object());
    EXPECT_EQ(STATUS_UNSUPPORTED, monitor.VoraIoTGetMDCapability(host.get()));
    EXPECT_EQ(0u, json_object_size(host.get()));
    EXPECT_EQ("", out.finish());
}

TEST(Families, TwoGroupsWithOneNameKeepTheLaterAndReleaseEachOnce) {
    auto monitor = std::make_unique<Monitor>(std::vector<std::string>{"GPIO3", "GPIO3"});
    EXPECT_EQ(0u, monitor->VoraIoTInitialize());
    EXPECT_EQ(3u, json_object_size(monitor->packageObject()));
    monitor.reset();  // ASan reports a double release or a leak here
}

TEST(Families, CapabilityMergeFailurePrintsTheFamilyMessage) {
    vtest::UseSimulator(Generation::Vora4);
    ASSERT_EQ(0u, VORA4Handle::instance()->mVoraLibInitialize());
    const std::pair<Function* (*)(), const char*> families[] = {
        {&FuncHWM::instance, "HWM"},
        {&FuncGPIO::instance, "GPIO"},
        {&FuncBKL::instance, "Backlight"},
        {&FuncNetwork::instance, "Network"},
    };
    for (const auto& [instance, word] : families) {
        std::unique_ptr<Function> block(instance());
        ASSERT_NE(nullptr, block);
        ASSERT_EQ(0u, block->VoraIoTInitialize());
        auto notAnObject = Own(json_array());
        vtest::StdoutCapture out;
        EXPECT_EQ(STATUS_ERROR, block->VoraIoTGetMDCapability(notAnObject.get()));
        EXPECT_EQ(std::string("VORADrv ") + word +
                      " Get Cap: unable to update an empty object with an empty object\n",
                  out.finish());
    }
}

TEST(Families, BacklightUninitialiseReleasesItsPackageOnce) {
    auto panels = std::make_unique<Panels>();
    EXPECT_EQ(0u, panels->VoraIoTInitialize());
    auto host = Own(json_object());
    EXPECT_EQ(0u, panels->VoraIoTGetMDCapability(host.get()));
    EXPECT_EQ(0u, panels->VoraIoTUninitialize());
    auto after = Own(json_object());
    EXPECT_EQ(STATUS_UNSUPPORTED, panels->VoraIoTGetMDCapability(after.get()));
    panels.reset();
    // The host's object still holds the group, emptied by its record.
    EXPECT_EQ(0u, json_object_size(json_object_get(host.get(), "LVDS")));
}

TEST(Families, InformationBlockWithoutItemsFails) {
    Information empty(false);
    vtest::StdoutCapture out;
    EXPECT_EQ(STATUS_ERROR, empty.VoraIoTInitialize());
    EXPECT_EQ("VORADrv Info init: json_pack array failed\n", out.finish());

    Information one(true);
    EXPECT_EQ(0u, one.VoraIoTInitialize());
    auto host = Own(json_object());
    EXPECT_EQ(0u, one.VoraIoTGetMDCapability(host.get()));
    EXPECT_EQ(
        R"({"e":[{"n":"Board name"}],"bn":"Platform Information","bt":1276020076,"bu":"info","ver":1,"id":65536})",
        Dump(host.get()));
    auto notAnObject = Own(json_array());
    vtest::StdoutCapture failure;
    EXPECT_EQ(STATUS_ERROR, one.VoraIoTGetMDCapability(notAnObject.get()));
    EXPECT_EQ("VORADrv Info Get Cap: unable to update an emtpy object with an empty object\n",
              failure.finish());
}

TEST(Families, FactoriesWithoutLibraryReturnTheRememberedBlock) {
    vtest::Redirect();
    EXPECT_EQ(nullptr, FuncINFO::instance());
    EXPECT_EQ(nullptr, FuncHWM::instance());
    EXPECT_EQ(nullptr, FuncNetwork::instance());
}

TEST(Families, FactoriesCreateANewBlockOnEveryCall) {
    vtest::UseSimulator(Generation::Vora4);
    ASSERT_EQ(0u, VORA4Handle::instance()->mVoraLibInitialize());
    Function* first = FuncINFO::instance();
    Function* second = FuncINFO::instance();
    ASSERT_NE(nullptr, first);
    EXPECT_NE(first, second);
    EXPECT_EQ(0x10000u, first->getClassID());
    EXPECT_EQ("Platform Information", first->getName());
    delete first;
    delete second;
}

TEST(Families, NetworkBlockOnlyWithTheFourthGeneration) {
    vtest::UseSimulator(Generation::Vora3);
    ASSERT_EQ(1u, VORA3Handle::instance()->mVoraDllInit());
    EXPECT_EQ(nullptr, FuncNetwork::instance());
}

TEST(Families, PackageBuildersFollowTheEightSlotsOfFunction) {
    EXPECT_EQ(3u, SlotOf(&Function::VoraIoTInitialize));
    EXPECT_EQ(8u, SlotOf(&Function::VoraIoTSetMDValue));
    EXPECT_EQ(9u, SlotOf(&FuncINFO::createIPSOInfoPackage));
    EXPECT_EQ(9u, SlotOf(&FuncHWM::createIPSOHWMPackage));
    EXPECT_EQ(9u, SlotOf(&FuncGPIO::createIPSOGPIOPackage));
    EXPECT_EQ(9u, SlotOf(&FuncBKL::createIPSOBKLPackage));
    EXPECT_EQ(9u, SlotOf(&FuncNetwork::createIPSONetworkPackage));
    // Implementations add theirs after it.
    EXPECT_EQ(10u, SlotOf(&Vora4HWM::createIPSOVoltPackage));
    EXPECT_EQ(14u, SlotOf(&Vora4HWM::createIPSOCaseOpenPackage));
    EXPECT_EQ(10u, SlotOf(&Vora4INFO::getValueInfo));
    EXPECT_EQ(13u, SlotOf(&Vora4INFO::getVersion));
}
