#pragma once

#include "RySidedScene.h"

#include "pluginsource/RyJointTools/operations/mirrorNode.h"
#include "rycore/figure/RySymmetricEditing.h"
#include "rycore/undo/RyUndoStackHold.h"

/// The sided figure with its left side mirrored onto the right, a spine in the plane, and symmetric editing on.
struct SymmetricScene : RySidedScene
{
    SymmetricScene()
    {
        hip->setOrigin({0, 101, -3}, true);
        hip->setEndPoint({0, 110, -1}, true);
        hip->setOrientation(RyQuat({1, 0, 0}, 0.4f), true);
        for (const char *name : {"lThigh", "lShin", "lFoot"}) {
            RyNode *left = ryScene()->findNode(name);
            mirrorNode(left, RyBonePairing(*figure, 0).oppositeOf(left), 0);
        }
        ryUndoStack()->clearAll();
        editing().setOn(true);
    }
    ~SymmetricScene() { editing().setOn(false); }
    static RySymmetricEditing &editing() { return RySymmetricEditing::of(*ryScene()); }

    /// Runs an edit as a step; what stays unlike on both sides, in cm of a bone of 100 cm.
    template<typename Edit>
    double after(const Edit &edit)
    {
        RyUndoStackHold hold;
        edit();
        hold.accept("Edit");
        return error();
    }
    double error() const
    {
        double largest = std::abs(double(hip->getOrigin()[0])) + std::abs(double(hip->getEndPoint()[0]));
        double aside = 1.0; // of the bone axis that is nearest to the mirror axis
        for (int k = 0; k < 3; ++k) {
            const RyVec3 axis = hip->getOrientation().multVec(RyVec3::axis(k));
            aside = std::min(aside, std::hypot(double(axis[1]), double(axis[2])));
        }
        largest = std::max(largest, 100.0 * aside);
        const RyNode *const pairs[][2] = {{lThigh, rThigh}, {lShin, rShin}, {lFoot, rFoot}};
        for (const auto &pair : pairs)
            largest = std::max(largest, reflectionError(pair[0], pair[1], 0, false, 100.0));
        return largest;
    }
};

#define COMPARE_SYMMETRIC(error)                                                                                       \
    do {                                                                                                               \
        const double found = (error);                                                                                  \
        QVERIFY2(found < 1e-3, QByteArray::number(found));                                                             \
    } while (false)
