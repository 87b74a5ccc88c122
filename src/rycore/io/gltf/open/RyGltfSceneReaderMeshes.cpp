#include "rycore/io/gltf/open/RyGltfSceneReader.h"

#include "rycore/figure/RyFigure.h"
#include "rycore/io/gltf/extras/RyExtrasJson.h"
#include "rycore/io/gltf/extras/RyFigureExtras.h"
#include "rycore/io/gltf/extras/RyGltfInfluences.h"
#include "rycore/io/gltf/extras/RyMeshExtras.h"
#include "rycore/io/gltf/extras/RyMorphExtras.h"
#include "rycore/io/gltf/extras/RyParametricExtras.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/mesh/RyWeightMap.h"
#include "rycore/parametric/RyLegacyBinding.h"
#include "rycore/parametric/fit/RyLegacyFit.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"
#include "rycore/skin/RyBoneBinding.h"
#include "rycore/skin/RySkinBinding.h"

#include <algorithm>
#include <array>
#include <map>

// Meshes of figures and what binds them to the bones.

void RyGltfSceneReader::buildMesh(Figure &figure)
{
    const RyGltfModel &model = m_origin->document->model();
    figure.mesh = std::make_unique<RyGltfMeshBuilder>(m_origin->document);
    std::vector<std::vector<int>> bonesOfJoints; // per skin of the figure
    for (size_t s = 0; s < figure.joints.skins.size(); ++s) {
        const int skin = figure.joints.skins[s];
        bonesOfJoints.push_back(figure.joints.bonesOf(model.skins[size_t(skin)]));
        figure.source.skins.push_back(
            {skin, figure.rest.toFigure[s] * RyAffine::fromScale(m_origin->unit), figure.rest.rebound});
    }
    for (const int nodeIndex : m_preOrder) {
        const RyGltfNode &node = model.nodes[size_t(nodeIndex)];
        const int skin = figure.joints.placeOfSkin(node.skin);
        if (node.mesh < 0 || skin < 0)
            continue;
        const std::vector<RyGltfPrimitive> &primitives = model.meshes[size_t(node.mesh)].primitives;
        for (size_t p = 0; p < primitives.size(); ++p) {
            figure.mesh->addPart(node.mesh, int(p), partName(node.mesh, int(p)), bonesOfJoints[size_t(skin)],
                                 figure.source.skins[size_t(skin)].toFigure, skin);
            figure.source.parts.push_back({nodeIndex, node.mesh, int(p), node.skin});
        }
    }
    if (figure.mesh->droppedInfluences > 0)
        say(QStringLiteral("%1 influences that name no joint or are no positive numbers were left out")
                .arg(figure.mesh->droppedInfluences));
    if (figure.rest.rebound)
        figure.source.toNodePose = std::make_shared<std::vector<RyGltfLinear>>(bringToNodePose(figure));
}

/// Per skin and bone: from figure space, where the mesh lies as the file has it, to where the file's skinning brings
/// it, both in centimetres.
std::vector<std::vector<RyAffine>> RyGltfSceneReader::restToNodePose(const Figure &figure) const
{
    const RyGltfModel &model = m_origin->document->model();
    std::vector<std::vector<RyAffine>> result(figure.joints.skins.size());
    for (size_t s = 0; s < result.size(); ++s) {
        result[s].resize(figure.joints.bones.size());
        const RyGltfSkin &skin = model.skins[size_t(figure.joints.skins[s])];
        const RyAffine figureToMesh = figure.source.skins[s].toFigure.inverse();
        for (size_t j = 0; j < skin.joints.size(); ++j) {
            result[s][size_t(figure.joints.boneOf(skin.joints[j]))] = figureToMesh * figure.rest.inverseBinds[s][j] *
                                                                      m_nodeToWorld[size_t(skin.joints[j])] *
                                                                      RyAffine::fromScale(m_origin->unit);
        }
    }
    return result;
}

