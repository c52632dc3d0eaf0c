// Where the middle of an image lies in model space.
#pragma once

class dlTexture;
class uoMaterialTextureProperties;

/// Sets `texture.center` to the middle of the image, in metres in the space of `texture.origin`.
///
/// The texture's uDirection, vDirection, origin and angle must be filled already; they and the sizes of
/// `image` place the point. The translation comes in separately, in metres, since a decal's may carry an
/// offset that the document's has not. A size of zero gives a centre that is not finite; nothing fails.
void placeImageCentre(dlTexture& texture, uoMaterialTextureProperties& image, double transX, double transY);
