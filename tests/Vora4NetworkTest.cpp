// The out-of-band network block on the fourth-generation library: its
// capability, the text forms of its values, and the write path with its
// address checks.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "SimHarness.h"
#include "binding/ECTL2Handle.h"
#include "binding/VORA3Handle.h"
#include "binding/VORA4Handle.h"
#include "function/FuncNetwork.h"
#include "module/Status.h"
#include "network/AddressText.h"
#include "network/Vora4Network.h"
#include "voradrv.h"

using vtest::Generation;
using vtest::Own;

namespace {

constexpr uint32_t kControl = 0x10B0001;
constexpr uint32_t kHostName = 0x10B0003;
constexpr uint32_t kMac = 0x10B0004;
constexpr uint32_t kModifiedIp = 0x10B0005;
constexpr uint32_t kCurrentIp = 0x10B0009;
constexpr uint32_t kServerName = 0x10B000F;
constexpr uint32_t kServerAddress = 0x10B0010;

json_t* NetworkCapability(vtest::JsonPtr& host) {
    host = Own(json_object());
    EXPECT_EQ(0u, VoraIoTGetMDCapability(host.get()));
    return json_object_get(host.get(), "OOB-Network");
}

std::string ReadText(uint32_t id) {
    auto value = Own(json_string(""));
    EXPECT_EQ(0u, VoraIoTGetMDValue(id, value.get())) << std::hex << id;
    return json_string_value(value.get());
}

// "0x61,0x62,...": the simulator's log form of a word array.
std::string WordsText(const std::vector<unsigned>& words) {
    std::string text;
    for (unsigned w : words) {
        char word[16];
        std::snprintf(word, sizeof word, "%s0x%X", text.empty() ? "" : ",", w);
        text += word;
    }
    return text;
}

// The host name's 32 words for `text`, one character per word.
std::vector<unsigned> HostNameWords(const std::vector<unsigned>& characters) {
    std::vector<unsigned> words(characters);
    words.resize(32, 0);
    return words;
}

// Off the fourth generation the family creates no block, and the module
// routes nothing to the network class.
void ExpectNoNetworkBlock() {
    EXPECT_EQ(nullptr, FuncNetwork::instance());
    vtest::StdoutCapture quiet;
    VoraIoTInitialize();
    auto value = Own(json_string("1.2.3.4"));
    EXPECT_EQ(STATUS_UNSUPPORTED, VoraIoTSetMDValue(kModifiedIp, value.get()));
}

}  // namespace

TEST(Vora4Network, DefaultBoardCapabilityMatchesTheGoldenFile) {
    vtest::UseSimulator(Generation::Vora4);
    ASSERT_EQ(0u, VoraIoTInitialize());
    vtest::JsonPtr host = Own(nullptr);
    vtest::ExpectGolden(NetworkCapability(host), "vora4-network.json");
}

TEST(Vora4Network, TextFormsAtTheirEdges) {
    vtest::UseSimulator(Generation::Vora4, R"({"board": {"name": "VB-1"}, "network": {"words": {
        "0x12002": [321, 98, 65379],
        "0x12003": [10, 256, 2748, 1, 2, 3],
        "0x12004": [1, 2, 300, 4],
        "0x12008": [4294967295, 4294967295, 4294967295, 4294967295],
        "0x1200F": [10, 0, 0, 1, 65535]},
        "server_domain_name":
        "a123456789b123456789c123456789d123456789e123456789f123456789g123"}})");
    ASSERT_EQ(0u, VoraIoTInitialize());
    // Host name: the low byte of each word.
    EXPECT_EQ("Abc", ReadText(kHostName));
    // At least two digits per word, all of a word above 0xFF, cut to 17.
    EXPECT_EQ("0A:100:ABC:01:02:", ReadText(kMac));
    EXPECT_EQ("1.2.300.4", ReadText(kModifiedIp));
    EXPECT_EQ("4294967295.4294", ReadText(kCurrentIp));
    EXPECT_EQ("10.0.0.1:65535", ReadText(kServerAddress));
    EXPECT_EQ(64u, ReadText(kServerName).size());

    vtest::JsonPtr host = Own(nullptr);
    const json_t* group = json_object_get(NetworkCapability(host), "OOBNetwork0");
    EXPECT_EQ(R"({"n":"Network MAC address","sv":"0A:100:ABC:01:02:","u":"HEX","asm":"rw",)"
              R"("id":17498116})",
              vtest::Dump(json_array_get(json_object_get(group, "e"), 1)));
}

