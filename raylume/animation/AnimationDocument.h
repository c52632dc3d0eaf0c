// The side file of a document: where it lies and how it is walked.
#pragma once

#include <string>

#include "raylume/animation/TrackReaders.h"
#include "raylume/animation/XmlDocument.h"

/// The side file's path for a document's: the same drive and folder, whatever the document's name.
std::wstring sideFilePath(const std::wstring& documentPath);

/// Reads a side file into `tracks`, which keeps what it has under other names. Without a file, or with
/// one that is not well-formed, nothing happens.
///
/// Errors: platform::ComError with the code of whatever failed, kErrorTypeMismatch and kErrorOverflow for
/// attributes, kErrorOutOfMemory for a file that asks for too much; std::bad_alloc. What was read before
/// stays.
void readAnimationDocument(const std::wstring& path, AnimationTracks& tracks, XmlService& service);

/// What dlModel::readAnimationXML does, with documents from elsewhere. False for every error.
bool readAnimation(const std::wstring& documentPath, AnimationTracks& tracks, XmlService& service);
