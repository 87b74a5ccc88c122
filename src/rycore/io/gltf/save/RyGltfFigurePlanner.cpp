#include "rycore/io/gltf/save/RyGltfFigurePlanner.h"

#include "rycore/base/RyPointerTable.h"
#include "rycore/io/gltf/save/RyGltfWeightComparison.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RySkeleton.h"

#include <algorithm>

RyGltfFigurePlan RyGltfFigurePlanner::plan(const RyGltfFigureSource &source) const
{
    Figure figure;
    figure.source = &source;
    figure.bones = ryOwnBones(*source.sceneNode);
    const auto *shape = qobject_cast<const RyFacetShape *>(RyShape::getCurrentShapeForNode(source.sceneNode));
    if (shape && shape->getFacetMesh() && shape->getParts() && shape->getParts()->parts.size() == source.parts.size()) {
        figure.mesh = shape->getFacetMesh();
        figure.parts = shape->getParts();
    }
    for (const RyGltfPartSource &part : source.parts)
        figure.meshes.push_back(part.mesh);
    figure.isDirty.assign(source.parts.size(), false);
    std::vector<bool> changed(figure.mesh ? size_t(figure.mesh->getNumVertices()) : 0, false);
    const bool weightsAreOther = ryGltfWeightsChanged(source, &changed);
    figure.isRebuilt = figure.mesh && !figure.bones.empty() && mustBeRebuilt(source, weightsAreOther);
    figure.isMoved = figure.mesh && source.canWriteVertices();
    keepJoints(figure);
    addJoints(figure);
    if (figure.mesh && !figure.bones.empty())
        findDirtyParts(figure, changed);
    if (figure.influences)
        addNeededJoints(figure);
    return figure;
}

bool RyGltfFigurePlanner::mustBeRebuilt(const RyGltfFigureSource &source, bool weightsAreOther) const
{
    // The file's bind matrices could not be used. Once anything was edited, the vertices are written where the scene
    // has them, in figure space, with bind matrices that say so.
    if (!source.skins.front().rebound)
        return false;
    const RyShape *shape = RyShape::getCurrentShapeForNode(source.sceneNode);
    if (weightsAreOther || source.canWriteVertices() || (shape && !source.newMorphs(*shape).empty()) ||
        !(RyNodeValues::of(*source.sceneNode) == source.loaded))
        return true;
    for (const RyGltfNodeSource &node : m_patch.source.nodes) {
        if (node.isBone && node.figure == &source - m_patch.source.figures.data() && m_patch.removed.count(node.node))
            return true;
    }
    return std::any_of(m_patch.edits.begin(), m_patch.edits.end(), [&source](const auto &entry) {
        const RyGltfScenePatch::Edit &edit = entry.second;
        return (edit.restChanged || edit.poseChanged || edit.moved) &&
               edit.node->getSkeleton() == source.sceneNode.data();
    });
}

void RyGltfFigurePlanner::keepJoints(Figure &figure) const
{
    const RyGltfModel &model = m_patch.source.document->model();
    for (const RyGltfSkinSource &source : figure.source->skins) {
        Skin skin;
        skin.source = &source;
        const std::vector<int> &before = model.skins[size_t(source.skin)].joints;
        for (const int joint : before) {
            const auto edit = m_patch.edits.find(joint);
            if (edit != m_patch.edits.end() && edit->second.node->getSkeleton() == figure.source->sceneNode.data())
                skin.joints.push_back(joint);
        }
        skin.isOther = skin.joints.size() != before.size();
        skin.isShifted = !std::equal(skin.joints.begin(), skin.joints.end(), before.begin());
        if (skin.joints.empty() && !figure.bones.empty())
            skin.joints.push_back(m_patch.nodeOf.of(figure.bones.front())); // a skin without joints is none
        figure.skins.push_back(std::move(skin));
    }
}

RyGltfSkinPlan &RyGltfFigurePlanner::skinFor(Figure &figure, const RyBone &bone) const
{
    // That of the nearest bone above, or of the topmost bone before it.
    const RyNode *near = bone.getNodeParent();
    if (near == figure.source->sceneNode.data()) {
        const RyNode *before = nullptr;
        for (const RyNode *sibling : near->nodeChildrenIterator()) {
            if (sibling == &bone)
                break;
            before = qobject_cast<const RyBone *>(sibling) ? sibling : before;
        }
        near = before;
    }
    for (; near; near = near->getNodeParent()) {
        for (Skin &skin : figure.skins) {
            if (std::find(skin.joints.begin(), skin.joints.end(), m_patch.nodeOf.of(near)) != skin.joints.end())
                return skin;
        }
    }
    return figure.skins.front();
}