TEST(Vora4Network, FullLengthHostNameReadsWhole) {
    const std::string name(32, 'h');
    vtest::UseSimulator(Generation::Vora4, R"({"board": {"name": "VB-1"},
        "network": {"host_name": ")" + name + R"("}})");
    ASSERT_EQ(0u, VoraIoTInitialize());
    EXPECT_EQ(name, ReadText(kHostName));
}

TEST(Vora4Network, LibraryFailingEveryReadLeavesNoMemberButKeepsTheItems) {
    vtest::UseSimulator(Generation::Vora4, R"({"board": {"name": "VB-1"},
        "network": {"host_name": "bmc", "status": 3},
        "faults": [{"function": "VoraBoardGetValue", "status": "0x12345678"}]})");
    vtest::SimControl sim(Generation::Vora4);
    vtest::StdoutCapture init;
    ASSERT_EQ(0u, VoraIoTInitialize());
    EXPECT_EQ("", init.finish());
    vtest::JsonPtr host = Own(nullptr);
    EXPECT_EQ(nullptr, NetworkCapability(host));

    sim.startLog();
    auto number = Own(json_integer(7));
    auto text = Own(json_string("unchanged"));
    vtest::StdoutCapture out;
    EXPECT_EQ(STATUS_ERROR, VoraIoTGetMDValue(kHostName, number.get()));
    EXPECT_EQ(STATUS_READ_ERROR, VoraIoTGetMDValue(kHostName, text.get()));
    EXPECT_EQ(STATUS_READ_ERROR, VoraIoTGetMDValue(kServerAddress, text.get()));
    EXPECT_EQ(STATUS_ERROR, VoraIoTGetMDValue(kControl, text.get()));  // no text form
    EXPECT_EQ(STATUS_NOT_FOUND, VoraIoTGetMDValue(0x10B0011, number.get()));
    EXPECT_EQ(
        "VORADrv get value: function:OOB-Network get value failed fffff0ff\n"
        "VORADrv get value: function:OOB-Network get value failed fffffaff\n"
        "VORADrv get value: function:OOB-Network get value failed fffffaff\n"
        "VORADrv get value: function:OOB-Network get value failed fffff0ff\n"
        "VORADrv get value: function:OOB-Network get value failed fffffbff\n",
        out.finish());
    EXPECT_EQ(2, sim.count("VoraBoardGetValue 0x12002"));
    EXPECT_EQ(1, sim.count("VoraBoardGetValue 0x1200F"));
    EXPECT_EQ(3, sim.count("VoraBoardGetValue"));
    EXPECT_EQ(7, json_integer_value(number.get()));
    EXPECT_STREQ("unchanged", json_string_value(text.get()));
}

TEST(Vora4Network, ReadsChooseTheirFormByTheValuesType) {
    vtest::UseSimulator(Generation::Vora4);
    ASSERT_EQ(0u, VoraIoTInitialize());
    // An integer gets the first word of any item, a text item's included.
    auto number = Own(json_integer(0));
    EXPECT_EQ(0u, VoraIoTGetMDValue(kCurrentIp, number.get()));
    EXPECT_EQ(192, json_integer_value(number.get()));
    EXPECT_EQ(0u, VoraIoTGetMDValue(0x10B0002, number.get()));
    EXPECT_EQ(3, json_integer_value(number.get()));

    auto real = Own(json_real(1.5));
    vtest::StdoutCapture quiet;
    EXPECT_EQ(STATUS_ERROR, VoraIoTGetMDValue(kModifiedIp, real.get()));
    EXPECT_EQ(STATUS_ERROR, VoraIoTGetMDValue(kModifiedIp, nullptr));
    quiet.finish();
    EXPECT_DOUBLE_EQ(1.5, json_real_value(real.get()));
}

