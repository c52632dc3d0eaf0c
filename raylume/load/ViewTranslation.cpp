#include "raylume/load/ViewTranslation.h"

#include "raylume/load/ReaderInterface.h"
#include "raylume/scene/dlModel.h"

namespace {

void narrow(const double* source, float* target)
{
    for (int axis = 0; axis < 3; ++axis)
        target[axis] = static_cast<float>(source[axis]);
}

// The axis of the transform as the document has it, though viewXform is its inverse.
void fillDirection(dlModel& model, const mgXform_c& xform)
{
    mgUnitVector_c axis;
    xform.getZAxis(&axis);
    narrow(axis, model.viewDirection);
}

}  // namespace

void translateView(dlModel& model, OVDLDocument& document)
{
    document.viewXform.inverse().getGLData(model.viewXform.m);
    fillDirection(model, document.viewXform);
    model.viewScale = document.viewScale;
    narrow(document.viewPoint, model.viewPoint);
}
