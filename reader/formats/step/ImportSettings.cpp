#include "reader/formats/step/ImportSettings.h"

#include <cmath>
#include <mutex>
#include <optional>

#include "raylume/platform/ChildProcess.h"
#include "raylume/platform/Environment.h"
#include "raylume/platform/Text.h"
#include "reader/formats/step/ImportProtocol.h"

namespace ovdl {
namespace step {
namespace {

struct Settings {
    std::mutex mutex;
    std::optional<ImportLimits> limits;
    std::optional<Tessellation> tessellation;
    std::wstring program;
};

Settings& settings()
{
    static Settings instance;
    return instance;
}

bool isSensible(const Tessellation& tessellation)
{
    // Finer than that the mesher fails, or never ends.
    return tessellation.deflection >= 1e-9 && tessellation.deflection <= 1 &&
           tessellation.degrees >= 0.01 && tessellation.degrees <= 180;
}

std::optional<double> numberIn(const char* variable)
{
    const auto text = platform::environmentVariable(variable);
    const auto number = text ? doubleOf(platform::toUtf8(*text)) : std::nullopt;
    return number && *number >= 0 ? number : std::nullopt;
}

// Half of what the type holds is more than there is anywhere.
std::uint64_t bytesIn(const char* variable, std::uint64_t otherwise)
{
    constexpr double kMost = 8e12;
    const auto number = numberIn(variable);
    if (!number || *number > kMost)
        return otherwise;
    // Only 0 itself is no limit.
    return static_cast<std::uint64_t>(std::ceil(*number * 1048576));
}

ImportLimits limitsOfEnvironment()
{
    const ImportLimits defaults;
    return {numberIn("RAYLUME_IMPORT_SECONDS").value_or(defaults.seconds),
            bytesIn("RAYLUME_IMPORT_MEGABYTES", defaults.memoryBytes),
            bytesIn("RAYLUME_IMPORT_OUTPUT_MEGABYTES", defaults.outputBytes)};
}

Tessellation tessellationOfEnvironment()
{
    const std::string text =
        platform::toUtf8(platform::environmentVariable("RAYLUME_TESSELLATION").value_or(std::wstring()));
    const std::size_t comma = text.find(',');
    if (comma == std::string::npos)
        return {};
    const auto deflection = doubleOf(std::string_view(text).substr(0, comma));
    const auto degrees = doubleOf(std::string_view(text).substr(comma + 1));
    const Tessellation wanted{deflection.value_or(0), degrees.value_or(0)};
    return isSensible(wanted) ? wanted : Tessellation{};
}

// Somewhere in this library.
void anchor()
{
}

}  // namespace

ImportLimits currentLimits()
{
    const std::lock_guard lock(settings().mutex);
    return settings().limits ? *settings().limits : limitsOfEnvironment();
}

Tessellation currentTessellation()
{
    const std::lock_guard lock(settings().mutex);
    return settings().tessellation ? *settings().tessellation : tessellationOfEnvironment();
}

std::wstring importProgram()
{
    const std::lock_guard lock(settings().mutex);
    if (!settings().program.empty())
        return settings().program;
    static const std::wstring folder = platform::folderOfCode(reinterpret_cast<const void*>(&anchor));
    return folder.empty() ? std::wstring() : folder + L"ovdl-import";
}

void setImportProgram(const std::wstring& path)
{
    const std::lock_guard lock(settings().mutex);
    settings().program = path;
}

}  // namespace step

void setImportLimits(const ImportLimits& limits)
{
    const std::lock_guard lock(step::settings().mutex);
    step::settings().limits = limits;
    if (!std::isfinite(limits.seconds))
        step::settings().limits->seconds = 0;
}

bool setTessellation(const Tessellation& tessellation)
{
    if (!step::isSensible(tessellation))
        return false;
    const std::lock_guard lock(step::settings().mutex);
    step::settings().tessellation = tessellation;
    return true;
}

}  // namespace ovdl
