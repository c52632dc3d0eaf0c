// Tessellation of one part in one configuration -> dlPart, dlBody, dlFace.
#pragma once

#include "raylume/load/ReaderInterface.h"

class dlBody;
class dlFace;
class dlPart;

/// Copies the tessellation into an empty part: 1 when bodies were captured, 0 when there are none.
/// Raises invalid argument when there are more bodies told than the array holds.
int capturePart(dlPart& part, uoTempPartTessData_c& tessData, int configuration);
/// Copies a body's shown faces; grows the boxes of body and part.
void captureBody(uoTempBodyTessData_c& tessData, dlBody& body, dlPart& part, int configuration);
/// Copies one face; grows the boxes of face, body and part.
void captureFace(uoTempFaceTessData_c& tessData, dlFace& face, dlBody& body, dlPart& part,
                 int configuration);
