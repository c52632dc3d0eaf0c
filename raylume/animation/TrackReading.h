// What all track readers share: the walk over a list of elements, and the state of one side file.
#pragma once

#include <algorithm>
#include <cstdint>
#include <deque>
#include <map>
#include <utility>

#include "raylume/animation/AttributeValues.h"
#include "raylume/animation/XmlDocument.h"
#include "raylume/scene/dlAnimation.h"

/// Counts down, and raises kErrorOutOfMemory at the first that is too much.
class Allowance {
public:
    explicit Allowance(std::uint64_t count) : left_(count) {}

    void take()
    {
        if (left_ == 0) {
            throw platform::ComError(platform::kErrorOutOfMemory);
        }
        --left_;
    }

private:
    std::uint64_t left_;
};

/// Keys by the identity of their elements. Elements below several components are met once for each
/// of them; converting their texts every time would take most of the reading.
template <class Key>
class KeyCache {
public:
    struct Entry {
        std::uint64_t identity;
        double time;
        Key key;
    };

    /// The entry of an element, or null.
    const Entry* find(std::uint64_t identity)
    {
        if (identity == 0 || entries_.empty()) {
            return nullptr;
        }
        // Neighbours are asked for one after the other.
        if (next_ >= entries_.size() || entries_[next_].identity != identity) {
            const auto found =
                std::lower_bound(entries_.begin(), entries_.end(), identity,
                                 [](const Entry& entry, std::uint64_t id) { return entry.identity < id; });
            next_ = static_cast<std::size_t>(found - entries_.begin());
        }
        if (next_ >= entries_.size() || entries_[next_].identity != identity) {
            return nullptr;
        }
        return &entries_[next_++];
    }

    /// Elements are met first in document order; one that is not is left out.
    void add(std::uint64_t identity, double time, const Key& key)
    {
        if (identity != 0 && (entries_.empty() || entries_.back().identity < identity)) {
            entries_.push_back({identity, time, key});
        }
    }

private:
    std::deque<Entry> entries_;  // A vector would stand in memory twice while it grows.
    std::size_t next_ = 0;
};

/// The state of reading one side file of `fileSize` bytes.
struct SideFileReading {
    explicit SideFileReading(std::uint64_t fileSize)
        : trackElements(kFree + fileSize / 8), containers(kFree + fileSize)
    {
    }

    static constexpr std::uint64_t kFree = 65536;

    AttributeReader values;
    /// Elements that become keys, each counted as often as it does: without a limit, a few megabytes of
    /// nested components ask for gigabytes.
    Allowance trackElements;
    /// Components, viewports and lights, for the same reason: nested animations repeat them.
    Allowance containers;
    /// The elements of the component under way are going to be met again. Set anew for each component,
    /// before its tracks are read.
    bool keepsKeys = false;
    KeyCache<dlVisualTransformKey> visualTransforms;
    KeyCache<dlTransformKey> transforms;
    KeyCache<dlVisualStateKey> visualStates;
};

/// The element behind a node. Null for a node that is none, and for no node; other refusals raise.
XmlPointer<XmlElement> elementOf(const XmlPointer<XmlNode>& node);

/// The descendants of one name; null when there is no list.
XmlPointer<XmlNodeList> listOf(XmlElement& element, const XmlName& name);

/// The length of a list. 0 for none.
std::int32_t lengthOf(const XmlPointer<XmlNodeList>& list);

/// Visits the elements of a list by index, up to the length that it has by then: a live list may grow or
/// shrink on the way. Gives the length that it had at the start, in which items that are no elements count.
template <class Visit>
std::int32_t forEachElement(const XmlPointer<XmlNodeList>& list, Visit visit)
{
    const std::int32_t atStart = lengthOf(list);
    std::int32_t length = atStart;
    for (std::int32_t i = 0; i < length; ++i) {
        XmlPointer<XmlNode> node;
        raiseXmlFailure(list->item(i, node));
        if (const XmlPointer<XmlElement> element = elementOf(node)) {
            visit(*element);
        }
        length = lengthOf(list);
    }
    return atStart;
}

/// Puts a key into a track; a later key of the same time replaces all of the earlier one. Files are
/// mostly in order of time.
template <class Key>
void fileKey(SideFileReading& reading, std::map<double, Key>& track, double time, const Key& key)
{
    reading.trackElements.take();
    track.insert_or_assign(track.end(), time, key);
}