/// The file's own skinning, once. A vertex belongs to the parts of one skin. Says how each was turned and scaled.
std::vector<RyGltfLinear> RyGltfSceneReader::bringToNodePose(Figure &figure)
{
    std::vector<RyVec3> &positions = figure.mesh->positions;
    std::vector<int> skinOfVertex(positions.size(), -1);
    for (size_t p = 0; p < figure.source.parts.size(); ++p) {
        const int skin = figure.joints.placeOfSkin(figure.source.parts[p].skin);
        for (const int vertex : figure.mesh->parts.parts[p].vertexOfSplit)
            skinOfVertex[size_t(vertex)] = skin;
    }
    const std::vector<std::vector<RyAffine>> toNodePose = restToNodePose(figure);
    std::vector<std::array<double, 4>> sums(positions.size(), std::array<double, 4>{});
    std::vector<RyGltfLinear> linear(positions.size(), RyGltfLinear{});
    const std::vector<RyGltfMeshBuilder::BoneWeights> weights =
        figure.mesh->boneWeights(int(figure.joints.bones.size()));
    for (size_t bone = 0; bone < weights.size(); ++bone) {
        for (size_t i = 0; i < weights[bone].vertices.size(); ++i) {
            const size_t vertex = size_t(weights[bone].vertices[i]);
            const double weight = double(weights[bone].weights[i]) / RyWeightMap::FullWeight;
            const double from[3] = {positions[vertex].x, positions[vertex].y, positions[vertex].z};
            double at[3];
            const RyAffine &map = toNodePose[size_t(skinOfVertex[vertex])][bone];
            map.mapPoint(from, at);
            for (size_t axis = 0; axis < 3; ++axis) {
                sums[vertex][axis] += weight * at[axis];
                for (size_t row = 0; row < 3; ++row)
                    linear[vertex][row][axis] += weight * map.m[row][axis];
            }
            sums[vertex][3] += weight;
        }
    }
    for (size_t vertex = 0; vertex < positions.size(); ++vertex) {
        const std::array<double, 4> &sum = sums[vertex];
        if (sum[3] > 0.0)
            positions[vertex] = {float(sum[0] / sum[3]), float(sum[1] / sum[3]), float(sum[2] / sum[3])};
        for (size_t row = 0; row < 3; ++row) {
            for (size_t axis = 0; axis < 3; ++axis) {
                double &number = linear[vertex][row][axis];
                number = sum[3] > 0.0 ? number / sum[3] : row == axis ? 1.0 : 0.0;
            }
        }
    }
    figure.mesh->parts.shapedFrom = positions;
    return linear;
}

/// `propFrame`: mesh space of a prop to figure space in centimetres.
void RyGltfSceneReader::readMorphs(RyGltfFigureSource &source, RyShape &shape, int entry, const RyAffine &propFrame)
{
    RyGltfMorphReader morphs(*m_origin->document, m_messages);
    for (size_t p = 0; p < source.parts.size(); ++p) {
        const RyGltfPartSource &part = source.parts[p];
        const auto skin = std::find_if(source.skins.begin(), source.skins.end(),
                                       [&part](const RyGltfSkinSource &each) { return each.skin == part.skin; });
        morphs.addPart(part, source.meshParts->parts[p], skin == source.skins.end() ? propFrame : skin->toFigure,
                       source.toNodePose.get());
    }
    source.morphs = morphs.addTo(shape, *source.sceneNode);
    RyMorphExtras::apply(*m_origin->document, entry, shape);
    source.morphsText = RyMorphExtras::text(shape);
}

void RyGltfSceneReader::attachMesh(Figure &figure, std::vector<RyGltfMeshBuilder::BoneWeights> weights)
{
    const int vertexCount = int(figure.mesh->positions.size());
    auto *mesh = new RyFacetMesh;
    RyFigureExtras::applyFacetOrder(*m_origin->document, figure.entry, figure.mesh->facets, figure.mesh->polygons,
                                    figure.mesh->parts, m_messages);
    mesh->setPositions(std::move(figure.mesh->positions));
    mesh->setFacets(std::move(figure.mesh->facets), std::move(figure.mesh->polygons));
    auto parts = std::make_shared<RyMeshParts>(std::move(figure.mesh->parts));
    fillLooks(*parts);
    auto *shape = new RyFacetShape(mesh);
    shape->setParts(parts);
    auto *object = new RyObject;
    object->setName(RyFigureExtras::objectName(*m_origin->document, figure.entry, *figure.figure));
    object->addShape(shape);
    if (!RyFigureExtras::applyFaceGroups(*m_origin->document, figure.entry, *mesh, m_messages))
        addPartGroups(*mesh, *parts);

    isWanted();
    object->addModifier(figure.parametric ? bindJoints(figure, std::move(weights))
                                          : bindBones(figure, vertexCount, std::move(weights)));
    figure.source.meshParts = parts;
    isWanted();
    readMorphs(figure.source, *shape, figure.entry, RyAffine());
    isWanted();
    figure.figure->setObject(object);
    figure.source.positionsHash = ryPositionsHash(*figure.figure);
    figure.source.vertexCount = vertexCount;
    figure.source.height = ryMeshHeight(mesh->getPositions());
    figure.source.parametricText = RyParametricExtras::text(*figure.figure);
    figure.source.groupsText = RyMeshExtras::groupsText(*mesh);
    RyFigureExtras::applySelectionMap(*m_origin, figure.entry, *figure.figure);
    figure.source.selectionText = RyFigureExtras::selectionText(*figure.figure);
    figure.mesh.reset();
}

