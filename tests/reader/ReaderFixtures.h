// Builders and probes that the tests of the reader share.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "raylume/load/ReaderInterface.h"
#include "reader/HostHandlers.h"
#include "reader/PreparedDocuments.h"

namespace fixtures {

/// Raises a number while it lives.
class Counted {
public:
    explicit Counted(int& alive) : alive_(alive) { ++alive_; }
    Counted(const Counted&) = delete;
    Counted& operator=(const Counted&) = delete;
    ~Counted() { --alive_; }

private:
    int& alive_;
};

/// Writes its name into a list when it goes.
class Parting {
public:
    Parting(std::vector<std::string>& partings, std::string name)
        : partings_(partings), name_(std::move(name))
    {
    }
    Parting(const Parting&) = delete;
    Parting& operator=(const Parting&) = delete;
    ~Parting() { partings_.push_back(name_); }

private:
    std::vector<std::string>& partings_;
    std::string name_;
};

/// A callback object that writes down what it is asked, and answers as told.
class RecordingCallbacks : public OVDL_Callbacks {
public:
    int CheckVersions(int first, int second) override
    {
        versions.emplace_back(first, second);
        events.push_back("version");
        if (onCheckVersions)
            onCheckVersions();
        return accept;
    }

    void UpdateProgress(float done, int, int) override
    {
        shares.push_back(done);
        events.push_back("progress");
        if (onProgress)
            onProgress();
    }

    int ShouldReadBeCancelled() override
    {
        ++cancelQuestions;
        events.push_back("cancel?");
        if (onCancelQuestion)
            onCancelQuestion();
        return cancel;
    }

    int accept = 1;
    int cancel = 0;
    int cancelQuestions = 0;
    std::vector<std::pair<int, int>> versions;
    std::vector<float> shares;
    std::vector<std::string> events;
    std::function<void()> onCheckVersions;
    std::function<void()> onProgress;
    std::function<void()> onCancelQuestion;
};

/// Registers a callback object while it lives.
class Registered {
public:
    explicit Registered(OVDL_Callbacks& callbacks) { SetOVDL_Callbacks(&callbacks); }
    Registered(const Registered&) = delete;
    Registered& operator=(const Registered&) = delete;
    ~Registered() { SetOVDL_Callbacks(nullptr); }
};

/// Keeps a prepared document under a path while it lives.
class Prepared {
public:
    Prepared(std::wstring path, ovdl::DocumentFactory factory) : path_(std::move(path))
    {
        ovdl::prepareDocument(path_, std::move(factory));
    }
    Prepared(const Prepared&) = delete;
    Prepared& operator=(const Prepared&) = delete;
    ~Prepared() { ovdl::forgetDocument(path_); }

private:
    std::wstring path_;
};

/// What one call of ReadFile came to.
struct ReadCall {
    OVXDLReader_FileLoadResult result;
    unsigned long version;
};

inline ReadCall readInto(CDispListsDoc& document, const std::wstring& path)
{
    ReadCall call{OVXDLReader_Loaded, 0};
    call.result = document.ReadFile(kReaderAccess, path, call.version, true);
    return call;
}

inline std::unique_ptr<ovdl::PreparedDocument> emptyPart()
{
    auto document = std::make_unique<ovdl::PreparedDocument>();
    document->part = std::make_unique<OVDLPartDocument>();
    return document;
}

inline std::unique_ptr<ovdl::PreparedDocument> emptyAssembly()
{
    auto document = std::make_unique<ovdl::PreparedDocument>();
    document->assembly = std::make_unique<OVDLAssemblyDocument>();
    return document;
}

/// A part's tessellation of one body with one face: a single triangle with a right angle at the
/// origin and legs of `size` along x and y.
inline uoTempPartTessData_c* triangle(ovdl::PreparedDocument& document, float size)
{
    auto* face = document.own<uoTempFaceTessData_c>();
    face->stripCount = 1;
    face->stripLengths = document.view<std::int32_t>({3});
    face->points = document.view<float>({0, 0, 0, size, 0, 0, 0, size, 0});
    face->normals = document.view<float>({0, 0, 1, 0, 0, 1, 0, 0, 1});
    face->faceId = 1;
    auto* info = document.own<uoBodyPropInfo_c>();
    info->shown = 1;
    auto* body = document.own<uoTempBodyTessData_c>();
    body->faces = document.array<uoTempFaceTessData_c>({face});
    body->bodyPropInfos[0] = info;
    auto* tess = document.own<uoTempPartTessData_c>();
    tess->bodies = document.array<uoTempBodyTessData_c>({body});
    return tess;
}

inline uoTempAssemblySHDData_c* component(ovdl::PreparedDocument& document, std::wstring name,
                                          uoTempPartTessData_c* tess, double x)
{
    auto* made = document.own<uoTempAssemblySHDData_c>();
    made->name = std::move(name);
    made->tessData = tess;
    made->xform.translation = mgVector_c(x, 0.0, 0.0);
    return made;
}

}  // namespace fixtures
