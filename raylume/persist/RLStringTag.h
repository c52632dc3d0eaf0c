#pragma once

#include <cstdint>
#include <string>

#include "raylume/persist/RLArchive.h"
#include "raylume/platform/Export.h"

/// A text with a number that says what it is for. Numbers may repeat in a list.
///
/// Ownership: a plain value.
/// Units: text in the ANSI code page.
/// Layout: hosts read the fields directly; order and defaults are a contract.
class DL_API RLStringTag : public RLSerializable {
public:
    RLStringTag();
    RLStringTag(std::uint32_t id, std::string text);
    RLStringTag(const RLStringTag& other);
    RLStringTag(RLStringTag&& other) noexcept;
    RLStringTag& operator=(const RLStringTag& other);
    RLStringTag& operator=(RLStringTag&& other) noexcept;
    ~RLStringTag();

    /// Stores the number first.
    void serialize(RLArchive& archive) override;

    std::uint32_t getTagID() const;
    void setTagID(std::uint32_t value);
    std::string getTag() const;
    void setTag(std::string value);

    std::uint32_t tagID = 0;
    std::string tag;
};
