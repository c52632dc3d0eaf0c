// The interface of the reader library: everything that the display list library asks of whoever
// opens the document. Another implementation of this list takes the default reader's place at link
// time.
//
// Ownership: whatever the reader hands out belongs to it and lives as long as the document object
//   that produced it. The two exceptions are the storages of the storage registry and the container
//   that restoreOleItems gives, which the library deletes.
// Units: metres and radians where nothing else is said.
// Errors: ovPointerArray::at() raises platform::ComError (invalid argument) outside the array; an
//   element inside may be null.
// Layout: plain classes with public members, so that a reader or a test can fill them by hand. The
//   operations that answer by configuration are virtual and answer from the members beside them.
#pragma once

#include <bit>
#include <cstdint>
#include <list>
#include <map>
#include <set>
#include <string>

#include "raylume/load/ReaderMaths.h"
#include "raylume/platform/CompoundFile.h"
#include "raylume/platform/Errors.h"
#include "raylume/platform/Export.h"

class CDocument;
class ZipStorage;
class suFileStorage;

/// The constant that ReadFile expects as its first argument.
inline constexpr wchar_t kReaderAccess[] = L"raylume-display-list";

/// An array of pointers; neither the array nor the objects are owned. Elements may be null.
template <class T>
struct ovPointerArray {
    T** data = nullptr;
    long long count = 0;

    /// Element `index`, which may be null. Raises invalid argument outside 0 .. count - 1, and where
    /// there is no data.
    T* at(long long index) const
    {
        if (!data || index < 0 || index >= count)
            platform::raiseInvalidArgument();
        return data[index];
    }
};

/// An array of values, not owned.
template <class T>
struct ovArrayView {
    const T* data = nullptr;
    long long count = 0;
};

/// A list with the names of the platform's application framework. Elements go by value.
template <class Type, class Argument>
class CList {
public:
    explicit CList(int blockSize = 10) { (void)blockSize; }

    void AddTail(Argument element) { elements_.push_back(element); }
    void RemoveAll() { elements_.clear(); }
    long long GetCount() const { return static_cast<long long>(elements_.size()); }

    /// Stores the number of elements and the eight bytes of each, or reads as many and appends them. An
    /// archive is a stream with RLByteStream's operations.
    template <class Archive>
    void Serialize(Archive& archive)
    {
        if (archive.isStoring())
            store(archive);
        else
            load(archive);
    }

private:
    template <class Archive>
    void store(Archive& archive) const
    {
        archive.writeCount(elements_.size());
        for (const Type& element : elements_)
            archive.write(std::bit_cast<std::uint64_t>(element));
    }

    // The number is only believed element by element.
    template <class Archive>
    void load(Archive& archive)
    {
        const std::uint64_t count = archive.readCount();
        for (std::uint64_t i = 0; i < count; ++i) {
            std::uint64_t bits = 0;
            archive.read(bits);
            AddTail(std::bit_cast<Type>(bits));
        }
    }

    std::list<Type> elements_;
};

/// A colour of three doubles, 0 to 1.
class OVDL_API color {
public:
    double r = 0.0;
    double g = 0.0;
    double b = 0.0;
};

/// One image and its placement on a surface. Index 0 is the first direction, 1 the second.
class OVDL_API uoMaterialTextureProperties {
public:
    uoMaterialTextureProperties();
    uoMaterialTextureProperties(const uoMaterialTextureProperties&);
    uoMaterialTextureProperties& operator=(const uoMaterialTextureProperties&);
    virtual ~uoMaterialTextureProperties();

    /// Size of the image in that direction, metres.
    double getTextureScale(int direction);
    /// Writes the range in that direction; false if there is none.
    bool getTextureRanges(int direction, double& from, double& to);
    /// Writes the direction as a vector; false, and nothing written, if there is none.
    bool getTextureDir(int direction, double& x, double& y, double& z);
    /// Degrees.
    double getTextureAngle();
    double getTextureTransX();
    double getTextureTransY();
    std::wstring getTextureFilename();

    double scale[2] = {1.0, 1.0};
    double ranges[2][2] = {{0.0, 0.0}, {0.0, 0.0}};
    bool hasRanges = false;
    double directions[2][3] = {{0.0, 0.0, 0.0}, {0.0, 0.0, 0.0}};
    bool hasDirections = false;
    double angle = 0.0;
    double transX = 0.0;
    double transY = 0.0;
    std::wstring filename;
};

/// The render appearance of a material.
class OVDL_API uoRVAppearanceProperties {
public:
    uoRVAppearanceProperties();
    uoRVAppearanceProperties(const uoRVAppearanceProperties&);
    uoRVAppearanceProperties& operator=(const uoRVAppearanceProperties&);
    virtual ~uoRVAppearanceProperties();

