#include "RandomDocuments.h"

#include <bit>
#include <random>
#include <tuple>
#include <type_traits>

#include "ReaderFields.h"

namespace ovdl_tests {
namespace {

class Maker {
public:
    Maker(ovdl::PreparedDocument& document, std::uint64_t seed, int size)
        : document_(document), random_(seed), size_(size)
    {
    }

    void fillDocument()
    {
        const bool isPart = chance(50);
        if (isPart)
            fill(*(document_.part = std::make_unique<OVDLPartDocument>()));
        if (!isPart || chance(20))
            fill(*(document_.assembly = std::make_unique<OVDLAssemblyDocument>()));
        // Names that are no valid text are kept too.
        for (int i = below(size_ + 1); i > 0; --i)
            fill(document_.configurations[text()]);
        fill(document_.version);
        document_.reason = chance(50) ? "because" : "";
    }

private:
    int below(int limit) { return static_cast<int>(random_() % static_cast<std::uint64_t>(limit)); }
    bool chance(int percent) { return below(100) < percent; }

    template <class Bits>
    Bits bits()
    {
        return static_cast<Bits>(random_());
    }

    // A class whose members are listed.
    template <class T>
    void fill(T& object) requires std::is_class_v<T>
    {
        eachField(&object, [&](const char*, auto member) { fill(object.*member); });
    }

    template <class T>
    void fill(T& number) requires std::is_integral_v<T>
    {
        number = chance(60) ? static_cast<T>(below(5)) : bits<T>();
    }
    void fill(bool& flag) { flag = chance(50); }
    void fill(double& number) { number = real<double, std::uint64_t>(); }
    void fill(float& number) { number = real<float, std::uint32_t>(); }
    void fill(std::wstring& to) { to = text(); }

    // Bits of any kind: what is no number has a payload too.
    template <class Real, class Bits>
    Real real()
    {
        static constexpr double kSpecial[] = {0.0, -0.0, 1.0, 0.1, -1e300, 5e-324};
        if (chance(30))
            return static_cast<Real>(kSpecial[below(6)]);
        if (chance(10))
            return std::bit_cast<Real>(
                static_cast<Bits>(std::bit_cast<Bits>(Real(INFINITY)) | bits<Bits>()));
        return std::bit_cast<Real>(bits<Bits>());
    }

    std::wstring text()
    {
        static const std::wstring kTexts[] = {L"",
                                              L"part-1@top",
                                              L"\u00e4\u65e5\U0001F600",
                                              L"C:\\a\\b.png",
                                              std::wstring(1, static_cast<wchar_t>(0xD800)),
                                              std::wstring(L"a\0b", 3),
                                              L"\n\"\\\x7f",
                                              std::wstring(1, static_cast<wchar_t>(0xFFFFFFFFu))};
        if (chance(60))
            return kTexts[below(8)];
        std::wstring made;
        for (int i = below(6); i > 0; --i)
            made += static_cast<wchar_t>(chance(50) ? bits<std::uint32_t>() : bits<std::uint8_t>());
        return made;
    }

    template <class T, std::size_t N>
    void fill(T (&array)[N])
    {
        for (T& element : array)
            fill(element);
    }

    template <class T>
    void fill(std::map<int, T>& map)
    {
        for (int i = below(size_ + 1); i > 0; --i) {
            int key = 0;
            fill(key);
            fill(map[key]);
        }
    }

    template <class T>
    void fill(std::list<T>& list)
    {
        for (int i = below(size_ + 1); i > 0; --i)
            fill(list.emplace_back());
    }

    // Types without a name are lights like others.
    void fill(LIGHT_TYPE& type)
    {
        type = static_cast<LIGHT_TYPE>(below(4) == 0 ? bits<std::int32_t>() : below(8));
    }
    void fill(VizPropMode_e& mode) { mode = static_cast<VizPropMode_e>(bits<std::int32_t>()); }

