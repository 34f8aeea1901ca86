// Option rows: setting their count, labels and selection.
#include "app/choiceGroup.h"

namespace marv {

void setChoices(choiceGroup& group, std::initializer_list<const char*> labels, int selected) {
  int i = 0;
  for (const char* label : labels) {
    if (i == static_cast<int>(group.labels.size())) break;
    group.labels[i++] = label;
  }
  group.count = i;
  group.selected = selected;
}

}  // namespace marv
