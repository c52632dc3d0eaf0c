// What rlu_getDataDir is made of.
#pragma once

#include <string>

/// The folder two levels above the host's executable file name.
std::wstring getHostInstallRoot();
/// The text before the last "\" or "/"; the text itself when it holds neither.
std::wstring stripLastPathComponent(const std::wstring& path);

/// The resolved data folder, for rlu_getDataDir alone; tests reset it.
extern std::wstring g_dataDir;
