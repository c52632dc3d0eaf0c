#pragma once

#include <cstdint>
#include <limits>
#include <string>

#include "raylume/persist/RLArchive.h"
#include "raylume/platform/Export.h"

/// The camera and the output of a rendering.
///
/// Ownership: a plain value. The custom views that travel with it are files of the user, not fields.
/// Units: text in the ANSI code page. -100000000 is a number that nobody set.
/// Layout: hosts read the fields directly; order and defaults are a contract.
class DL_API RLCameraData : public RLSerializable {
public:
    RLCameraData();
    RLCameraData(const RLCameraData& other);
    RLCameraData(RLCameraData&& other) noexcept;
    RLCameraData& operator=(const RLCameraData& other);
    RLCameraData& operator=(RLCameraData&& other) noexcept;
    ~RLCameraData();

    /// From version 6 on, loading unpacks the views of the stream into the user's folder, and storing
    /// packs what lies there: see docs/formats/shaderdata.md for why a stored block does not read back.
    void serialize(RLArchive& archive) override;

    /// Unpacks all views of the stream; reads nothing when the user has no folder of views. Does nothing
    /// on a storing archive.
    void readCustomViews(RLArchive& archive);
    /// Unpacks one view into `folder`, which ends with a separator, under the name behind the last "\" of
    /// its stored path. A file of that name is replaced. A name that is no plain file name, and a file
    /// that cannot be made or written, leave the folder as it is and raise nothing. Where the stream ends
    /// inside the view, the rest of the file is zeros.
    void readCustomView(RLArchive& archive, const std::wstring& folder);
    /// Packs the user's views, but no hidden ones and nothing but regular files, in the order of their
    /// names' bytes. Writes nothing at all when the user has no folder of views. Does nothing on a loading
    /// archive.
    void writeCustomViews(RLArchive& archive);
    /// Packs one file and gives 1; 0, and nothing written, when it does not open. Of a file of 4 GB or
    /// more, as many bytes as the low 32 bits of its length say.
    int writeCustomView(RLArchive& archive, const std::wstring& path);

    /// The three floats of the record itself, here and for the translation.
    float* getRotation();
    const float* getRotation() const;
    /// Copies 3 floats.
    void setRotation(const float* values);
    float* getTranslation();
    const float* getTranslation() const;
    void setTranslation(const float* values);
    float getTarget() const;
    void setTarget(float value);
    float getFocalLength() const;
    void setFocalLength(float value);
    int getProjType() const;
    void setProjType(int value);
    float getFocusDist() const;
    void setFocusDist(float value);
    float getFStop() const;
    void setFStop(float value);
    int getFrameWidth() const;
    void setFrameWidth(int value);
    int getFrameHeight() const;
    void setFrameHeight(int value);
    bool getRDOF() const;
    void setRDOF(bool value);
    std::string getPreviewRenderQuality() const;
    /// Null counts as empty, here and in the other text setters.
    void setPreviewRenderQuality(const char* value);
    std::string getFullRenderQuality() const;
    void setFullRenderQuality(const char* value);
    std::string getImageFormat() const;
    void setImageFormat(const char* value);

    float rotation[3] = {0, 0, 0};
    float translation[3] = {0, 0, 0};
    float target = 0.0f;
    float focalLength = std::numeric_limits<float>::lowest();
    std::int32_t projType = -1;
    float focusDist = -100000000.0f;
    float fStop = -100000000.0f;
    std::int32_t frameWidth = 100;
    std::int32_t frameHeight = 100;
    bool RDOF = false;
    std::string previewRenderQuality;
    std::string fullRenderQuality;
    std::string imageFormat;
};
