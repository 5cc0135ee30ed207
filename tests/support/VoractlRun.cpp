#include "VoractlRun.h"

#include <stdlib.h>
#include <unistd.h>

#include <utility>

namespace vtest {

std::string VoractlPath() { return VTEST_VORACTL; }

void UseOwnSimulatedBoard() {
    static const std::string state = "/tmp/vtest-board-" + std::to_string(getpid()) + ".json";
    static const bool once = [] {
        unlink(state.c_str());
        std::atexit([] { unlink(state.c_str()); });
        return true;
    }();
    (void)once;
    setenv("VORA_SIM_STATE", state.c_str(), 1);
    setenv("VORA_SIM_TIME", "0", 1);
}

ToolResult Voractl(const std::vector<std::string>& arguments) {
    UseOwnSimulatedBoard();
    return RunTool(VTEST_VORACTL, arguments);
}

std::vector<std::string> StandIn(const std::string& failRead, const std::string& log) {
    setenv("VTEST_REAL_MODULE", VTEST_MODULE, 1);
    for (const auto& [name, value] : {std::pair{"VTEST_FAIL_READ", failRead},
                                      std::pair{"VTEST_MODULE_LOG", log}}) {
        value.empty() ? unsetenv(name) : setenv(name, value.c_str(), 1);
    }
    unlink(log.c_str());
    return {"--module", VTEST_STANDIN_MODULE};
}

}  // namespace vtest
