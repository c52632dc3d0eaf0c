// Whole commands in this process, on prepared documents.
#include <gmock/gmock.h>

#include <csignal>
#include <nlohmann/json.hpp>
#include <sstream>

#include "Documents.h"
#include "Folder.h"
#include "Pictures.h"
#include "raylume/platform/HostSetup.h"
#include "raylume/platform/Text.h"
#include "raylume/scene/dlModel.h"
#include "reader/HostHandlers.h"
#include "tools/TemporaryFolder.h"
#include "tools/Tool.h"

namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;
using tool_test::band;
using tool_test::DocumentBuilder;
using tool_test::Folder;
using tool_test::Prepared;
using tool_test::readFile;

struct Said {
    int status;
    std::string out;
    std::string err;
};

Said run(std::vector<std::string> arguments, bool terminal = false)
{
    std::vector<const char*> pointers = {"raylume-dl"};
    for (const std::string& argument : arguments)
        pointers.push_back(argument.c_str());
    std::ostringstream out;
    std::ostringstream err;
    const int status = tool::run(static_cast<int>(pointers.size()), pointers.data(), out, err, terminal);
    return {status, out.str(), err.str()};
}

long lines(const std::string& text)
{
    return std::count(text.begin(), text.end(), '\n');
}

void fillAssembly(DocumentBuilder& builder)
{
    auto* part = builder.simplePart({band(4)});
    builder.assembly({builder.component(L"a-1@t", part), builder.component(L"s-1@t/a-1@s", part)});
    builder.configuration(L"Kurz \u00FC\tx", {builder.component(L"k-1@t", part)});
}

TEST(Info, TellsAboutAPreparedAssembly)
{
    const Prepared document("/prepared/box.asm", fillAssembly);
    const Said said = run({"info", document.path(), "--json"});
    EXPECT_EQ(said.status, 0);
    EXPECT_EQ(said.err, "");
    const json info = json::parse(said.out);
    EXPECT_EQ(info["outcome"], "model");
    EXPECT_EQ(info["modelName"], "box.asm");
    EXPECT_EQ(info["isPartDocument"], false);
    EXPECT_EQ(info["documentVersion"], 12000);
    EXPECT_EQ(info["versionGatePassed"], true);
    EXPECT_EQ(info["partCount"], 1);
    EXPECT_EQ(info["instanceCount"], 2);
    EXPECT_EQ(info["bodyCount"], 1);
    EXPECT_EQ(info["faceCount"], 1);
    EXPECT_EQ(info["vertexCount"], 6);
    EXPECT_EQ(info["triangleCount"], 4);
    EXPECT_EQ(info["lightCount"], 0);
    EXPECT_EQ(info["singletonCount"], 0);
    EXPECT_EQ(info["bbox"], json::parse(R"({"min": [0, 0, 0], "max": [2, 1, 0]})"));
    EXPECT_GE(info["loadSeconds"].get<double>(), 0.0);
    EXPECT_LT(info["loadSeconds"].get<double>(), 100.0);
    EXPECT_FALSE(info.contains("reason"));
}

TEST(Info, HasNoBoxForAModelWithoutPoints)
{
    const Prepared document("/prepared/empty.asm", [](DocumentBuilder& builder) { builder.assembly({}); });
    EXPECT_EQ(json::parse(run({"info", document.path(), "--json"}).out)["bbox"], nullptr);
}

TEST(Info, TellsAboutARejectedDocument)
{
    const Prepared document("/prepared/bad.asm", [](DocumentBuilder& builder) {
        builder.assembly({});
        builder.document().rejected = true;
        builder.document().reason = "the header is torn";
    });
    const Said said = run({"info", document.path(), "--json"});
    EXPECT_EQ(said.status, 1);
    const json info = json::parse(said.out);
    EXPECT_EQ(info["outcome"], "rejected");
    EXPECT_EQ(info["reason"], "the header is torn");
    EXPECT_EQ(info["modelName"], "bad.asm");
    EXPECT_EQ(
        said.err,
        "raylume-dl: /prepared/bad.asm: rejected: the document gives no model (the header is torn)\n");
}

