// Surface finish number -> bump image.
#pragma once

#include <string>

class uoRVAppearanceProperties;

/// The path of the bump image that a surface finish asks for; empty when there is none, and for a
/// null `appearance`. The file is not tested for existence.
std::wstring surfaceFinishBumpFile(int finish, uoRVAppearanceProperties* appearance);