    std::wstring getLFPFilename();
    std::wstring getBumpTextureFilename();
    std::wstring getFilename();
    std::wstring getRVShaderName();
    int getDimpleFileNumber();
    int getKnurlFileNumber();

    float uDirection[3] = {0.0f, 0.0f, 0.0f};
    float vDirection[3] = {0.0f, 0.0f, 0.0f};
    float origin[3] = {0.0f, 0.0f, 0.0f};
    std::int32_t surfaceFinish = 0;
    std::int32_t decalValue = 0;
    std::uint32_t colorRef = 0;
    std::int32_t index = 0;
    std::uint8_t mappingType = 0;
    std::uint32_t flags = 0;
    std::uint32_t secondColorRef = 0;
    float decalAmbient = 0.0f;
    float decalDiffuse = 0.0f;
    float decalSpecular = 0.0f;
    float shininess = 0.0f;
    float unitLevel = 0.0f;
    float levelA = 0.0f;
    float levelB = 0.0f;
    float luminous = 0.0f;
    float levelC = 0.0f;
    float levelD = 0.0f;
    float mappingScalar = 0.0f;
    float weight = 0.0f;

    std::wstring lfpFilename;
    std::wstring bumpTextureFilename;
    std::wstring filename;
    std::wstring shaderName;
    std::int32_t dimpleFileNumber = 0;
    std::int32_t knurlFileNumber = 0;
};

/// The material of visual properties or of a decal. The two pointers are borrowed; a copy shares
/// them.
class OVDL_API uoMaterialProperties {
public:
    uoMaterialProperties();
    uoMaterialProperties(const uoMaterialProperties&);
    uoMaterialProperties& operator=(const uoMaterialProperties&);
    virtual ~uoMaterialProperties();

    std::wstring getIdName();
    std::wstring getUserName();

    double ambient = 0.0;
    double diffuse = 0.0;
    double specular = 0.0;
    double shininess = 0.0;
    double transparency = 0.0;
    double emission = 0.0;
    uoMaterialTextureProperties* textureProperties = nullptr;  ///< May be null.
    uoRVAppearanceProperties* rvAppearance = nullptr;          ///< May be null.

    std::wstring idName;
    std::wstring userName;
};

/// The appearance of one level: component, part, body or face.
class OVDL_API moVisualProperties_c {
public:
    std::int32_t activeFlag = 0;
    uoMaterialProperties* materialProps = nullptr;
    std::int32_t inheritFlag = 0;
    std::int32_t visualFlag = 0;
    std::wstring visualName;
    std::uint32_t colorRef = 0;  ///< Red in the low byte, then green, then blue.
    std::wstring materialFileName;
};

/// Where a decal lies on one face.
class OVDL_API uoDecalFaceMapping {
public:
    std::int32_t faceId = 0;
    float transU = 0.0f;
    float transV = 0.0f;
    float angleUV = 0.0f;
    float angle = 0.0f;
    float transX = 0.0f;
    float transY = 0.0f;
    std::int32_t mirrored = 0;
};

/// A decal of a component or of a part.
class OVDL_API uoDecalProperties {
public:
    uoDecalProperties();
    uoDecalProperties(const uoDecalProperties&);
    uoDecalProperties& operator=(const uoDecalProperties&);
    virtual ~uoDecalProperties();

    /// Colours of the image that are to be cut out; red in the low byte.
    std::list<unsigned long> getColorMask();

    std::wstring maskFileName;
    std::int32_t maskInvert = 0;
    float mappingScalar = 0.0f;
    std::int32_t useUnderlyingAppearance = 0;
    std::uint8_t mappingKind = 0;
    uoMaterialTextureProperties textureProperties;
    std::int32_t decalId = 0;
    std::list<uoDecalFaceMapping> faceMappings;
    uoMaterialProperties materialProperties;
    float projectionOffsetU = 0.0f;
    float projectionOffsetV = 0.0f;
    float origin[3] = {0.0f, 0.0f, 0.0f};

    std::list<std::uint32_t> colorMask;
};

enum LIGHT_TYPE : std::int32_t {
    LIGHT_AIMED = 2,
    LIGHT_POSITIONED = 3,
    LIGHT_DIRECTIONAL = 4,
    LIGHT_SUN = 6,
};

/// A light of the document. What the neutral fields mean is the consumer's business.
class OVDL_API moLight_c {
public:
    moLight_c();
    moLight_c(const moLight_c&);
    moLight_c& operator=(const moLight_c&);
    virtual ~moLight_c();

