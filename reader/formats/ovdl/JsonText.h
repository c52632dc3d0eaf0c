// A document as JSON in the schema's own names. docs/formats/ovdl-json.md tells how each kind of field looks.
#pragma once

#include <functional>
#include <memory>
#include <string_view>

#include "reader/formats/ovdl/DocumentStreams.h"

namespace ovdl {

/// Takes text piece by piece; raises Refusal when it cannot be kept.
using TextOutput = std::function<void(std::string_view)>;

/// Writes JSON, one tessellation at a time.
class JsonSink : public StreamSink {
public:
    /// Ends the text. What was written is no document without it.
    virtual void finish() = 0;
};
std::unique_ptr<JsonSink> makeJsonSink(TextOutput output);

/// True for the start of a JSON text whose first key is "ovdl".
bool startsLikeOurJson(std::string_view start);

/// Reads JSON into buffers in memory. Raises Refusal, with the line where the text is wrong. `ask` is
/// called now and then; what it raises ends the work.
std::unique_ptr<DocumentStreams> readJsonStreams(std::string_view text,
                                                 const std::function<void()>& ask = {});

}  // namespace ovdl
