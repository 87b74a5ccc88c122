#include "rycore/io/gltf/save/RyGltfSkinPatch.h"

#include "rycore/io/gltf/save/RyGltfMeshPatch.h"
#include "rycore/io/gltf/save/RyGltfVertexPatch.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/skin/RyBoneBinding.h"
#include "rycore/skin/RySkinBinding.h"

#include <algorithm>

void ryGltfAppendMatrix(const RyAffine &map, std::vector<float> &values)
{
    for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 3; ++column)
            values.push_back(float(map.m[row][column]));
        values.push_back(row == 3 ? 1.0f : 0.0f);
    }
}

bool RyGltfSkinPatch::weightsChanged(const RyGltfFigureSource &figure, std::vector<bool> *changed)
{
    const RySkinBinding *skin = RySkinBinding::findSkinFromNode(figure.sceneNode);
    std::map<const RyNode *, const RyGltfLoadedWeights *> loaded;
    std::vector<const RyNode *> order;
    for (const RyGltfLoadedWeights &weights : figure.weights) {
        order.push_back(weights.bone);
        loaded.emplace(weights.bone, &weights);
    }
    bool differs = false;
    const auto mark = [&](int vertex) {
        differs = true;
        if (changed && size_t(vertex) < changed->size())
            (*changed)[size_t(vertex)] = true;
    };
    std::vector<const RyNode *> orderNow;
    for (const RyBoneBinding *binding : skin ? skin->bindings() : std::vector<RyBoneBinding *>()) {
        if (!RyGltfBindingWeights::isHeld(*binding))
            continue;
        orderNow.push_back(binding->getBone());
        const RyGltfBindingWeights now(*binding);
        const auto before = loaded.find(binding->getBone());
        if (before == loaded.end()) {
            std::for_each(now.vertices.begin(), now.vertices.end(), mark);
            continue;
        }
        const RyGltfLoadedWeights &old = *before->second;
        loaded.erase(before);
        if (std::equal(now.vertices.begin(), now.vertices.end(), old.vertices.begin(), old.vertices.end()) &&
            std::equal(now.weights.begin(), now.weights.end(), old.weights.begin(), old.weights.end())) {
            continue;
        }
        size_t i = 0;
        size_t j = 0;
        while (i < now.vertices.size() || j < old.vertices.size()) {
            const int a = i < now.vertices.size() ? now.vertices[i] : INT_MAX;
            const int b = j < old.vertices.size() ? old.vertices[j] : INT_MAX;
            if (a != b || now.weights[i] != old.weights[j])
                mark(std::min(a, b));
            i += a <= b;
            j += b <= a;
        }
    }
    for (const auto &[bone, weights] : loaded)
        std::for_each(weights->vertices.begin(), weights->vertices.end(), mark);
    return differs || order != orderNow;
}

bool RyGltfSkinPatch::apply(QString *error)
{
    const RyGltfModel &model = m_patch.document.model();
    for (size_t node = 0; node < model.nodes.size(); ++node) {
        if (model.nodes[node].mesh >= 0)
            m_users[model.nodes[node].mesh].push_back(int(node));
    }
    std::vector<Figure> figures;
    for (const RyGltfFigureSource &source : m_patch.source.figures) {
        if (!source.sceneNode || !source.sceneNode->getScene())
            continue;
        if (!source.skins.empty())
            figures.push_back(plan(source));
        else if (source.canWriteVertices() && m_patch.edits.count(source.parts.front().node))
            separateProp(source);
    }
    for (Figure &figure : figures) {
        separateMeshes(figure);
        writeJoints(figure);
    }
    if (!m_tree.finish(error))
        return false;
    for (const Figure &figure : figures) {
        writeBinds(figure);
        writeInfluences(figure);
        if (figure.isRebuilt || figure.isMoved)
            writeVertices(figure);
    }
    for (const auto &[prop, mesh] : m_props)
        writeProp(*prop, mesh);
    return true;
}

