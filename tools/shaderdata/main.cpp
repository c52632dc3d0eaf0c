// write-shaderdata: puts settings into a document, for tests and samples. It is no part of the library,
// which only reads documents, and is not installed.
#include <CLI/CLI.hpp>
#include <fstream>
#include <iostream>
#include <sstream>
#include <stdexcept>

#include "tools/shaderdata/Settings.h"
#include "tools/shaderdata/SettingsDocument.h"

namespace {

struct Arguments {
    std::string document;
    std::string json;
    std::string stream;
    std::uint32_t masks = 0;
    std::uint32_t channels = 8;
    std::uint32_t tags = 4;
    bool asStored = false;
};

void declare(CLI::App& app, Arguments& arguments)
{
    app.add_option("DOC", arguments.document, "Compound file; made if it is missing")->required();
    auto* const json = app.add_option("--json", arguments.json, "Settings as JSON");
    auto* const stream =
        app.add_option("--stream", arguments.stream, "A stream's bytes, written as they are");
    auto* const masks = app.add_option("--masks", arguments.masks, "That many made-up mask materials");
    app.add_option("--channels", arguments.channels, "Channels of each of those")->needs(masks);
    app.add_option("--tags", arguments.tags, "Tags of each of those")->needs(masks);
    app.add_flag("--as-stored", arguments.asStored,
                 "Store views as the library does, which does not read back");
    json->excludes(stream)->excludes(masks);
    stream->excludes(masks);
}

std::string contentOf(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    std::ostringstream content;
    content << file.rdbuf();
    if (!file)
        throw std::runtime_error("cannot read " + path);
    return content.str();
}

std::string bytesOf(const Arguments& arguments)
{
    if (!arguments.stream.empty())
        return contentOf(arguments.stream);
    const auto settings = arguments.json.empty() ? shaderdata::generatedSettings(
                                                       arguments.masks, arguments.channels, arguments.tags)
                                                 : shaderdata::settingsFromJson(contentOf(arguments.json));
    return settings->bytes(arguments.asStored);
}

}  // namespace

int main(int count, char** words)
{
    CLI::App app("Puts settings into a document");
    Arguments arguments;
    declare(app, arguments);
    try {
        app.parse(count, words);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? 0 : 2;
    }
    try {
        shaderdata::putSettings(arguments.document, bytesOf(arguments));
        return 0;
    } catch (const std::exception& error) {
        std::cerr << "write-shaderdata: " << arguments.document << ": " << error.what() << "\n";
        return 1;
    }
}