TEST(Info, TellsAboutADocumentThatDoesNotOpen)
{
    const Prepared document("/prepared/locked.asm", [](DocumentBuilder& builder) {
        builder.document().openable = false;
        builder.document().reason = "it is locked";
    });
    const Said said = run({"info", document.path(), "--json"});
    EXPECT_EQ(said.status, 1);
    const json info = json::parse(said.out);
    EXPECT_EQ(info["outcome"], "none");
    EXPECT_EQ(info["reason"], "it is locked");
    EXPECT_EQ(said.err,
              "raylume-dl: /prepared/locked.asm: none: the document cannot be opened (it is locked)\n");
}

TEST(Info, TellsAboutAnArrayThatContradictsItself)
{
    const Prepared document("/prepared/lying.asm", [](DocumentBuilder& builder) {
        auto* part = builder.simplePart({band(1)});
        builder.assembly({builder.component(L"a-1@t", part)});
        class Lying : public uoTempPartTessData_c {
            int getNumBodies() const override { return 5; }
        };
        auto* lying = builder.document().own<Lying>();
        lying->bodies = part->bodies;
        builder.assembly({builder.component(L"a-1@t", lying)});
    });
    const Said said = run({"info", document.path(), "--json"});
    EXPECT_EQ(said.status, 1);
    EXPECT_EQ(json::parse(said.out)["outcome"], "none");
    EXPECT_EQ(lines(said.err), 1);
    EXPECT_THAT(said.err, HasSubstr("80070057"));
}

TEST(OtherCommands, SayNothingOnStandardOutputWithoutAModel)
{
    const Folder folder;
    for (const char* command : {"tree", "materials", "animation", "shaderdata"}) {
        for (const bool asJson : {false, true}) {
            std::vector<std::string> arguments = {command, "/prepared/nothing"};
            if (asJson)
                arguments.push_back("--json");
            const Said said = run(arguments);
            EXPECT_EQ(said.status, 1) << command;
            EXPECT_EQ(said.out, "") << command;
            EXPECT_EQ(lines(said.err), 1) << said.err;
            EXPECT_THAT(said.err, StartsWith("raylume-dl: /prepared/nothing: none: "));
        }
    }
    const Said said = run({"export", "/prepared/nothing", folder / "o.glb"});
    EXPECT_EQ(said.status, 1);
    EXPECT_EQ(said.out, "");
    EXPECT_EQ(lines(said.err), 1);
    EXPECT_THAT(folder.entries(), IsEmpty());
}

TEST(Tree, ShowsAPreparedAssembly)
{
    const Prepared document("/prepared/box.asm", fillAssembly);
    EXPECT_EQ(run({"tree", document.path()}).out,
              "t  (2 instances)\n"
              "  a-1@t  part \"<>a\"\n"
              "  s-1@t  (1 instance)\n"
              "    a-1@s  part \"<>a\"\n");
    EXPECT_EQ(run({"tree", document.path(), "--depth", "1"}).out,
              "t  (2 instances)\n"
              "  a-1@t  part \"<>a\"\n"
              "  s-1@t  (1 instance, not shown)\n");
    EXPECT_EQ(json::parse(run({"tree", document.path(), "--json"}).out)["subtreeCount"], 2);
}

TEST(MaterialsCommand, ShowsAppearances)
{
    const Prepared document("/prepared/colours.asm", [](DocumentBuilder& builder) {
        auto* component = builder.component(L"a-1@t", builder.simplePart({band(1)}));
        component->vizProps = builder.look(0x000080FF, 0.5);
        builder.assembly({component});
    });
    EXPECT_THAT(run({"materials", document.path()}).out,
                StartsWith("1 appearance\n  1. #ff8000  transparency 0.5\n"));
    const json result = json::parse(run({"materials", document.path(), "--json"}).out);
    EXPECT_EQ(result["materials"][0]["color"], "#ff8000");
    EXPECT_EQ(result["materials"][0]["uses"]["instance"], 1);
}

TEST(ShaderData, IsMissingFromDocumentsWithoutStorages)
{
    const Prepared document("/prepared/box.asm", fillAssembly);
    const Said said = run({"shaderdata", document.path()});
    EXPECT_EQ(said.status, 1);
    EXPECT_EQ(said.out, "");
    EXPECT_EQ(
        said.err,
        "raylume-dl: /prepared/box.asm: no settings: the document holds none, or is of a version whose "
        "settings are not read\n");
}

