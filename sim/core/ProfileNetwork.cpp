#include "ProfileNetwork.h"

#include <cstdio>

namespace vorasim {

namespace {

using vorarec::Node;

// A caller's buffer holds the largest value, 64 words; a library answering
// more would overrun it.
constexpr size_t kMostWords = 64;

std::vector<uint32_t> IpWords(const Node& n, bool withPort) {
    const std::string text = n.text();
    unsigned w[5] = {};
    int used = 0;
    const int fields = withPort ? std::sscanf(text.c_str(), "%u.%u.%u.%u:%u%n", &w[0], &w[1], &w[2],
                                              &w[3], &w[4], &used)
                                : std::sscanf(text.c_str(), "%u.%u.%u.%u%n", &w[0], &w[1], &w[2],
                                              &w[3], &used);
    const int expected = withPort ? 5 : 4;
    if (fields != expected || static_cast<size_t>(used) != text.size() || w[0] > 255 ||
        w[1] > 255 || w[2] > 255 || w[3] > 255 || w[4] > 65535) {
        n.fail(withPort ? "\"a.b.c.d:port\"" : "a dotted IPv4 address");
    }
    return std::vector<uint32_t>(w, w + expected);
}

std::vector<uint32_t> MacWords(const Node& n) {
    const std::string text = n.text();
    unsigned w[6] = {};
    int used = 0;
    if (std::sscanf(text.c_str(), "%2x:%2x:%2x:%2x:%2x:%2x%n", &w[0], &w[1], &w[2], &w[3], &w[4],
                    &w[5], &used) != 6 ||
        used != 17 || text.size() != 17) {
        n.fail("a MAC address such as 00:0B:AB:12:34:5F");
    }
    return std::vector<uint32_t>(w, w + 6);
}

std::vector<uint32_t> TextWords(const Node& n, size_t words) {
    const std::string text = n.text();
    if (text.size() > words) {
        n.fail("a text of up to " + std::to_string(words) + " characters");
    }
    std::vector<uint32_t> out(words, 0);
    for (size_t i = 0; i < text.size(); ++i) {
        out[i] = static_cast<unsigned char>(text[i]);
    }
    return out;
}

void ParseAddresses(const Node& n, uint32_t firstId, Board& board) {
    n.object({"ip", "mask", "dns", "gateway"});
    const char* const keys[] = {"ip", "mask", "dns", "gateway"};
    for (uint32_t i = 0; i < 4; ++i) {
        if (n.member(keys[i]).present()) {
            board.network[firstId + i] = IpWords(n.member(keys[i]), false);
        }
    }
}

// Raw word arrays by board value id, for boards no text form describes.
void ParseWords(const Node& words, Board& board) {
    if (!json_is_object(words.json())) {
        words.fail("an object of word arrays by board value id");
    }
    const char* key;
    json_t* value;
    json_object_foreach(const_cast<json_t*>(words.json()), key, value) {
        const vorarec::JsonPtr idText(json_string(key));
        const uint32_t id = Node(idText.get(), words.path() + "." + key).u32();
        const Node list(value, words.path() + "." + key);
        if (list.arraySize() > kMostWords) {
            list.fail("at most 64 words");
        }
        std::vector<uint32_t> out;
        for (size_t i = 0; i < list.arraySize(); ++i) {
            out.push_back(list.element(i).u32());
        }
        board.network[id] = out;
    }
}

}  // namespace

void ParseNetwork(const Node& n, Board& board) {
    n.object({"control", "status", "host_name", "mac", "modified", "current", "error_code",
              "server_type", "server_domain_name", "server", "words"});
    const struct {
        const char* key;
        uint32_t id;
    } numbers[] = {{"control", 0x12000}, {"status", 0x12001}, {"error_code", 0x1200C}, {"server_type", 0x1200D}};
    for (const auto& number : numbers) {
        if (n.member(number.key).present()) {
            board.network[number.id] = {n.member(number.key).u32()};
        }
    }
    if (n.member("host_name").present()) {
        board.network[0x12002] = TextWords(n.member("host_name"), 32);
    }
    if (n.member("mac").present()) {
        board.network[0x12003] = MacWords(n.member("mac"));
    }
    if (n.member("modified").present()) {
        ParseAddresses(n.member("modified"), 0x12004, board);
    }
    if (n.member("current").present()) {
        ParseAddresses(n.member("current"), 0x12008, board);
    }
    if (n.member("server_domain_name").present()) {
        board.network[0x1200E] = TextWords(n.member("server_domain_name"), 64);
    }
    if (n.member("server").present()) {
        board.network[0x1200F] = IpWords(n.member("server"), true);
    }
    if (n.member("words").present()) {
        ParseWords(n.member("words"), board);
    }
}

}  // namespace vorasim
