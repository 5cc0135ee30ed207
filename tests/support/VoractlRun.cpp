#include "VoractlRun.h"

#include <stdlib.h>
#include <unistd.h>

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

std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    size_t start = 0;
    for (size_t end; (end = text.find('\n', start)) != std::string::npos; start = end + 1) {
        lines.push_back(text.substr(start, end - start));
    }
    return lines;
}

bool GenerationServed(const std::string& generation) {
    return Voractl({"--sim", "--sim-generation", generation, "list"}).status == 0;
}

}  // namespace vtest
