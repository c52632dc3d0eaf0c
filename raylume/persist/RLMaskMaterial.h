#pragma once

#include <cstdint>
#include <list>
#include <string>

#include "raylume/persist/RLArchive.h"
#include "raylume/persist/RLFloatChannel.h"
#include "raylume/persist/RLStringTag.h"
#include "raylume/platform/Export.h"

/// How one material is rendered: its names, how it is masked, its colour and two lists of settings.
///
/// Ownership: a plain value.
/// Units: colours 0 to 1; text in the ANSI code page.
/// Layout: hosts read the fields directly; order and defaults are a contract.
class DL_API RLMaskMaterial : public RLSerializable {
public:
    RLMaskMaterial();
    RLMaskMaterial(const RLMaskMaterial& other);
    RLMaskMaterial(RLMaskMaterial&& other) noexcept;
    RLMaskMaterial& operator=(const RLMaskMaterial& other);
    RLMaskMaterial& operator=(RLMaskMaterial&& other) noexcept;
    ~RLMaskMaterial();

    /// Loading appends to the two lists. A stream of version 0 has neither.
    void serialize(RLArchive& archive) override;

    /// The four floats of the record itself.
    float* getDiffuseColor();
    const float* getDiffuseColor() const;
    /// Copies 4 floats.
    void setDiffuseColor(const float* values);
    std::string getMaskType() const;
    /// Null counts as empty, here and in the other text setters.
    void setMaskType(const char* value);
    std::string getMaskPTag() const;
    void setMaskPTag(const char* value);
    std::string getMaskName() const;
    void setMaskName(const char* value);
    std::string getMaterialName() const;
    void setMaterialName(const char* value);
    bool getMaterialAtRoot() const;
    void setMaterialAtRoot(bool value);
    /// The live lists.
    std::list<RLFloatChannel>& getFloatChannels();
    const std::list<RLFloatChannel>& getFloatChannels() const;
    std::list<RLStringTag>& getStringTags();
    const std::list<RLStringTag>& getStringTags() const;
    /// Append, whether or not the name or the number is there already.
    void addFloatChannel(std::string name, float value);
    void addStringTag(std::uint32_t id, std::string text);
    /// Whether the record came with its two lists.
    bool getAdvMaterialIsSet() const;

    float diffuseColor[4] = {0, 0, 0, 0};
    std::string maskType;
    std::string maskPTag;
    std::string maskName;
    std::string materialName;
    bool materialAtRoot = false;
    std::list<RLFloatChannel> floatChannels;
    std::list<RLStringTag> stringTags;
    bool advMaterialIsSet = true;  ///< Not stored: false after a stream of version 0.
};
