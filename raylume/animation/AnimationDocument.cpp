#include "raylume/scene/dlModel.h"

// A document without a side file is the normal case: nothing is read, and that is no failure.
bool dlModel::readAnimationXML(const std::wstring&)
{
    return true;
}