TEST(ShaderData, OfAPathThatTheCodePageLacksIsAFailure)
{
    const int before = platform::ansiCodePage();
    ASSERT_TRUE(platform::setAnsiCodePage(1252));
    const Said said = run({"shaderdata", "/prepared/\xE6\x97\xA5.asm"});
    platform::setAnsiCodePage(before);
    EXPECT_EQ(said.status, 1);
    EXPECT_THAT(said.err, HasSubstr("(its path has characters that the ANSI code page lacks)"));
}

// ------------------------------------------------------------------------------- temporary bitmaps

/// Points "temp" at a folder for one test.
class TemporaryFolderIs {
public:
    explicit TemporaryFolderIs(const std::string& path) { platform::setEnvironmentVariable("temp", path); }
    TemporaryFolderIs(const TemporaryFolderIs&) = delete;
    TemporaryFolderIs& operator=(const TemporaryFolderIs&) = delete;
    ~TemporaryFolderIs() { platform::removeEnvironmentVariable("temp"); }
};

// One decal whose mask is baked; the second part may do something else first.
void fillDecals(DocumentBuilder& builder, const std::string& image, uoTempPartTessData_c* second = nullptr)
{
    auto* decal = builder.document().own<uoDecalProperties>();
    decal->textureProperties.filename = platform::fromUtf8(image);
    decal->textureProperties.scale[0] = decal->textureProperties.scale[1] = 1;
    decal->mappingKind = 2;
    decal->colorMask = {0xFF};
    decal->faceMappings.emplace_back();
    auto* face = builder.face({band(4)});
    auto* part = builder.part({builder.body({face})});
    face->faceId = decal->faceMappings.back().faceId;
    part->decalsByConfig[0] = {decal};
    std::vector<uoTempAssemblySHDData_c*> components = {builder.component(L"a-1@t", part)};
    if (second)
        components.push_back(builder.component(L"b-1@t", second));
    builder.configuration(L"long", components);
    builder.assembly(std::move(components));
}

/// A document with an image of its own, which no earlier test has baked.
class Decals {
public:
    Decals() : prepared_("/prepared/decals.asm", [this](DocumentBuilder& b) { fillDecals(b, image()); })
    {
        tool_test::writeFile(image(), tool_test::bmpFile(4, 4));
    }
    std::string image() const { return folder_ / "logo.bmp"; }
    std::string path() const { return prepared_.path(); }

private:
    Folder folder_;
    Prepared prepared_;
};

TEST(TemporaryBitmaps, GoWithEveryCommand)
{
    const Folder output;
    for (const char* command : {"info", "tree", "animation", "materials", "export"}) {
        const Folder folder;
        const TemporaryFolderIs temp(folder.path());
        const Decals document;
        std::vector<std::string> arguments = {command, document.path()};
        if (arguments[0] == "export")
            arguments.push_back(output / "o.glb");
        EXPECT_EQ(run(arguments).status, 0) << command;
        EXPECT_THAT(folder.entries(), IsEmpty()) << command;
    }
}

TEST(TemporaryBitmaps, StayWhenTheyAreToBeKept)
{
    const Folder folder;
    const TemporaryFolderIs temp(folder.path());
    const Decals document;
    const json decal = json::parse(run({"materials", document.path(), "--json", "--keep"}).out);
    ASSERT_EQ(folder.entries().size(), 1u);
    const std::string bitmap = folder / (folder.entries()[0] + "/1.bmp");
    EXPECT_TRUE(std::filesystem::exists(bitmap));
    EXPECT_EQ(decal["textures"][0]["file"], document.image());
    EXPECT_EQ(decal["textures"][0]["searchedAs"], "decal");
    EXPECT_EQ(decal["textures"][0]["status"], "found");
    EXPECT_EQ(decal["textures"][0]["bakedAs"], json({bitmap}));
    EXPECT_EQ(decal["materials"][0]["bakedFrom"], json({document.image()}));
}

TEST(TemporaryBitmaps, AreThereWhileADecalOfAConfigurationIsWritten)
{
    const Folder folder;
    const Folder output;
    const TemporaryFolderIs temp(folder.path());
    const Decals document;
    const Said said = run({"--configuration", "long", "export", document.path(), output / "o.glb"});
    EXPECT_EQ(said.status, 0);
    EXPECT_EQ(said.err, "");
    EXPECT_THAT(tool_test::readFile(output / "o.glb"), HasSubstr("\"alphaMode\":\"BLEND\""));
    EXPECT_THAT(folder.entries(), IsEmpty());
}