TEST(Vora4Network, WritesReachTheBoardAsExactWordsAndReadBack) {
    vtest::UseSimulator(Generation::Vora4);
    vtest::SimControl sim(Generation::Vora4);
    ASSERT_EQ(0u, VoraIoTInitialize());
    sim.startLog();
    const std::string name31 = "abcdefghijklmnopqrstuvwxyz01234";
    std::vector<unsigned> name31Words(name31.begin(), name31.end());
    struct {
        uint32_t id;
        const char* text;
        std::string words;
        const char* readBack;
    } const cases[] = {
        {kMac, "00:0b:AB:12:34:5f", "0x12003 words=0x0,0xB,0xAB,0x12,0x34,0x5F",
         "00:0B:AB:12:34:5F"},
        {kModifiedIp, "192.168.001.010", "0x12004 words=0xC0,0xA8,0x1,0xA", "192.168.1.10"},
        // Taken as an int stream reads each piece; the trailing dot adds none.
        {0x10B0008, " +10.0.7abc.254.", "0x12007 words=0xA,0x0,0x7,0xFE", "10.0.7.254"},
        {kHostName, name31.c_str(), "0x12002 words=" + WordsText(HostNameWords(name31Words)),
         name31.c_str()},
        // "é" is the bytes 0xC3 0xA9, each widened as a signed char.
        {kHostName, "caf\xC3\xA9", "0x12002 words=" + WordsText(HostNameWords(
                                       {0x63, 0x61, 0x66, 0xFFFFFFC3, 0xFFFFFFA9})),
         "caf\xC3\xA9"},
        {kHostName, "", "0x12002 words=" + WordsText(HostNameWords({})), ""},
    };
    for (const auto& c : cases) {
        sim.clearLog();
        auto value = Own(json_string(c.text));
        EXPECT_EQ(0u, VoraIoTSetMDValue(c.id, value.get())) << c.text;
        EXPECT_EQ("VoraBoardSetValue " + c.words + "\n", sim.log()) << c.text;
        EXPECT_EQ(c.readBack, ReadText(c.id));
    }
}

TEST(Vora4Network, RefusedValuesNeverReachTheBoard) {
    vtest::UseSimulator(Generation::Vora4);
    vtest::SimControl sim(Generation::Vora4);
    ASSERT_EQ(0u, VoraIoTInitialize());
    sim.startLog();
    const std::pair<uint32_t, json_t*> refused[] = {
        {kMac, json_string("0:b:AB:12:34:5f")},
        {kMac, json_string("00-0B-AB-12-34-5F")},
        {kMac, json_string("00:0B:AB:12:34:5F ")},
        {kMac, json_string("00:0B:AB:12:34:5G")},
        {kModifiedIp, json_string("192.168.1.256")},
        {kModifiedIp, json_string("192.168.1")},
        {kModifiedIp, json_string("192.168..1")},
        {kModifiedIp, json_string("1.2.3.4..")},
        {kModifiedIp, json_string("-1.2.3.4")},
        {kHostName, json_string(std::string(32, 'h').c_str())},
        {kHostName, json_real(1.0)},
        {kControl, json_true()},
        {kControl, json_null()},
        {kControl, json_object()},
        {kControl, nullptr},
    };
    vtest::StdoutCapture quiet;
    for (const auto& [id, value] : refused) {
        EXPECT_EQ(STATUS_ERROR, VoraIoTSetMDValue(id, value)) << vtest::Dump(value);
        json_decref(value);
    }
    auto text = Own(json_string("1.2.3.4"));
    EXPECT_EQ(STATUS_NOT_FOUND, VoraIoTSetMDValue(0x10B0011, text.get()));
    // A string to an item without a string form succeeds without effect.
    EXPECT_EQ(0u, VoraIoTSetMDValue(kCurrentIp, text.get()));
    EXPECT_EQ(0u, VoraIoTSetMDValue(kControl, text.get()));
    quiet.finish();
    EXPECT_EQ("", sim.log());
    EXPECT_EQ("00:0B:AB:12:34:5F", ReadText(kMac));
}

