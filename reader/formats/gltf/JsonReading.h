// From the JSON text to records.
#pragma once

#include <memory>

#include "reader/formats/gltf/GlbContainer.h"
#include "reader/formats/gltf/Records.h"

namespace ovdl::gltf {

/// The records of one JSON text, with what their texts lie in.
class JsonDocument {
public:
    /// Reads the text `json`, which may lie anywhere in `file`: where enough bytes follow it there it
    /// is read in place, else copied. Keeps no pointer into the file but for the texts of records that
    /// were never escaped. Raises Refusal.
    JsonDocument(Bytes json, Bytes file);
    ~JsonDocument();
    JsonDocument(const JsonDocument&) = delete;
    JsonDocument& operator=(const JsonDocument&) = delete;

    const Records& records() const { return records_; }
    /// For what is worked out later (names of nodes).
    Records& records() { return records_; }

private:
    struct Parser;

    std::unique_ptr<Parser> parser_;
    Records records_;
};

}  // namespace ovdl::gltf