TEST(TemporaryBitmaps, OfAConfigurationCanBeKeptToo)
{
    const Folder folder;
    const TemporaryFolderIs temp(folder.path());
    const Decals document;
    EXPECT_EQ(run({"--configuration", "long", "info", document.path(), "--keep"}).status, 0);
    long files = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder.path()))
        files += entry.is_regular_file() && entry.path().filename() == "1.bmp" ? 1 : 0;
    EXPECT_EQ(files, 1);
}

TEST(TemporaryBitmaps, GoWhenTheLoadIsCancelled)
{
    const Folder folder;
    const Folder images;
    const TemporaryFolderIs temp(folder.path());
    tool_test::writeFile(images / "logo.bmp", tool_test::bmpFile(4, 4));
    const Prepared document("/prepared/cancelled.asm", [&](DocumentBuilder& builder) {
        class Late : public uoTempPartTessData_c {
            int getNumBodies() const override
            {
                // By now the mask of the first part is baked.
                const std::filesystem::path temporary = std::getenv("temp");
                EXPECT_FALSE(std::filesystem::is_empty(temporary));
                std::raise(SIGINT);
                return 0;
            }
        };
        fillDecals(builder, images / "logo.bmp", builder.document().own<Late>());
    });
    EXPECT_EQ(run({"materials", document.path()}).err, "raylume-dl: cancelled\n");
    EXPECT_THAT(folder.entries(), IsEmpty());
}

// ---------------------------------------------------------------------------------- configurations

std::string firstToken(const Said& said)
{
    return json::parse(said.out)["components"][0]["token"];
}

TEST(Configuration, IsLoadedByItsName)
{
    const Folder folder;
    const TemporaryFolderIs temp(folder.path());
    const Prepared document("/prepared/box.asm", fillAssembly);
    EXPECT_EQ(firstToken(run({"tree", document.path(), "--json"})), "a-1@t");
    const std::string name = "Kurz \xC3\xBC\tx";
    EXPECT_EQ(firstToken(run({"--configuration", name, "tree", document.path(), "--json"})), "k-1@t");
    EXPECT_EQ(firstToken(run({"tree", document.path(), "--json", "--configuration=" + name})), "k-1@t");
    EXPECT_EQ(firstToken(run({"--configuration", "unknown", "tree", document.path(), "--json"})), "a-1@t");
    EXPECT_THAT(folder.entries(), IsEmpty());
    EXPECT_EQ(std::string(std::getenv("temp")), folder.path());
}

TEST(Configuration, LeavesTheFileOfOtherProgramsAlone)
{
    const Folder folder;
    const TemporaryFolderIs temp(folder.path());
    const std::string file = folder / "LDRConfigName.txt";
    tool_test::writeFile(file, "x\tKurz \xC3\xBC\tx\n");
    const Prepared document("/prepared/box.asm", fillAssembly);
    EXPECT_EQ(firstToken(run({"tree", document.path(), "--json"})), "k-1@t");
    EXPECT_EQ(firstToken(run({"--configuration", "none", "tree", document.path(), "--json"})), "a-1@t");
    EXPECT_EQ(tool_test::readFile(file), "x\tKurz \xC3\xBC\tx\n");
    EXPECT_THAT(folder.entries(), ElementsAre("LDRConfigName.txt"));
}

TEST(Configuration, LeavesNoFolderBehindWhenTheLoadFails)
{
    const Folder folder;
    const TemporaryFolderIs temp(folder.path());
    EXPECT_EQ(run({"--configuration", "a", "info", "/prepared/nothing"}).status, 1);
    const Prepared raising("/prepared/raising", [](DocumentBuilder&) { std::raise(SIGTERM); });
    EXPECT_EQ(run({"--configuration", "a", "info", raising.path()}).status, 1);
    EXPECT_THAT(folder.entries(), IsEmpty());
}

