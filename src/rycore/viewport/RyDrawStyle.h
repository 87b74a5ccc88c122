#pragma once

/// How a pass draws.
class RyDrawStyle
{
public:
    enum ShadeStyle { Wireframe = 0, Lines = 1, Flat = 2, Smooth = 3, Textured = 4, PickPass = 11 };

    explicit RyDrawStyle(int style = Smooth) : shadeStyle(style) {}
    /// 11 is the colour-coded pick pass.
    int shadeStyle;
};
