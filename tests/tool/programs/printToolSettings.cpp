#include "pluginsource/RyJointTools/tool/RyJointEditorTool.h"
#include "rycore/base/RyAppSettings.h"

#include <QApplication>

#include <cstdio>

// What a tool of another process makes of the settings in a folder: one value per line.

static void print(const char *name, int value)
{
    std::printf("%s %d\n", name, value);
}

static void print(const char *name, const QColor &color)
{
    std::printf("%s %d %d %d\n", name, color.red(), color.green(), color.blue());
}

int main(int argc, char **argv)
{
    const QApplication application(argc, argv);
    if (argc != 2)
        return 2;
    RyAppSettings::setSettingsPath(QString::fromLocal8Bit(argv[1]));
    const RyJointEditorTool tool;
    const RyJointToolDisplay &display = tool.display();
    print("sphereOpacity", display.sphereOpacity);
    print("sphereLineDensity", display.sphereLineDensity);
    print("weightMapMode", display.weightMapMode);
    print("weightOpacity", display.weightOpacity);
    print("handleDrawing", display.handleDrawing);
    print("sphereDrawing", display.sphereDrawing);
    print("boneDrawMode", display.boneDrawMode);
    print("boundaryStyle", display.boundaryStyle);
    print("boneColoringStyle", display.boneColoringStyle);
    print("restrictRotationAxes", display.restrictRotationAxes);
    print("ghostBones", display.ghostBones);
    print("showManipulators", display.showManipulators);
    print("dynamicColor", display.dynamicColor);
    print("staticColor", display.staticColor);
    print("selectedColor", display.selectedColor);
    print("boundaryColor", display.boundaryColor);
    return 0;
}
