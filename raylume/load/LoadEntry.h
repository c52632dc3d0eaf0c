// The frame of a load: one short session with the reader.
#pragma once

#include <cstdint>
#include <vector>

#include "raylume/load/ReaderInterface.h"

/// The document object of one load, with what the add-in's own storage needs beside it.
///
/// Ownership: owns the container of embedded items, and a reference of every storage interface that is
///   not null.
class CDispListsDocRL : public CDispListsDoc {
public:
    CDispListsDocRL();
    CDispListsDocRL(const CDispListsDocRL&) = delete;
    CDispListsDocRL& operator=(const CDispListsDocRL&) = delete;
    /// Deletes the container and sets it to null, releases the storage interfaces, then lets the reader
    /// release the document.
    ~CDispListsDocRL();

    OVDLOleDocumentContainer* oleContainer = nullptr;
    IStorage* thirdPartyStorage = nullptr;
    IUnknown* secondStorageInterface = nullptr;
    IUnknown* spareStorageInterface = nullptr;
    std::int32_t openStorageCount = 0;
    std::vector<IStorage*> addinStorages;  ///< Opened below thirdPartyStorage, for as long as the session.
};

/// The callback object of one read. Replaces the version test alone; progress and cancellation stay
/// the reader's.
class RL_OVDL_CallBacks : public OVDL_Callbacks {
public:
    RL_OVDL_CallBacks();
    RL_OVDL_CallBacks(const RL_OVDL_CallBacks&) = delete;
    RL_OVDL_CallBacks& operator=(const RL_OVDL_CallBacks&) = delete;
    /// Unregisters whatever is registered, so that no reader code reaches a dead object.
    ~RL_OVDL_CallBacks();

    /// Never refuses a document: warns when `first` is the greater, and gives 1.
    int CheckVersions(int first, int second) override;
};
