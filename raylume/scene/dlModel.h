#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "raylume/platform/Export.h"
#include "raylume/scene/dlAnimation.h"
#include "raylume/scene/dlAssemblyNode.h"
#include "raylume/scene/dlBBox.h"
#include "raylume/scene/dlInstance.h"
#include "raylume/scene/dlLight.h"
#include "raylume/scene/dlPart.h"
#include "raylume/scene/dlScene.h"
#include "raylume/scene/dlXform.h"

/// Set by the host, from any thread, to abandon the load under way; cleared by the host too. The
/// library only reads it: left on, it makes every later load null.
extern DL_API bool g_terminateLoad;

/// A component's placement at full precision.
class DL_API dlComponentXform {
public:
    std::int32_t tag = 1;
    double m[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};  ///< Order as in dlXform.
};

/// One loaded document: everything that a renderer needs.
///
/// Ownership: the caller of ReadModel owns the model and destroys it with plain delete. The model
///   owns its instances, its tree and its parts. Copies and assignments share these three and free
///   nothing: a copy is good for reading only, and at most one of a source and its copy may be
///   destroyed.
/// Units: metres and radians, right-handed as the document is.
/// Threads: built by the thread that calls ReadModel. Fields are read without a lock afterwards; three
///   operations keep what they found and need one: dlBBox::getRadius and dlPart's getAssociatedItemID and
///   getAssociatedPersistentID. Loads must not overlap.
/// Layout: hosts read the fields directly; order and defaults are a contract.
class DL_API dlModel {
public:
    /// Capacity of the light table.
    static constexpr int kLightCapacity = 99;

    dlModel();
    dlModel(const dlModel& other);
    dlModel& operator=(const dlModel& other);
    ~dlModel();

    /// Reads the document at `path` (ANSI code page; null gives null).
    ///
    /// Three outcomes: a model; an empty model with loadRejected set, when the document was opened
    /// and gave nothing; null, when it could not be opened or the load was abandoned.
    /// Errors: platform::ComError with kErrorInvalidArgument when the reader's arrays contradict
    ///   themselves; std::bad_alloc when memory runs out, or ComError with kErrorOutOfMemory when it does
    ///   so just before the read. All with everything unwound.
    static dlModel* ReadModel(const char* path);

    /// Stores a part under a geometry key and a configuration. A part already there is replaced and
    /// not deleted.
    void addDLPart(void* key, dlPart* part, int config);
    /// The part under these two keys, or null. Creates nothing.
    dlPart* getDLPart(void* key, int config);
    /// Appends every part to `out`, by ascending key address, then by ascending configuration.
    void getAllDLParts(std::vector<dlPart*>& out);

    /// Builds the component tree and the model's box from the instances, and names the parts. A
    /// second call makes a new tree and leaves the old one to whoever kept its root.
    void createAssemblyHierarchy();
    /// Adds the number of parts that are used at most once to singletonCount.
    void updateSingletons();
    /// Names the first part.
    void updateFirstModelName(std::string name);

    /// Reads the animation side file beside the document at `path` ("_rlAnimData.xml" in its folder, see
    /// docs/formats/animation.md) into animationTracks, which keeps what it has under other names. True
    /// also when there is no such file or it is not well-formed XML; false when an attribute was missing
    /// or no number, or memory ran out: then what was read before that stays. Raises nothing.
    bool readAnimationXML(const std::wstring& path);
    /// True when the named component's appearance changes over time. `name` in the ANSI code page.
    bool compHasAppearanceAnimation(std::string name);
    /// True when the named component has two visibility samples or more and is visible in one.
    bool compVisibleInAnimation(std::string name);

    std::int32_t instanceCount = 0;
    dlInstance* instances = nullptr;  ///< Array new.
    std::int32_t lightCount = 0;
    dlLight lights[kLightCapacity];
    dlAssemblyNode* assemblyRoot = nullptr;
    dlBBox bbox;
    std::int32_t singletonCount = 0;
    bool isPartDocument = false;
    std::string modelName;  ///< The document's file name with extension.
    bool versionGatePassed = false;
    bool loadRejected = false;
    dlXform viewXform;  ///< From the model into the view: the inverse of the document's own.
    float viewPoint[3] = {0, 0, 0};
    float viewDirection[3] = {0, 0, 0};
    double viewScale = 0;
    std::uint32_t documentVersion = 0xFFFFFFFFu;
    dlScene scene;  ///< Of part documents; an assembly's keeps its defaults.
    bool hasDocumentExtras = false;
    /// Samples by component name, and under "@CAMERA", "@VIEWPORT" and "@LIGHTS".
    std::map<std::wstring, dlAnimTrackSet> animationTracks;
    /// The placement of every component by its name, of those without an instance too. Empty for a part
    /// document.
    std::map<std::wstring, dlComponentXform> componentXforms;
    /// Every part, by its geometry key (an identity, never an object to look into) and its
    /// configuration. Owned.
    std::map<void*, std::map<int, dlPart*>> parts;
};
