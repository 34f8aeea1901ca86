// The table of every parameter that param.txt can hold, one row each: number,
// name, kind, the field of appConfig that holds it, the limits a value is
// held to, and the description that goes into the file and the editor.
// Reading, writing, applyParameters and the editor all take what they need
// from it. The number is internal; a file line's leading number is only its
// position.
#pragma once

#include <cstdint>
#include <string>

#include "app/appConfig.h"

namespace marv {

// Parameter numbers, the order of the table.
enum parameterNumber : int {
  paramCmode = 0,
  paramIbm,
  paramDomx,
  paramParallel,
  paramNprocs,
  paramNpx,
  paramNpy,
  paramNpz,
  paramNx,
  paramNy,
  paramNz,
  paramLx,
  paramLy,
  paramLz,
  paramDeltat,
  paramSts,
  paramLatts,
  paramCfl,
  paramNfil,
  paramWfil,
  paramNpfil,
  paramWpfil,
  paramOmega,
  paramPeps,
  paramLoopmax,
  paramPresw,
  paramUinw,
  paramVinw,
  paramWinw,
  paramRhow,
  paramTempw,
  paramMassfrw,
  paramUinb,
  paramVinb,
  paramWinb,
  paramTempb,
  paramMassfrb,
  paramUinr,
  paramVinr,
  paramWinr,
  paramTempr,
  paramMassfrr,
  paramUing,
  paramVing,
  paramWing,
  paramTempg,
  paramMassfrg,
  paramUiny,
  paramViny,
  paramWiny,
  paramTempy,
  paramMassfry,
  paramUinc,
  paramVinc,
  paramWinc,
  paramTempc,
  paramMassfrc,
  paramTempwallk,
  paramTempwall,
  paramTempwallSTL,
  paramXoffstSTL,
  paramYoffstSTL,
  paramZoffstSTL,
  paramNormVecDirSTL,
  paramCoordSTL,
  paramUnitSTL,
  paramXRotSTL,
  paramYRotSTL,
  paramZRotSTL,
  paramMu,
  paramPr,
  paramSc,
  paramCs,
  paramSct,
  paramNfig,
  paramNfile,
  paramNdiv,
  paramGfx,
  paramGfy,
  paramPresRelax,
  paramOpenPresFlag,
  paramPresAdjustFlag,
  paramWfilWallBC,
  paramInumColorsThresMax,
  paramMLoopMax,
  paramBcFactor,
  paramAgeFlag,
};

constexpr int numParameters = 87;  // numbers 0..86
static_assert(paramAgeFlag == numParameters - 1, "one name per parameter number");
constexpr int unknownParameter = 87;  // index of a name the table does not hold
constexpr int maxParameterEntries = 100;

// One line of the parameter list.
struct parameterEntry {
  int rowY = 0;                  // row position in the editor's list image [px]
  int index = unknownParameter;  // parameter number, 87 unknown
  int inputHandle = -1;          // the row's text input field
  int valueType = 0;             // 0 whole number or choice, 1 real
  std::string name;              // as it stood in the file
  std::string value;             // value text
  std::string description;       // the table's text; for a text line the line itself
  int isChoice = 0;              // 1: one of choiceCount numbered options
  int choiceCount = 5;           // 2 or 5
  int choiceValue = 0;           // picked option of a choice
  int listNumber = -1;           // running number in the editor, -1 none
  int enabled = 1;               // 0: greyed
  unsigned char isTextLine = 0;  // 1: a text line, not a parameter
};

// How a parameter's value is stored in its field: as given (real), truncated
// toward zero (whole), narrowed to single precision (single), or as 1 for any
// value whose truncation is not zero (flag).
enum class fieldKind : std::uint8_t { real, whole, single, flag };

// The member of appConfig that holds a parameter; the pointer of its kind is set.
struct parameterField {
  fieldKind kind = fieldKind::real;
  double appConfig::*real = nullptr;
  int appConfig::*whole = nullptr;
  float appConfig::*single = nullptr;
  std::uint8_t appConfig::*flag = nullptr;
};

// The range a taken value is held to; +-infinity where there is none.
struct valueLimits {
  double lowest = 0.0;
  double highest = 0.0;
};

struct parameterRow {
  const char* name;         // as param.txt spells it
  int valueType;            // 0 whole number or choice, 1 real
  int isChoice;             // 1: numbered options
  int choiceCount;          // 2 or 5
  parameterField field;     // where appConfig holds it
  valueLimits limits;       // held to on taking
  const char* description;  // into param.txt and the editor
};

// The row of a parameter number; null for 87 and beyond.
const parameterRow* parameterRowOf(int index);

// Stores a value of parameter number index into its field as its kind says.
// cs and sct get no special care here; applyParameters adds it.
void setParameterField(appConfig& cfg, int index, double value);

// The current value of a parameter's field, as a double; 0 beyond the table.
double parameterFieldValue(const appConfig& cfg, int index);

// Brings every field back inside its row's limits.
void holdToLimits(appConfig& cfg);

// Fills an entry from the table for name (compared without case): index,
// valueType, isChoice, choiceCount; enabled := 1; name := the text given.
parameterEntry lookupParameter(const std::string& name);

// The table's description of a parameter number; "NA" for 87 and beyond.
const char* parameterDescription(int index);

// The table's name of a parameter number; "NA" beyond the table.
const char* parameterName(int index);

// Case-insensitive comparison of names and keywords.
bool sameName(const std::string& a, const char* b);

// The place of name among the count rows of a key table, compared as
// sameName does; count when no row holds it. nameOf gives a row's name.
template <typename Row, typename NameOf>
int findName(const std::string& name, const Row* rows, int count, NameOf nameOf) {
  for (int i = 0; i < count; ++i)
    if (sameName(name, nameOf(rows[i]))) return i;
  return count;
}

}  // namespace marv