RyGltfSkinPatch::Figure RyGltfSkinPatch::plan(const RyGltfFigureSource &source) const
{
    Figure figure;
    figure.source = &source;
    static_cast<const RySkeleton *>(source.sceneNode.data())->getAllBones(figure.bones);
    const auto *shape = qobject_cast<const RyFacetShape *>(RyShape::getCurrentShapeForNode(source.sceneNode));
    if (shape && shape->getFacetMesh() && shape->getParts() && shape->getParts()->parts.size() == source.parts.size()) {
        figure.mesh = shape->getFacetMesh();
        figure.parts = shape->getParts();
    }
    for (const RyGltfPartSource &part : source.parts)
        figure.meshes.push_back(part.mesh);
    figure.isDirty.assign(source.parts.size(), false);
    std::vector<bool> changed(figure.mesh ? size_t(figure.mesh->getNumVertices()) : 0, false);
    const bool weightsAreOther = weightsChanged(source, &changed);
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

bool RyGltfSkinPatch::mustBeRebuilt(const RyGltfFigureSource &source, bool weightsAreOther) const
{
    // The file's bind matrices could not be used. Once anything was edited, the vertices are written where the scene
    // has them, in figure space, with bind matrices that say so.
    if (!source.skins.front().rebound)
        return false;
    if (weightsAreOther || source.canWriteVertices() || !(RyNodeValues::of(*source.sceneNode) == source.loaded))
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

// --- Joints

void RyGltfSkinPatch::keepJoints(Figure &figure) const
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
            skin.joints.push_back(m_patch.indexOf.at(figure.bones.front())); // a skin without joints is none
        figure.skins.push_back(std::move(skin));
    }
}

RyGltfSkinPatch::Skin &RyGltfSkinPatch::skinFor(Figure &figure, const RyBone &bone) const
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
            if (std::find(skin.joints.begin(), skin.joints.end(), m_patch.nodeOf(near)) != skin.joints.end())
                return skin;
        }
    }
    return figure.skins.front();
}

void RyGltfSkinPatch::addJoints(Figure &figure) const
{
    // What a reader would not take for a bone by itself: new bones, bones with weights, and bones that do not stand
    // between two joints.
    std::set<const RyNode *> joints, bound, aboveJoints;
    for (const Skin &skin : figure.skins) {
        for (const int joint : skin.joints)
            joints.insert(m_patch.edits.at(joint).node);
    }
    const RySkinBinding *binds = RySkinBinding::findSkinFromNode(figure.source->sceneNode);
    for (const RyBoneBinding *binding : binds ? binds->bindings() : std::vector<RyBoneBinding *>())
        bound.insert(binding->getBone());
    for (const RyNode *joint : joints) {
        for (const RyNode *above = joint->getNodeParent(); above && aboveJoints.insert(above).second;)
            above = above->getNodeParent();
    }
    for (const RyBone *bone : figure.bones) {
        if (joints.count(bone))
            continue;
        const int index = m_patch.indexOf.at(bone);
        bool isBelow = false;
        for (const RyNode *above = bone->getNodeParent(); above && !isBelow; above = above->getNodeParent())
            isBelow = joints.count(above) > 0;
        if (m_patch.edits.at(index).source && !bound.count(bone) && isBelow && aboveJoints.count(bone))
            continue;
        Skin &skin = skinFor(figure, *bone);
        skin.joints.push_back(index);
        skin.isOther = true;
        joints.insert(bone);
    }
}

size_t RyGltfSkinPatch::placeOfSkin(const Figure &figure, int skin) const
{
    size_t place = 0;
    while (place + 1 < figure.skins.size() && figure.skins[place].source->skin != skin)
        ++place;
    return place;
}

void RyGltfSkinPatch::findDirtyParts(Figure &figure, const std::vector<bool> &changed) const
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
        figure.influences = std::make_unique<RyGltfInfluences>(
            RySkinBinding::findSkinFromNode(figure.source->sceneNode), figure.mesh->getNumVertices());
    }
}

void RyGltfSkinPatch::addNeededJoints(Figure &figure) const
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
            const int index = m_patch.nodeOf(bones[i]);
            if (!used[i] || known.count(index))
                continue;
            skin.joints.push_back(index);
            skin.isOther = true;
        }
    }
}

RyAffine RyGltfSkinPatch::toFigure(const Figure &figure, const Skin &skin) const
{
    const double unit = m_patch.source.unit;
    return figure.isRebuilt || skin.source->rebound ? RyAffine::fromScale(unit) : skin.source->toFigure;
}