    LIGHT_TYPE getLightType() const;

    LIGHT_TYPE lightType = LIGHT_DIRECTIONAL;
    std::int32_t sourceEnabled = 0;
    std::int32_t sourceOptionA = 0;
    std::int32_t sourceOptionB = 0;
    std::int32_t sourceOptionC = 0;
    double sourceFactorA = 0.0;
    double sourceFactorB = 0.0;
    double sourceFactorC = 0.0;
    double sourceHaze = 0.0;
    double sourceValueD = 0.0;
    double sourceValueE = 0.0;
    double sourceValueF = 0.0;
    double sourceValueG = 0.0;
    double sourceValueH = 0.0;
    double sourceValueI = 0.0;
    double sourceValueJ = 0.0;
    /// Eight bytes: the bits of a double for an aimed light, a 64-bit time for the sun.
    std::uint64_t sourceStamp = 0;
    std::int32_t lightIndex = 0;
    std::uint32_t packedColour = 0;  ///< Red in the low byte, then green, then blue.
    double sourceVectorA[3] = {0.0, 0.0, 0.0};
    double sourceVectorB[3] = {0.0, 0.0, 0.0};
    double sourceVectorC[3] = {0.0, 0.0, 0.0};
    double sourceShapeA = 0.0;
    double sourceShapeB = 0.0;
    double sourceLevelB = 0.0;
    double sourceLevelC = 0.0;
};

class OVDL_API pwWallInfo_c {
public:
    std::int32_t reflectFlag = 0;
};

/// Background, floor and images of a scene.
class OVDL_API pwSceneData_c {
public:
    pwSceneData_c();
    pwSceneData_c(const pwSceneData_c&);
    pwSceneData_c& operator=(const pwSceneData_c&);
    virtual ~pwSceneData_c();

    color getBackgroundColor1();
    color getBackgroundColor2();
    std::wstring getBackgroundImage(int index);
    std::wstring getBackgroundEnvImage(int index);
    std::wstring getSceneFileName();
    /// The wall of that number, or null. 0 is the floor.
    pwWallInfo_c* getWallInfo(int index);

    std::int32_t shadowFlag = 0;
    std::uint32_t backgroundKind = 0;
    double backgroundBrightnessValue = 0.0;
    double renderingBrightnessValue = 0.0;
    double reflectivityValue = 0.0;

    color backgroundColor1;
    color backgroundColor2;
    std::map<int, std::wstring> backgroundImages;
    std::map<int, std::wstring> backgroundEnvImages;
    std::wstring sceneFileName;
    std::map<int, pwWallInfo_c*> walls;
};

/// The record that holds scene data.
class OVDL_API ovScene_c {
public:
    ovScene_c();
    ovScene_c(const ovScene_c&);
    ovScene_c& operator=(const ovScene_c&);
    virtual ~ovScene_c();

    /// Writes a point of the floor and its direction.
    void getFloorLocation(mgPoint_c& point, mgVector_c& direction);

    std::int32_t floorOrientation = 0;
    std::int32_t floorDirection = 0;
    pwSceneData_c* sceneData = nullptr;  ///< Null: no scene data.

    mgPoint_c floorPoint;
    mgVector_c floorVector;
};

enum VizPropMode_e : std::int32_t { VizPropMode_none = 0 };

/// A face: triangle strips, one behind the other.
class OVDL_API uoTempFaceTessData_c {
public:
    uoTempFaceTessData_c();
    uoTempFaceTessData_c(const uoTempFaceTessData_c&);
    uoTempFaceTessData_c& operator=(const uoTempFaceTessData_c&);
    virtual ~uoTempFaceTessData_c();

    /// The face's appearance in that configuration, or null.
    virtual moVisualProperties_c* getFaceVizProp(int config);
    /// How that appearance applies.
    virtual VizPropMode_e getVizPropMode(int config);

    std::int32_t stripCount = 0;
    ovArrayView<std::int32_t> stripLengths;  ///< Vertices of each strip.
    ovArrayView<float> points;               ///< 3 floats a vertex, in the order of the strips.
    ovArrayView<float> normals;              ///< 3 floats a vertex.
    ovArrayView<float> uvs;                  ///< 2 floats a vertex.
    std::int32_t hasUVs = 0;
    std::int32_t faceId = 0;
    std::int32_t faceKey = 0;

    std::map<int, moVisualProperties_c*> faceVizProps;
    std::map<int, VizPropMode_e> vizPropModes;
};

/// What a body is in one configuration.
class OVDL_API uoBodyPropInfo_c {
public:
    std::int32_t shown = 0;  ///< Zero makes the body empty.
};

