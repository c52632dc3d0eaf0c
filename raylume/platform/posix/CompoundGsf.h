// What the reading and the writing of compound files share of libgsf.
#pragma once

#include <gsf/gsf.h>

#include <memory>

#include "raylume/platform/posix/CompoundDirectory.h"

namespace platform::compound {

struct ObjectRelease {
    void operator()(void* object) const { g_object_unref(object); }
};

/// A reference of libgsf's own counting.
template <class Type>
using Object = std::unique_ptr<Type, ObjectRelease>;

/// Keeps libgsf from printing. The log writer of the process belongs to the host, so that only the
/// handlers of libgsf's own domains are set.
void prepareGsf();

/// A file as libgsf reads it; holds the file.
Object<GsfInput> makeGsfInput(std::shared_ptr<const FileBytes> file);

}  // namespace platform::compound