bool RyGltfSkinPatch::standsAbove(int node, const std::vector<int> &joints) const
{
    const RyGltfModel &model = m_patch.document.model();
    return std::all_of(joints.begin(), joints.end(), [&](int joint) {
        while (joint >= 0 && joint != node)
            joint = model.nodes[size_t(joint)].parent;
        return joint == node;
    });
}

void RyGltfSkinPatch::writeJoints(const Figure &figure)
{
    const RyGltfModel &model = m_patch.source.document->model();
    const double unit = m_patch.source.unit;
    for (const Skin &skin : figure.skins) {
        const int index = skin.source->skin;
        const RyGltfSkin &before = model.skins[size_t(index)];
        if (!skin.source->rebound || figure.isRebuilt)
            m_patch.toFigure[index] = toFigure(figure, skin) * RyAffine::fromScale(1.0 / unit);
        if (skin.joints.empty()) {
            m_patch.say(QStringLiteral("\"%1\" has no bones left; its skin in the file keeps the old joints")
                            .arg(figure.source->sceneNode->getName()));
            continue;
        }
        for (const int joint : skin.joints)
            m_patch.joints.insert(joint);
        const bool isAbove = before.skeleton < 0 || standsAbove(before.skeleton, skin.joints);
        if (!skin.isOther && isAbove)
            continue;
        std::vector<float> old, values;
        if (before.inverseBindMatrices >= 0)
            old = m_patch.source.document->readFloats(before.inverseBindMatrices);
        size_t next = 0; // those that were kept stand in the file's order
        for (const int joint : skin.joints) {
            while (next < before.joints.size() && before.joints[next] != joint)
                ++next;
            if (16 * next + 16 <= old.size() && next < before.joints.size())
                values.insert(values.end(), old.begin() + long(16 * next), old.begin() + long(16 * next + 16));
            else
                ryGltfAppendMatrix(toFigure(figure, skin) * m_patch.edits.at(joint).bind.inverse(), values);
            ++next;
        }
        if (skin.isOther)
            m_patch.document.setSkinInverseBindMatrices(index, m_patch.document.addFloatAccessor(values, 16, 0));
        m_tree.setSkinJoints(index, skin.joints, isAbove);
    }
}

void RyGltfSkinPatch::writeBinds(const Figure &figure)
{
    for (const Skin &skin : figure.skins) {
        const int accessorNow = m_patch.document.model().skins[size_t(skin.source->skin)].inverseBindMatrices;
        std::vector<float> values = accessorNow < 0 ? std::vector<float>() : m_patch.document.readFloats(accessorNow);
        bool isOther = false;
        if (figure.isRebuilt)
            values.resize(std::max(values.size(), 16 * skin.joints.size()), 0.0f);
        for (size_t j = 0; j < skin.joints.size(); ++j) {
            const RyGltfScenePatch::Edit &edit = m_patch.edits.at(skin.joints[j]);
            if ((!edit.restChanged && !figure.isRebuilt) || 16 * j + 16 > values.size())
                continue;
            std::vector<float> sixteen;
            ryGltfAppendMatrix(toFigure(figure, skin) * edit.bind.inverse(), sixteen);
            std::copy(sixteen.begin(), sixteen.end(), values.begin() + long(16 * j));
            isOther = true;
        }
        if (!isOther)
            continue;
        const int accessor = accessorNow < 0 ? m_patch.document.addFloatAccessor(values, 16, 0)
                                             : m_patch.document.replaceFloats(accessorNow, values);
        if (accessor != accessorNow)
            m_patch.document.setSkinInverseBindMatrices(skin.source->skin, accessor);
    }
}

// --- Meshes

