// Decals of the document -> dlDecal on faces and instances.
#pragma once

#include <string>

class FaceIndices;
class dlDecal;
class dlInstance;
class dlPart;
class uoDecalFaceMapping;
class uoDecalProperties;
class uoTempAssemblySHDData_c;
class uoTempPartTessData_c;

/// Hangs the decals of a component on its instance, or on the faces of the part when `instance` is null:
/// one for each record whose face the part has. A null `part` does nothing.
///
/// Ownership: the instance, or the face, owns the new decals.
void attachInstanceDecals(uoTempAssemblySHDData_c& component, dlInstance* instance, dlPart* part,
                          const std::wstring& documentPath);
/// The same with the face indices of the load, so that a part that recurs is indexed once.
void attachInstanceDecals(uoTempAssemblySHDData_c& component, dlInstance* instance, dlPart* part,
                          const std::wstring& documentPath, FaceIndices& faces);

/// Hangs the decals of a part in one configuration on its faces, each decal at most once on a face. With
/// the index -1 and a single configuration that one is taken. A null `part` does nothing.
///
/// Ownership: the faces own the new decals.
void attachPartDecals(uoTempPartTessData_c& tessData, dlPart* part, const std::wstring& documentPath,
                      int configurationIndex);
/// The same with the face indices of the load.
void attachPartDecals(uoTempPartTessData_c& tessData, dlPart* part, const std::wstring& documentPath,
                      int configurationIndex, FaceIndices& faces);

/// Fills a decal for one of its faces and bakes its mask, which may write a bitmap into the temporary
/// folder. `documentPath` is the path of the document or its folder with a trailing separator. With any of
/// the three pointers null the decal stays as it is.
void translateDecal(dlDecal* decal, uoDecalProperties* properties, const uoDecalFaceMapping* mapping,
                    const std::wstring& documentPath);
