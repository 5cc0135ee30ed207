// The out-of-band network block on the fourth-generation library: its
// capability, the text forms of its values, and the write path with its
// address checks.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "SimHarness.h"
#include "module/Status.h"
#include "network/AddressText.h"
#include "voradrv.h"

using namespace vtest;

namespace {

constexpr uint32_t kControl = 0x10B0001;
constexpr uint32_t kHostName = 0x10B0003;
constexpr uint32_t kMac = 0x10B0004;
constexpr uint32_t kModifiedIp = 0x10B0005;
constexpr uint32_t kCurrentIp = 0x10B0009;
constexpr uint32_t kServerName = 0x10B000F;
constexpr uint32_t kServerAddress = 0x10B0010;

// The simulator's log of a host name's 32 words ("0x61,0x62,...,0x0").
std::string HostNameWords(std::vector<unsigned> characters) {
    characters.resize(32, 0);
    std::string text;
    for (unsigned c : characters) {
        char word[16];
        std::snprintf(word, sizeof word, "%s0x%X", text.empty() ? "" : ",", c);
        text += word;
    }
    return "0x12002 words=" + text;
}

}  // namespace

TEST(Vora4Network, TextFormsAtTheirEdges) {
    Initialised(Generation::Vora4, R"({"board": {"name": "VB-1"}, "network": {"words": {
        "0x12002": [321, 98, 65379],
        "0x12003": [10, 256, 2748, 1, 2, 3],
        "0x12004": [1, 2, 300, 4],
        "0x12008": [4294967295, 4294967295, 4294967295, 4294967295],
        "0x1200F": [255, 255, 255, 255, 65535]},
        "server_domain_name":
        "a123456789b123456789c123456789d123456789e123456789f123456789g123"}})");
    // Host name: the low byte of each word.
    EXPECT_EQ("Abc", ReadText(kHostName));
    // At least two digits per word, all of a word above 0xFF, cut to 17.
    EXPECT_EQ("0A:100:ABC:01:02:", ReadText(kMac));
    EXPECT_EQ("1.2.300.4", ReadText(kModifiedIp));
    EXPECT_EQ("4294967295.4294", ReadText(kCurrentIp));
    EXPECT_EQ("255.255.255.255:6553", ReadText(kServerAddress));  // cut to 20
    EXPECT_EQ(64u, ReadText(kServerName).size());

    const JsonPtr network = CapabilityOf("OOB-Network");
    EXPECT_EQ(R"({"n":"Network MAC address","sv":"0A:100:ABC:01:02:","u":"HEX","asm":"rw",)"
              R"("id":17498116})",
              Dump(FindElement(network.get(), kMac)));
}

TEST(Vora4Network, FullLengthHostNameReadsWhole) {
    const std::string name(32, 'h');
    Initialised(Generation::Vora4, R"({"board": {"name": "VB-1"},
        "network": {"host_name": ")" + name + R"("}})");
    EXPECT_EQ(name, ReadText(kHostName));
}

TEST(Vora4Network, TextThatIsNotUtf8KeepsTheValueAndSucceeds) {
    Initialised(Generation::Vora4, R"({"board": {"name": "VB-1"},
        "network": {"words": {"0x12002": [255, 65]}}})");
    auto value = Own(json_string("before"));
    StdoutCapture out;
    EXPECT_EQ(0u, VoraIoTGetMDValue(kHostName, value.get()));
    EXPECT_STREQ("before", json_string_value(value.get()));
    EXPECT_EQ("", out.finish());
}

