// Where each parameter number lives in appConfig: the link between the
// parameter table and the record's fields.
#pragma once

#include "app/appConfig.h"

namespace marv {

// Stores a value of parameter number index (0..86) into its field: whole
// numbers truncate toward zero, the single-precision fields narrow, the two
// flags take 1 for any non-zero value. presRelax, wfilWallBC and cs/sct get
// no special care here; applyParameters adds it.
void setParameterField(appConfig& cfg, int index, double value);

// The current value of a parameter's field, as a double.
double parameterFieldValue(const appConfig& cfg, int index);

}  // namespace marv
