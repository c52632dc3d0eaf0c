// Where the host program and its data are.
#pragma once

#include <string>

#include "raylume/platform/Export.h"

/// The host's data folder, without a trailing separator; empty while it cannot be resolved. A
/// resolved folder is final for the life of the process.
DL_API std::wstring rlu_getDataDir();
/// Always true.
DL_API bool rlu_isMeridian5App();
/// The host's repair switch for custom appearances, read anew on each call.
DL_API bool rlu_useDefaultShaderForCorruptR2M();

/// The path of the file system, in UTF-8, that a path of a record means: records keep "\" and the
/// letter case of the document. A host that opens `texture.filename` itself goes through this.
DL_API std::string rlu_nativePath(const std::wstring& text);
