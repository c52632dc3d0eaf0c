#pragma once

#include <cstdint>
#include <list>
#include <string>

#include "raylume/persist/RLArchive.h"
#include "raylume/persist/RLStringTag.h"
#include "raylume/platform/Export.h"

/// The environment of a rendering: its name and how its tones are mapped.
///
/// Ownership: a plain value.
/// Units: text in the ANSI code page. -100000000 is a number that nobody set.
/// Layout: hosts read the fields directly; order and defaults are a contract.
class DL_API RLEnvironmentMaterial : public RLSerializable {
public:
    RLEnvironmentMaterial();
    RLEnvironmentMaterial(const RLEnvironmentMaterial& other);
    RLEnvironmentMaterial(RLEnvironmentMaterial&& other) noexcept;
    RLEnvironmentMaterial& operator=(const RLEnvironmentMaterial& other);
    RLEnvironmentMaterial& operator=(RLEnvironmentMaterial&& other) noexcept;
    ~RLEnvironmentMaterial();

    /// Loading appends to the list of tags.
    void serialize(RLArchive& archive) override;

    std::string getEnvironmentName() const;
    /// Null counts as empty.
    void setEnvironmentName(const char* value);
    /// The live list.
    std::list<RLStringTag>& getStringTags();
    const std::list<RLStringTag>& getStringTags() const;
    /// Appends, whether or not the number is there already.
    void addStringTag(std::uint32_t id, std::string text);
    float getWhiteLevel() const;
    void setWhiteLevel(float value);
    bool getClamp() const;
    void setClamp(bool value);
    float getGamma() const;
    void setGamma(float value);
    bool getBloom() const;
    void setBloom(bool value);
    float getBloomThr() const;
    void setBloomThr(float value);
    float getBloomRad() const;
    void setBloomRad(float value);
    float getToneAmt() const;
    void setToneAmt(float value);

    std::string environmentName;
    std::list<RLStringTag> stringTags;
    float whiteLevel = -100000000.0f;
    bool clamp = false;
    float gamma = -100000000.0f;
    bool bloom = false;
    float bloomThr = -100000000.0f;
    float bloomRad = -100000000.0f;
    float toneAmt = -100000000.0f;
};