TEST(Configuration, NeedsAFolderThatCanBeWritten)
{
    const Folder folder;
    const TemporaryFolderIs temp(folder / "gone");
    const Prepared document("/prepared/box.asm", fillAssembly);
    const Said said = run({"--configuration", "a", "tree", document.path()});
    EXPECT_EQ(said.status, 1);
    EXPECT_EQ(lines(said.err), 1);
    EXPECT_THAT(said.err, HasSubstr("no folder can be made in " + (folder / "gone")));
}

TEST(Configuration, IsOneLine)
{
    EXPECT_EQ(run({"--configuration", "a\nb", "info", "x"}).status, 2);
    EXPECT_EQ(run({"--configuration", "a\r", "info", "x"}).status, 2);
}

TEST(TemporaryFolder, IsProvidedWhenTheEnvironmentNamesNone)
{
    const Folder folder;
    for (const char* name : {"temp", "TEMP", "tmp", "TMP"})
        platform::removeEnvironmentVariable(name);
    platform::setEnvironmentVariable("TMPDIR", folder.path());
    tool::provideTemporaryFolder();
    EXPECT_EQ(std::string(std::getenv("temp")), folder.path());
    platform::removeEnvironmentVariable("TMPDIR");
    tool::provideTemporaryFolder();
    EXPECT_EQ(std::string(std::getenv("temp")), folder.path()) << "what is set stays";
    platform::setEnvironmentVariable("temp", "");
    tool::provideTemporaryFolder();
    EXPECT_TRUE(std::filesystem::is_directory(std::getenv("temp")));
    platform::removeEnvironmentVariable("temp");
    platform::setEnvironmentVariable("tmp", "/elsewhere");
    tool::provideTemporaryFolder();
    EXPECT_EQ(std::getenv("temp"), nullptr);
    platform::removeEnvironmentVariable("tmp");
}

// ------------------------------------------------------------------------------------- conversions

/// What "tree" says of a document.
std::string treeOf(const std::string& path, std::vector<std::string> options = {})
{
    options.insert(options.begin(), {"tree", path});
    const Said said = run(options);
    EXPECT_EQ(said.status, 0) << said.err;
    return said.out;
}

TEST(Convert, WritesADocumentThatIsTheSame)
{
    const Folder folder;
    const Prepared document("/prepared/box.asm", fillAssembly);
    for (const char* name : {"box.ovdl", "box.json", "OTHER.OVDL"}) {
        const Said said = run({"convert", document.path(), folder / name});
        EXPECT_EQ(said.status, 0);
        EXPECT_EQ(said.out, "");
        EXPECT_EQ(said.err, "");
        EXPECT_EQ(treeOf(folder / name), treeOf(document.path()));
        EXPECT_EQ(treeOf(folder / name, {"--configuration", "Kurz \u00FC\tx"}),
                  treeOf(document.path(), {"--configuration", "Kurz \u00FC\tx"}));
    }
    EXPECT_THAT(folder.entries(), testing::UnorderedElementsAre("box.ovdl", "box.json", "OTHER.OVDL"));
}

TEST(Convert, MakesAConfigurationTheOneThatTheDocumentOpensWith)
{
    const Folder folder;
    const Prepared document("/prepared/box.asm", fillAssembly);
    const Said said =
        run({"--configuration", "Kurz \u00FC\tx", "convert", document.path(), folder / "o.ovdl"});
    EXPECT_EQ(said.status, 0);
    EXPECT_EQ(treeOf(folder / "o.ovdl"), treeOf(document.path(), {"--configuration", "Kurz \u00FC\tx"}));
    EXPECT_NE(treeOf(folder / "o.ovdl"), treeOf(document.path()));
}

TEST(Convert, FailsForAConfigurationThatTheDocumentLacks)
{
    const Folder folder;
    const Prepared document("/prepared/box.asm", fillAssembly);
    const Said said = run({"convert", document.path(), folder / "o.ovdl", "--configuration", "Lang"});
    EXPECT_EQ(said.status, 1);
    EXPECT_EQ(said.err,
              "raylume-dl: /prepared/box.asm: not converted: the document has no configuration \"Lang\"\n");
    EXPECT_THAT(folder.entries(), IsEmpty());
}