class OVDL_API uoTempBodyTessData_c {
public:
    uoTempBodyTessData_c();
    uoTempBodyTessData_c(const uoTempBodyTessData_c&);
    uoTempBodyTessData_c& operator=(const uoTempBodyTessData_c&);
    virtual ~uoTempBodyTessData_c();

    /// The body's appearance in that configuration, or null.
    virtual moVisualProperties_c* getBodyVizProp(int config);
    /// The body's record for that configuration, or null.
    virtual uoBodyPropInfo_c* getBodyPropInfo(int config);

    ovPointerArray<uoTempFaceTessData_c> faces;  ///< Elements may be null.
    std::int32_t flag = 0;
    std::int32_t level = 0;

    std::map<int, moVisualProperties_c*> bodyVizProps;
    std::map<int, uoBodyPropInfo_c*> bodyPropInfos;
};

/// The tessellation of a part, shared by all components that show it.
class OVDL_API uoTempPartTessData_c {
public:
    uoTempPartTessData_c();
    uoTempPartTessData_c(const uoTempPartTessData_c&);
    uoTempPartTessData_c& operator=(const uoTempPartTessData_c&);
    virtual ~uoTempPartTessData_c();

    virtual int getNumBodies() const;
    /// The part's appearance in that configuration, or null.
    virtual moVisualProperties_c* getModelVizProp(int config) const;

    ovPointerArray<uoTempBodyTessData_c> bodies;
    std::map<int, std::list<uoDecalProperties*>> decalsByConfig;
    std::map<int, moVisualProperties_c*> modelVizProps;
};

/// One component of an assembly.
class OVDL_API uoTempAssemblySHDData_c {
public:
    std::wstring name;  ///< Path name: tokens separated by "/".
    mgXform_c xform;
    moVisualProperties_c* vizProps = nullptr;  ///< May be null.
    std::int32_t visible = 1;
    std::wstring configName;
    uoTempPartTessData_c* tessData = nullptr;  ///< Shared; may be null.
    std::int32_t configIndex = 0;
    std::list<uoDecalProperties*> decals;
};

using uoTempAssemblySHDDataArray_c = ovPointerArray<uoTempAssemblySHDData_c>;

struct OVDLExtrasRecord {
    void* first = nullptr;
    void* second = nullptr;
};

struct OVDLExtrasBlock {
    OVDLExtrasRecord* record = nullptr;
};

/// What part and assembly documents share.
class OVDL_API OVDLDocument {
public:
    OVDLDocument();
    OVDLDocument(const OVDLDocument&);
    OVDLDocument& operator=(const OVDLDocument&);
    virtual ~OVDLDocument();

    /// True when the document yields no model.
    virtual bool isRejected();

    bool rejected = false;                           ///< What isRejected answers.
    ovPointerArray<moLight_c>* lightData = nullptr;  ///< May be null.
    ovScene_c* sceneHolder = nullptr;                ///< May be null.
    mgXform_c viewXform;
    double viewPoint[3] = {0.0, 0.0, 0.0};
    double viewScale = 1.0;
};

class OVDL_API OVDLPartDocument : public OVDLDocument {
public:
    OVDLPartDocument();
    OVDLPartDocument(const OVDLPartDocument&);
    OVDLPartDocument& operator=(const OVDLPartDocument&);
    ~OVDLPartDocument() override;

    uoTempPartTessData_c* tessData = nullptr;
    std::int32_t activeConfigIndex = 0;
};

class OVDL_API OVDLAssemblyDocument : public OVDLDocument {
public:
    OVDLAssemblyDocument();
    OVDLAssemblyDocument(const OVDLAssemblyDocument&);
    OVDLAssemblyDocument& operator=(const OVDLAssemblyDocument&);
    ~OVDLAssemblyDocument() override;

    OVDLExtrasBlock* extrasBlock = nullptr;  ///< May be null.
    uoTempAssemblySHDDataArray_c components;
};

struct CRectItem;

/// The embedded items of a document.
class OVDL_API OVDLOleDocumentContainer {
public:
    OVDLOleDocumentContainer();
    OVDLOleDocumentContainer(const OVDLOleDocumentContainer&) = delete;
    OVDLOleDocumentContainer& operator=(const OVDLOleDocumentContainer&) = delete;
    virtual ~OVDLOleDocumentContainer();
};

/// Gives back an owned container of the document's embedded items and fills `items`. Called for
/// every path, also for one that is no document.
OVDL_API OVDLOleDocumentContainer* restoreOleItems(const std::wstring& path,
                                                   CList<CRectItem*, CRectItem*>& items);

