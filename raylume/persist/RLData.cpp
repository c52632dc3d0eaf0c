#include "raylume/persist/RLData.h"

#include "raylume/persist/LayoutChecks.h"

#include "raylume/persist/RecordLists.h"

namespace {

// Records have no virtual destructor: whoever hands one over hands over the class that it says.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdelete-non-virtual-dtor"
template <class Record>
void destroy(Record* record)
{
    delete record;
}
#pragma GCC diagnostic pop

template <class Record>
void replace(Record*& held, Record* given)
{
    if (held != given)
        destroy(held);
    held = given;
}

template <class Record>
void storeOptional(RLArchive& archive, Record* record)
{
    archive.archive->write(record != nullptr);
    if (record)
        record->serialize(archive);
}

// A new record is attached before it is read, so that a failure leaves it there.
template <class Record>
void loadOptional(RLArchive& archive, Record*& record)
{
    bool isPresent = false;
    archive.archive->read(isPresent);
    if (!isPresent)
        return;
    if (!record)
        record = new Record;
    record->serialize(archive);
}

}  // namespace

// A copy shares the camera and the scene, and assignment destroys nothing: hosts rely on both.
RLData::RLData() = default;
RLData::RLData(const RLData&) = default;
RLData& RLData::operator=(const RLData&) = default;

RLData::~RLData()
{
    destroy(cameraData);
    destroy(sceneData);
}

void RLData::serialize(RLArchive& archive)
{
    RLByteStream& stream = *archive.archive;
    if (stream.isStoring()) {
        archive.version = RLArchive::kCurrentVersion;
        stream.write(archive.version);
        persist::storeList(archive, maskMaterials);
        environmentMaterial.serialize(archive);
        storeOptional(archive, cameraData);
        storeOptional(archive, sceneData);
    } else {
        std::uint32_t version = 0;
        std::uint32_t maskCount = 0;
        stream.read(version);
        archive.version = storageVersion = version;
        stream.read(maskCount);
        maskMaterials.clear();
        persist::loadElements(archive, maskMaterials, maskCount);
        environmentMaterial.serialize(archive);
        if (archive.version > 2)
            loadOptional(archive, cameraData);
        if (archive.version >= 5)
            loadOptional(archive, sceneData);
    }
}

std::list<RLMaskMaterial>& RLData::getMaskMaterials()
{
    return maskMaterials;
}

const std::list<RLMaskMaterial>& RLData::getMaskMaterials() const
{
    return maskMaterials;
}

void RLData::addMaskMaterial(const RLMaskMaterial& material)
{
    maskMaterials.push_back(material);
}

RLEnvironmentMaterial& RLData::getEnvironmentMaterial()
{
    return environmentMaterial;
}

const RLEnvironmentMaterial& RLData::getEnvironmentMaterial() const
{
    return environmentMaterial;
}

void RLData::setEnvironment(const RLEnvironmentMaterial& environment)
{
    environmentMaterial = environment;
}

RLCameraData* RLData::getCameraData() const
{
    return cameraData;
}

void RLData::setCameraData(RLCameraData* camera)
{
    replace(cameraData, camera);
}

bool RLData::hasCameraData() const
{
    return cameraData != nullptr;
}

RLSceneData* RLData::getSceneData() const
{
    return sceneData;
}

void RLData::setSceneData(RLSceneData* scene)
{
    replace(sceneData, scene);
}

bool RLData::hasSceneData() const
{
    return sceneData != nullptr;
}

std::uint32_t RLData::getStorageVersion() const
{
    return storageVersion;
}

void RLData::setStorageVersion(std::uint32_t version)
{
    storageVersion = version;
}
