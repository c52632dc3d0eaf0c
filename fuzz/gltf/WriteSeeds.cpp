// Writes the seeds of fuzz_gltf into the folder that it is given.
#include <fstream>
#include <iostream>
#include <string>

#include "tests/gltf/Samples.h"

namespace {

void write(const std::string& folder, const char* name, const std::string& content)
{
    std::ofstream(folder + "/" + name, std::ios::binary) << content;
}

}  // namespace

int main(int count, char** arguments)
{
    if (count != 2) {
        std::cerr << "usage: gltf_seeds FOLDER\n";
        return 2;
    }
    const std::string folder = arguments[1];
    const gltf_tests::GltfBuilder everything = gltf_tests::everything();
    write(folder, "everything.glb", everything.glb());
    write(folder, "everything.gltf", everything.gltfEmbedded());
    gltf_tests::GltfBuilder triangle;
    triangle.addNode({{"mesh", triangle.triangleMesh("a")}});
    write(folder, "triangle.glb", triangle.glb());
    write(folder, "triangle.gltf", triangle.gltfEmbedded());
    write(folder, "empty.gltf", R"({"asset":{"version":"2.0"},"scene":0,"scenes":[{}]})");
    return 0;
}
