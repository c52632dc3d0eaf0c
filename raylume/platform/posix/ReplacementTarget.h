// Which file a new one takes the place of.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "raylume/platform/posix/CompoundDirectory.h"

namespace platform {

/// Where the links of a native path lead to, from the root of the file system: a file is replaced there, so
/// that no link is replaced instead, and wherever the working folder is by then. The file itself may be
/// missing, its folder may not.
std::optional<std::string> resolved(const std::string& native);

/// Opens a regular file and nothing else; never waits. A file that this user may not write is opened for
/// writing only to learn that.
HResult openRegular(const std::string& native, bool writable,
                    std::shared_ptr<const compound::FileBytes>& file);

/// The target of a new file. What stands there has to be a regular file that may be replaced; without
/// `replace` nothing may stand there.
HResult findTarget(const std::string& native, bool replace, std::string& target, bool& present);

}  // namespace platform
