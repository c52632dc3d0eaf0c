// Tables of the fields that appearance records compare, and the checks that are run over them.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "raylume/scene/dlDecal.h"

/// One float of a record.
template <class Record>
struct FloatField {
    const char* name;
    std::function<float&(Record&)> at;
};

template <class Record>
void PrintTo(const FloatField<Record>& row, std::ostream* out)
{
    *out << row.name;
}

/// One step of an order: `part` writes both records so that this step alone puts `low` before `high`.
template <class Record>
struct OrderStep {
    const char* name;
    std::function<void(Record& low, Record& high)> part;
};

template <class Record>
void PrintTo(const OrderStep<Record>& row, std::ostream* out)
{
    *out << row.name;
}

/// A change of one record, and how it then compares with one that was not changed.
template <class Record>
struct CompareCase {
    const char* name;
    std::function<void(Record& changed)> change;
    bool changedFirst;
    bool unchangedFirst;
    bool same;
};

template <class Record>
void PrintTo(const CompareCase<Record>& row, std::ostream* out)
{
    *out << row.name;
}

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();
/// The float of 1e-5 lies below the double, the next float above it.
constexpr float kJustSame = 1e-5f;
inline const float kJustDifferent = std::nextafter(1e-5f, 1.0f);

inline const std::vector<FloatField<dlTexture>>& textureFloats()
{
    static const std::vector<FloatField<dlTexture>> fields{
        {"uDirection_x", [](dlTexture& t) -> float& { return t.uDirection[0]; }},
        {"uDirection_y", [](dlTexture& t) -> float& { return t.uDirection[1]; }},
        {"uDirection_z", [](dlTexture& t) -> float& { return t.uDirection[2]; }},
        {"vDirection_x", [](dlTexture& t) -> float& { return t.vDirection[0]; }},
        {"vDirection_y", [](dlTexture& t) -> float& { return t.vDirection[1]; }},
        {"vDirection_z", [](dlTexture& t) -> float& { return t.vDirection[2]; }},
        {"origin_x", [](dlTexture& t) -> float& { return t.origin[0]; }},
        {"origin_y", [](dlTexture& t) -> float& { return t.origin[1]; }},
        {"origin_z", [](dlTexture& t) -> float& { return t.origin[2]; }},
        {"scaleV", [](dlTexture& t) -> float& { return t.scaleV; }},
        {"scaleU", [](dlTexture& t) -> float& { return t.scaleU; }},
        {"angle", [](dlTexture& t) -> float& { return t.angle; }},
        {"transU", [](dlTexture& t) -> float& { return t.transU; }},
        {"transV", [](dlTexture& t) -> float& { return t.transV; }},
        {"mappingScalar", [](dlTexture& t) -> float& { return t.mappingScalar; }},
    };
    return fields;
}

/// The floats of a material in front of its texture, in comparing order.
inline const std::vector<FloatField<dlMaterial>>& frontFloats()
{
    static const std::vector<FloatField<dlMaterial>> fields{
        {"color_red", [](dlMaterial& m) -> float& { return m.color[0]; }},
        {"color_green", [](dlMaterial& m) -> float& { return m.color[1]; }},
        {"color_blue", [](dlMaterial& m) -> float& { return m.color[2]; }},
        {"ambient", [](dlMaterial& m) -> float& { return m.ambient; }},
        {"diffuse", [](dlMaterial& m) -> float& { return m.diffuse; }},
        {"specular", [](dlMaterial& m) -> float& { return m.specular; }},
        {"shininess", [](dlMaterial& m) -> float& { return m.shininess; }},
        {"transparency", [](dlMaterial& m) -> float& { return m.transparency; }},
    };
    return fields;
}

inline const std::vector<FloatField<dlMaterial>>& materialFloats()
{
    static const std::vector<FloatField<dlMaterial>> fields = [] {
        std::vector<FloatField<dlMaterial>> all = frontFloats();
        all.push_back({"emission", [](dlMaterial& m) -> float& { return m.emission; }});
        all.push_back({"rvWeight", [](dlMaterial& m) -> float& { return m.rvWeight; }});
        all.push_back({"rvLuminous", [](dlMaterial& m) -> float& { return m.rvLuminous; }});
        all.push_back({"rvLevelA", [](dlMaterial& m) -> float& { return m.rvLevelA; }});
        all.push_back({"rvLevelB", [](dlMaterial& m) -> float& { return m.rvLevelB; }});
        all.push_back({"rvUnitLevel", [](dlMaterial& m) -> float& { return m.rvUnitLevel; }});
        all.push_back({"rvLevelC", [](dlMaterial& m) -> float& { return m.rvLevelC; }});
        all.push_back({"rvLevelD", [](dlMaterial& m) -> float& { return m.rvLevelD; }});
        return all;
    }();
    return fields;
}

/// A step that raises a float of `high`.
template <class Record, class Base>
OrderStep<Record> floatStep(const FloatField<Base>& field)
{
    return {field.name, [at = field.at](Record& low, Record& high) { at(high) = at(low) + 0.25f; }};
}

template <class Record, class Base>
OrderStep<Record> floatStep(const std::vector<FloatField<Base>>& fields, const std::string& name)
{
    for (const FloatField<Base>& field : fields) {
        if (field.name == name) {
            return floatStep<Record>(field);
        }
    }
    ADD_FAILURE() << "no float named " << name;
    return {};
}

/// Every step decides alone, and against every step behind it.
template <class Record>
void expectStepsDecideInOrder(const std::vector<OrderStep<Record>>& steps)
{
    for (std::size_t i = 0; i < steps.size(); ++i) {
        Record low, high;
        steps[i].part(low, high);
        EXPECT_TRUE(low < high) << steps[i].name;
        EXPECT_FALSE(high < low) << steps[i].name;
        for (std::size_t j = i + 1; j < steps.size(); ++j) {
            Record first, second;
            steps[i].part(first, second);
            steps[j].part(second, first);
            EXPECT_TRUE(first < second) << steps[i].name << " over " << steps[j].name;
            EXPECT_FALSE(second < first) << steps[i].name << " over " << steps[j].name;
        }
    }
}

/// A NaN decides for "not before" both ways round, and hides all that lies behind it.
template <class Record, class Base>
void expectNaNHidesLaterSteps(const FloatField<Base>& field, const std::vector<OrderStep<Record>>& steps)
{
    const auto own = std::find_if(steps.begin(), steps.end(), [&](const OrderStep<Record>& step) {
        return std::string(step.name) == field.name;
    });
    ASSERT_NE(own, steps.end()) << field.name;
    for (auto later = own; later != steps.end(); ++later) {
        Record a, b;
        later->part(a, b);
        field.at(a) = kNaN;
        EXPECT_FALSE(a < b) << field.name << " hides " << later->name;
        EXPECT_FALSE(b < a) << field.name << " hides " << later->name;
    }
    for (auto earlier = steps.begin(); earlier != own; ++earlier) {
        Record a, b;
        earlier->part(a, b);
        field.at(a) = kNaN;
        EXPECT_TRUE(a < b) << field.name << " does not hide " << earlier->name;
    }
}