/// What the reader calls while it reads. The base class forwards progress and cancellation to the
/// handlers that a host set in the reader; there is one object at a time.
class OVDL_API OVDL_Callbacks {
public:
    OVDL_Callbacks();

    /// Asked on each read with the document's version first and the reader's own second. Non-zero
    /// lets the read go on.
    virtual int CheckVersions(int first, int second);
    virtual std::wstring GetJapaneseFontName();
    virtual void LoadExtraDataFromStorage(suFileStorage& storage);
    /// `done` from 0 to 1; the integers number the step and the steps.
    virtual void UpdateProgress(float done, int step, int steps);
    /// Non-zero ends the read.
    virtual int ShouldReadBeCancelled();
    /// From 0 to 100; forwarded as a share of 1.
    virtual void SetPercentCompleted(float percent);
};

/// Registers the one process-wide callback object, or none with null. Not owned.
OVDL_API void SetOVDL_Callbacks(OVDL_Callbacks* callbacks);

enum OVXDLReader_FileLoadResult : std::int32_t {
    OVXDLReader_Loaded = 0,
    OVXDLReader_NotOpened = 1,
    OVXDLReader_Rejected = 2,
    OVXDLReader_Cancelled = 3,
};

/// A document object. Empty until ReadFile; its destructor releases everything that ReadFile
/// produced. May be derived from and may live on the stack.
class OVDL_API CDispListsDoc {
public:
    CDispListsDoc();
    CDispListsDoc(const CDispListsDoc&) = delete;
    CDispListsDoc& operator=(const CDispListsDoc&) = delete;
    ~CDispListsDoc();

    /// Never called by the display list library.
    virtual std::map<std::wstring, std::set<std::wstring>*> getRefModelsMap();

    /// Reads the document at `path` into this object and gives out the file's version (32 bits).
    /// `access` has to be kReaderAccess.
    OVXDLReader_FileLoadResult ReadFile(const std::wstring& access, const std::wstring& path,
                                        unsigned long& version, bool flag);
    /// The component array of the named configuration, or null when there is none.
    uoTempAssemblySHDDataArray_c* getTempDispListDataSHDArrayForConfig(std::wstring& name);
    /// Reads the version history into this object, so that a later storage read finds its way.
    bool iRestoreVersionHistory(suFileStorage& storage);
    /// The same for the configuration manager.
    bool iRestoreConfigManager(suFileStorage& storage);

    OVDLPartDocument* partDocument = nullptr;
    OVDLAssemblyDocument* assemblyDocument = nullptr;
    std::wstring documentPath;

private:
    /// What the implementation keeps for one document.
    class State;
    State* state_;
};

enum suStorageType_e : std::int32_t { suStorageType_none = 0, suStorageType_structured = 1 };

/// A document's file as a storage.
class OVDL_API suFileStorage {
public:
    /// Opens or creates the storage object for a path. Never null; the result belongs to the reader.
    static suFileStorage* createStorage(const std::wstring& path, int writable, CDocument* document,
                                        IStorage* parent, int mode, int share, ZipStorage* zip,
                                        suStorageType_e* type);

    suFileStorage(const suFileStorage&) = delete;
    suFileStorage& operator=(const suFileStorage&) = delete;
    virtual ~suFileStorage();

    /// Non-zero while it holds an open file; asked before every use.
    virtual int isOpen() const;
    /// Opens a named storage of the root for the two calls below; never creates it.
    virtual bool openSubStorage(const std::wstring& name, int forWrite, int, int);
    /// The storage just opened, with a reference of the caller's own; null if none.
    virtual IStorage* subStorageInterface();
    /// The second interface, without a reference of the caller's own; may be null.
    virtual IUnknown* secondInterface();
    /// Ends the open.
    virtual void endOpen();
    virtual unsigned long loadVersion() const;
    /// May be 0.
    virtual unsigned long loadDLVersion() const;
    /// Bytes of the stream now open.
    virtual unsigned long getUncompressedStreamSize() const;

protected:
    suFileStorage();
};

/// The storage of a compound file, owned by whoever makes it.
class OVDL_API suStructuredStorage : public suFileStorage {
public:
    suStructuredStorage(const std::wstring& path, int writable, CDocument* document, IStorage* parent,
                        int mode, int share);
    ~suStructuredStorage() override;

    int isOpen() const override;
    bool openSubStorage(const std::wstring& name, int forWrite, int, int) override;
    IStorage* subStorageInterface() override;
    IUnknown* secondInterface() override;
    void endOpen() override;
    unsigned long loadVersion() const override;
    unsigned long loadDLVersion() const override;

private:
    class State;
    State* state_;
};
