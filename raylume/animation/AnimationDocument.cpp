#include "raylume/scene/dlModel.h"

// Side files are not read yet; no side file is no failure either.
bool dlModel::readAnimationXML(const std::wstring&)
{
    return true;
}
