// Writes the seeds of fuzz_ovdl into the folder that it is given.
#include <fstream>
#include <iostream>
#include <string>

#include "fuzz/ovdl/StreamBundle.h"

namespace {

void write(const std::string& folder, const char* name, const ovdl_tests::Draft& draft)
{
    std::ofstream(folder + "/" + name, std::ios::binary) << ovdl_fuzz::bundle(draft.buffers());
}

}  // namespace

int main(int count, char** arguments)
{
    if (count != 2) {
        std::cerr << "usage: ovdl_seeds FOLDER\n";
        return 2;
    }
    const std::string folder = arguments[1];
    write(folder, "everything", ovdl_tests::everything());
    write(folder, "part", ovdl_tests::trianglePart());
    ovdl_tests::Draft rejected;
    rejected.assembly().rejected = true;
    rejected.document.reason = rejected.text("why");
    write(folder, "rejected", rejected);
    std::ofstream(folder + "/patch", std::ios::binary)
        << std::string("\xFF\xFF", 2) + std::string(14, '\0');
    return 0;
}
