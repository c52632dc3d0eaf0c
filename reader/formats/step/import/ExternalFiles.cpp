#include "reader/formats/step/import/ExternalFiles.h"

#include <Interface_EntityIterator.hxx>
#include <Interface_Graph.hxx>
#include <STEPConstruct_ExternRefs.hxx>
#include <STEPControl_Reader.hxx>
#include <StepAP214_AppliedExternalIdentificationAssignment.hxx>
#include <StepBasic_DocumentFile.hxx>
#include <TCollection_HAsciiString.hxx>
#include <algorithm>
#include <cctype>
#include <filesystem>
#include <map>
#include <string_view>
#include <vector>

#include "reader/formats/step/import/HostLink.h"
#include "reader/formats/step/import/LoadCheck.h"

namespace ovdl::step {
namespace {

namespace fs = std::filesystem;

// A name that nothing can have, for the library to fail on.
constexpr char kNoFile[] = "/dev/null/none";

bool isRelativeName(std::string_view name)
{
    const bool hasDrive =
        name.size() >= 2 && name[1] == ':' && std::isalpha(static_cast<unsigned char>(name[0])) != 0;
    return !name.empty() && name[0] != '/' && !hasDrive && name.find('\\') == std::string_view::npos;
}

bool climbs(const fs::path& name)
{
    return std::find(name.begin(), name.end(), "..") != name.end();
}

// Both without links. What is no regular file the library would wait for.
bool liesIn(const fs::path& folder, const fs::path& file)
{
    const auto [end, rest] = std::mismatch(folder.begin(), folder.end(), file.begin(), file.end());
    return end == folder.end() && rest != file.end() && fs::is_regular_file(file);
}

std::vector<std::string> namesIn(const Handle(XSControl_WorkSession) & session)
{
    STEPConstruct_ExternRefs references(session);
    std::vector<std::string> names;
    if (references.LoadExternRefs())
        for (int i = 1; i <= references.NbExternRefs(); ++i)
            names.emplace_back(references.FileName(i) ? references.FileName(i) : "");
    return names;
}

// Decides which files may be followed. Files that are named are read once more to see what they name.
class Following {
public:
    explicit Following(const fs::path& document) : folder_(document.parent_path())
    {
        verdicts_.emplace(document, false);
    }

    /// `from` is the folder of the file that has the name.
    bool isAllowed(const std::string& name, const fs::path& from)
    {
        if (!isRelativeName(name) || climbs(name))
            return false;
        std::error_code error;
        const fs::path file = fs::canonical(from / name, error);
        // What is not there is not followed anyway.
        return error || (liesIn(folder_, file) && mayBeRead(file));
    }

private:
    bool mayBeRead(const fs::path& file)
    {
        // One that names itself, by whatever way round, would never come to an end.
        const auto [known, isNew] = verdicts_.emplace(file, false);
        if (isNew)
            known->second = look(file);
        return known->second;
    }

    bool look(const fs::path& file)
    {
        std::string fail;
        const auto names = namesAndFail(file, fail);
        const bool staysInside = std::all_of(names.begin(), names.end(), [&](const std::string& name) {
            return isAllowed(name, file.parent_path());
        });
        if (staysInside && !fail.empty())
            throw Refusal{"the load check of \"" + file.lexically_relative(folder_).string() +
                          "\" fails: " + fail};
        return staysInside;
    }

    // What the library cannot load it will not take anything from.
    static std::vector<std::string> namesAndFail(const fs::path& file, std::string& fail)
    {
        STEPControl_Reader reader;
        if (reader.ReadFile(file.c_str()) != IFSelect_RetDone)
            return {};
        fail = firstFail(reader.WS());
        return namesIn(reader.WS());
    }

    fs::path folder_;
    std::map<fs::path, bool> verdicts_;
};

void rename(const Handle(XSControl_WorkSession) & session, const Handle(StepBasic_DocumentFile) & file)
{
    const Handle(TCollection_HAsciiString) none = new TCollection_HAsciiString(kNoFile);
    file->SetId(none);
    file->SetName(none);
    Interface_EntityIterator sharing = session->Graph().Sharings(file);
    for (sharing.Start(); sharing.More(); sharing.Next()) {
        const auto assignment =
            Handle(StepAP214_AppliedExternalIdentificationAssignment)::DownCast(sharing.Value());
        if (!assignment.IsNull())
            assignment->SetAssignedId(none);
    }
}

}  // namespace

void dropForeignFiles(const Handle(XSControl_WorkSession) & session, const std::string& path)
{
    STEPConstruct_ExternRefs references(session);
    if (!references.LoadExternRefs() || references.NbExternRefs() == 0)
        return;
    const fs::path document = path;
    Following following(document);
    for (int i = 1; i <= references.NbExternRefs(); ++i) {
        const char* name = references.FileName(i);
        if (name && following.isAllowed(name, document.parent_path()))
            continue;
        rename(session, references.DocFile(i));
        if (references.FileName(i) && std::string_view(references.FileName(i)) != kNoFile)
            throw Refusal{"the file names another one outside its folder"};
    }
}

}  // namespace ovdl::step
