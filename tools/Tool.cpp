#include "tools/Tool.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <exception>
#include <filesystem>
#include <new>
#include <optional>
#include <sstream>
#include <string>
#include <system_error>
#include <utility>

#include "raylume/platform/Text.h"
#include "raylume/services/Locations.h"
#include "tools/AnimationReport.h"
#include "tools/Conversion.h"
#include "tools/GltfExport.h"
#include "tools/ImageSearch.h"
#include "tools/InfoReport.h"
#include "tools/Interruption.h"
#include "tools/Loading.h"
#include "tools/MaterialsReport.h"
#include "tools/OutputFile.h"
#include "tools/ShaderDataReport.h"
#include "tools/SideFile.h"
#include "tools/StoredSettings.h"
#include "tools/TemporaryBitmaps.h"
#include "tools/TemporaryFolder.h"
#include "tools/TessellationOption.h"
#include "tools/TreeReport.h"
#include "tools/Values.h"

namespace tool {
namespace {

constexpr char kProgram[] = "raylume-dl";

struct Options {
    std::string document;
    std::string output;
    std::string configuration;
    std::string tessellation;
    bool json = false;
    bool keep = false;
    DepthLimit depth;
};

/// Something that the person at the terminal did not mean.
struct BadUsage : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// The library's own test of a range prints the whole range.
std::string isCount(const std::string& text)
{
    const bool digits = std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
    return digits && text.size() <= 9 ? "" : "\"" + text + "\" is no number of levels";
}

class CommandLine {
public:
    CommandLine()
        : app_("Shows what the display list module makes of a CAD document.", kProgram),
          info_(addCommand("info", "Outcome, version, counts, box and load time of a document.")),
          tree_(addCommand("tree", "Component tree of a document.")),
          materials_(addCommand("materials", "Appearances of a document, and their textures.")),
          animation_(addCommand("animation", "Animation tracks of a document.")),
          shaderData_(addCommand("shaderdata", "Render settings that are stored in a document.")),
          export_(addCommand("export", "Writes the loaded model as a binary glTF 2.0 file.")),
          convert_(
              addCommand("convert", "Writes the whole document as .ovdl, or as JSON in the same schema."))
    {
        app_.require_subcommand(1);
        app_.set_version_flag("--version", std::string(kProgram) + " " RAYLUME_VERSION);
        app_.add_option(
                "--configuration", options_.configuration,
                "Loads that configuration of an assembly, where the document has it. With convert: the "
                "one that the written assembly opens with.")
            ->type_name("NAME");
        app_.add_option(
                "--tessellation", options_.tessellation,
                "How fine faces of STEP and IGES documents are: how far they may lie from their surface, "
                "as a share of their part's size, and how far they may turn. 0.001,20 if nothing is said.")
            ->type_name("SHARE,DEGREES");
        app_.add_flag("--keep", options_.keep, "Leaves temporary bitmaps where they are.");
        for (CLI::App* command : {info_, tree_, materials_, animation_, shaderData_})
            command->add_flag("--json", options_.json, "Writes JSON.");
        tree_->add_option("--depth", options_.depth, "Shows that many levels below the root.")
            ->type_name("N")
            ->check(isCount);
        export_->add_option("OUT", options_.output, "The file to write (.glb).")->required()->type_name("");
        convert_->add_option("OUT", options_.output, "The file to write (.ovdl or .json).")
            ->required()
            ->type_name("");
    }

    const Options& parse(int argumentCount, const char* const* arguments)
    {
        app_.parse(argumentCount, arguments);
        if (options_.configuration.find_first_of("\r\n") != std::string::npos)
            throw BadUsage("the name of a configuration is one line");
        if (!options_.tessellation.empty() && !useTessellation(options_.tessellation))
            throw BadUsage("\"" + options_.tessellation + "\" is no share and angle, such as 0.001,20");
        if (isConvert() && !isConversionTarget(options_.output))
            throw BadUsage("the file to write ends in .ovdl or .json");
        return options_;
    }

    bool isInfo() const { return info_->parsed(); }
    bool isTree() const { return tree_->parsed(); }
    bool isMaterials() const { return materials_->parsed(); }
    bool isAnimation() const { return animation_->parsed(); }
    bool isShaderData() const { return shaderData_->parsed(); }
    bool isExport() const { return export_->parsed(); }
    bool isConvert() const { return convert_->parsed(); }

    CLI::App& app() { return app_; }

