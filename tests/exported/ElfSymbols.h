// The dynamic symbol table of a shared library, read from its file.
#pragma once

#include <string>
#include <vector>

struct ExportedSymbol {
    std::string mangled;
    std::string name;  ///< As in the source.
    bool weak = false;
};

/// The symbols that the 64-bit ELF file defines for others. Raises std::runtime_error if the file is
/// no such library.
std::vector<ExportedSymbol> exportedSymbols(const std::string& file);
