#include "tools/InfoReport.h"

#include <set>
#include <vector>

#include "tools/Values.h"

namespace tool {
namespace {

void addBody(const dlBody& body, Counts& counts)
{
    counts.faces += body.faceCount;
    for (std::int32_t i = 0; body.faces && i < body.faceCount; ++i) {
        counts.vertices += body.faces[i].vertexCount;
        counts.triangles += body.faces[i].triangleCount;
    }
}

void addModel(dlModel& model, Json& json)
{
    const Counts counts = countsOf(model);
    json["modelName"] = utf8(model.modelName);
    json["isPartDocument"] = model.isPartDocument;
    json["documentVersion"] = model.documentVersion;
    json["versionGatePassed"] = model.versionGatePassed;
    json["partCount"] = counts.parts;
    json["instanceCount"] = model.instanceCount;
    json["bodyCount"] = counts.bodies;
    json["faceCount"] = counts.faces;
    json["vertexCount"] = counts.vertices;
    json["triangleCount"] = counts.triangles;
    json["lightCount"] = model.lightCount;
    json["singletonCount"] = model.singletonCount;
    json["bbox"] = boxValue(model.bbox);
}

// The same fields as with a model, so that nobody has to ask which are there.
void addNoModel(Json& json)
{
    dlModel none;
    addModel(none, json);
    for (auto& field : json.items())
        if (field.key() != "outcome")
            field.value() = nullptr;
}

void writeRow(const char* title, const std::string& value, std::ostream& out)
{
    out << title << std::string(16 - std::char_traits<char>::length(title), ' ') << value << '\n';
}

std::string versionText(const dlModel& model)
{
    return std::to_string(model.documentVersion) +
           (model.versionGatePassed ? "" : " (before the oldest version with current data)");
}

void writeBox(dlBBox box, std::ostream& out)
{
    if (!box.isSet()) {
        writeRow("box", "unset", out);
        return;
    }
    writeRow("box from", vectorText(box.min) + " m", out);
    writeRow("box to", vectorText(box.max) + " m", out);
}

void writeCounts(dlModel& model, std::ostream& out)
{
    const Counts counts = countsOf(model);
    writeRow("parts", std::to_string(counts.parts), out);
    writeRow("used once", std::to_string(model.singletonCount), out);
    writeRow("instances", std::to_string(model.instanceCount), out);
    writeRow("bodies", std::to_string(counts.bodies), out);
    writeRow("faces", std::to_string(counts.faces), out);
    writeRow("vertices", std::to_string(counts.vertices), out);
    writeRow("triangles", std::to_string(counts.triangles), out);
    writeRow("lights", std::to_string(model.lightCount), out);
}

void writeModel(dlModel& model, std::ostream& out)
{
    writeRow("name", oneLine(utf8(model.modelName)), out);
    writeRow("kind", model.isPartDocument ? "part" : "assembly", out);
    writeRow("version", versionText(model), out);
    writeCounts(model, out);
    writeBox(model.bbox, out);
}

}  // namespace

Counts countsOf(dlModel& model)
{
    std::vector<dlPart*> found;
    model.getAllDLParts(found);
    const std::set<dlPart*> parts(found.begin(), found.end());
    Counts counts;
    counts.parts = static_cast<long long>(parts.size());
    for (const dlPart* part : parts) {
        counts.bodies += part->bodyCount;
        for (std::int32_t i = 0; part->bodies && i < part->bodyCount; ++i)
            addBody(part->bodies[i], counts);
    }
    return counts;
}

void writeInfoText(const std::string& document, const LoadedDocument& loaded, std::ostream& out)
{
    writeRow("document", oneLine(document), out);
    writeRow("outcome", outcomeName(loaded.outcome), out);
    if (!loaded.reason.empty())
        writeRow("reason", loaded.reason, out);
    if (loaded.outcome == Outcome::kModel)
        writeModel(*loaded.model, out);
    writeRow("load time", std::to_string(loaded.seconds) + " s", out);
}

void writeInfoJson(const LoadedDocument& loaded, std::ostream& out)
{
    Json json;
    json["outcome"] = outcomeName(loaded.outcome);
    if (loaded.model)
        addModel(*loaded.model, json);
    else
        addNoModel(json);
    json["loadSeconds"] = doubleValue(loaded.seconds);
    if (!loaded.reason.empty())
        json["reason"] = loaded.reason;
    out << json.dump(2) << '\n';
}

}  // namespace tool