    /// What is wrong with arguments that the parser refused.
    std::string whyRefused(const CLI::ParseError& error) const
    {
        if (dynamic_cast<const CLI::RequiredError*>(&error) && app_.get_subcommands().empty()) {
            const auto unknown = app_.remaining();
            return unknown.empty() ? "a command is missing"
                                   : "there is no command \"" + unknown.front() + "\"";
        }
        return error.what();
    }

private:
    CLI::App* addCommand(const char* name, const char* description)
    {
        CLI::App* command = app_.add_subcommand(name, description);
        command->fallthrough();
        command->add_option("DOC", options_.document, "The document.")->required()->type_name("");
        return command;
    }

    CLI::App app_;
    Options options_;
    CLI::App* info_;
    CLI::App* tree_;
    CLI::App* materials_;
    CLI::App* animation_;
    CLI::App* shaderData_;
    CLI::App* export_;
    CLI::App* convert_;
};

std::string nativePath(const std::string& utf8Path)
{
    return rlu_nativePath(platform::fromUtf8(utf8Path));
}

void say(std::ostream& err, const std::string& line)
{
    err << kProgram << ": " << oneLine(line) << '\n';
}

/// One command on one document.
class Command {
public:
    Command(const CommandLine& line, const Options& options, std::ostream& out, std::ostream& err,
            bool terminal)
        : line_(line), options_(options), out_(out), err_(err), terminal_(terminal)
    {
    }

    int run()
    {
        if (line_.isShaderData())
            return showSettings();
        interruption_.emplace();
        if (line_.isConvert())
            return convertTo();
        if (line_.isExport())
            refuseBadOutput();
        TemporaryBitmaps bitmaps(options_.keep);
        LoadedDocument loaded = loadDocument(
            {options_.document, options_.configuration, terminal_ ? &err_ : nullptr, options_.keep});
        if (line_.isExport() && loaded.outcome == Outcome::kModel)
            return exportTo(loaded);
        std::ostringstream report;
        if (line_.isMaterials() && loaded.outcome == Outcome::kModel)
            writeMaterials(loaded, report);
        bitmaps.remove();
        loaded.configuration.reset();
        // There is nothing left to clean up: from here on an interrupt may end the process at once.
        interruption_.reset();
        if (loaded.outcome != Outcome::kModel)
            return reportFailure(loaded);
        writeResult(loaded, report.str());
        return finish();
    }

private:
    // Without a model, and with the system's own way to end on an interrupt: nothing asks for cancelling
    // while settings are read.
    int showSettings()
    {
        const StoredSettings settings = readSettings(options_.document);
        if (!settings.data) {
            say(err_, settings.failure);
            return kNoModel;
        }
        (options_.json ? writeShaderDataJson : writeShaderDataText)(*settings.data, settings.views, out_);
        return finish();
    }

    // Found out before a long load, not after it.
    void refuseBadOutput()
    {
        std::error_code failed;
        if (std::filesystem::equivalent(nativePath(options_.document), output(), failed))
            throw BadUsage("the file to write is the document itself");
        refuseUnwritable();
    }

    void refuseUnwritable()
    {
        // Another file than was asked for would be written.
        if (platform::toUtf8(platform::fromUtf8(options_.output)) != options_.output)
            refuseOutput("its path is not UTF-8");
        const std::string obstacle = whyNotWritable(output());
        if (!obstacle.empty())
            refuseOutput(obstacle);
    }

    int convertTo()
    {
        refuseUnwritable();
        // Asked before: the document may be what is written over.
        const bool losesSettings = isJsonTarget(options_.output) && hasStoredSettings(options_.document);
        const std::string failure = convert(
            {options_.document, options_.output, options_.configuration, terminal_ ? &err_ : nullptr});
        if (!failure.empty()) {
            say(err_, failure);
            return kNoModel;
        }
        if (losesSettings)
            say(err_, "settings that are stored in the document are not part of the JSON");
        return kModelLoaded;
    }

    std::string output() const { return nativePath(options_.output); }

    [[noreturn]] void refuseOutput(const std::string& why)
    {
        throw std::runtime_error(options_.output + ": the file cannot be written (" + why + ")");
    }

    int reportFailure(const LoadedDocument& loaded)
    {
        if (line_.isInfo() && loaded.outcome != Outcome::kCancelled)
            writeInfo(loaded);
        out_.flush();
        say(err_, failureLine(options_.document, loaded));
        return kNoModel;
    }

    void writeInfo(const LoadedDocument& loaded)
    {
        if (options_.json)
            writeInfoJson(loaded, out_);
        else
            writeInfoText(options_.document, loaded, out_);
    }

    // Looking for images and decoding them takes its time, and temporary bitmaps have to stay so long.
    void writeMaterials(LoadedDocument& loaded, std::ostream& out)
    {
        ImageSearch images(options_.document, std::move(loaded.searches));
        (options_.json ? writeMaterialsJson : writeMaterialsText)(*loaded.model, images,
                                                                  Interruption::requested, out);
    }

