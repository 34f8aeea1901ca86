// The shape that force.txt and heatLoss.txt share: ts and time, the record
// flag of each colour 1..8, then each colour's value columns; and the rules
// of a pass and a step that both follow.
#pragma once

#include <array>
#include <cstdint>
#include <initializer_list>
#include <string>

#include "app/appConfig.h"
#include "result/recordFiles.h"

namespace marv {

constexpr int firstRecordedColour = 1;  // colour 0, free fluid, is never recorded
constexpr int lastRecordedColour = 8;

// The head words, each value column named <colour>_<valueName>.
recordLayout colourRecordLayout(const appConfig& cfg, std::initializer_list<const char*> valueNames);
std::string colourHeadLine(const appConfig& cfg, std::initializer_list<const char*> valueNames);

// values holds perColour numbers for each colour 1..8 in turn.
std::string colourDataLine(const appConfig& cfg, const std::array<std::uint8_t, numColourTypes>& on,
                           const double* values, int perColour);

// Start of a pass: the colour flags of the file's last line, when the
// record was shown and recorded.
void readColourSetup(appConfig& cfg, const char* path, const recordLayout& layout, int shown,
                     std::array<std::uint8_t, numColourTypes>& on, int& count, int& headerDone, std::uint8_t& refused);

// Whether step ts writes a line: never the first step of a restart (the run
// before wrote it), every interval steps while the record is shown and has
// colours.
bool colourRecordStep(const appConfig& cfg, int interval, int shown, int count);

}  // namespace marv
