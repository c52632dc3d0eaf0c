// Coordinates of an image that is projected onto a part from the six sides of a box.
#pragma once

class dlFace;
class dlInstance;
class dlMaterial;

/// Fills `projectedUVs` of the faces of an instance whose effective material maps its image as a box: the
/// instance's material, else the face's, else the body's, else the part's. Other faces keep what they have.
/// A null instance, or one without a part, does nothing.
void generateBoxTextureCoords(dlInstance* instance);

/// Fills `projectedUVs` of one face, 2 floats a vertex: each vertex in the frame of the side that its
/// normal looks to, divided by `diagonal`, in metres, which is not guarded against 0.
///
/// Ownership: the face owns the new array and gives up the old one. The decals of `material` stay their
///   owner's. A null face does nothing.
void boxCoordsForFace(dlFace* face, dlMaterial material, float diagonal);