    // Null, one that others point at, or a new one.
    template <class T>
    void fill(T*& pointer)
    {
        auto& known = std::get<std::vector<T*>>(known_);
        const int choice = below(100);
        if (choice < 20) {
            pointer = nullptr;
        } else if (choice < 50 && !known.empty()) {
            pointer = known[static_cast<std::size_t>(below(static_cast<int>(known.size())))];
        } else {
            pointer = make<T>();
            known.push_back(pointer);
        }
    }

    template <class T>
    T* make()
    {
        T* made = document_.own<T>();
        // Bodies, faces and their records belong to one part.
        if constexpr (std::is_same_v<T, uoTempPartTessData_c>) {
            std::get<std::vector<uoTempBodyTessData_c*>>(known_).clear();
            std::get<std::vector<uoTempFaceTessData_c*>>(known_).clear();
            std::get<std::vector<uoBodyPropInfo_c*>>(known_).clear();
        }
        fill(*made);
        return made;
    }

    template <class T>
    void fill(ovPointerArray<T>& array)
    {
        std::vector<T*> elements(static_cast<std::size_t>(below(size_ + 1)));
        for (T*& element : elements)
            fill(element);
        array = document_.array(std::move(elements));
    }

    void fill(ovPointerArray<moLight_c>*& array)
    {
        array = chance(25) ? nullptr : document_.own<ovPointerArray<moLight_c>>();
        if (array)
            fill(*array);
    }

    void fill(OVDLExtrasBlock*& block)
    {
        block = chance(20) ? nullptr : document_.own<OVDLExtrasBlock>();
        if (!block || chance(20))
            return;
        block->record = document_.own<OVDLExtrasRecord>();
        block->record->first = chance(50) ? document_.own<int>() : nullptr;
        block->record->second = chance(50) ? document_.own<int>() : nullptr;
    }

    // Arrays may have more than the strips need.
    void fill(uoTempFaceTessData_c& face)
    {
        fill(face.hasUVs);
        fill(face.faceId);
        fill(face.faceKey);
        fill(face.faceVizProps);
        fill(face.vizPropModes);
        std::vector<std::int32_t> lengths(static_cast<std::size_t>(below(size_ + 1)));
        for (std::int32_t& length : lengths)
            length = below(6);
        face.stripCount = below(static_cast<int>(lengths.size()) + 1);
        int vertices = 0;
        for (int strip = 0; strip < face.stripCount; ++strip)
            vertices += lengths[static_cast<std::size_t>(strip)];
        face.stripLengths = document_.view(std::move(lengths));
        face.points = floats(3 * vertices + below(5));
        face.normals = floats(3 * vertices + below(5));
        face.uvs = floats(face.hasUVs != 0 ? 2 * vertices + below(4) : below(5));
    }

    ovArrayView<float> floats(int count)
    {
        std::vector<float> made(static_cast<std::size_t>(count));
        for (float& number : made)
            fill(number);
        return document_.view(std::move(made));
    }

    ovdl::PreparedDocument& document_;
    std::mt19937_64 random_;
    int size_;
    std::tuple<std::vector<uoMaterialTextureProperties*>, std::vector<uoRVAppearanceProperties*>,
               std::vector<uoMaterialProperties*>, std::vector<moVisualProperties_c*>,
               std::vector<uoDecalProperties*>, std::vector<moLight_c*>, std::vector<pwWallInfo_c*>,
               std::vector<pwSceneData_c*>, std::vector<ovScene_c*>, std::vector<uoTempFaceTessData_c*>,
               std::vector<uoBodyPropInfo_c*>, std::vector<uoTempBodyTessData_c*>,
               std::vector<uoTempPartTessData_c*>, std::vector<uoTempAssemblySHDData_c*>>
        known_;
};

}  // namespace

std::unique_ptr<ovdl::PreparedDocument> randomDocument(std::uint64_t seed, int size)
{
    auto document = std::make_unique<ovdl::PreparedDocument>();
    Maker(*document, seed, size).fillDocument();
    return document;
}

}  // namespace ovdl_tests
