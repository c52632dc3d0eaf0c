// Settings to be written: of a JSON text, or made up in any number.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "raylume/persist/RLData.h"

namespace shaderdata {

struct View {
    std::string path;  ///< As the machine that wrote it had it.
    std::string content;
};

/// A camera that stores its views the way that they are read: their number in four bytes. The library
/// stores it in eight, as programs in the field do, and takes what lies in the user's folder.
class ReadableCamera : public RLCameraData {
public:
    void serialize(RLArchive& archive) override;

    std::vector<View> views;
};

/// Settings with a camera of their own.
class Settings {
public:
    Settings() = default;
    Settings(const Settings&) = delete;
    Settings& operator=(const Settings&) = delete;
    ~Settings() { data.cameraData = nullptr; }

    /// The stream, in the current version. With `asStored` the views are the library's own business.
    std::string bytes(bool asStored);

    RLData data;
    bool hasCamera = false;
    ReadableCamera camera;
};

/// Members are named like the fields of the records ("maskMaterials", "environmentMaterial",
/// "cameraData", "sceneData"), and what is missing keeps its default; a camera may have "views" with
/// "path" and "content". Raises std::runtime_error with one line for a text that is not of that form.
std::unique_ptr<Settings> settingsFromJson(const std::string& text);

/// Settings in the sizes that a benchmark or a test of large documents asks for.
std::unique_ptr<Settings> generatedSettings(std::uint32_t masks, std::uint32_t channels,
                                            std::uint32_t tags);

}  // namespace shaderdata
