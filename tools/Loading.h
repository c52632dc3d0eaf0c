// One document, loaded with everything that a user of a terminal expects: progress, interruption,
// and a reason when there is no model.
#pragma once

#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "raylume/scene/dlModel.h"
#include "tools/SearchJournal.h"
#include "tools/TemporaryFolder.h"

namespace tool {

struct LoadRequest {
    std::string document;                ///< Path in UTF-8, as the user gave it.
    std::string configuration;           ///< Empty: the document's own choice.
    std::ostream* progressTo = nullptr;  ///< Where a bar is drawn; null for none.
    bool keepBitmaps = false;            ///< Temporary bitmaps outlive the result.
};

enum class Outcome { kModel, kRejected, kNone, kCancelled };

struct LoadedDocument {
    /// Set when a configuration was asked for. The folder is where the temporary bitmaps are that the
    /// model names, so it stays as long as the model.
    std::unique_ptr<ConfigurationRequest> configuration;
    Outcome outcome = Outcome::kNone;
    std::unique_ptr<dlModel> model;    ///< Set with kModel and kRejected.
    std::string reason;                ///< One line of UTF-8; empty when the reader told none.
    double seconds = 0;                ///< Of ReadModel alone.
    std::vector<LoadSearch> searches;  ///< What the load looked for.
};

/// Never raises: whatever the load raises becomes an outcome without a model, and its reason. An
/// Interruption has to be alive for a load to be cancelled.
LoadedDocument loadDocument(const LoadRequest& request);

/// "model", "rejected" or "none".
const char* outcomeName(Outcome outcome);

/// The one line that says what became of a document that gave no model.
std::string failureLine(const std::string& document, const LoadedDocument& loaded);

}  // namespace tool
