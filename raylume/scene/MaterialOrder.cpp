#include "raylume/scene/MaterialOrder.h"

#include "raylume/scene/FieldOrder.h"
#include "raylume/scene/dlMaterial.h"

void scene::orderSurface(FieldOrder& order, const dlMaterial& a, const dlMaterial& b)
{
    order.value(a.shaderName, b.shaderName)
        .reals(a.color, b.color)
        .real(a.ambient, b.ambient)
        .real(a.diffuse, b.diffuse)
        .real(a.specular, b.specular)
        .real(a.shininess, b.shininess)
        .real(a.transparency, b.transparency)
        .texture(a.texture, b.texture)
        .real(a.emission, b.emission)
        .value(a.colorRef, b.colorRef);
}
