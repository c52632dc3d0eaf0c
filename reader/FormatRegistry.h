// The formats of the reader, in the order in which they are asked.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "reader/DocumentFormat.h"

namespace ovdl {

class FormatRegistry {
public:
    /// The one that the reader uses.
    static FormatRegistry& instance();

    explicit FormatRegistry(std::vector<std::unique_ptr<DocumentFormat>> formats);

    /// The format that will read what stands at `path`, or null with `reason` set. A format that
    /// does not recognise the path but gives a reason has claimed it: no other one is asked.
    DocumentFormat* find(const std::wstring& path, std::string& reason);
    /// The same question where only the answer counts. A no is what lastReason() then gives, a yes
    /// clears it.
    bool canOpen(const std::wstring& path);
    void forgetProbes();
    std::vector<std::string> names() const;

private:
    std::string refusal(const std::wstring& path) const;

    std::vector<std::unique_ptr<DocumentFormat>> formats_;
};

}  // namespace ovdl
