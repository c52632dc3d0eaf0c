// Folders and files as the shell sees them.
#pragma once

#include <string>

/// The path goes through the ANSI code page, so one that it cannot represent is false.
bool isExistingDirectory(const std::wstring& path);
/// True for anything that exists and is no folder. The path goes through the ANSI code page.
bool isExistingFile(const std::wstring& path);

/// Stores the render engine's per-user folder, with a trailing separator, whether or not it could be
/// made. Nothing is stored when the user has no application data folder.
void getRenderEngineUserFolder(std::wstring* folder);