    void writeResult(const LoadedDocument& loaded, const std::string& materials)
    {
        if (line_.isInfo())
            writeInfo(loaded);
        else if (line_.isTree())
            (options_.json ? writeTreeJson : writeTreeText)(*loaded.model, options_.depth, out_);
        else if (line_.isAnimation())
            (options_.json ? writeAnimationJson : writeAnimationText)(
                *loaded.model, appearanceKeysInFile(options_.document), out_);
        else
            out_ << materials;
    }

    int finish()
    {
        out_.flush();
        if (out_)
            return kModelLoaded;
        say(err_, "the results cannot be written");
        return kNoModel;
    }

    int exportTo(LoadedDocument& loaded)
    {
        ImageSearch images(options_.document, std::move(loaded.searches));
        const GltfDocument document = exportModel(*loaded.model, images, Interruption::requested);
        if (glbSize(document) > kLargestGlb)
            refuseOutput("a binary glTF file holds 4 GiB, and the model takes more");
        try {
            writeWhole(output(), [&](std::ostream& file) {
                writeGlb(document, file);
                if (Interruption::requested())
                    throw ExportCancelled();
            });
        } catch (const ExportCancelled&) {
            throw;
        } catch (const std::runtime_error& error) {
            refuseOutput(error.what());
        }
        sayWhatIsMissing(document.notes);
        sayWhichImagesAreMissing(document.notes);
        return kModelLoaded;
    }

    void sayIfAny(long long count, const char* what, const char* why)
    {
        if (count > 0)
            say(err_, counted(count, what) + " left out: " + why);
    }

    void sayWhichImagesAreMissing(const ExportNotes& notes)
    {
        sayIfAny(notes.imagesMissing, "image", "not found; \"materials\" tells where they were looked for");
        sayIfAny(notes.imagesUnreadable, "image", "files that cannot be read as images");
        sayIfAny(notes.imagesEmbedded, "image", "inside the document itself, neither PNG nor common JPEG");
        sayIfAny(notes.texturesWithoutPlace, "texture", "surfaces without texture coordinates");
        sayIfAny(notes.decalsWithoutPlace, "decal", "no placement that could be used");
        sayIfAny(notes.decalsBesideFaces, "decal", "beside their faces");
    }

    void sayWhatIsMissing(const ExportNotes& notes)
    {
        if (notes.trianglesWithoutPlace > 0)
            say(err_, counted(notes.trianglesWithoutPlace, "triangle") +
                          " left out: coordinates that are no finite numbers");
        if (notes.instancesWithoutPlace > 0)
            say(err_, counted(notes.instancesWithoutPlace, "instance") +
                          " left without a mesh: placements that are no finite numbers");
        if (notes.lightsWithoutPlace > 0)
            say(err_, counted(notes.lightsWithoutPlace, "light") +
                          " left out: places that are no finite numbers");
        if (notes.lightsOfOtherTypes > 0)
            say(err_, counted(notes.lightsOfOtherTypes, "light") + " left out: glTF has no such type");
        if (notes.placementKeysLeftOut > 0)
            say(err_, counted(notes.placementKeysLeftOut, "placement key") +
                          " left out: sheared, no finite numbers, or at the time of another");
    }

    const CommandLine& line_;
    const Options& options_;
    std::ostream& out_;
    std::ostream& err_;
    const bool terminal_;
    std::optional<Interruption> interruption_;
};

int runParsed(CommandLine& line, const Options& options, std::ostream& out, std::ostream& err,
              bool terminal)
{
    try {
        provideTemporaryFolder();
        return Command(line, options, out, err, terminal).run();
    } catch (const std::bad_alloc&) {
        say(err, "there is not enough memory");
    } catch (const BadUsage&) {
        throw;
    } catch (const std::exception& error) {
        say(err, error.what());
    }
    return kNoModel;
}

int refuse(CommandLine& line, const std::string& why, std::ostream& err)
{
    say(err, why);
    err << '\n' << line.app().help();
    return kBadUsage;
}

}  // namespace

int run(int argumentCount, const char* const* arguments, std::ostream& out, std::ostream& err,
        bool terminal)
{
    CommandLine line;
    try {
        const Options& options = line.parse(argumentCount, arguments);
        return runParsed(line, options, out, err, terminal);
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() != 0)
            return refuse(line, line.whyRefused(error), err);
        return line.app().exit(error, out, err);
    } catch (const BadUsage& error) {
        return refuse(line, error.what(), err);
    }
}

}  // namespace tool
