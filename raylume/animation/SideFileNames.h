// The elements and attributes of the side file.
#pragma once

#include <cstddef>
#include <iterator>

#include "raylume/animation/XmlDocument.h"

namespace side_file {

inline constexpr const wchar_t* kFileName = L"_rlAnimData.xml";

// Numbers count up from 0 in each of the two lists.
inline constexpr XmlName kAnimation{"ANIMATION", 0};
inline constexpr XmlName kComponent{"COMPONENT", 1};
inline constexpr XmlName kVisualTransform{"VisualTransform", 2};
inline constexpr XmlName kTransform{"Transform", 3};
inline constexpr XmlName kVisualState{"VisualState", 4};
inline constexpr XmlName kViewport{"VIEWPORT", 5};
inline constexpr XmlName kViewPointTransform{"ViewPointTransform", 6};
inline constexpr XmlName kCameraProperties{"CameraProperties", 7};
inline constexpr XmlName kLight{"LIGHT", 8};
inline constexpr XmlName kLightProperties{"LightProperties", 9};

inline constexpr XmlName kElements[] = {
    kAnimation, kComponent,          kVisualTransform,  kTransform, kVisualState,
    kViewport,  kViewPointTransform, kCameraProperties, kLight,     kLightProperties};

inline constexpr XmlName kName{"Name", 0};
inline constexpr XmlName kTime{"Time", 1};
inline constexpr XmlName kInterpolateMode{"InterpolateMode", 2};
inline constexpr XmlName kRed{"Red", 3};
inline constexpr XmlName kGreen{"Green", 4};
inline constexpr XmlName kBlue{"Blue", 5};
inline constexpr XmlName kTransparency{"Transparency", 6};
inline constexpr XmlName kNullCompVizprop{"NullCompVizprop", 7};
inline constexpr XmlName kComponentVisibility{"ComponentVisibility", 8};
inline constexpr XmlName kFocalDistance{"FocalDistance", 9};
inline constexpr XmlName kFocalLength{"FocalLength", 10};
inline constexpr XmlName kId{"ID", 11};
inline constexpr XmlName kLightType{"LightType", 12};
inline constexpr XmlName kEnabledInRL{"EnabledInRL", 13};
inline constexpr XmlName kSunTime{"sunTime", 14};
inline constexpr XmlName kSunDay{"sunDay", 15};
inline constexpr XmlName kSunHaze{"sunHaze", 16};
inline constexpr XmlName kPosition[] = {{"pos0", 17}, {"pos1", 18}, {"pos2", 19}};
inline constexpr XmlName kRotation[] = {{"rot0", 20}, {"rot1", 21}, {"rot2", 22}};
inline constexpr XmlName kMatrix[] = {
    {"m0", 23}, {"m1", 24}, {"m2", 25},  {"m3", 26},  {"m4", 27},  {"m5", 28},  {"m6", 29},  {"m7", 30},
    {"m8", 31}, {"m9", 32}, {"m10", 33}, {"m11", 34}, {"m12", 35}, {"m13", 36}, {"m14", 37}, {"m15", 38}};
inline constexpr XmlName kModelView[] = {{"mv0", 39},  {"mv1", 40},  {"mv2", 41},  {"mv3", 42},
                                         {"mv4", 43},  {"mv5", 44},  {"mv6", 45},  {"mv7", 46},
                                         {"mv8", 47},  {"mv9", 48},  {"mv10", 49}, {"mv11", 50},
                                         {"mv12", 51}, {"mv13", 52}, {"mv14", 53}, {"mv15", 54}};

inline constexpr XmlName kSingleAttributes[] = {kName,
                                                kTime,
                                                kInterpolateMode,
                                                kRed,
                                                kGreen,
                                                kBlue,
                                                kTransparency,
                                                kNullCompVizprop,
                                                kComponentVisibility,
                                                kFocalDistance,
                                                kFocalLength,
                                                kId,
                                                kLightType,
                                                kEnabledInRL,
                                                kSunTime,
                                                kSunDay,
                                                kSunHaze};

/// The numbers of a list count up by one: the vocabulary of a table is made of the lists one behind the
/// other.
template <std::size_t count>
constexpr bool isNumberedFrom(int first, const XmlName (&names)[count])
{
    for (const XmlName& name : names) {
        if (name.number != first++) {
            return false;
        }
    }
    return true;
}
static_assert(isNumberedFrom(0, kElements));
static_assert(isNumberedFrom(0, kSingleAttributes));
static_assert(isNumberedFrom(std::size(kSingleAttributes), kPosition));
static_assert(isNumberedFrom(kPosition[0].number + std::size(kPosition), kRotation));
static_assert(isNumberedFrom(kRotation[0].number + std::size(kRotation), kMatrix));
static_assert(isNumberedFrom(kMatrix[0].number + std::size(kMatrix), kModelView));

// Keys of the table of tracks that are no components. They share its one space of names.
inline constexpr const wchar_t* kViewportKey = L"@VIEWPORT";
inline constexpr const wchar_t* kCameraKey = L"@CAMERA";
inline constexpr const wchar_t* kLightsKey = L"@LIGHTS";

}  // namespace side_file
