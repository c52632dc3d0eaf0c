// The dynamic symbol table of a shared library, read from its file.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

struct ExportedSymbol {
    std::string mangled;
    std::string name;  ///< As in the source.
    bool weak = false;
    std::size_t size = 0;  ///< Of what it names, in bytes.
};

/// The symbols that the 64-bit ELF file defines for others. Raises std::runtime_error if the file is
/// no such library.
std::vector<ExportedSymbol> exportedSymbols(const std::string& file);