/// The skin of a figure that has no mesh, but weights for one. False, and nothing done, where none is stored that fits.
bool RyGltfSceneReader::attachSkin(Figure &figure)
{
    const RyExtrasJson::Json *stored = RyFigureExtras::storedSkin(*m_origin->document, figure.entry);
    if (!stored)
        return false;
    if (!figure.source.parts.empty()) {
        say(QStringLiteral("The weights that \"%1\" was saved with are left out: it has a mesh by now")
                .arg(figure.figure->getName()));
        return false;
    }
    std::map<int, RyBone *> bones;
    for (size_t i = 0; i < figure.bones.size(); ++i)
        bones.emplace(figure.joints.bones[i], figure.bones[i]);
    auto skin = std::make_unique<RySkinBinding>();
    if (!RyMapExtras::readSkin(*stored, bones, *skin)) {
        say(QStringLiteral("The weights of \"%1\", which has no mesh, are damaged and left out")
                .arg(figure.figure->getName()));
        return false;
    }
    auto loaded = std::make_shared<RyGltfFigureSource::Weights>();
    for (const RyBoneBinding *binding : skin->bindings()) {
        const RyGltfBindingWeights read(*binding);
        loaded->push_back({binding->getBone(),
                           {read.vertices.begin(), read.vertices.end()},
                           {read.weights.begin(), read.weights.end()}});
    }
    figure.source.weights = std::move(loaded);
    figure.source.mapsText = RyMapExtras::text(skin.get());
    auto *object = new RyObject;
    object->setName(RyFigureExtras::objectName(*m_origin->document, figure.entry, *figure.figure));
    object->addModifier(skin.release());
    figure.figure->setObject(object);
    figure.source.positionsHash = ryPositionsHash(*figure.figure);
    return true;
}

/// Bones that get a binding, in order: those that an earlier save stored, then what has weights all the same; without
/// such a list all joints.
std::vector<size_t> RyGltfSceneReader::bonesToBind(const Figure &figure,
                                                   const std::vector<RyGltfMeshBuilder::BoneWeights> &weights) const
{
    std::vector<bool> isJoint(figure.bones.size(), false);
    for (const int skin : figure.joints.skins) {
        for (const int bone : figure.joints.bonesOf(m_origin->document->model().skins[size_t(skin)]))
            isJoint[size_t(bone)] = true;
    }
    std::vector<size_t> order;
    std::vector<bool> isListed(figure.bones.size(), false);
    const auto add = [&](size_t bone) {
        if (!isListed[bone])
            order.push_back(bone);
        isListed[bone] = true;
    };
    bool isStored = false;
    for (const int node : RyFigureExtras::storedBindings(*m_origin->document, figure.entry, &isStored)) {
        if (figure.joints.boneOf(node) >= 0)
            add(size_t(figure.joints.boneOf(node)));
    }
    for (size_t bone = 0; bone < figure.bones.size(); ++bone) {
        if (isStored ? !weights[bone].vertices.empty() : isJoint[bone])
            add(bone);
    }
    return order;
}

RySkinBinding *RyGltfSceneReader::bindBones(Figure &figure, int vertexCount,
                                            std::vector<RyGltfMeshBuilder::BoneWeights> weights) const
{
    auto *skin = new RySkinBinding;
    const bool hasMaps = RyFigureExtras::hasMaps(*m_origin->document, figure.entry);
    RyMapExtras::Fingerprint fingerprint;
    RyGltfNodeIndex nodeOf;
    auto loaded = std::make_shared<RyGltfFigureSource::Weights>();
    for (const size_t i : bonesToBind(figure, weights)) {
        auto *map = new RyWeightMap(figure.bones[i]->getName());
        map->setAffected(vertexCount, weights[i].vertices, weights[i].weights);
        auto *binding = new RyBoneBinding;
        binding->setBone(figure.bones[i]);
        binding->setWeights(map);
        skin->addBoneBinding(binding);
        const int node = figure.joints.bones[i];
        nodeOf.add(figure.bones[i], node);
        for (size_t k = 0; hasMaps && k < weights[i].vertices.size(); ++k)
            fingerprint.add(node, weights[i].vertices[k], weights[i].weights[k]);
        loaded->push_back({figure.bones[i], std::move(weights[i].vertices), std::move(weights[i].weights)});
    }
    if (hasMaps) {
        RyFigureExtras::applyMaps(*m_origin->document, figure.entry, fingerprint, vertexCount, nodeOf, *skin,
                                  m_messages);
        for (size_t i = 0; i < skin->bindings().size(); ++i) {
            // Where only local maps are left, the mean of them is what counts as read.
            const RyGltfBindingWeights read(*skin->bindings()[i]);
            (*loaded)[i].vertices.assign(read.vertices.begin(), read.vertices.end());
            (*loaded)[i].weights.assign(read.weights.begin(), read.weights.end());
        }
    }
    figure.source.weights = std::move(loaded);
    figure.source.mapsText = RyMapExtras::text(skin);
    return skin;
}