TEST(Vora4Network, IntegersGoToAnyItemAsOneWordAndTheLibraryDecides) {
    vtest::UseSimulator(Generation::Vora4);
    vtest::SimControl sim(Generation::Vora4);
    ASSERT_EQ(0u, VoraIoTInitialize());
    sim.startLog();
    vtest::StdoutCapture quiet;
    // Read-only: the library refuses, and its status comes back unchanged.
    auto seven = Own(json_integer(7));
    EXPECT_EQ(0xFFFFFCFFu, VoraIoTSetMDValue(kCurrentIp, seven.get()));
    auto big = Own(json_integer(19));
    EXPECT_EQ(0xFFFFFEFFu, VoraIoTSetMDValue(kControl, big.get()));
    // Cut to 32 bits.
    auto wide = Own(json_integer(0x100000005LL));
    EXPECT_EQ(0u, VoraIoTSetMDValue(kControl, wide.get()));
    auto letter = Own(json_integer('A'));
    EXPECT_EQ(0u, VoraIoTSetMDValue(kHostName, letter.get()));
    quiet.finish();
    EXPECT_EQ("VoraBoardSetValue 0x12008 words=0x7\n"
              "VoraBoardSetValue 0x12000 words=0x13\n"
              "VoraBoardSetValue 0x12000 words=0x5\n"
              "VoraBoardSetValue 0x12002 words=" + WordsText(HostNameWords({'A'})) + "\n",
              sim.log());
    auto number = Own(json_integer(0));
    EXPECT_EQ(0u, VoraIoTGetMDValue(kControl, number.get()));
    EXPECT_EQ(5, json_integer_value(number.get()));
    EXPECT_EQ("A", ReadText(kHostName));
}

TEST(Vora4Network, IpCheckIsLenientAndMacCheckStrict) {
    using voradrv::network::ChkIpStr;
    using voradrv::network::ChkMacStr;
    for (const char* ip : {"255.255.255.255", "010.1.1.1", "+1.2.3.4", " 1.2.3.4", "12abc.1.1.1",
                           "1.2.3.4.", "-0.1.2.3"}) {
        EXPECT_TRUE(ChkIpStr(ip)) << ip;
    }
    for (const char* ip : {"", "1.2.3", "1.2.3.4.5", "1.2.3.4..", ".1.2.3", "256.1.1.1",
                           "-1.1.1.1", "a.1.1.1", "1.2.3.99999999999"}) {
        EXPECT_FALSE(ChkIpStr(ip)) << ip;
    }
    EXPECT_TRUE(ChkMacStr("FF:ff:00:99:aA:Bb"));
    for (const char* mac : {"00:0b:AB:12:34:5", "00:0b:AB:12:34:5f:", " 00:0b:AB:12:34:5f",
                            "00.0b.AB.12.34.5f", "0:0b:AB:12:34:5ff", "000bAB12345f00000"}) {
        EXPECT_FALSE(ChkMacStr(mac)) << mac;
    }
}

TEST(Vora4Network, AbsentOnTheThirdGeneration) {
    vtest::UseSimulator(Generation::Vora3);
    ASSERT_EQ(1u, VORA3Handle::instance()->mVoraDllInit());
    ExpectNoNetworkBlock();
}

TEST(Vora4Network, AbsentOnTheEApiLibrary) {
    vtest::UseSimulator(Generation::EApi);
    ASSERT_EQ(0u, ECTL2Handle::instance()->mEApiLibInitialize());
    ExpectNoNetworkBlock();
}

namespace {

int allocationsLeft = -1;  // fail every allocation once this reaches 0; -1: never

void* CountedMalloc(size_t size) {
    if (allocationsLeft == 0) {
        return nullptr;
    }
    if (allocationsLeft > 0) {
        --allocationsLeft;
    }
    return std::malloc(size);
}

}  // namespace

// Each JSON allocation of the capability build fails in turn: the block
// must neither crash nor leak nor release anything twice (the sanitizer
// build checks the last two).
TEST(Vora4Network, CapabilityBuildSurvivesEveryAllocationFailure) {
    vtest::UseSimulator(Generation::Vora4);
    ASSERT_EQ(0u, VORA4Handle::instance()->mVoraLibInitialize());
    vtest::StdoutCapture quiet;
    for (int n = 0;; ++n) {
        Vora4Network block;
        allocationsLeft = n;
        json_set_alloc_funcs(CountedMalloc, std::free);
        EXPECT_EQ(0u, block.VoraIoTInitialize());
        auto host = Own(json_object());
        const uint32_t status = block.VoraIoTGetMDCapability(host.get());
        const bool completed = allocationsLeft > 0;
        allocationsLeft = -1;
        json_set_alloc_funcs(std::malloc, std::free);
        if (completed) {
            EXPECT_EQ(0u, status);
            break;
        }
        ASSERT_LT(n, 10000);
    }
}
