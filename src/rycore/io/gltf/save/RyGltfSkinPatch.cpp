#include "rycore/io/gltf/save/RyGltfSkinPatch.h"

#include "rycore/io/gltf/document/RyGltfMatrices.h"
#include "rycore/io/gltf/save/RyGltfCarriedVertices.h"
#include "rycore/io/gltf/save/RyGltfFigurePlanner.h"
#include "rycore/io/gltf/save/RyGltfMeshPatch.h"
#include "rycore/io/gltf/save/RyGltfMorphWriter.h"
#include "rycore/io/gltf/save/RyGltfVertexPatch.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RySkeleton.h"

#include <algorithm>

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
            figures.push_back(RyGltfFigurePlanner(m_patch).plan(source));
        else if (source.canWriteVertices() && m_patch.edits.count(source.parts.front().node))
            separateProp(source);
    }
    for (Figure &figure : figures) {
        separateMeshes(figure);
        writeJoints(figure);
    }
    if (m_tree.isChanged() && !m_tree.finish(error))
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

bool RyGltfSkinPatch::standsAbove(int node, const std::vector<int> &joints) const
{
    const RyGltfModel &model = m_patch.document.model();
    std::set<int> below{node};
    return std::all_of(joints.begin(), joints.end(), [&](int joint) {
        std::vector<int> path;
        for (; joint >= 0 && !below.count(joint); joint = model.nodes[size_t(joint)].parent)
            path.push_back(joint);
        below.insert(path.begin(), path.end());
        return joint >= 0;
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
            m_patch.toFigure[index] = figure.meshToFigure(skin, m_patch.source.unit) * RyAffine::fromScale(1.0 / unit);
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
                ryGltfAppendMatrix(
                    figure.meshToFigure(skin, m_patch.source.unit) * m_patch.edits.at(joint).bind.inverse(), values);
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
        const std::vector<int> &before = m_patch.source.document->model().skins[size_t(skin.source->skin)].joints;
        const std::set<int> known(before.begin(), before.end());
        bool isOther = false;
        if (figure.isRebuilt)
            values.resize(std::max(values.size(), 16 * skin.joints.size()), 0.0f);
        for (size_t j = 0; j < skin.joints.size(); ++j) {
            const RyGltfScenePatch::Edit &edit = m_patch.edits.at(skin.joints[j]);
            if ((!edit.restChanged && !figure.isRebuilt) || 16 * j + 16 > values.size())
                continue;
            std::vector<float> sixteen;
            const auto frame = m_patch.frames.find(skin.joints[j]);
            const bool isKnown = frame != m_patch.frames.end() && known.count(skin.joints[j]) > 0 &&
                                 !figure.isRebuilt && !edit.isCarried();
            ryGltfAppendMatrix(isKnown ? ryGltfMatrixAt(values, j) * frame->second.inverse()
                                       : figure.meshToFigure(skin, m_patch.source.unit) * edit.bind.inverse(),
                               sixteen);
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
        RyGltfNodeIndex placeOf;
        for (size_t j = 0; j < skin.joints.size(); ++j)
            placeOf.add(m_patch.edits.at(skin.joints[j]).node, int(j));
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
    const std::vector<RyGltfLinear> carried =
        ryGltfCarriedLinear(*figure.source->sceneNode, figure.mesh->getNumVertices());
    for (const Skin &skin : figure.skins) {
        RyGltfVertexPatch vertices(m_patch.document, *figure.mesh, figure.meshToFigure(skin, m_patch.source.unit));
        std::set<std::pair<int, int>> done; // several nodes may show one mesh
        std::vector<RyGltfVertexPatch::Part> parts;
        for (size_t p = 0; p < figure.source->parts.size(); ++p) {
            const RyGltfPartSource &part = figure.source->parts[p];
            if (part.skin == skin.source->skin && done.insert({figure.meshes[p], part.primitive}).second)
                parts.push_back({figure.meshes[p], part.primitive, &figure.parts->parts[p]});
        }
        vertices.write(parts);
        if (figure.isRebuilt || !carried.empty())
            renewDirections(figure, skin, carried);
    }
}

/// Tangents and morphs are in the space of the mesh, which is another now, or go with vertices that were carried on.
void RyGltfSkinPatch::renewDirections(const Figure &figure, const Skin &skin, const std::vector<RyGltfLinear> &carried)
{
    const RyAffine toFigure = figure.meshToFigure(skin, m_patch.source.unit);
    const RyGltfSpaceChange change(m_patch.document, *figure.source, skin.source->toFigure, toFigure, carried);
    RyGltfMorphWriter morphs(m_patch.document, *RyShape::getCurrentShapeForNode(figure.source->sceneNode), toFigure);
    std::set<std::pair<int, int>> done; // several nodes may show one mesh
    for (size_t p = 0; p < figure.source->parts.size(); ++p) {
        const RyGltfPartSource &part = figure.source->parts[p];
        if (part.skin != skin.source->skin || !done.insert({figure.meshes[p], part.primitive}).second)
            continue;
        change.turnTangents(figure.meshes[p], part.primitive, figure.parts->parts[p]);
        morphs.renewTargets(figure.meshes[p], part.primitive, figure.parts->parts[p], {*figure.source, part, change});
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
    std::vector<RyGltfVertexPatch::Part> parts;
    for (size_t p = 0; p < source.parts.size(); ++p)
        parts.push_back({mesh, source.parts[p].primitive, &shape->getParts()->parts[p]});
    vertices.write(parts);
}
