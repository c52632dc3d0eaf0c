// Another reader in the default one's place: the recording reader, linked as the library "ovdlreader".
#include <algorithm>
#include <cstdio>
#include <memory>

#include "raylume/scene/dlModel.h"
#include "tests/recording_reader/RecordingReader.h"

int main()
{
    const float points[] = {0, 0, 0, 1, 0, 0, 0, 1, 0};
    const float normals[] = {0, 0, 1, 0, 0, 1, 0, 0, 1};
    const std::int32_t length = 3;
    uoTempFaceTessData_c face;
    face.stripCount = 1;
    face.stripLengths = {&length, 1};
    face.points = {points, 9};
    face.normals = {normals, 9};
    uoTempFaceTessData_c* faces[] = {&face};
    uoTempBodyTessData_c body;
    body.faces = {faces, 1};
    uoTempBodyTessData_c* bodies[] = {&body};
    uoTempPartTessData_c part;
    part.bodies = {bodies, 1};
    uoTempAssemblySHDData_c component;
    component.name = L"Plate-1@Frame";
    component.tessData = &part;
    uoTempAssemblySHDData_c* components[] = {&component};
    OVDLAssemblyDocument document;
    document.components = {components, 1};
    recording::Recorder::get().answers.assemblyDocument = &document;

    const std::unique_ptr<dlModel> model(dlModel::ReadModel("any.doc"));
    if (!model || model->loadRejected || model->instanceCount != 1)
        return 1;
    const dlInstance& instance = model->instances[0];
    std::printf("%s: %d triangles, version %u\n", instance.name.c_str(),
                instance.part->bodies[0].faces[0].triangleCount, model->documentVersion);
    // The maths was the other reader's too, and every question went to it.
    const auto& recorder = recording::Recorder::get();
    return recorder.countBeginning("ReadFile(") == 1 && recorder.count("getNumBodies()") > 0 ? 0 : 1;
}
