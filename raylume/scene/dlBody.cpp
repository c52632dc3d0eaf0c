#include "raylume/scene/dlBody.h"

#include "raylume/scene/Ownership.h"

dlBody::dlBody() = default;
dlBody& dlBody::operator=(const dlBody& other) = default;

dlBody::~dlBody()
{
    delete[] faces;
    scene::deleteMaterial(material);
}
