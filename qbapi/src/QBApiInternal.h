// What the parts of qbapi share among themselves.
#pragma once

#include <cstdint>

namespace qbapi {

bool variableExists(int var);
// Variable 1 takes the result of every macro-function call.
void setResultVariable(int64_t value);

}  // namespace qbapi
