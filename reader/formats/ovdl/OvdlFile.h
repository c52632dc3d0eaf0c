// .ovdl documents in a mapped file, whatever name the file has, if any.
#pragma once

#include <memory>

#include "raylume/platform/Files.h"
#include "reader/DocumentFormat.h"

namespace ovdl {

/// Reads the document that `file` holds; the document keeps it mapped. As DocumentFormat::read().
ReadOutcome readOvdlFile(std::shared_ptr<const platform::MappedFile> file, ReadContext& context);

}  // namespace ovdl
