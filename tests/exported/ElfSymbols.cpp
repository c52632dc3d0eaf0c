#include "ElfSymbols.h"

#include <cxxabi.h>
#include <elf.h>

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <memory>
#include <sstream>
#include <stdexcept>

namespace {

class ElfFile {
public:
    explicit ElfFile(const std::string& file)
    {
        std::ifstream stream(file, std::ios::binary);
        std::ostringstream text;
        text << stream.rdbuf();
        bytes_ = text.str();
        if (bytes_.size() < sizeof(Elf64_Ehdr) || std::memcmp(bytes_.data(), ELFMAG, SELFMAG) != 0)
            throw std::runtime_error("no shared library: " + file);
    }

    template <class T>
    T at(std::size_t offset) const
    {
        if (offset > bytes_.size() || bytes_.size() - offset < sizeof(T))
            throw std::runtime_error("the library ends too early");
        T record;
        std::memcpy(&record, bytes_.data() + offset, sizeof(T));
        return record;
    }

    std::string text(std::size_t offset) const
    {
        const auto end = bytes_.find('\0', offset);
        if (end == std::string::npos)
            throw std::runtime_error("the library ends within a name");
        return bytes_.substr(offset, end - offset);
    }

    Elf64_Shdr section(std::size_t index) const
    {
        const auto header = at<Elf64_Ehdr>(0);
        return at<Elf64_Shdr>(header.e_shoff + index * header.e_shentsize);
    }

    Elf64_Shdr dynamicSymbols() const
    {
        for (std::size_t i = 0; i < at<Elf64_Ehdr>(0).e_shnum; ++i)
            if (section(i).sh_type == SHT_DYNSYM)
                return section(i);
        throw std::runtime_error("the library has no dynamic symbols");
    }

private:
    std::string bytes_;
};

std::string sourceName(const std::string& mangled)
{
    int status = 0;
    const std::unique_ptr<char, decltype(&std::free)> name(
        abi::__cxa_demangle(mangled.c_str(), nullptr, nullptr, &status), &std::free);
    return status == 0 ? name.get() : mangled;
}

bool isExported(const Elf64_Sym& symbol)
{
    const auto binding = ELF64_ST_BIND(symbol.st_info);
    const auto visibility = ELF64_ST_VISIBILITY(symbol.st_other);
    return symbol.st_shndx != SHN_UNDEF && symbol.st_shndx != SHN_ABS && binding != STB_LOCAL &&
           visibility != STV_HIDDEN && visibility != STV_INTERNAL;
}

}  // namespace

std::vector<ExportedSymbol> exportedSymbols(const std::string& file)
{
    const ElfFile elf(file);
    const Elf64_Shdr table = elf.dynamicSymbols();
    const Elf64_Shdr names = elf.section(table.sh_link);
    std::vector<ExportedSymbol> found;
    for (std::size_t offset = 0; offset < table.sh_size; offset += table.sh_entsize) {
        const auto symbol = elf.at<Elf64_Sym>(table.sh_offset + offset);
        if (!isExported(symbol))
            continue;
        const std::string mangled = elf.text(names.sh_offset + symbol.st_name);
        found.push_back({mangled, sourceName(mangled), ELF64_ST_BIND(symbol.st_info) != STB_GLOBAL,
                         static_cast<std::size_t>(symbol.st_size)});
    }
    return found;
}
