#pragma once

#include "pluginsource/RyJointTools/tool/display/RyJointToolDisplay.h"

class RyAppSettings;

/// The kept values of the display: their place in the settings group of the tool, what holds while nothing is stored,
/// and the range that a setter brings them into.
namespace RyDisplaySettings {

struct Number
{
    int RyJointToolDisplay::*value;
    const char *key;
    int byDefault;
    int low;
    int high;
    int insteadOfLess;
    int insteadOfMore;

    int inRange(int wanted) const { return wanted < low ? insteadOfLess : wanted > high ? insteadOfMore : wanted; }
};

struct Flag
{
    bool RyJointToolDisplay::*value;
    const char *key;
    bool byDefault;
    bool isDrawn = true;
    bool isWrittenAsInt = false; // and read as a bool all the same
};

struct Color
{
    QColor RyJointToolDisplay::*value;
    const char *prefix; // followed by Red, Green, Blue
    int byDefault[3];
};

using Display = RyJointToolDisplay;

inline constexpr Number sphereDrawing{&Display::sphereDrawing, "SphereDrawingEnabled", 0, 0, 2, 0, 0};
inline constexpr Number sphereOpacity{&Display::sphereOpacity, "SphereOpacity", 50, 0, 255, 50, 50};
inline constexpr Number sphereLineDensity{&Display::sphereLineDensity, "SphereDensity", 60, 1, 360, 1, 360};
inline constexpr Number weightMapMode{&Display::weightMapMode, "WeightMapMode", 2, 0, 2, 1, 1};
inline constexpr Number weightOpacity{&Display::weightOpacity, "WeightOpacity", 160, 0, 255, 160, 160};
inline constexpr Number handleDrawing{&Display::handleDrawing, "DrawHandles", 0, 0, 2, 0, 0};
inline constexpr Number boundaryStyle{&Display::boundaryStyle, "BoundaryStyle", 1, 0, 1, 1, 1};
inline constexpr Number boneColoringStyle{&Display::boneColoringStyle, "BoneColoringStyle", 1, 0, 1, 1, 1};
inline constexpr char boneDrawModeKey[] = "BoneVis"; // any number is a mode

inline constexpr Flag restrictRotationAxes{&Display::restrictRotationAxes, "AxisHobble", false, false, true};
inline constexpr Flag ghostBones{&Display::ghostBones, "GhostBones", false};
inline constexpr Flag showManipulators{&Display::showManipulators, "ShowManipulators", true};

inline constexpr Color dynamicColor{&Display::dynamicColor, "Dynamic", {0, 255, 0}};
inline constexpr Color staticColor{&Display::staticColor, "Static", {255, 0, 0}};
inline constexpr Color selectedColor{&Display::selectedColor, "Selected", {255, 255, 0}};
inline constexpr Color boundaryColor{&Display::boundaryColor, "Boundary", {255, 255, 255}};

/// The settings group of the tool.
RyAppSettings open();
int read(const RyAppSettings &settings, const Number &number);
bool read(const RyAppSettings &settings, const Flag &flag);
QColor read(const RyAppSettings &settings, const Color &color);
void write(const Flag &flag, bool value);
void write(const Color &color, const QColor &value);
void write(const char *key, int value);

} // namespace RyDisplaySettings
