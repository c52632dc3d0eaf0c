// One run of the import program.
#pragma once

#include <memory>
#include <string>

#include "raylume/platform/Files.h"
#include "reader/DocumentFormat.h"
#include "reader/formats/step/ImportProtocol.h"

namespace ovdl::step {

struct ImportResult {
    enum Kind { kDone, kRefused, kCancelled };

    Kind kind = kRefused;
    /// The document that came back, which nobody can change any more; with kDone.
    std::shared_ptr<const platform::MappedFile> file;
    /// One line of UTF-8, with kRefused.
    std::string reason;
};

/// Runs the program on the file, and has ended it when this returns. Tells `context` how far it is, and
/// asks it for cancellation at least every 50 milliseconds.
ImportResult runImport(const std::wstring& program, const ImportRequest& request, ReadContext& context);

}  // namespace ovdl::step
