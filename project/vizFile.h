// ./input/viz.txt: how the scene looks (objects shown, camera, colour scale
// limits) and the intervals of the probe, force and heat-loss records. One
// "key value" line per key, 71 lines as written.
#pragma once

#include <string>

#include "app/appConfig.h"
#include "project/parameterTable.h"

namespace marv {

constexpr int numVizKeys = 70;     // numbers 0..69
constexpr int unknownVizKey = 70;  // index of a key the table does not hold

const char* vizKeyName(int number);                    // "NA" beyond 69
parameterEntry lookupVizKey(const std::string& name);  // index and valueType (0 whole, 1 real)
// One line without its end: "%-40s %.8e" for reals, "%-40s %d" for whole numbers.
std::string formatVizLine(int number, double value);

// The text of viz.txt for the record's current values.
std::string formatVizFile(const appConfig& cfg);

// write = 0 reads ./input/viz.txt into the record (a missing file changes
// nothing); write = 1 writes it through a temporary file and a rename.
// False when the write failed (errno tells why); the old file then stands.
bool syncViz(appConfig& cfg, int write);

}  // namespace marv