TEST(Convert, WritesADocumentOverItself)
{
    const Folder folder;
    const Prepared document("/prepared/box.asm", fillAssembly);
    for (const std::string& path : {folder / "o.ovdl", folder / "o.json"}) {
        ASSERT_EQ(run({"convert", document.path(), path}).status, 0);
        const std::string before = readFile(path);
        const Said said = run({"convert", path, path});
        EXPECT_EQ(said.status, 0) << said.err;
        EXPECT_TRUE(readFile(path) == before);
    }
}

TEST(Convert, TellsWhyThereIsNoDocument)
{
    const Folder folder;
    const Said said = run({"convert", folder / "missing", folder / "o.ovdl"});
    EXPECT_EQ(said.status, 1);
    EXPECT_EQ(said.out, "");
    EXPECT_EQ(said.err, "raylume-dl: " + folder / "missing" +
                            ": not converted: the document cannot be opened (there is no such file)\n");
    EXPECT_THAT(folder.entries(), IsEmpty());
}

TEST(Convert, TellsWhyADocumentIsRejected)
{
    const Folder folder;
    const std::string damaged = folder / "bad.json";
    std::ofstream(damaged) << "{\"ovdl\":1,";
    const Said said = run({"convert", damaged, folder / "o.ovdl"});
    EXPECT_EQ(said.status, 1);
    EXPECT_THAT(said.err,
                StartsWith("raylume-dl: " + damaged + ": not converted: the document is rejected ("));
    EXPECT_THAT(folder.entries(), ElementsAre("bad.json"));
}

TEST(Convert, KeepsADocumentThatSaysThatItIsRejected)
{
    const Folder folder;
    const Prepared document("/prepared/bad.asm", [](DocumentBuilder& builder) {
        fillAssembly(builder);
        builder.document().rejected = true;
        builder.document().reason = "too\nold";
    });
    const Said said = run({"convert", document.path(), folder / "o.ovdl"});
    EXPECT_EQ(said.status, 0) << said.err;
    EXPECT_THAT(run({"info", folder / "o.ovdl"}).err, HasSubstr("too old"));
}

TEST(Convert, LooksWhetherItMayWriteBeforeItReads)
{
    const Folder folder;
    bool isRead = false;
    const Prepared document("/prepared/box.asm", [&isRead](DocumentBuilder& builder) {
        fillAssembly(builder);
        isRead = true;
    });
    std::filesystem::create_directory(folder / "f.ovdl");
    const Said folderSaid = run({"convert", document.path(), folder / "f.ovdl"});
    EXPECT_EQ(folderSaid.status, 1);
    EXPECT_EQ(folderSaid.err,
              "raylume-dl: " + folder / "f.ovdl" + ": the file cannot be written (it is a folder)\n");
    const Said missing = run({"convert", document.path(), folder / "none/o.ovdl"});
    EXPECT_EQ(missing.status, 1);
    EXPECT_THAT(missing.err, HasSubstr("(there is no folder for it)"));
    EXPECT_FALSE(isRead);
}

// The path as it is understood is that of another file.
TEST(Outputs, WhosePathIsNotUtf8AreRefused)
{
    const Folder folder;
    const Prepared document("/prepared/box.asm", fillAssembly);
    for (const char* command : {"convert", "export"})
        for (const std::string bytes : {"\xFF", "\xC3", "\xED\xA0\x80", "\xC0\xAF"}) {
            const std::string end = command == std::string("convert") ? ".ovdl" : ".glb";
            const Said said = run({command, document.path(), folder / ("o" + bytes + end)});
            EXPECT_EQ(said.status, 1) << command;
            EXPECT_EQ(said.out, "") << command;
            EXPECT_EQ(lines(said.err), 1) << said.err;
            EXPECT_THAT(said.err, HasSubstr("the file cannot be written (its path is not UTF-8)"));
        }
    EXPECT_THAT(folder.entries(), IsEmpty());
    EXPECT_EQ(run({"convert", document.path(), folder / "\xC3\xBC\xEF\xBF\xBD.ovdl"}).status, 0);
    EXPECT_THAT(folder.entries(), ElementsAre("\xC3\xBC\xEF\xBF\xBD.ovdl"));
}

TEST(Convert, DrawsAndErasesProgressOnATerminal)
{
    const Folder folder;
    const Prepared document("/prepared/box.asm", fillAssembly);
    const Said said = run({"convert", document.path(), folder / "o.ovdl"}, true);
    EXPECT_EQ(said.status, 0);
    EXPECT_THAT(said.err, HasSubstr("100 %"));
}

