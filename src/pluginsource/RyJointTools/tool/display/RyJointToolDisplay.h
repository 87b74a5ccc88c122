#pragma once

#include <QColor>

/// What the tool shows and in which style. The first part is kept in the settings group of the tool; the initial values
/// hold until readSettings().
struct RyJointToolDisplay
{
    /// Which bones are drawn.
    enum Bones { NoBones = 0, SelectedBone = 1, SelectedBoneAndFamily = 2, EntireFigure = 3 };

    int sphereDrawing = 1; // 0 rings only, 1 wireframe, 2 solid
    int sphereOpacity = 50;
    int sphereLineDensity = 60;
    int weightMapMode = 2; // 0 points, 1 lines, 2 polygons
    int weightOpacity = 160;
    int handleDrawing = 1; // 0 lines, 1 solid, 2 as the host has it
    int boneDrawMode = EntireFigure;
    QColor staticColor = QColor(255, 0, 0);
    QColor dynamicColor = QColor(0, 255, 0);
    QColor selectedColor = QColor(255, 255, 0);
    QColor boundaryColor;
    int boundaryStyle = 1;     // 1 lines, else points
    int boneColoringStyle = 1; // 1 axis colours, else white
    bool restrictRotationAxes = false;
    bool ghostBones = false;
    bool showManipulators = true;

    int editMode = 0; // 0 centre and end point, 1 the parameter
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