TEST(Vora4Network, LibraryFailingEveryReadLeavesNoMemberButKeepsTheItems) {
    UseSimulator(Generation::Vora4, R"({"board": {"name": "VB-1"},
        "network": {"host_name": "bmc", "status": 3},
        "faults": [{"function": "VoraBoardGetValue", "status": "0x12345678"}]})");
    SimControl sim(Generation::Vora4);
    StdoutCapture out;
    ASSERT_EQ(0u, VoraIoTInitialize());
    EXPECT_EQ("", out.take());
    EXPECT_EQ(nullptr, CapabilityOf("OOB-Network"));
    // Later reads reach the library and fail as reads, not as unknown items.
    sim.startLog();
    const struct {
        uint32_t id;
        json_type type;
        uint32_t status;
    } reads[] = {{kHostName, JSON_INTEGER, STATUS_ERROR},
                 {kHostName, JSON_STRING, STATUS_READ_ERROR},
                 {kServerAddress, JSON_STRING, STATUS_READ_ERROR},
                 {kControl, JSON_STRING, STATUS_ERROR}};  // no text form
    for (const auto& r : reads) {
        uint32_t status = 0;
        ReadItem(r.id, r.type, &status);
        EXPECT_EQ(Hex(r.status), Hex(status)) << Hex(r.id);
    }
    EXPECT_EQ(2, sim.count("VoraBoardGetValue 0x12002"));
    EXPECT_EQ(1, sim.count("VoraBoardGetValue 0x1200F"));
    EXPECT_EQ(3, sim.count("VoraBoardGetValue"));
}

// An integer gets the first word of any item, a text item's included.
TEST(Vora4Network, IntegerReadsGetTheFirstWord) {
    Initialised(Generation::Vora4);
    EXPECT_EQ(192, ReadInteger(kCurrentIp));
    EXPECT_EQ(3, ReadInteger(0x10B0002));
}

TEST(Vora4Network, WritesReachTheBoardAsExactWordsAndReadBack) {
    SimControl sim = Initialised(Generation::Vora4);
    sim.startLog();
    const std::string name31 = "abcdefghijklmnopqrstuvwxyz01234";
    const struct {
        uint32_t id;
        std::string text;
        std::string words;
        std::string readBack;
    } cases[] = {
        {kMac, "00:0b:AB:12:34:5f", "0x12003 words=0x0,0xB,0xAB,0x12,0x34,0x5F",
         "00:0B:AB:12:34:5F"},
        {kModifiedIp, "192.168.001.010", "0x12004 words=0xC0,0xA8,0x1,0xA", "192.168.1.10"},
        // Taken as an int stream reads each piece; the trailing dot adds none.
        {0x10B0008, " +10.0.7abc.254.", "0x12007 words=0xA,0x0,0x7,0xFE", "10.0.7.254"},
        {kHostName, name31, HostNameWords({name31.begin(), name31.end()}), name31},
        // "é" is the bytes 0xC3 0xA9, each widened as a signed char.
        {kHostName, "caf\xC3\xA9", HostNameWords({0x63, 0x61, 0x66, 0xFFFFFFC3, 0xFFFFFFA9}),
         "caf\xC3\xA9"},
        {kHostName, "", HostNameWords({}), ""},
    };
    for (const auto& c : cases) {
        sim.clearLog();
        EXPECT_EQ(0u, Write(c.id, json_string(c.text.c_str()))) << c.text;
        EXPECT_EQ("VoraBoardSetValue " + c.words + "\n", sim.log()) << c.text;
        EXPECT_EQ(c.readBack, ReadText(c.id));
    }
}

// Malformed addresses and a host name of 32 characters; the hostile-input
// checks hold every other kind of value.
TEST(Vora4Network, RefusedValuesNeverReachTheBoard) {
    SimControl sim = Initialised(Generation::Vora4);
    sim.startLog();
    const std::pair<uint32_t, std::string> refused[] = {
        {kMac, "0:b:AB:12:34:5f"},         {kMac, "00-0B-AB-12-34-5F"},
        {kMac, "00:0B:AB:12:34:5F "},      {kMac, "00:0B:AB:12:34:5G"},
        {kModifiedIp, "192.168.1.256"},    {kModifiedIp, "192.168.1"},
        {kModifiedIp, "192.168..1"},       {kModifiedIp, "1.2.3.4.."},
        {kModifiedIp, "-1.2.3.4"},         {kHostName, std::string(32, 'h')},
        // 16 characters, but 32 bytes.
        {kHostName, [] {
             std::string name;
             for (int i = 0; i < 16; ++i) {
                 name += "\u00e9";
             }
             return name;
         }()},
    };
    StdoutCapture quiet;
    for (const auto& [id, text] : refused) {
        EXPECT_EQ(STATUS_ERROR, Write(id, json_string(text.c_str()))) << text;
    }
    EXPECT_EQ("", sim.log());
    EXPECT_EQ("00:0B:AB:12:34:5F", ReadText(kMac));
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
