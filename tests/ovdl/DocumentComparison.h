// Whether two documents are the same in every member, bit by bit, and share their objects alike.
#pragma once

#include <string>
#include <vector>

#include "reader/PreparedDocuments.h"
#include "reader/formats/ovdl/DocumentContents.h"

namespace ovdl_tests {

/// Where they differ, at most some dozen places.
std::vector<std::string> differences(const ovdl::DocumentContents& expected,
                                     const ovdl::DocumentContents& actual);

/// A prepared document as what is written of it; borrows the document.
ovdl::DocumentContents contentsOf(ovdl::PreparedDocument& document);

}  // namespace ovdl_tests
