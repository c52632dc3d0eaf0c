// The settings that are stored in a document, for people and for programs.
#pragma once

#include <optional>
#include <ostream>

#include "tools/StoredSettings.h"

namespace tool {

/// The fields that a stream of the record's version has. A number that nobody set is "unset".
void writeShaderDataText(const RLData& data, const std::optional<ViewsFolder>& views, std::ostream& out);

/// Every field, as a host gets it: those that the stream lacks have their defaults. Written piece by
/// piece, so that a large document takes no more memory than its records.
void writeShaderDataJson(const RLData& data, const std::optional<ViewsFolder>& views, std::ostream& out);

}  // namespace tool