/// Whether joints are stored that belong to these weights: only then the figure is parametric.
bool RyGltfSceneReader::findParametric(Figure &figure, const std::vector<RyGltfMeshBuilder::BoneWeights> &weights)
{
    const RyExtrasJson::Json *stored = RyFigureExtras::storedParametric(*m_origin->document, figure.entry);
    if (!stored)
        return false;
    RyMapExtras::Fingerprint fingerprint;
    for (size_t bone = 0; bone < weights.size(); ++bone) {
        for (size_t i = 0; i < weights[bone].vertices.size(); ++i)
            fingerprint.add(figure.joints.bones[bone], weights[bone].vertices[i], weights[bone].weights[i]);
    }
    const bool isWhole = RyParametricExtras::isReadable(*stored);
    if (isWhole && RyParametricExtras::fits(*stored, fingerprint)) {
        figure.parametric = stored;
        return true;
    }
    say(isWhole
            ? QStringLiteral("\"%1\" opens weight mapped: its weights or vertices are not those that its joint "
                             "parameters were saved with, which stay in the file until the figure is saved anew")
                  .arg(figureName(figure))
            : QStringLiteral("\"%1\" opens weight mapped: its joint parameters are damaged").arg(figureName(figure)));
    figure.source.keptParametric =
        QString::fromStdString(stored->dump(-1, ' ', false, RyExtrasJson::Json::error_handler_t::replace));
    return false;
}

/// Joints take the place of the skin, whose weights are what was fitted to them.
RyModifier *RyGltfSceneReader::bindJoints(Figure &figure, std::vector<RyGltfMeshBuilder::BoneWeights> weights) const
{
    std::map<int, RyBone *> bones;
    auto loaded = std::make_shared<RyGltfFigureSource::Weights>();
    auto fit = std::make_shared<RyLegacyFit>();
    for (size_t i = 0; i < figure.bones.size(); ++i) {
        bones.emplace(figure.joints.bones[i], figure.bones[i]);
        fit->bones.push_back({figure.bones[i], weights[i].vertices, weights[i].weights});
        loaded->push_back({figure.bones[i], std::move(weights[i].vertices), std::move(weights[i].weights)});
    }
    figure.source.weights = std::move(loaded);
    RyParametricExtras::readReport(*figure.parametric, *fit);
    bool isWhole = false;
    const double stored = RyFigureExtras::storedUnit(*m_origin->document);
    RyLegacyBinding *binding =
        RyParametricExtras::read(*figure.parametric, bones, stored > 0.0 ? float(m_origin->unit / stored) : 1.0f,
                                 figure.figure->getName(), &isWhole, m_messages);
    binding->keepFit(fit);
    if (isWhole)
        figure.fit = std::move(fit);
    return binding;
}

/// What the weights of the file were fitted to, once all values are there: they stay as long as it does.
void RyGltfSceneReader::noteFits()
{
    for (const Figure &figure : m_figures) {
        if (figure.fit)
            figure.fit->input = RyLegacyFitInput::of(*RyLegacyBinding::findBinding(figure.figure), *figure.figure);
    }
}

void RyGltfSceneReader::addPartGroups(RyFacetMesh &mesh, const RyMeshParts &parts)
{
    std::map<QString, int> groups;
    std::vector<int> groupOfPart;
    for (const RyMeshPart &part : parts.parts) {
        const auto [group, isNew] =
            part.facetCount == 0 ? std::pair(groups.end(), false) : groups.try_emplace(part.name, int(groups.size()));
        if (isNew)
            mesh.createFaceGroup(part.name);
        groupOfPart.push_back(group == groups.end() ? -1 : group->second);
    }
    std::vector<int> groupOfFacet;
    groupOfFacet.reserve(size_t(mesh.getNumFacets()));
    for (const RyMeshParts::Run &run : parts.runs())
        groupOfFacet.insert(groupOfFacet.end(), size_t(run.facetCount), groupOfPart[size_t(run.part)]);
    mesh.setGroupsOfFacets(groupOfFacet);
}