// ------------------------------------------------------------------------------------ interruption

TEST(Interruption, CancelsALoad)
{
    for (const int signal : {SIGINT, SIGTERM}) {
        const Folder folder;
        const Prepared document("/prepared/slow.asm", [signal](DocumentBuilder& builder) {
            fillAssembly(builder);
            std::raise(signal);
        });
        for (const char* command : {"info", "tree", "materials", "export", "convert"}) {
            std::vector<std::string> arguments = {command, document.path()};
            if (arguments[0] == "export")
                arguments.push_back(folder / "o.glb");
            if (arguments[0] == "convert")
                arguments.push_back(folder / "o.ovdl");
            const Said said = run(arguments);
            EXPECT_EQ(said.status, 1) << command;
            EXPECT_EQ(said.out, "") << command;
            EXPECT_EQ(said.err, "raylume-dl: cancelled\n") << command;
            EXPECT_FALSE(g_terminateLoad) << "the flag must not cancel the next load";
        }
        EXPECT_THAT(folder.entries(), IsEmpty());
    }
}

TEST(Interruption, CancelsWhileTheModelIsMade)
{
    // Asked by the translation, when the reader has long ended: only the library's flag helps here.
    const Prepared document("/prepared/late.asm", [](DocumentBuilder& builder) {
        class Late : public uoTempPartTessData_c {
            int getNumBodies() const override
            {
                std::raise(SIGINT);
                return 0;
            }
        };
        builder.assembly({builder.component(L"a-1@t", builder.document().own<Late>())});
    });
    const Said said = run({"info", document.path()});
    EXPECT_EQ(said.status, 1);
    EXPECT_EQ(said.err, "raylume-dl: cancelled\n");
}

TEST(Interruption, DoesNotReachTheNextLoad)
{
    const Prepared slow("/prepared/slow.asm", [](DocumentBuilder& builder) {
        fillAssembly(builder);
        std::raise(SIGINT);
    });
    const Prepared document("/prepared/box.asm", fillAssembly);
    EXPECT_EQ(run({"info", slow.path()}).status, 1);
    EXPECT_EQ(run({"info", document.path()}).status, 0);
}

TEST(Interruption, LeavesTheSignalsAsTheyWere)
{
    const auto mine = [](int) {};
    std::signal(SIGINT, mine);
    run({"info", "/prepared/nothing"});
    const auto after = std::signal(SIGINT, SIG_DFL);
    EXPECT_EQ(after, static_cast<void (*)(int)>(mine));
}

// ----------------------------------------------------------------------------------- command line

struct UsageCase {
    const char* name;
    std::vector<std::string> arguments;
    const char* message;
};
void PrintTo(const UsageCase& row, std::ostream* out)
{
    *out << row.name;
}
const UsageCase kBadUsage[] = {
    {"no_command", {}, "a command is missing"},
    {"an_unknown_command", {"frobnicate"}, "there is no command \"frobnicate\""},
    {"an_unknown_command_with_a_document", {"frobnicate", "x.gltf"}, "there is no command \"frobnicate\""},
    {"no_document", {"info"}, "DOC is required"},
    {"no_output", {"export", "x.gltf"}, "OUT is required"},
    {"no_output_of_a_conversion", {"convert", "x.gltf"}, "OUT is required"},
    {"a_conversion_to_another_ending", {"convert", "x.gltf", "x.glb"}, "ends in .ovdl or .json"},
    {"a_conversion_to_no_ending", {"convert", "x.gltf", "ovdl"}, "ends in .ovdl or .json"},
    {"json_of_a_conversion", {"convert", "a", "b.ovdl", "--json"}, "--json"},
    {"too_many_documents", {"tree", "a", "b"}, "b"},
    {"an_unknown_option", {"info", "a", "--yaml"}, "--yaml"},
    {"json_of_an_export", {"export", "a", "b", "--json"}, "--json"},
    {"a_depth_below_zero", {"tree", "a", "--depth", "-1"}, "no number of levels"},
    {"a_depth_that_is_no_number", {"tree", "a", "--depth", "deep"}, "no number of levels"},
    {"a_depth_without_a_number", {"tree", "a", "--depth"}, "--depth"},
    {"a_depth_for_info", {"info", "a", "--depth", "1"}, "--depth"},
    {"a_configuration_without_a_name", {"info", "a", "--configuration"}, "--configuration"},
    {"a_tessellation_of_one_number", {"info", "a", "--tessellation", "0.01"}, "no share and angle"},
    {"a_tessellation_out_of_range", {"--tessellation", "0.01,200", "info", "a"}, "no share and angle"},
    {"a_tessellation_with_more_behind", {"info", "a", "--tessellation", "0.01,5x"}, "no share and angle"},
};
class BadUsage : public testing::TestWithParam<UsageCase> {};
TEST_P(BadUsage, ShowsWhyAndTheUsage)
{
    const Said said = run(GetParam().arguments);
    EXPECT_EQ(said.status, 2);
    EXPECT_EQ(said.out, "");
    EXPECT_THAT(said.err.substr(0, said.err.find('\n')), HasSubstr(GetParam().message));
    EXPECT_THAT(said.err, HasSubstr("Usage: raylume-dl"));
}
INSTANTIATE_TEST_SUITE_P(Rows, BadUsage, testing::ValuesIn(kBadUsage),
                         [](const auto& row) { return row.param.name; });

