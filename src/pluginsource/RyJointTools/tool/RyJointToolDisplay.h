#pragma once

#include <QColor>
#include <QString>

/// What the tool shows and in which style. The first part is kept in the settings group of the tool; the initial values
/// hold until readSettings().
struct RyJointToolDisplay
{
    int sphereDrawing = 1; // 0 rings only, 1 wireframe, 2 solid
    int sphereOpacity = 50;
    int sphereLineDensity = 60;
    int weightMapMode = 2; // 0 points, 1 lines, 2 polygons
    int weightOpacity = 160;
    int handleDrawing = 1; // 0 lines, 1 solid, 2 as the host has it
    int boneDrawMode = 3;
    QColor staticColor = QColor(255, 0, 0);
    QColor dynamicColor = QColor(0, 255, 0);
    QColor selectedColor = QColor(255, 255, 0);
    QColor boundaryColor;
    int boundaryStyle = 1;     // 1 lines, else points
    int boneColoringStyle = 1; // 1 axis colours, else white
    bool restrictRotationAxes = false;
    bool ghostBones = false;
    bool showManipulators = true;

    bool weightVis = true;
    bool matAVis = true; // the dynamic sphere
    bool matBVis = true; // the static sphere
    bool angleVis = true;
    bool twistVis = true;
    bool smoothVis = true;
    bool drawMeshBoundaries = true;
    bool showBoneHierarchy = true;
    QColor darkColor = QColor(64, 64, 64);
    QColor lightColor = QColor(128, 128, 128);

    /// Reads the kept values; they are taken as they stand, but a line density of 0 becomes 1 and the channels of
    /// colours are brought into 0 to 255.
    void readSettings();
};

/// Names of the tool's settings.
namespace RyJointToolSettings {

inline constexpr char group[] = "Joint Editor Tool";
inline constexpr char sphereDrawing[] = "SphereDrawingEnabled";
inline constexpr char sphereOpacity[] = "SphereOpacity";
inline constexpr char sphereDensity[] = "SphereDensity";
inline constexpr char weightMapMode[] = "WeightMapMode";
inline constexpr char weightOpacity[] = "WeightOpacity";
inline constexpr char drawHandles[] = "DrawHandles";
inline constexpr char boneVis[] = "BoneVis";
inline constexpr char dynamicColor[] = "Dynamic"; // colours: followed by Red, Green, Blue
inline constexpr char staticColor[] = "Static";
inline constexpr char selectedColor[] = "Selected";
inline constexpr char boundaryColor[] = "Boundary";
inline constexpr char boundaryStyle[] = "BoundaryStyle";
inline constexpr char boneColoringStyle[] = "BoneColoringStyle";
inline constexpr char axisHobble[] = "AxisHobble"; // read as a bool, written as an int
inline constexpr char ghostBones[] = "GhostBones";
inline constexpr char showManipulators[] = "ShowManipulators";

void writeInt(const char *key, int value);
void writeBool(const char *key, bool value);
/// Three values: red, green, blue.
void writeColor(const char *prefix, const QColor &color);

} // namespace RyJointToolSettings
