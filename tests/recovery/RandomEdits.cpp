#include "recovery/RandomEdits.h"

#include "io/RigEdits.h"
#include "rycore/base/RyFloatProperty.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/skin/RySkinBinding.h"
#include "rycore/undo/RyUndoStack.h"
#include "rycore/undo/RyUndoStackHold.h"

namespace {

constexpr size_t MostBones = 120; // growth is bounded, for what is tested is not how large a scene can get

} // namespace

float RandomEdits::number(float low, float high)
{
    return std::uniform_real_distribution<float>(low, high)(m_random);
}

RyNode *RandomEdits::pickNode()
{
    const std::vector<RyNode *> &nodes = m_scene.getNodes();
    return nodes.empty() ? nullptr : nodes[m_random() % nodes.size()];
}

RyBone *RandomEdits::pickBone()
{
    std::vector<RyBone *> bones;
    for (const RySkeleton *skeleton : m_scene.getSkeletons())
        skeleton->getAllBones(bones);
    return bones.empty() ? nullptr : RigEdits::pick(bones, m_random);
}

void RandomEdits::changeValue()
{
    RyNode *node = pickNode();
    RyUndoStackHold hold;
    switch (m_random() % 6) {
    case 0:
        node->getXRotControl()->setValue(number(-90, 90));
        break;
    case 1:
        node->getYTransControl()->setValue(number(-20, 20));
        break;
    case 2:
        node->getScaleControl()->setValue(number(0.5f, 2.0f));
        break;
    case 3:
        node->setLabel(QStringLiteral("Label %1").arg(m_random() % 1000));
        break;
    case 4:
        node->getZRotControl()->setMax(number(91, 180));
        node->getZRotControl()->setMin(number(-180, -91));
        node->getZRotControl()->setIsClamped(m_random() % 2);
        break;
    default:
        node->setRotationOrder(RyRotationOrder(int(m_random() % 6)));
    }
    hold.accept(QStringLiteral("Change Value"));
}

void RandomEdits::moveJoint()
{
    RyBone *bone = pickBone();
    if (!bone)
        return changeValue();
    RyUndoStackHold hold;
    bone->beginEdit();
    bone->adjustOrigin(bone->getOrigin() + RyVec3(number(-2, 2), number(-2, 2), number(-2, 2)));
    bone->adjustEndPoint(bone->getEndPoint() + RyVec3(number(-2, 2), number(-2, 2), number(-2, 2)));
    bone->finishEdit();
    hold.accept(QStringLiteral("Move Joint"));
}

void RandomEdits::changeTree()
{
    RyBone *bone = pickBone();
    if (!bone || m_scene.getNodes().size() > MostBones || !RySkinBinding::findSkinFromNode(bone))
        return changeValue();
    RyUndoStackHold hold;
    if (m_random() % 4 == 0)
        RigEdits::shiftWeights(m_scene, 1000);
    else
        RigEdits::editAtRandom(m_scene, {bone}, m_random);
    hold.accept(QStringLiteral("Change Tree"));
}

void RandomEdits::changeUnrecorded()
{
    RyNode *node = pickNode();
    node->setSelectable(!node->isSelectable());
    node->getXTransControl()->setValue(number(-5, 5));
}

void RandomEdits::editOnce()
{
    switch (m_random() % 12) {
    case 0:
        return ryUndoStack()->undo();
    case 1:
        return ryUndoStack()->redo();
    case 2:
        return changeUnrecorded();
    case 3:
    case 4:
        return changeTree();
    case 5:
        // Behind it: what is selected before an edit is no part of it, and may be kept without it.
        changeValue();
        return pickNode()->select(m_random() % 2);
    case 6:
    case 7:
    case 8:
        return changeValue();
    default:
        moveJoint();
    }
}