TEST(Help, GoesToStandardOutput)
{
    for (const auto& arguments :
         std::vector<std::vector<std::string>>{{"--help"}, {"-h"}, {"tree", "--help"}}) {
        const Said said = run(arguments);
        EXPECT_EQ(said.status, 0);
        EXPECT_EQ(said.err, "");
        EXPECT_THAT(said.out, HasSubstr("Usage: raylume-dl"));
    }
    const std::string help = run({"--help"}).out;
    for (const char* word :
         {"info", "tree", "materials", "animation", "shaderdata", "export", "--configuration", "--version"})
        EXPECT_THAT(help, HasSubstr(word));
}

TEST(Version, GoesToStandardOutput)
{
    const Said said = run({"--version"});
    EXPECT_EQ(said.status, 0);
    EXPECT_EQ(said.err, "");
    EXPECT_THAT(said.out, testing::MatchesRegex("raylume-dl [0-9]+\\.[0-9]+\\.[0-9]+\n"));
}

TEST(Results, ThatCannotBeWrittenAreAFailure)
{
    const Prepared document("/prepared/box.asm", fillAssembly);
    const char* arguments[] = {"raylume-dl", "info", "/prepared/box.asm"};
    std::ostringstream out;
    out.setstate(std::ios::badbit);
    std::ostringstream err;
    EXPECT_EQ(tool::run(3, arguments, out, err, false), 1);
    EXPECT_EQ(err.str(), "raylume-dl: the results cannot be written\n");
}

TEST(Paths, AreUtf8WhateverTheCodePage)
{
    const Prepared document("/prepared/gr\xC3\xBC\xC3\x9F.asm", fillAssembly);
    EXPECT_EQ(json::parse(run({"info", document.path(), "--json"}).out)["modelName"],
              "gr\xC3\xBC\xC3\x9F.asm");
    const int before = platform::ansiCodePage();
    ASSERT_TRUE(platform::setAnsiCodePage(1252));
    EXPECT_EQ(json::parse(run({"info", document.path(), "--json"}).out)["modelName"],
              "gr\xC3\xBC\xC3\x9F.asm");
    const Said lacking = run({"info", "/prepared/\xE6\x97\xA5.asm"});
    platform::setAnsiCodePage(before);
    EXPECT_EQ(lacking.status, 1);
    EXPECT_THAT(lacking.err, HasSubstr("none"));
    EXPECT_THAT(lacking.err, HasSubstr("code page"));
}

// --------------------------------------------------------------------------------------- progress

TEST(Progress, IsDrawnAndErasedOnATerminal)
{
    const Prepared document("/prepared/box.asm", fillAssembly);
    const std::string err = run({"info", document.path()}, true).err;
    EXPECT_THAT(err, HasSubstr("%"));
    EXPECT_EQ(lines(err), 0);
    EXPECT_EQ(err.back(), '\r');
    const std::string erased = err.substr(err.rfind('\r', err.size() - 2));
    EXPECT_EQ(erased, "\r" + std::string(48, ' ') + "\r");
    EXPECT_EQ(run({"info", document.path()}, false).err, "");
}

}  // namespace
