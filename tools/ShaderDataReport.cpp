#include "tools/ShaderDataReport.h"

#include <algorithm>
#include <limits>
#include <list>
#include <string>
#include <vector>

#include "tools/Values.h"

namespace tool {
namespace {

constexpr float kUnset = -100000000.0f;
constexpr float kUnsetFocalLength = std::numeric_limits<float>::lowest();

struct Field {
    const char* name;
    std::uint32_t since;  ///< The first version of the stream that has it.
    Json value;
    bool isText = false;
};
using Fields = std::vector<Field>;

Field text(const char* name, std::uint32_t since, const std::string& value)
{
    return {name, since, utf8(value), true};
}

// Exactly the value that stands for no value: hosts compare with it too.
Json unlessUnset(float value, float unset = kUnset)
{
    return value == unset ? Json("unset") : floatValue(value);
}

Fields fieldsOf(const RLMaskMaterial& mask)
{
    return {text("maskName", 0, mask.getMaskName()),
            text("maskType", 0, mask.getMaskType()),
            text("maskPTag", 0, mask.getMaskPTag()),
            text("materialName", 0, mask.getMaterialName()),
            {"diffuseColor", 0, floatValues(mask.getDiffuseColor(), 4)},
            {"materialAtRoot", 0, mask.getMaterialAtRoot()}};
}

Fields fieldsOf(const RLEnvironmentMaterial& environment)
{
    return {{"whiteLevel", 8, unlessUnset(environment.getWhiteLevel())},
            {"clamp", 8, environment.getClamp()},
            {"gamma", 8, unlessUnset(environment.getGamma())},
            {"bloom", 8, environment.getBloom()},
            {"bloomThr", 8, unlessUnset(environment.getBloomThr())},
            {"bloomRad", 8, unlessUnset(environment.getBloomRad())},
            {"toneAmt", 8, unlessUnset(environment.getToneAmt())}};
}

Fields fieldsOf(const RLCameraData& camera)
{
    return {{"rotation", 3, floatValues(camera.getRotation(), 3)},
            {"translation", 3, floatValues(camera.getTranslation(), 3)},
            {"target", 3, floatValue(camera.getTarget())},
            {"focalLength", 4, unlessUnset(camera.getFocalLength(), kUnsetFocalLength)},
            {"projType", 4, camera.getProjType()},
            {"focusDist", 8, unlessUnset(camera.getFocusDist())},
            {"fStop", 8, unlessUnset(camera.getFStop())},
            {"frameWidth", 8, camera.getFrameWidth()},
            {"frameHeight", 8, camera.getFrameHeight()},
            {"RDOF", 8, camera.getRDOF()},
            text("previewRenderQuality", 8, camera.getPreviewRenderQuality()),
            text("fullRenderQuality", 8, camera.getFullRenderQuality()),
            text("imageFormat", 9, camera.getImageFormat())};
}

Fields fieldsOf(const RLSceneData& scene)
{
    return {text("environmentImage", 5, scene.getEnvironmentImage()),
            {"envVisibility", 5, scene.getEnvVisibility()},
            text("backPlateImage", 5, scene.getBackPlateImage()),
            {"bkplVisibility", 5, scene.getBkplVisibility()},
            text("floor", 7, scene.getFloor()),
            {"floorFlip", 7, scene.getFloorFlip()},
            {"floorVisibility", 7, scene.getFloorVisibility()},
            text("floorType", 10, scene.getFloorType())};
}

// ------------------------------------------------------------------------------------------- people

std::string quoted(const std::string& value)
{
    return '"' + oneLine(value) + '"';
}

std::string valueText(const Json& value)
{
    if (value.is_boolean())
        return value.get<bool>() ? "yes" : "no";
    if (value.is_string())
        return value.get<std::string>();
    return value.is_number_float() ? doubleText(value.get<double>()) : value.dump();
}

std::string valueText(const Field& field)
{
    if (field.isText)
        return quoted(field.value.get<std::string>());
    if (!field.value.is_array())
        return valueText(field.value);
    std::string line;
    for (const Json& element : field.value)
        line += (line.empty() ? "" : " ") + valueText(element);
    return line;
}

class TextReport {
public:
    TextReport(std::uint32_t version, std::ostream& out) : version_(version), out_(out) {}

    void write(const RLData& data)
    {
        out_ << "version: " << version_ << '\n';
        out_ << "mask materials: " << data.getMaskMaterials().size() << '\n';
        std::size_t number = 0;
        for (const RLMaskMaterial& mask : data.getMaskMaterials())
            writeMask(++number, mask);
        writeEnvironment(data.getEnvironmentMaterial());
        writeRecord("camera", data.getCameraData());
        writeRecord("scene", data.getSceneData());
    }

    void write(const ViewsFolder& views)
    {
        out_ << "custom views: " << views.files.size() << " in " << oneLine(views.path) << '\n';
        for (const std::string& file : views.files)
            out_ << "  " << oneLine(file) << '\n';
    }

private:
    bool has(std::uint32_t since) const { return version_ >= since; }

    void writeMask(std::size_t number, const RLMaskMaterial& mask)
    {
        const std::string indent(4, ' ');
        out_ << "  " << number << ".\n";
        writeFields(fieldsOf(mask), indent);
        if (!has(1))
            return;
        writeLines("channels", mask.getFloatChannels(), indent, [](const RLFloatChannel& channel) {
            return quoted(utf8(channel.getChannelName())) + " " + floatText(channel.getFloatVal());
        });
        writeTags(mask.getStringTags(), indent);
    }

