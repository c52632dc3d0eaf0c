// The settings of imports that hold now.
#pragma once

#include <string>

#include "reader/ImportLimits.h"

namespace ovdl::step {

/// What was set, else what the environment says, else the defaults. A variable that is no number, or out of
/// range, is as good as none.
ImportLimits currentLimits();
Tessellation currentTessellation();

/// The program, in the folder of the library that this code is in; empty when the system does not tell
/// that.
std::wstring importProgram();
/// Puts another one in its place; an empty path takes that back.
void setImportProgram(const std::wstring& path);

}  // namespace ovdl::step
