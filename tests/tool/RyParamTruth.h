#pragma once

#include "support/RyTest.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/figure/RyLegacyFigure.h"
#include "rycore/scene/RyBone.h"

#include "parametric/ParametricScene.h"

/// Where values of parameter space stand in the world, worked out without the tool: as points of the figure at rest
/// that the driver's own map carries.
struct RyParamTruth
{
    const RyNode &driver;

    RyVec3 world(const RyVec3 &x) const
    {
        const RyVec3 origin = driver.getOrigin();
        return driver.worldMap().mapPoint(origin + driver.getOrientation().multVec(x - origin));
    }
    /// The way back.
    RyVec3 value(const RyVec3 &world) const
    {
        const RyVec3 origin = driver.getOrigin();
        return driver.getOrientation().inverse().multVec(driver.worldMap().inverse().mapPoint(world) - origin) + origin;
    }
    /// The image of a way, from the driver's origin.
    RyVec3 way(const RyVec3 &x) const { return world(driver.getOrigin() + x) - world(driver.getOrigin()); }
    /// The directions of the bone axes by turns alone: what the rotation controls of the driver and of all above make
    /// of the orientation.
    RyVec3 axis(int k) const
    {
        RyVec3 direction = driver.getOrientation().multVec(RyVec3::axis(k));
        for (const RyNode *node = &driver; node; node = node->getNodeParent())
            direction = node->getLocalRot().multVec(direction);
        return direction;
    }
    RyVec3 sphere(const RyMatrix4 &matrix, const RyVec3 &unit) const { return world(matrix.multVecMatrix(unit)); }
};

/// What a parametric figure is like beside untidy.
enum class RyFigureLook { Plain, Untidy, Uneven, Mirrored };

inline void ryAddFigureLooks()
{
    QTest::addColumn<RyFigureLook>("look");
    QTest::newRow("as made") << RyFigureLook::Plain;
    QTest::newRow("posed, turned, scaled evenly") << RyFigureLook::Untidy;
    QTest::newRow("scaled unevenly") << RyFigureLook::Uneven;
    QTest::newRow("mirrored") << RyFigureLook::Mirrored;
}

inline void ryMakeLook(const ParametricScene &doll, RyFigureLook look)
{
    if (look == RyFigureLook::Untidy) {
        doll.lArm->getScaleControl()->setValue(1.2f); // it does not take over those of its parents
    } else if (look == RyFigureLook::Uneven) {
        doll.figure->getYScaleControl()->setValue(0.8f);
        doll.lArm->getXScaleControl()->setValue(1.3f);
        doll.lArm->getZScaleControl()->setValue(0.7f);
    } else if (look == RyFigureLook::Mirrored) {
        doll.figure->getXScaleControl()->setValue(-1.0f);
        doll.lArm->getXScaleControl()->setValue(-1.0f);
    }
}

Q_DECLARE_METATYPE(RyFigureLook)
