// Visual properties of the document -> dlMaterial.
#pragma once

class dlMaterial;
class moVisualProperties_c;

/// Fills `material` from `visual`, whose materialProps must not be null. Texts are appended to what
/// the material holds, so a material is meant to be filled once.
void applyVisualProperties(dlMaterial& material, moVisualProperties_c& visual);
