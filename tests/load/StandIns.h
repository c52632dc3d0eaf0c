// Stand-ins for the operations that a load calls in other rooms. Each writes a line into the recorder,
// between those of the reader, and does no more than a test tells it.
#pragma once

#include <functional>
#include <set>
#include <string>

#include "raylume/load/ReaderInterface.h"

class FaceIndices;
class dlInstance;
class dlModel;
class dlPart;

namespace standins {

struct StandIns {
    bool meridian5App = true;
    std::wstring temporaryFolder;  ///< With a trailing separator; empty: there is none.
    bool animationResult = true;
    std::set<std::string> animatedNames;
    std::function<void(dlModel&)> onReadAnimation;
    std::function<void(dlPart&, int configuration)> onPartDecals;
    std::function<void(dlInstance&, dlPart&)> onInstanceDecals;
    std::function<void(dlModel&)> onLights;
    std::function<void(dlModel&)> onHierarchy;

    // What the last call was given.
    ovPointerArray<moLight_c>* lights = nullptr;
    ovScene_c* lightsScene = nullptr;
    ovScene_c* scene = nullptr;
    FaceIndices* facesOfParts = nullptr;
    FaceIndices* facesOfInstances = nullptr;
    dlModel* animatedModel = nullptr;
};

StandIns& get();
/// Back to the defaults.
void reset();

}  // namespace standins
