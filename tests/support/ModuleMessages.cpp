#include "ModuleMessages.h"

#include <algorithm>
#include <cstdio>
#include <regex>
#include <vector>

namespace vtest {

namespace {

const char kBlock[] = "(Platform Information|Hardware Monitor|GPIO|Backlight|OOB-Network)";

const std::vector<std::regex>& Messages() {
    static const std::vector<std::regex> messages = [] {
        const std::string block = kBlock;
        const std::vector<std::string> patterns = {
            // Probe and entry points.
            R"(\[VORADrv\] (VORA4|VORA3|ECTL2) can not load \(0x[0-9A-F]{8}\)\n)",
            R"(VORADrvnInit: module Init failed\n)",
            R"(VORADrv create Cap: module:[0-9]+ get cap failed\n)",
            R"(VORADrv create Cap: json_pack failed\.\.\.\n)",
            R"(VORADrv get Cap: jasonCapabilityPackage is null\n)",
            R"(VORADrv get Cap: parameter json is null\n)",
            R"(VORADrv get Cap: unable to update an empty object with an empty object\n)",
            R"(VORADrv Get Cap: Capability failed\.\.\.\n)",
            R"(VORADrv (get|set) value: function id not found\n)",
            "VORADrv get value: function:" + block + " get value failed [0-9a-f]{8}\n",
            "VORADrv set value: function:" + block + " set value failed\n",
            "VORADrv set Event: function: " + block + " set event failed\n",
            "VORADrv unInit: module unInit failed " + block + "\n",
            // Families.
            R"(VORADrv Info init: json_pack array failed\n)",
            R"(VORADrv Info init: IPSO Json_pack array failed\n)",
            R"(VORADrv Info Get Cap: unable to update an emtpy object with an empty object\n)",
            R"(VORADrv (HWM|GPIO|Backlight|Network) Get Cap: unable to update an empty object )"
            R"(with an empty object\n)",
            // Platform information; the builders' messages have no line end.
            R"(VORADrv Info (getValueInfo|getStringInfo|getCustomizeString|getVersion|)"
            R"(get platform name|get BIOS revision): (json_pack array failed|)"
            R"(unable to append new value))",
            R"(VORADrv Info Get Value: (id not found|not a json integer or string)\n)",
            R"(VORADRV Info Get Value: not a json string\n)",
            // Hardware monitor.
            R"(VORADrv HWM (VOLT|Temp|FAN|CURRENT|CASEOPEN): (cap unable to append new value|)"
            R"(cap json_pack array failed|ipso cap json_pack array failed)\n)",
            R"(VORADRV HWM Get Value: not a json real\n)",
            // GPIO.
            R"(VORADrv GPIO : cap (dir|level) unable to append new value\n)",
            R"(VORADrv GPIO: (ipso )?cap json_pack array failed\n)",
            R"(VORADRV GPIO Get Value: not a json integer\n)",
            // Backlight.
            R"(VORADrv BKL : cap (brightness|frequency|polarity|backlight) unable to append )"
            R"(new value\n)",
            R"(VORADrv BKL: (ipso )?cap json_pack array failed\n)",
            R"(VORADRV BKL Get Value: not a json integer\n)",
            // Network.
            R"(VORADrv Network : cap dir unable to append new value\n)",
            R"(VORADrv network: ipso cap json_pack array failed\n)",
        };
        std::vector<std::regex> compiled;
        for (const std::string& p : patterns) {
            compiled.emplace_back(p, std::regex::ECMAScript | std::regex::optimize);
        }
        return compiled;
    }();
    return messages;
}

}  // namespace

std::string UnknownOutput(const std::string& printed) {
    const std::vector<std::regex>& messages = Messages();  // compiled on first use
    auto at = printed.cbegin();
    while (at != printed.cend()) {
        bool known = false;
        for (const std::regex& message : messages) {
            std::smatch match;
            if (std::regex_search(at, printed.cend(), match, message,
                                  std::regex_constants::match_continuous) &&
                match.length(0) > 0) {
                at += match.length(0);
                known = true;
                break;
            }
        }
        if (!known) {
            const auto end = std::find(at, printed.cend(), '\n');
            return std::string(at, end == printed.cend() ? end : end + 1);
        }
    }
    return "";
}

std::string GetFailedLine(const std::string& block, uint32_t status) {
    char text[128];
    std::snprintf(text, sizeof text, "VORADrv get value: function:%s get value failed %08x\n",
                  block.c_str(), status);
    return text;
}

std::string SetFailedLine(const std::string& block) {
    return "VORADrv set value: function:" + block + " set value failed\n";
}

std::string BlockName(uint32_t classId) {
    switch (classId) {
        case 0x10000:
            return "Platform Information";
        case 0x20000:
            return "Hardware Monitor";
        case 0x40000:
            return "GPIO";
        case 0x50000:
            return "Backlight";
        case 0xB0000:
            return "OOB-Network";
        default:
            return "";
    }
}

}  // namespace vtest
