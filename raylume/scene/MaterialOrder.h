// What the orders of plain materials and of decals have in common.
#pragma once

class dlMaterial;

namespace scene {

class FieldOrder;

/// The steps from the shader name to the packed colour. Behind them the two orders part.
void orderSurface(FieldOrder& order, const dlMaterial& a, const dlMaterial& b);

}  // namespace scene
