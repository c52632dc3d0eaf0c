#pragma once

#include <cstdint>
#include <list>

#include "raylume/persist/RLArchive.h"
#include "raylume/persist/RLCameraData.h"
#include "raylume/persist/RLEnvironmentMaterial.h"
#include "raylume/persist/RLMaskMaterial.h"
#include "raylume/persist/RLSceneData.h"
#include "raylume/platform/Export.h"

/// All that the add-in stores in a document: the root of its stream.
///
/// Ownership: owns the camera and the scene. A copy shares the two pointers with its source, and moving
///   copies, so only one of the two may be destroyed with them in place; assignment also leaves the old
///   ones of its target alive. A caller that copies sets the pointers of one side to null by hand.
/// Errors: see RLByteStream; a failed load leaves a half-filled record that can be destroyed.
/// Layout: hosts read the fields directly; order and defaults are a contract.
class DL_API RLData : public RLSerializable {
public:
    RLData();
    RLData(const RLData& other);
    RLData& operator=(const RLData& other);
    /// Destroys the camera and the scene.
    ~RLData();

    /// The settings of the document at `path` (ANSI code page), which the caller deletes. Null when the
    /// document cannot be opened, is of a version outside the range that is read, or has no settings.
    /// Raises platform::ArchiveError when the settings are cut short or damaged; the document then stays
    /// open in the process until the next read of it. Custom views in the stream are unpacked into the
    /// user's folder, also by a read that fails later.
    static RLData* ReadRaylumeData(const char* path);
    /// Does nothing and gives false: nothing here writes documents.
    static bool WriteRaylumeData(const char* path, const RLData* data);
    /// Whether the document at `path` can be opened, whatever it holds.
    static bool OVFileExists(const char* path);

    /// Storing writes the current version, whatever getStorageVersion() says. Loading replaces the mask
    /// materials, reads over a camera or scene that is there, keeps one that the stream lacks, and appends
    /// to the environment's tags.
    void serialize(RLArchive& archive) override;

    /// The live list.
    std::list<RLMaskMaterial>& getMaskMaterials();
    const std::list<RLMaskMaterial>& getMaskMaterials() const;
    /// Appends a copy.
    void addMaskMaterial(const RLMaskMaterial& material);
    /// The record itself.
    RLEnvironmentMaterial& getEnvironmentMaterial();
    const RLEnvironmentMaterial& getEnvironmentMaterial() const;
    /// Assigns a copy.
    void setEnvironment(const RLEnvironmentMaterial& environment);
    /// Null if there is none. Stays owned.
    RLCameraData* getCameraData() const;
    /// Takes ownership, and destroys the camera that was there unless it is the same. Null is fine.
    void setCameraData(RLCameraData* camera);
    bool hasCameraData() const;
    /// The same for the scene.
    RLSceneData* getSceneData() const;
    void setSceneData(RLSceneData* scene);
    bool hasSceneData() const;
    /// The version of the stream that was read last.
    std::uint32_t getStorageVersion() const;
    void setStorageVersion(std::uint32_t version);

    std::list<RLMaskMaterial> maskMaterials;
    RLEnvironmentMaterial environmentMaterial;
    RLCameraData* cameraData = nullptr;
    RLSceneData* sceneData = nullptr;
    std::uint32_t storageVersion = 1;
};
