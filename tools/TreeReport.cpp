#include "tools/TreeReport.h"

#include <algorithm>
#include <string>
#include <unordered_map>
#include <vector>

#include "tools/ComponentOrder.h"
#include "tools/Values.h"

namespace tool {
namespace {

constexpr std::size_t kDeepestIndent = 40;

/// A node whose components are being written.
struct Level {
    const dlAssemblyNode* node;
    std::vector<Component> components;
    std::size_t next = 0;
};

/// Walks the tree with a list of its own in place of recursion: a tree can be deeper than the
/// stack.
class TreeWalk {
public:
    TreeWalk(const dlModel& model, DepthLimit limit) : order_(model), limit_(limit) {}
    virtual ~TreeWalk() = default;

    void run(const dlAssemblyNode& root)
    {
        enter(root, nullptr);
        while (!levels_.empty()) {
            Level& level = levels_.back();
            if (level.next < level.components.size()) {
                const Component component = level.components[level.next++];
                if (component.instance)
                    instance(*component.instance, depth());
                else
                    enter(*component.node, component.token);
                continue;
            }
            levels_.pop_back();
            leave(depth());
        }
    }

protected:
    /// `token` is null for the root. A cut node's components are not shown.
    virtual void node(const dlAssemblyNode& node, const std::string* token, std::size_t depth,
                      bool cut) = 0;
    virtual void instance(const dlInstance& instance, std::size_t depth) = 0;
    virtual void leave(std::size_t depth) = 0;

    const ComponentOrder& order() const { return order_; }

private:
    std::size_t depth() const { return levels_.size(); }

    void enter(const dlAssemblyNode& entered, const std::string* token)
    {
        const bool cut = limit_ && depth() >= static_cast<std::size_t>(*limit_) && entered.subtreeCount > 0;
        node(entered, token, depth(), cut);
        levels_.push_back({&entered, cut ? std::vector<Component>() : order_.below(entered), 0});
    }

    const ComponentOrder order_;
    const DepthLimit limit_;
    std::vector<Level> levels_;
};

class TreeText : public TreeWalk {
public:
    TreeText(const dlModel& model, DepthLimit limit, std::ostream& out)
        : TreeWalk(model, limit), model_(model), out_(out)
    {
    }

protected:
    void node(const dlAssemblyNode& node, const std::string* token, std::size_t depth, bool cut) override
    {
        indent(depth);
        out_ << shown(token ? *token : rootTitle(node));
        out_ << "  (" << counted(node.subtreeCount, "instance");
        if (cut)
            out_ << subassemblies(node.children.size()) << ", not shown";
        out_ << ")\n";
    }
    void instance(const dlInstance& instance, std::size_t depth) override
    {
        indent(depth);
        out_ << shown(instance.leafName);
        if (instance.part)
            out_ << "  part \"" << shown(instance.part->name) << '"';
        if (!instance.configName.empty())
            out_ << "  configuration \"" << shown(instance.configName) << '"';
        out_ << (instance.visible == 0 ? "  hidden" : "") << '\n';
    }
    void leave(std::size_t) override {}

private:
    static std::string subassemblies(std::size_t count)
    {
        if (count == 0)
            return "";
        return ", " + std::to_string(count) + (count == 1 ? " subassembly" : " subassemblies");
    }
    static std::string shown(const std::string& text) { return oneLine(utf8(text)); }

    const std::string& rootTitle(const dlAssemblyNode& root) const
    {
        return root.name.empty() ? model_.modelName : root.name;
    }
    void indent(std::size_t depth)
    {
        out_ << std::string(2 * std::min(depth, kDeepestIndent), ' ');
        if (depth > kDeepestIndent)
            out_ << "[level " << depth << "] ";
    }

    const dlModel& model_;
    std::ostream& out_;
};

class TreeJson : public TreeWalk {
public:
    TreeJson(const dlModel& model, DepthLimit limit, std::ostream& out) : TreeWalk(model, limit), out_(out)
    {
    }

protected:
    void node(const dlAssemblyNode& node, const std::string* token, std::size_t depth, bool cut) override
    {
        startElement(depth);
        Json json;
        json["kind"] = token ? "subassembly" : "root";
        if (token)
            json["token"] = utf8(*token);
        json["name"] = utf8(node.name);
        json["path"] = utf8(node.path);
        json["instanceCount"] = node.instanceCount;
        json["subtreeCount"] = node.subtreeCount;
        json["childCount"] = node.children.size();
        json["cut"] = cut;
        std::string text = json.dump();
        text.back() = ',';
        out_ << text << "\"components\":[";
        firstInLevel_.push_back(true);
    }
    void instance(const dlInstance& instance, std::size_t depth) override
    {
        startElement(depth);
        Json json;
        json["kind"] = "instance";
        json["token"] = utf8(instance.leafName);
        json["path"] = utf8(instance.name);
        json["part"] = instance.part ? Json(utf8(instance.part->name)) : Json();
        json["partShortName"] = instance.part ? Json(utf8(instance.part->shortName)) : Json();
        json["configName"] = utf8(instance.configName);
        json["visible"] = instance.visible;
        json["hidden"] = instance.visible == 0;
        out_ << json.dump();
    }
    void leave(std::size_t depth) override
    {
        const bool empty = firstInLevel_.back();
        firstInLevel_.pop_back();
        if (!empty)
            newLine(depth);
        out_ << "]}";
    }

private:
    void startElement(std::size_t depth)
    {
        if (firstInLevel_.empty())
            return;
        out_ << (firstInLevel_.back() ? "" : ",");
        firstInLevel_.back() = false;
        newLine(depth);
    }
    void newLine(std::size_t depth)
    {
        out_ << '\n' << std::string(2 * std::min(depth, kDeepestIndent), ' ');
    }

    std::ostream& out_;
    std::vector<bool> firstInLevel_;
};

}  // namespace

void writeTreeText(const dlModel& model, DepthLimit limit, std::ostream& out)
{
    if (model.assemblyRoot)
        TreeText(model, limit, out).run(*model.assemblyRoot);
}

void writeTreeJson(const dlModel& model, DepthLimit limit, std::ostream& out)
{
    if (model.assemblyRoot)
        TreeJson(model, limit, out).run(*model.assemblyRoot);
    else
        out << "null";
    out << '\n';
}

}  // namespace tool
