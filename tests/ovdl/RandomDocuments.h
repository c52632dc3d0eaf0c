// Documents in which every member of every class takes any value that it can.
#pragma once

#include <cstdint>
#include <memory>

#include "reader/PreparedDocuments.h"

namespace ovdl_tests {

/// The same document for the same seed. `size` is how many elements lists have at most.
std::unique_ptr<ovdl::PreparedDocument> randomDocument(std::uint64_t seed, int size);

}  // namespace ovdl_tests
