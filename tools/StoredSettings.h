// The settings that the add-in stored in a document, read with everything that a user of a terminal
// expects.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "raylume/persist/RLData.h"

namespace tool {

/// The user's folder of custom views, into which reading a document unpacks the views that it holds. What
/// other documents left there cannot be told apart.
struct ViewsFolder {
    std::string path;                ///< Of this system, in UTF-8.
    std::vector<std::string> files;  ///< Those that would travel with a document, in UTF-8.
};

struct StoredSettings {
    std::unique_ptr<RLData> data;
    std::string failure;               ///< One line that says why there is no data; empty with it.
    std::optional<ViewsFolder> views;  ///< Set when the settings are of a form that carries views.
};

/// `document` is the path in UTF-8. Whatever reading raises becomes a failure, but std::bad_alloc.
StoredSettings readSettings(const std::string& document);

/// True for a compound file in which an add-in keeps something, whatever it is. Reads none of it, and so
/// unpacks nothing. `document` is the path in UTF-8.
bool hasStoredSettings(const std::string& document);

}  // namespace tool
