// A small host: loads a document and prints every instance with its placement, its triangles and its
// colours. An interrupt abandons the load; so does a second argument, a share from 0 to 1 of the read.
#include <atomic>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>
#include <new>
#include <string>

#include "raylume/platform/Environment.h"
#include "raylume/platform/Errors.h"
#include "raylume/platform/Text.h"
#include "raylume/scene/dlModel.h"
#include "raylume/services/ImageCodec.h"
#include "raylume/services/Locations.h"
#include "raylume/services/TextureSearch.h"
#include "reader/EmbeddedImages.h"
#include "reader/HostHandlers.h"

namespace {

std::string utf8(const std::string& text)
{
    return platform::toUtf8(platform::widen(text));
}

// The library's flag: safe in a signal handler and from any thread.
void setTerminateLoad(bool on)
{
    std::atomic_ref(g_terminateLoad).store(on);
}

bool isTerminating()
{
    return std::atomic_ref(g_terminateLoad).load();
}

extern "C" void onInterrupt(int)
{
    setTerminateLoad(true);
}

// The reader asks the handler while it reads; the translation behind it looks at the flag.
void installHandlers(float abandonAt)
{
    std::signal(SIGINT, onInterrupt);
    ovdl::setCancelHandler(isTerminating);
    ovdl::setProgressHandler([abandonAt](float done) {
        std::fprintf(stderr, "\r%3.0f %%", static_cast<double>(100 * done));
        if (done >= abandonAt)
            setTerminateLoad(true);
    });
}

// Masked decals leave bitmaps there; the library has no default.
void provideTemporaryFolder()
{
    if (!platform::temporaryFolderVariable())
        setenv("temp", "/tmp", 1);
}

struct Point {
    double x, y, z;
};

Point placed(const dlXform& xform, const float* p)
{
    const float* m = xform.m;
    const auto row = [&](int i) {
        return double(m[i]) * p[0] + m[i + 4] * p[1] + m[i + 8] * p[2] + m[i + 12];
    };
    return {row(0), row(1), row(2)};
}

double area(const Point& a, const Point& b, const Point& c)
{
    const Point u{b.x - a.x, b.y - a.y, b.z - a.z};
    const Point v{c.x - a.x, c.y - a.y, c.z - a.z};
    return std::hypot(u.y * v.z - u.z * v.y, u.z * v.x - u.x * v.z, u.x * v.y - u.y * v.x) / 2;
}

// Calls draw(a, b, c) with the numbers of three vertices. Every second triangle of a strip has its first
// two vertices the other way round, so that all wind alike.
template <class Draw>
void forEachTriangle(const dlFace& face, Draw draw)
{
    for (int strip = 0; strip < face.stripCount; ++strip) {
        const int start = face.stripStarts[strip];
        for (int i = 0; i + 2 < face.stripLengths[strip]; ++i) {
            const int swap = i % 2;
            draw(start + i + swap, start + i + 1 - swap, start + i + 2);
        }
    }
}

// The appearance that counts for a face: the instance's, else the face's, the body's, the part's.
const dlMaterial& materialOf(const dlInstance& instance, const dlBody& body, const dlFace& face)
{
    for (const dlMaterial* material : {instance.material, face.material, body.material})
        if (material)
            return *material;
    return instance.part->material;
}

std::string colourOf(const dlMaterial& material)
{
    const auto byte = [](float share) {
        return std::lround(255 * std::fmin(std::fmax(share, 0.0f), 1.0f));
    };
    char text[32];
    std::snprintf(text, sizeof text, "#%02lx%02lx%02lx", byte(material.color[0]), byte(material.color[1]),
                  byte(material.color[2]));
    return text;
}

// Where the image is on this machine. A search takes paths apart at "\" only.
std::string imageOf(const dlMaterial& material, const std::string& searchFolder)
{
    std::wstring name = material.texture.filename;
    if (name.empty())
        return {};
    if (const auto bytes = ovdl::embeddedImage(name); !bytes.empty())
        return " image of " + std::to_string(bytes.size()) + " bytes in the document";
    for (wchar_t& character : name)
        character = character == L'/' ? L'\\' : character;
    const std::string found = rlu_getTextureFilename(name, searchFolder, TextureImageAppearance, L"");
    return " image " + rlu_nativePath(platform::widen(found));
}

struct Surface {
    int triangles = 0;
    double area = 0;
};

void addFace(const dlInstance& instance, const dlFace& face, Surface& surface)
{
    const auto vertex = [&](int i) { return placed(instance.xform, face.vertices + 6 * i); };
    forEachTriangle(face, [&](int a, int b, int c) {
        ++surface.triangles;
        surface.area += area(vertex(a), vertex(b), vertex(c));
    });
}

// By colour and image, over all faces of the instance.
std::map<std::string, Surface> surfacesOf(const dlInstance& instance, const std::string& searchFolder)
{
    std::map<std::string, Surface> surfaces;
    const dlPart& part = *instance.part;
    for (int b = 0; b < part.bodyCount; ++b) {
        const dlBody& body = part.bodies[b];
        for (int f = 0; f < body.faceCount; ++f) {
            const dlMaterial& material = materialOf(instance, body, body.faces[f]);
            addFace(instance, body.faces[f],
                    surfaces[colourOf(material) + imageOf(material, searchFolder)]);
        }
    }
    return surfaces;
}

void print(const dlInstance& instance, const std::string& searchFolder)
{
    const float* m = instance.xform.m;
    std::printf("%s%s at %.4g %.4g %.4g m\n", utf8(instance.name).c_str(),
                instance.visible ? "" : " (hidden)", double(m[12]), double(m[13]), double(m[14]));
    if (!instance.part)
        return;
    for (const auto& [look, surface] : surfacesOf(instance, searchFolder))
        std::printf("    %s: %d triangles, %.1f cm2\n", look.c_str(), surface.triangles,
                    surface.area * 1e4);
}

// 0 for a model, 1 for none.
int show(const std::string& path)
{
    const std::unique_ptr<dlModel> model(dlModel::ReadModel(path.c_str()));
    std::fputc('\n', stderr);
    if (isTerminating()) {
        std::puts("abandoned");
        return 1;
    }
    if (!model || model->loadRejected) {
        std::printf("%s: %s\n", model ? "rejected" : "cannot be opened", ovdl::lastReason().c_str());
        return 1;
    }
    std::printf("%s: %d instances\n", utf8(model->modelName).c_str(), model->instanceCount);
    const std::string searchFolder = path.substr(0, path.find_last_of("\\/") + 1);
    for (int i = 0; i < model->instanceCount; ++i)
        print(model->instances[i], searchFolder);
    return 0;
}

int showSafely(const std::string& path)
{
    try {
        return show(path);
    } catch (const platform::ComError& error) {
        std::printf("the document contradicts itself: %s\n", error.what());
    } catch (const std::bad_alloc&) {
        std::puts("there is not enough memory");
    }
    return 1;
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc < 2)
        return 2;
    provideTemporaryFolder();
    installHandlers(argc > 2 ? std::strtof(argv[2], nullptr) : 2.0f);
    const int result = showSafely(platform::narrow(platform::fromUtf8(argv[1])));
    setTerminateLoad(false);
    rlu_ClearTempBMPFiles();
    return result;
}
