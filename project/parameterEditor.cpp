// The parameter list's life between reading and applying.
#include "project/parameterEditor.h"

#include <cstdio>

#include "common/textNumbers.h"
#include "project/applyParameters.h"
#include "project/parameterFile.h"

namespace marv {

void resetParameterEditor(parameterEditor& editor) {
  editor.count = 0;
  editor.numberedRows = 0;
  editor.entries.fill(parameterEntry{});
  editor.enabledByNumber.fill(1);
  editor.transferTable.fill(notGiven);
}

void takeChoiceValues(parameterEditor& editor) {
  for (int i = 0; i < editor.count; ++i) {
    parameterEntry& e = editor.entries[i];
    if (e.isChoice) e.choiceValue = truncToInt(parseNumber(e.value));
  }
}

void storeChoiceValues(parameterEditor& editor) {
  for (int i = 0; i < editor.count; ++i) {
    parameterEntry& e = editor.entries[i];
    if (!e.isChoice) continue;
    char text[16];
    std::snprintf(text, sizeof text, "%d", e.choiceValue);
    e.value = text;
  }
}

int acceptParameters(parameterEditor& editor, appConfig& cfg) {
  if (cfg.analysisMode == 0) {
    storeChoiceValues(editor);
    std::string losses;
    reportParameterWrite(cfg, writeParameterFile(editor, cfg.version, &losses), losses);
  }
  return applyParameters(editor, cfg, editor.count) == 1 ? 1 : -1;
}

}  // namespace marv
