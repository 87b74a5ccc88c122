#include "rycore/io/gltf/save/RyGltfReach.h"

#include "rycore/io/RyUnitFactor.h"
#include "rycore/io/gltf/document/RyGltfMatrices.h"
#include "rycore/io/gltf/extras/RyGltfFigureSource.h"
#include "rycore/io/gltf/extras/RyGltfInfluences.h"
#include "rycore/math/RyBox3.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RySkeleton.h"

#include <algorithm>
#include <cmath>

double ryGltfShearSlack(double reach, double height)
{
    return 2e-6 * height / std::max(1e-12, reach);
}

double RyGltfReach::of(const RyNode &node)
{
    const double height = heightOf(node);
    const auto known = m_reach.find(&node);
    return known == m_reach.end() ? height : known->second;
}

double RyGltfReach::heightOf(const RyNode &node)
{
    const RySkeleton *figure = qobject_cast<const RySkeleton *>(&node);
    figure = figure ? figure : node.getSkeleton();
    if (!figure)
        return 0.0;
    if (!m_heights.count(figure))
        measure(*figure);
    return m_heights.at(figure);
}

/// As they stand in the scene.
double RyGltfReach::reachOfThings(const RyNode &bone, const RyNode &figure)
{
    std::vector<const RyNode *> pending;
    const auto addChildren = [&pending](const RyNode &node) {
        for (const RyNode *child : node.nodeChildrenIterator()) {
            if (!qobject_cast<const RyBone *>(child))
                pending.push_back(child);
        }
    };
    const RyVec3 origin = bone.worldMap().mapPoint(bone.getOrigin());
    double reach = 0.0;
    for (addChildren(bone); !pending.empty();) {
        const RyNode &thing = *pending.back();
        pending.pop_back();
        addChildren(thing);
        const auto *shape = qobject_cast<const RyFacetShape *>(RyShape::getCurrentShapeForNode(&thing));
        const RyAffine toWorld = thing.worldMap();
        reach = std::max(reach, double((toWorld.mapPoint(thing.getOrigin()) - origin).length()));
        for (const RyVec3 &position :
             shape && shape->getFacetMesh() ? shape->getFacetMesh()->getPositions() : std::vector<RyVec3>())
            reach = std::max(reach, double((toWorld.mapPoint(position) - origin).length()));
    }
    const double size = ryGltfSize(figure.worldMap());
    return size > 0.0 ? reach / size : reach;
}

void RyGltfReach::measure(const RyNode &figure)
{
    const std::vector<RyBone *> bones = ryOwnBones(figure);
    RyBox3 box;
    for (const RyBone *bone : bones) {
        box.include(bone->getOrigin());
        m_reach[bone] =
            std::max(double((bone->getEndPoint() - bone->getOrigin()).length()), reachOfThings(*bone, figure));
    }
    for (const RyBone *bone : box.getSize() > 0.0f ? std::vector<RyBone *>() : bones)
        box.include(bone->getEndPoint());
    const auto *shape = qobject_cast<const RyFacetShape *>(RyShape::getCurrentShapeForNode(&figure));
    const RyFacetMesh *mesh = shape ? shape->getFacetMesh() : nullptr;
    if (mesh && !mesh->getPositions().empty()) {
        box = RyBox3();
        for (const RyVec3 &position : mesh->getPositions())
            box.include(position);
    }
    for (const RyGltfBoneWeights &each : mesh ? ryGltfBoneWeights(&figure) : std::vector<RyGltfBoneWeights>()) {
        if (!m_reach.count(each.bone))
            continue;
        double &reach = m_reach[each.bone];
        for (const int vertex : each.weights.vertices) {
            if (vertex >= mesh->getNumVertices())
                break; // maps of scripts may be longer than the mesh
            reach = std::max(reach, double((mesh->getPositions()[size_t(vertex)] - each.bone->getOrigin()).length()));
        }
    }
    // Below come before above in the reverse of the figure's order.
    for (auto bone = bones.rbegin(); bone != bones.rend(); ++bone) {
        const auto above = m_reach.find((*bone)->getNodeParent());
        if (above != m_reach.end()) {
            const double apart = double(((*bone)->getOrigin() - above->first->getOrigin()).length());
            above->second = std::max(above->second, apart + m_reach.at(*bone));
        }
    }
    const RyVec3 size = box.getExtents();
    m_heights[&figure] = ryFigureHeight(double(size.x), double(size.y), double(size.z));
}
