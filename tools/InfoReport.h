#pragma once

#include <ostream>
#include <string>

#include "tools/Loading.h"

namespace tool {

/// Sizes of a model, over distinct parts: what is instanced counts once.
struct Counts {
    long long parts = 0;
    long long bodies = 0;
    long long faces = 0;
    long long vertices = 0;
    long long triangles = 0;
};
Counts countsOf(dlModel& model);

/// What became of the document, with counts, box and time; also for a document without a model.
void writeInfoText(const std::string& document, const LoadedDocument& loaded, std::ostream& out);
void writeInfoJson(const LoadedDocument& loaded, std::ostream& out);

}  // namespace tool