    void writeEnvironment(const RLEnvironmentMaterial& environment)
    {
        const std::string indent(2, ' ');
        out_ << "environment\n";
        writeFields({text("environmentName", 0, environment.getEnvironmentName())}, indent);
        if (has(2))
            writeTags(environment.getStringTags(), indent);
        writeFields(fieldsOf(environment), indent);
    }

    template <class Record>
    void writeRecord(const char* title, const Record* record)
    {
        out_ << title << (record ? "\n" : ": none\n");
        if (record)
            writeFields(fieldsOf(*record), "  ");
    }

    void writeFields(const Fields& fields, const std::string& indent)
    {
        constexpr std::size_t kColumn = 22;
        for (const Field& field : fields) {
            if (!has(field.since))
                continue;
            std::string name = field.name;
            name.resize(kColumn, ' ');
            out_ << indent << name << valueText(field) << '\n';
        }
    }

    void writeTags(const std::list<RLStringTag>& tags, const std::string& indent)
    {
        writeLines("tags", tags, indent, [](const RLStringTag& tag) {
            return std::to_string(tag.getTagID()) + " " + quoted(utf8(tag.getTag()));
        });
    }

    template <class Element, class Line>
    void writeLines(const char* title, const std::list<Element>& elements, const std::string& indent,
                    Line line)
    {
        out_ << indent << title << ": " << elements.size() << '\n';
        for (const Element& element : elements)
            out_ << indent << "  " << line(element) << '\n';
    }

    const std::uint32_t version_;
    std::ostream& out_;
};

// ----------------------------------------------------------------------------------------- programs

/// An object that is written member by member.
class JsonObject {
public:
    JsonObject(std::ostream& out, std::size_t depth) : out_(out), depth_(depth) { out_ << '{'; }

    void add(const char* name, const Json& value) { start(name) << value.dump(); }
    void add(const Fields& fields)
    {
        for (const Field& field : fields)
            add(field.name, field.value);
    }
    template <class Element, class Write>
    void addList(const char* name, const std::list<Element>& elements, Write write)
    {
        start(name) << '[';
        for (const Element& element : elements) {
            out_ << (&element == &elements.front() ? "" : ",");
            newLine(depth_ + 2);
            write(element);
        }
        if (!elements.empty())
            newLine(depth_ + 1);
        out_ << ']';
    }
    std::ostream& start(const char* name)
    {
        out_ << (empty_ ? "" : ",");
        empty_ = false;
        newLine(depth_ + 1);
        return out_ << '"' << name << "\": ";
    }
    void end()
    {
        newLine(depth_);
        out_ << '}';
    }

private:
    void newLine(std::size_t depth) { out_ << '\n' << std::string(2 * depth, ' '); }

    std::ostream& out_;
    const std::size_t depth_;
    bool empty_ = true;
};

void addTags(const std::list<RLStringTag>& tags, JsonObject& object, std::ostream& out)
{
    object.addList("stringTags", tags, [&out](const RLStringTag& tag) {
        out << Json{{"tagID", tag.getTagID()}, {"tag", utf8(tag.getTag())}}.dump();
    });
}

void writeMaskJson(const RLMaskMaterial& mask, std::ostream& out)
{
    JsonObject object(out, 2);
    object.add(fieldsOf(mask));
    object.add("advMaterialIsSet", mask.getAdvMaterialIsSet());
    object.addList("floatChannels", mask.getFloatChannels(), [&out](const RLFloatChannel& channel) {
        out << Json{{"channelName", utf8(channel.getChannelName())},
                    {"floatVal", floatValue(channel.getFloatVal())}}
                   .dump();
    });
    addTags(mask.getStringTags(), object, out);
    object.end();
}

void writeEnvironmentJson(const RLEnvironmentMaterial& environment, std::ostream& out)
{
    JsonObject object(out, 1);
    object.add("environmentName", utf8(environment.getEnvironmentName()));
    addTags(environment.getStringTags(), object, out);
    object.add(fieldsOf(environment));
    object.end();
}

template <class Record>
void writeRecordJson(const Record* record, std::ostream& out)
{
    if (!record) {
        out << "null";
        return;
    }
    JsonObject object(out, 1);
    object.add(fieldsOf(*record));
    object.end();
}

Json viewsJson(const std::optional<ViewsFolder>& views)
{
    return views ? Json{{"folder", views->path}, {"files", views->files}} : Json();
}

}  // namespace

void writeShaderDataText(const RLData& data, const std::optional<ViewsFolder>& views, std::ostream& out)
{
    TextReport report(data.getStorageVersion(), out);
    report.write(data);
    if (views)
        report.write(*views);
}

void writeShaderDataJson(const RLData& data, const std::optional<ViewsFolder>& views, std::ostream& out)
{
    JsonObject root(out, 0);
    root.add("storageVersion", data.getStorageVersion());
    root.addList("maskMaterials", data.getMaskMaterials(),
                 [&out](const RLMaskMaterial& mask) { writeMaskJson(mask, out); });
    writeEnvironmentJson(data.getEnvironmentMaterial(), root.start("environmentMaterial"));
    writeRecordJson(data.getCameraData(), root.start("cameraData"));
    writeRecordJson(data.getSceneData(), root.start("sceneData"));
    root.add("customViews", viewsJson(views));
    root.end();
    out << '\n';
}

}  // namespace tool