void RyGltfFigurePlanner::addJoints(Figure &figure) const
{
    // What a reader would not take for a bone by itself: new bones, bones with weights, and bones that do not stand
    // between two joints.
    RyPointerTable<bool> joints, bound, aboveJoints, belowJoints; // those that have a value
    for (const Skin &skin : figure.skins) {
        for (const int joint : skin.joints)
            joints.insertNew(m_patch.edits.at(joint).node, true);
    }
    if (std::all_of(figure.bones.begin(), figure.bones.end(),
                    [&joints](const RyBone *bone) { return joints.find(bone) != nullptr; })) {
        return;
    }
    for (const RyGltfBoneWeights &each : ryGltfBoneWeights(figure.source->sceneNode)) {
        if (each.bone)
            bound.insertNew(each.bone, true);
    }
    for (const Skin &skin : figure.skins) {
        for (const int joint : skin.joints) {
            const RyNode *above = m_patch.edits.at(joint).node->getNodeParent();
            for (; above && aboveJoints.insertNew(above, true);)
                above = above->getNodeParent();
        }
    }
    for (const RyBone *bone : figure.bones) {
        if (joints.find(bone))
            continue;
        const int index = m_patch.nodeOf.of(bone);
        bool isBelow = false;
        for (const RyNode *above = bone->getNodeParent(); above && !isBelow; above = above->getNodeParent())
            isBelow = joints.find(above) || belowJoints.find(above);
        if (isBelow)
            belowJoints.insertNew(bone, true);
        if (m_patch.edits.at(index).source && !bound.find(bone) && isBelow && aboveJoints.find(bone))
            continue;
        Skin &skin = skinFor(figure, *bone);
        skin.joints.push_back(index);
        skin.isOther = true;
        joints.insertNew(bone, true);
    }
}

size_t RyGltfFigurePlanner::placeOfSkin(const Figure &figure, int skin) const
{
    size_t place = 0;
    while (place + 1 < figure.skins.size() && figure.skins[place].source->skin != skin)
        ++place;
    return place;
}

void RyGltfFigurePlanner::findDirtyParts(Figure &figure, const std::vector<bool> &changed) const
{
    std::vector<bool> isWritten = changed;
    bool any = false;
    for (bool more = true; more;) {
        // Parts that share a vertex must say the same of it to share it again.
        more = false;
        for (size_t p = 0; p < figure.isDirty.size(); ++p) {
            if (figure.isDirty[p])
                continue;
            const std::vector<int> &vertices = figure.parts->parts[p].vertexOfSplit;
            const bool isShifted = figure.skins[placeOfSkin(figure, figure.source->parts[p].skin)].isShifted;
            if (!isShifted &&
                std::none_of(vertices.begin(), vertices.end(), [&](int v) { return isWritten[size_t(v)]; }))
                continue;
            figure.isDirty[p] = any = more = true;
            for (const int vertex : vertices)
                isWritten[size_t(vertex)] = true;
        }
        more = more && figure.isDirty.size() > 1;
    }
    if (any) {
        figure.influences = std::make_unique<RyGltfInfluences>(figure.source->sceneNode, figure.mesh->getNumVertices());
    }
}

void RyGltfFigurePlanner::addNeededJoints(Figure &figure) const
{
    const std::vector<const RyNode *> &bones = figure.influences->bones();
    for (Skin &skin : figure.skins) {
        std::vector<bool> used(bones.size(), false);
        for (size_t p = 0; p < figure.isDirty.size(); ++p) {
            if (!figure.isDirty[p] || figure.source->parts[p].skin != skin.source->skin)
                continue;
            for (const int vertex : figure.parts->parts[p].vertexOfSplit) {
                for (const RyGltfInfluences::Influence &influence : figure.influences->of(vertex))
                    used[influence.bone] = true;
            }
        }
        const std::set<int> known(skin.joints.begin(), skin.joints.end());
        for (size_t i = 0; i < bones.size(); ++i) {
            const int index = m_patch.nodeOf.of(bones[i]);
            if (!used[i] || known.count(index))
                continue;
            skin.joints.push_back(index);
            skin.isOther = true;
        }
    }
}
