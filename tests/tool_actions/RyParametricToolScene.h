#pragma once

#include "parametric/ParametricScene.h"
#include "parametric/paramTexts.h"
#include "tool/RyWindowScene.h"

/// The scene of the tool tests with an untidy parametric figure beside the weight-mapped one.
struct RyParametricToolScene : RyWindowScene
{
    RyParametricToolScene()
    {
        doll.makeUntidy();
        doll.makeJoints();
    }
    static QString wholeDump() { return rySceneDump(*ryScene()); }

    ParametricScene doll{false};
};
