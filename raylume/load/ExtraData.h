// The add-in's own storage inside a document: "Raylume" in "ThirdPtyStore", and its stream "ShaderData".
#pragma once

#include <string>

#include "raylume/load/LoadEntry.h"

inline constexpr wchar_t kAddinStorageName[] = L"Raylume";
inline constexpr wchar_t kSettingsStreamName[] = L"ShaderData";
/// Exclusive, for reading.
inline constexpr std::uint32_t kReadMode = kModeExclusive + kModeRead;

/// The storage `name` of "ThirdPtyStore", which the session opens through `storage` the first time and
/// keeps. The caller owns the reference. For writing (`forWrite` not 0) it is made where it is missing.
/// Null when the document has no "ThirdPtyStore"; raises platform::OleError with the code of whatever
/// failed when the storage itself does not open.
IStorage* openAddinSubStorage(CDispListsDocRL& session, const wchar_t* name, suFileStorage& storage,
                              int forWrite);

/// The add-in's storage of the document at `path` for reading, through the storage registry. The session
/// owns the reference and releases it at its end. Null when the document does not open, is of a version
/// outside the range that is read, or has no such storage.
IStorage* openRaylumeStorage(CDispListsDocRL& session, const std::wstring& path);

/// Counts one storage less, and commits and releases what the session holds of "ThirdPtyStore". Does
/// nothing when the session holds none. The add-in's storage stays open until the session ends.
void closeRaylumeStorage(CDispListsDocRL& session);

/// Removes the settings from the document at `path`, which is opened for writing unless the registry has
/// it open already. What is not there is no failure, nor is a document whose version is outside the range.
/// The storage stays open for closeRaylumeStorage. Raises platform::OleError when the add-in's storage
/// neither opens nor can be made.
void eraseShaderData(CDispListsDocRL& session, const std::wstring& path);

/// Angles in radians of a rotation whose nine elements lie row by row.
void matrixToAngles(const double matrix[9], double& first, double& second, double& third);
