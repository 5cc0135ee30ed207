// Readings in the Prometheus text exposition format, after the naming guide
// and node_exporter's hardware-monitor metrics, with our own prefix:
//
//   # HELP voradrv_temperature_celsius Temperature sensor reading, in degrees Celsius.
//   # TYPE voradrv_temperature_celsius gauge
//   voradrv_temperature_celsius{sensor="CPU"} 48.5
#pragma once

#include <string>
#include <vector>

#include "Reading.h"

namespace voractl {

// Every readable reading as a sample, each metric family once with its HELP
// and TYPE lines and its samples together. The board's texts (platform
// information, and per group of other blocks) become the labels of an info
// metric with the value 1. Unreadable readings are counted in
// voradrv_unreadable_items.
std::string PrometheusText(const std::vector<Reading>& readings);

// A label name made of a display name: "Board serial number" gives
// "board_serial_number".
std::string LabelName(const std::string& name);

}  // namespace voractl