void RyGltfSkinPatch::separateMeshes(Figure &figure)
{
    std::map<std::pair<int, int>, int> copies; // of a mesh for a skin
    for (size_t p = 0; p < figure.isDirty.size(); ++p) {
        if (!figure.isDirty[p] && !figure.isRebuilt && !figure.isMoved)
            continue;
        const RyGltfPartSource &part = figure.source->parts[p];
        const auto known = copies.find({part.mesh, part.skin});
        if (known != copies.end()) {
            figure.meshes[p] = known->second;
            continue;
        }
        // Other nodes, with another skin or none, must not see what is written here.
        std::vector<int> ours, theirs;
        for (const int node : m_users[part.mesh])
            (m_patch.document.model().nodes[size_t(node)].skin == part.skin ? ours : theirs).push_back(node);
        int mesh = part.mesh;
        if (!theirs.empty()) {
            mesh = m_tree.cloneMesh(part.mesh);
            for (const int node : ours)
                m_tree.setNodeMesh(node, mesh, part.skin);
            m_users[part.mesh] = theirs;
            m_users[mesh] = ours;
        }
        copies[{part.mesh, part.skin}] = mesh;
        figure.meshes[p] = mesh;
    }
    // All parts of a copied mesh are in the copy.
    for (size_t p = 0; p < figure.isDirty.size(); ++p) {
        const auto known = copies.find({figure.source->parts[p].mesh, figure.source->parts[p].skin});
        if (known != copies.end())
            figure.meshes[p] = known->second;
    }
}

void RyGltfSkinPatch::writeInfluences(const Figure &figure)
{
    if (!figure.influences)
        return;
    int free = 0;
    for (int vertex = 0; vertex < figure.mesh->getNumVertices(); ++vertex)
        free += figure.influences->of(vertex).empty();
    if (free > 0) {
        m_patch.say(
            QStringLiteral("%1 vertices of \"%2\" follow no bone; other programs will see them follow the first joint")
                .arg(free)
                .arg(figure.source->sceneNode->getName()));
    }
    RyGltfMeshPatch meshes(m_patch.document, *figure.influences, figure.mesh->getPositions());
    for (const Skin &skin : figure.skins) {
        std::map<const RyNode *, int> placeOf;
        for (size_t j = 0; j < skin.joints.size(); ++j)
            placeOf.emplace(m_patch.edits.at(skin.joints[j]).node, int(j));
        std::vector<RyGltfMeshPatch::Part> parts;
        for (size_t p = 0; p < figure.isDirty.size(); ++p) {
            const RyGltfPartSource &part = figure.source->parts[p];
            if (part.skin == skin.source->skin)
                parts.push_back(
                    {figure.meshes[p], part.primitive, &figure.parts->parts[p].vertexOfSplit, figure.isDirty[p]});
        }
        meshes.writeInfluences(parts, figure.influences->placesIn(placeOf));
    }
}

void RyGltfSkinPatch::writeVertices(const Figure &figure)
{
    for (const Skin &skin : figure.skins) {
        RyGltfVertexPatch vertices(m_patch.document, *figure.mesh, toFigure(figure, skin));
        std::set<std::pair<int, int>> done; // several nodes may show one mesh
        for (size_t p = 0; p < figure.source->parts.size(); ++p) {
            const RyGltfPartSource &part = figure.source->parts[p];
            if (part.skin == skin.source->skin && done.insert({figure.meshes[p], part.primitive}).second)
                vertices.write(figure.meshes[p], part.primitive, figure.parts->parts[p]);
        }
    }
}

void RyGltfSkinPatch::separateProp(const RyGltfFigureSource &source)
{
    const int node = source.parts.front().node;
    std::vector<int> &users = m_users[source.parts.front().mesh];
    int mesh = source.parts.front().mesh;
    if (users.size() > 1) {
        mesh = m_tree.cloneMesh(mesh);
        m_tree.setNodeMesh(node, mesh, -1);
        users.erase(std::remove(users.begin(), users.end(), node), users.end());
        m_users[mesh] = {node};
    }
    m_props.emplace_back(&source, mesh);
}

void RyGltfSkinPatch::writeProp(const RyGltfFigureSource &source, int mesh)
{
    const auto *shape = qobject_cast<const RyFacetShape *>(RyShape::getCurrentShapeForNode(source.sceneNode));
    RyGltfVertexPatch vertices(m_patch.document, *shape->getFacetMesh(),
                               m_patch.edits.at(source.parts.front().node).bind);
    for (size_t p = 0; p < source.parts.size(); ++p)
        vertices.write(mesh, source.parts[p].primitive, shape->getParts()->parts[p]);
}
