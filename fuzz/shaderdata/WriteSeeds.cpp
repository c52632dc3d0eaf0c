// Writes the seeds of fuzz_shaderdata into the folder that it is given.
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

#include "tests/persist/StreamBuilder.h"

namespace {

using namespace persist_tests;

constexpr char kWithoutViews[] = {0, 1, 2};
constexpr char kWithViews = 4;

void write(const std::string& folder, const std::string& name, char choice, const Bytes& bytes)
{
    std::ofstream(folder + "/" + name, std::ios::binary) << choice << bytes.get();
}

void writeVersion(const std::string& folder, std::uint32_t version, Form form)
{
    const std::string name = "v" + std::to_string(version) + (form == Form::kWide ? "_wide" : "_narrow");
    write(folder, name, kWithoutViews[version % 3], sampleStream(version, form, std::nullopt));
    const std::vector<View> views = {{"C:\\Views\\front.view", "FRONT"}, {"..\\..\\", "x"}};
    write(folder, name + "_views", kWithViews, sampleStream(version, form, views));
}

}  // namespace

int main(int count, char** arguments)
{
    if (count != 2) {
        std::cerr << "usage: shaderdata_seeds FOLDER\n";
        return 2;
    }
    for (std::uint32_t version = 0; version <= 11; ++version) {
        writeVersion(arguments[1], version, Form::kNarrow);
        writeVersion(arguments[1], version, Form::kWide);
    }
    return 0;
}
