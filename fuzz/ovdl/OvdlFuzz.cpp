// One document for each input: its streams one behind the other.
#include <cstdint>
#include <cstdlib>
#include <memory>

#include "fuzz/ovdl/StreamBundle.h"
#include "raylume/load/AssemblyTranslation.h"
#include "raylume/load/PartTranslation.h"
#include "raylume/scene/dlModel.h"
#include "reader/formats/ovdl/Decoder.h"

namespace {

void require(bool holds)
{
    if (!holds)
        std::abort();
}

ovdl_tests::Buffers buffersOf(const std::uint8_t* data, std::size_t size)
{
    if (!ovdl_fuzz::isPatch(data, size))
        return ovdl_fuzz::unbundle(data, size);
    static const ovdl_tests::Buffers sound = ovdl_tests::everything().buffers();
    ovdl_tests::Buffers buffers = sound;
    ovdl_fuzz::patch(buffers, data + 2, size - 2);
    return buffers;
}

// As the library does when it loads the document.
void loadPart(OVDLPartDocument& part)
{
    dlModel model;
    translatePartDocument(model, part, L"/nowhere/a.ovdl");
    model.createAssemblyHierarchy();
    model.updateSingletons();
}

void loadAssembly(OVDLAssemblyDocument& assembly, uoTempAssemblySHDDataArray_c& components)
{
    dlModel model;
    translateAssemblyDocument(model, assembly, L"/nowhere/a.ovdl", components);
    model.createAssemblyHierarchy();
    model.updateSingletons();
}

void load(ovdl::DecodedDocument& document)
{
    const ovdl::DocumentContents contents = document.contents();
    if (contents.part)
        loadPart(*contents.part);
    if (!contents.assembly)
        return;
    loadAssembly(*contents.assembly, contents.assembly->components);
    for (const auto& [name, components] : contents.configurations)
        loadAssembly(*contents.assembly, *components);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const ovdl_tests::Buffers buffers = buffersOf(data, size);
    const ovdl::ReadOutcome outcome = ovdl_tests::decode(buffers);
    require(outcome.kind == ovdl::ReadOutcome::kRead ? outcome.document != nullptr
                                                     : !outcome.reason.empty());
    if (outcome.document) {
        ovdl_tests::walk(*outcome.document);
        load(dynamic_cast<ovdl::DecodedDocument&>(*outcome.document));
    }
    return 0;
}
