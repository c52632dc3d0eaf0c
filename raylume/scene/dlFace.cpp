#include "raylume/scene/dlFace.h"

#include "raylume/scene/Ownership.h"

dlFace::dlFace() = default;
dlFace::dlFace(const dlFace& other) = default;
dlFace& dlFace::operator=(const dlFace& other) = default;

dlFace::~dlFace()
{
    delete[] vertices;
    delete[] uvs;
    delete[] stripStarts;
    delete[] stripLengths;
    delete[] projectedUVs;
    scene::deleteMaterial(material);
    scene::deleteDecals(decals);
}

void dlFace::addDecal(dlDecal* decal)
{
    if (decal) {
        decals.push_back(decal);
    }
}

std::list<dlDecal*> dlFace::getDecalList()
{
    return decals;
}
