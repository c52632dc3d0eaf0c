// A loaded model as text, every value of it, floats by their bits: two models are the same when their texts
// are.
#pragma once

#include <string>

#include "raylume/scene/dlModel.h"

namespace ovdl_tests {

std::string textOf(const dlModel& model);

}  // namespace ovdl_tests
