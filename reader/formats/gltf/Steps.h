// How far the read is, and whether the host still wants it.
#pragma once

#include "reader/DocumentFormat.h"
#include "reader/formats/gltf/Refusal.h"

namespace ovdl::gltf {

class Steps {
public:
    Steps(ReadContext& context, std::uint64_t total) : context_(context), total_(total) {}

    /// Counts `done` more units of work off, tells the host, and raises Cancellation if it has enough.
    void advance(std::uint64_t done)
    {
        done_ += done;
        context_.progress(total_ == 0 ? 1.0f : static_cast<float>(double(done_) / double(total_)));
        if (context_.cancelled())
            throw Cancellation{};
    }

private:
    ReadContext& context_;
    std::uint64_t total_;
    std::uint64_t done_ = 0;
};

}  // namespace ovdl::gltf
