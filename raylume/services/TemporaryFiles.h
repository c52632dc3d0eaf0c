// Where temporary files go.
#pragma once

#include <string>

/// The folder for temporary files, ending in "\"; empty when the environment names none. With
/// `perProcess` a folder of this process in it, "rlx" and the process number, which is made if it is
/// missing; the path comes back whether or not that worked.
std::wstring getProcessTempFolder(bool perProcess);

/// That folder with `fileName` appended; empty when there is no folder.
std::wstring getTemporaryFilePath(const std::wstring& fileName, bool perProcess);
