#include "Export.h"

#include <cstdlib>

#include "Format.h"
#include "Output.h"
#include "Prometheus.h"
#include "Reading.h"
#include "SenML.h"
#include "ToolError.h"
#include "json/JsonPtr.h"

using vorajson::JsonPtr;
using vorajson::Own;

namespace voractl {

int Export(Context& context) {
    const std::vector<Reading> readings = context.session.readAll(context.session.items());
    std::string text;
    if (context.options.format == "senml") {
        JsonPtr pack = Own(SenmlPack(readings, UnixTime()));
        char* dumped = json_dumps(pack.get(), JSON_INDENT(2) | JSON_REAL_PRECISION(15));
        if (dumped == nullptr) {
            throw ToolError("cannot build the SenML pack");
        }
        text = std::string(dumped) + "\n";
        std::free(dumped);
    } else {
        text = PrometheusText(readings);
    }
    WriteOutput(context.options.output, text, context.out);
    return ReportFailures(readings);
}

}  // namespace voractl
