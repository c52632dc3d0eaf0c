// The members of the classes of the reader interface, each listed once, for what makes objects and for what
// compares them.
#pragma once

#include "raylume/load/ReaderInterface.h"

namespace ovdl_tests {

/// Calls `field(name, pointer to member)` for every member of a class; the first argument only says which.
template <class Visit>
void eachField(const uoMaterialTextureProperties*, Visit field)
{
    using C = uoMaterialTextureProperties;
    field("scale", &C::scale);
    field("ranges", &C::ranges);
    field("hasRanges", &C::hasRanges);
    field("directions", &C::directions);
    field("hasDirections", &C::hasDirections);
    field("angle", &C::angle);
    field("transX", &C::transX);
    field("transY", &C::transY);
    field("filename", &C::filename);
}

template <class Visit>
void eachField(const uoRVAppearanceProperties*, Visit field)
{
    using C = uoRVAppearanceProperties;
    field("uDirection", &C::uDirection);
    field("vDirection", &C::vDirection);
    field("origin", &C::origin);
    field("surfaceFinish", &C::surfaceFinish);
    field("decalValue", &C::decalValue);
    field("colorRef", &C::colorRef);
    field("index", &C::index);
    field("mappingType", &C::mappingType);
    field("flags", &C::flags);
    field("secondColorRef", &C::secondColorRef);
    field("decalAmbient", &C::decalAmbient);
    field("decalDiffuse", &C::decalDiffuse);
    field("decalSpecular", &C::decalSpecular);
    field("shininess", &C::shininess);
    field("unitLevel", &C::unitLevel);
    field("levelA", &C::levelA);
    field("levelB", &C::levelB);
    field("luminous", &C::luminous);
    field("levelC", &C::levelC);
    field("levelD", &C::levelD);
    field("mappingScalar", &C::mappingScalar);
    field("weight", &C::weight);
    field("lfpFilename", &C::lfpFilename);
    field("bumpTextureFilename", &C::bumpTextureFilename);
    field("filename", &C::filename);
    field("shaderName", &C::shaderName);
    field("dimpleFileNumber", &C::dimpleFileNumber);
    field("knurlFileNumber", &C::knurlFileNumber);
}

template <class Visit>
void eachField(const uoMaterialProperties*, Visit field)
{
    using C = uoMaterialProperties;
    field("ambient", &C::ambient);
    field("diffuse", &C::diffuse);
    field("specular", &C::specular);
    field("shininess", &C::shininess);
    field("transparency", &C::transparency);
    field("emission", &C::emission);
    field("textureProperties", &C::textureProperties);
    field("rvAppearance", &C::rvAppearance);
    field("idName", &C::idName);
    field("userName", &C::userName);
}

template <class Visit>
void eachField(const moVisualProperties_c*, Visit field)
{
    using C = moVisualProperties_c;
    field("activeFlag", &C::activeFlag);
    field("materialProps", &C::materialProps);
    field("inheritFlag", &C::inheritFlag);
    field("visualFlag", &C::visualFlag);
    field("visualName", &C::visualName);
    field("colorRef", &C::colorRef);
    field("materialFileName", &C::materialFileName);
}

template <class Visit>
void eachField(const uoDecalFaceMapping*, Visit field)
{
    using C = uoDecalFaceMapping;
    field("faceId", &C::faceId);
    field("transU", &C::transU);
    field("transV", &C::transV);
    field("angleUV", &C::angleUV);
    field("angle", &C::angle);
    field("transX", &C::transX);
    field("transY", &C::transY);
    field("mirrored", &C::mirrored);
}

template <class Visit>
void eachField(const uoDecalProperties*, Visit field)
{
    using C = uoDecalProperties;
    field("maskFileName", &C::maskFileName);
    field("maskInvert", &C::maskInvert);
    field("mappingScalar", &C::mappingScalar);
    field("useUnderlyingAppearance", &C::useUnderlyingAppearance);
    field("mappingKind", &C::mappingKind);
    field("textureProperties", &C::textureProperties);
    field("decalId", &C::decalId);
    field("faceMappings", &C::faceMappings);
    field("materialProperties", &C::materialProperties);
    field("projectionOffsetU", &C::projectionOffsetU);
    field("projectionOffsetV", &C::projectionOffsetV);
    field("origin", &C::origin);
    field("colorMask", &C::colorMask);
}

template <class Visit>
void eachField(const moLight_c*, Visit field)
{
    using C = moLight_c;
    field("lightType", &C::lightType);
    field("sourceEnabled", &C::sourceEnabled);
    field("sourceOptionA", &C::sourceOptionA);
    field("sourceOptionB", &C::sourceOptionB);
    field("sourceOptionC", &C::sourceOptionC);
    field("sourceFactorA", &C::sourceFactorA);
    field("sourceFactorB", &C::sourceFactorB);
    field("sourceFactorC", &C::sourceFactorC);
    field("sourceHaze", &C::sourceHaze);
    field("sourceValueD", &C::sourceValueD);
    field("sourceValueE", &C::sourceValueE);
    field("sourceValueF", &C::sourceValueF);
    field("sourceValueG", &C::sourceValueG);
    field("sourceValueH", &C::sourceValueH);
    field("sourceValueI", &C::sourceValueI);
    field("sourceValueJ", &C::sourceValueJ);
    field("sourceStamp", &C::sourceStamp);
    field("lightIndex", &C::lightIndex);
    field("packedColour", &C::packedColour);
    field("sourceVectorA", &C::sourceVectorA);
    field("sourceVectorB", &C::sourceVectorB);
    field("sourceVectorC", &C::sourceVectorC);
    field("sourceShapeA", &C::sourceShapeA);
    field("sourceShapeB", &C::sourceShapeB);
    field("sourceLevelB", &C::sourceLevelB);
    field("sourceLevelC", &C::sourceLevelC);
}

template <class Visit>
void eachField(const pwWallInfo_c*, Visit field)
{
    field("reflectFlag", &pwWallInfo_c::reflectFlag);
}

template <class Visit>
void eachField(const color*, Visit field)
{
    field("r", &color::r);
    field("g", &color::g);
    field("b", &color::b);
}

template <class Visit>
void eachField(const pwSceneData_c*, Visit field)
{
    using C = pwSceneData_c;
    field("shadowFlag", &C::shadowFlag);
    field("backgroundKind", &C::backgroundKind);
    field("backgroundBrightnessValue", &C::backgroundBrightnessValue);
    field("renderingBrightnessValue", &C::renderingBrightnessValue);
    field("reflectivityValue", &C::reflectivityValue);
    field("backgroundColor1", &C::backgroundColor1);
    field("backgroundColor2", &C::backgroundColor2);
    field("backgroundImages", &C::backgroundImages);
    field("backgroundEnvImages", &C::backgroundEnvImages);
    field("sceneFileName", &C::sceneFileName);
    field("walls", &C::walls);
}

template <class Visit>
void eachField(const mgPoint_c*, Visit field)
{
    field("x", &mgPoint_c::x);
    field("y", &mgPoint_c::y);
    field("z", &mgPoint_c::z);
}

template <class Visit>
void eachField(const mgVector_c*, Visit field)
{
    field("x", &mgVector_c::x);
    field("y", &mgVector_c::y);
    field("z", &mgVector_c::z);
}

template <class Visit>
void eachField(const mgXform_c*, Visit field)
{
    using C = mgXform_c;
    field("e0", &C::e0);
    field("e1", &C::e1);
    field("e2", &C::e2);
    field("e3", &C::e3);
    field("e4", &C::e4);
    field("e5", &C::e5);
    field("e6", &C::e6);
    field("e7", &C::e7);
    field("e8", &C::e8);
    field("translation", &C::translation);
    field("scale", &C::scale);
}

template <class Visit>
void eachField(const ovScene_c*, Visit field)
{
    using C = ovScene_c;
    field("floorOrientation", &C::floorOrientation);
    field("floorDirection", &C::floorDirection);
    field("sceneData", &C::sceneData);
    field("floorPoint", &C::floorPoint);
    field("floorVector", &C::floorVector);
}

/// Those whose values hang together (counts and arrays) come from elsewhere when a face is made.
template <class Visit>
void eachField(const uoTempFaceTessData_c*, Visit field)
{
    using C = uoTempFaceTessData_c;
    field("stripCount", &C::stripCount);
    field("stripLengths", &C::stripLengths);
    field("points", &C::points);
    field("normals", &C::normals);
    field("uvs", &C::uvs);
    field("hasUVs", &C::hasUVs);
    field("faceId", &C::faceId);
    field("faceKey", &C::faceKey);
    field("faceVizProps", &C::faceVizProps);
    field("vizPropModes", &C::vizPropModes);
}

template <class Visit>
void eachField(const uoBodyPropInfo_c*, Visit field)
{
    field("shown", &uoBodyPropInfo_c::shown);
}

template <class Visit>
void eachField(const uoTempBodyTessData_c*, Visit field)
{
    using C = uoTempBodyTessData_c;
    field("faces", &C::faces);
    field("flag", &C::flag);
    field("level", &C::level);
    field("bodyVizProps", &C::bodyVizProps);
    field("bodyPropInfos", &C::bodyPropInfos);
}

template <class Visit>
void eachField(const uoTempPartTessData_c*, Visit field)
{
    using C = uoTempPartTessData_c;
    field("bodies", &C::bodies);
    field("decalsByConfig", &C::decalsByConfig);
    field("modelVizProps", &C::modelVizProps);
}

template <class Visit>
void eachField(const uoTempAssemblySHDData_c*, Visit field)
{
    using C = uoTempAssemblySHDData_c;
    field("name", &C::name);
    field("xform", &C::xform);
    field("vizProps", &C::vizProps);
    field("visible", &C::visible);
    field("configName", &C::configName);
    field("tessData", &C::tessData);
    field("configIndex", &C::configIndex);
    field("decals", &C::decals);
}

template <class Visit>
void eachDocumentField(Visit field)
{
    using C = OVDLDocument;
    field("rejected", &C::rejected);
    field("lightData", &C::lightData);
    field("sceneHolder", &C::sceneHolder);
    field("viewXform", &C::viewXform);
    field("viewPoint", &C::viewPoint);
    field("viewScale", &C::viewScale);
}

template <class Visit>
void eachField(const OVDLPartDocument*, Visit field)
{
    eachDocumentField(field);
    field("tessData", &OVDLPartDocument::tessData);
    field("activeConfigIndex", &OVDLPartDocument::activeConfigIndex);
}

template <class Visit>
void eachField(const OVDLAssemblyDocument*, Visit field)
{
    eachDocumentField(field);
    field("extrasBlock", &OVDLAssemblyDocument::extrasBlock);
    field("components", &OVDLAssemblyDocument::components);
}

}  // namespace ovdl_tests
