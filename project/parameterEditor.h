// The parameter list of an open project as the editor holds it: the entries
// in file order and the transfer table that applyParameters fills. The
// editor's screen state joins this record when the screen is built.
#pragma once

#include <array>

#include "app/appConfig.h"
#include "project/parameterTable.h"

namespace marv {

struct parameterEditor {
  std::array<parameterEntry, maxParameterEntries> entries;  // the list, file order
  std::array<int, maxParameterEntries> enabledByNumber{};   // enabled state by parameter number
  std::array<double, maxParameterEntries> transferTable{};  // values by number, notGiven when absent
  int count = 0;                                            // entries in use
  int numberedRows = 0;                                     // entries that show a list number
};

// A fresh editor: no entries, every number enabled, transfer table notGiven.
void resetParameterEditor(parameterEditor& editor);

// Takes the value texts of choice entries into choiceValue (truncated), as
// the editor does when it shows the list.
void takeChoiceValues(parameterEditor& editor);

// Writes each choice entry's choiceValue back into its value text by "%d".
void storeChoiceValues(parameterEditor& editor);

// The editor's accepting step without a screen: choices taken and stored,
// the file written unless in Analysis mode, then applyParameters. Returns 1,
// or -1 when the list could not be applied.
int acceptParameters(parameterEditor& editor, appConfig& cfg);

}  // namespace marv
