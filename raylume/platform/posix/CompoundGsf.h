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

/// A new file, written from its start.
class FileSink {
public:
    virtual ~FileSink() = default;
    /// Keeps what goes wrong for failed().
    virtual void write(std::uint64_t offset, const void* bytes, std::size_t count) = 0;
    virtual bool failed() const = 0;
};

/// A file as libgsf writes it. The sink is not owned and outlives it. libgsf never hears of a failed
/// write, which would send it round without end when it closes a file: ask the sink.
Object<GsfOutput> makeGsfOutput(FileSink& sink);

}  // namespace platform::compound
