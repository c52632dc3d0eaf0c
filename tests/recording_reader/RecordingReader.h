// A second implementation of the reader interface, for tests: it answers what a test tells it, and
// writes down every question.
//
// Every call of a listed operation (the maths aside, which is the shared one) becomes one line of
// text, in the order of the calls: "createStorage(a.doc,0,null,null,0,1,null,null)", "isOpen",
// "SetOVDL_Callbacks(object)", "isRejected(part)", "getModelVizProp(3)", "~CDispListsDoc". An object
// that a test has named puts its name in front: "bracket.getModelVizProp(3)". Texts are UTF-8.
//
// Ownership: documents and everything below them belong to the test; the recorder keeps pointers.
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "raylume/load/ReaderInterface.h"

namespace recording {

/// What the reader answers. The defaults make a reader that opens any path and reads nothing from it.
struct Answers {
    bool storageOpen = true;            ///< isOpen of what createStorage gives.
    bool structuredStorageOpen = true;  ///< isOpen of a suStructuredStorage made from now on.
    OVXDLReader_FileLoadResult result = OVXDLReader_Loaded;
    bool givesVersion = true;  ///< Otherwise the argument of ReadFile is left as it came.
    unsigned long version = 12000;
    bool restoreResult = true;  ///< What both restores of a document give.
    OVDLPartDocument* partDocument = nullptr;
    OVDLAssemblyDocument* assemblyDocument = nullptr;
    std::map<std::wstring, uoTempAssemblySHDDataArray_c*> configurations;
    bool admitsSecondDirection = true;  ///< Otherwise it is written as ever, but denied.
};

/// The one reader of the process.
class Recorder {
public:
    static Recorder& get();

    /// Forgets lines, hooks, names and answers, as at the start of the process.
    void reset();

    Answers answers;

    /// Writes a line down, then runs the hooks that wait for it. Tests use it too, for events of
    /// their own between those of the reader.
    void record(const std::string& line);
    const std::vector<std::string>& lines() const { return lines_; }
    /// Those of the lines that begin with one of the prefixes.
    std::vector<std::string> linesBeginning(const std::vector<std::string>& prefixes) const;
    /// How many lines are exactly this one.
    std::size_t count(const std::string& line) const;
    std::size_t countBeginning(const std::string& prefix) const;

    /// Runs `hook` each time that a line beginning with `prefix` is written, before the answer is
    /// given. A hook may throw, as a reader may.
    void onCall(std::string prefix, std::function<void()> hook);

    /// Puts a name in front of the lines of that object.
    void name(const void* object, std::string text);
    /// The name and a dot; empty for an object without a name.
    std::string prefixOf(const void* object) const;

    /// What SetOVDL_Callbacks was given last. Stays through reset().
    OVDL_Callbacks* registered = nullptr;
    /// The list that restoreOleItems was given last; it lives as long as the session.
    const CList<CRectItem*, CRectItem*>* items = nullptr;
    /// What createStorage gave; the reader's own until reset().
    std::vector<std::unique_ptr<suFileStorage>> probes;

private:
    std::vector<std::string> lines_;
    std::vector<std::pair<std::string, std::function<void()>>> hooks_;
    std::map<const void*, std::string> names_;
};

}  // namespace recording
