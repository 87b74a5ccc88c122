#include "rycore/io/gltf/open/RyGltfSceneReader.h"

#include "rycore/figure/RyFigure.h"
#include "rycore/io/RyEndPointGuess.h"
#include "rycore/io/RyUnitFactor.h"
#include "rycore/io/gltf/document/RyGltfNodeWalk.h"
#include "rycore/io/gltf/extras/RyFigureExtras.h"
#include "rycore/io/gltf/extras/RyRiggingExtras.h"
#include "rycore/io/gltf/extras/RyTreeExtras.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/mesh/RyWeightMap.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyObject.h"
#include "rycore/skin/RyBoneBinding.h"
#include "rycore/skin/RySkinBinding.h"

#include <QFileInfo>
#include <QImage>

#include <algorithm>
#include <cmath>
#include <map>
#include <set>

namespace {

RyAffine linearPart(RyAffine map)
{
    map.m[3][0] = map.m[3][1] = map.m[3][2] = 0.0;
    return map;
}

float heightOf(const std::vector<RyVec3> &positions)
{
    RyBox3 box;
    for (const RyVec3 &p : positions)
        box.include(p);
    const RyVec3 extents = box.getExtents();
    const float largest = std::max({extents.x, extents.y, extents.z});
    return extents.y > 0.01f * largest ? extents.y : largest;
}

} // namespace

RyGltfSceneReader::RyGltfSceneReader(std::unique_ptr<RyGltfDocument> document, const QString &path, double unit)
    : m_origin(std::make_unique<RyGltfOrigin>())
{
    m_origin->document = std::move(document);
    m_origin->filePath = path;
    m_origin->unit = unit;
}

RyGltfSceneReader::~RyGltfSceneReader() = default;

void RyGltfSceneReader::say(const QString &message)
{
    if (m_messages)
        m_messages->append(message);
}

void RyGltfSceneReader::build(QStringList *messages)
{
    m_messages = messages;
    const RyGltfModel &model = m_origin->document->model();
    m_origin->unitWasChosen = m_origin->unit > 0.0;
    m_preOrder = ryGltfPreOrder(model);
    m_worldMaps = ryGltfWorldMaps(model, m_preOrder);
    m_sceneNodeOf.assign(model.nodes.size(), nullptr);
    leaveOutRemoved();
    std::vector<bool> isLeftOut;
    for (size_t skin = 0; skin < model.skins.size(); ++skin)
        isLeftOut.push_back(RyTreeExtras::isRemoved(*m_origin->document, "skins", int(skin)));
    const auto restOf = [this](int node, const RyAffine &posed) {
        const double unit = RyFigureExtras::storedUnit(*m_origin->document);
        return unit > 0.0
                   ? RyRiggingExtras::restOf(*m_origin->document, node, unit, posed * RyAffine::fromScale(unit)) *
                         RyAffine::fromScale(1.0 / unit)
                   : posed;
    };
    for (RyGltfJointSet &set : ryGltfFindJointSets(model, m_preOrder, isLeftOut)) {
        Figure figure;
        figure.rest = ryGltfFindRest(*m_origin->document, set, m_worldMaps, restOf);
        figure.joints = std::move(set);
        m_figures.push_back(std::move(figure));
    }
    if (!(m_origin->unit > 0.0))
        m_origin->unit = RyFigureExtras::storedUnit(*m_origin->document);
    if (!(m_origin->unit > 0.0))
        m_origin->unit = findUnit();
    for (Figure &figure : m_figures)
        buildFigure(figure);
    for (Figure &figure : m_figures)
        m_origin->figures.push_back(std::move(figure.source));
    buildProps();
    for (const RyRef<RyNode> &top : m_tops)
        m_origin->tops.emplace_back(top.get());
    m_origin->recordTree();
}

void RyGltfSceneReader::leaveOutRemoved()
{
    // What a save removed from the scene hangs nowhere and keeps its place in the file's lists.
    const RyGltfModel &model = m_origin->document->model();
    std::vector<bool> isRemoved(model.nodes.size(), false);
    for (const int node : m_preOrder) {
        const int parent = model.nodes[size_t(node)].parent;
        isRemoved[size_t(node)] =
            parent >= 0 ? isRemoved[size_t(parent)] : RyTreeExtras::isRemoved(*m_origin->document, "nodes", node);
    }
    // Half a skin makes no figure: where joints stand elsewhere too, the mark is wrong.
    std::vector<int> topOf(model.nodes.size(), -1);
    for (const int node : m_preOrder) {
        const int parent = model.nodes[size_t(node)].parent;
        topOf[size_t(node)] = parent >= 0 ? topOf[size_t(parent)] : node;
    }
    std::set<int> broughtBack;
    for (bool more = true; more;) {
        more = false;
        const auto isGone = [&](int node) {
            return isRemoved[size_t(node)] && !broughtBack.count(topOf[size_t(node)]);
        };
        for (const RyGltfSkin &skin : model.skins) {
            if (std::all_of(skin.joints.begin(), skin.joints.end(), isGone))
                continue;
            for (const int joint : skin.joints)
                more = (isGone(joint) && broughtBack.insert(topOf[size_t(joint)]).second) || more;
        }
    }
    m_preOrder.erase(
        std::remove_if(m_preOrder.begin(), m_preOrder.end(),
                       [&](int node) { return isRemoved[size_t(node)] && !broughtBack.count(topOf[size_t(node)]); }),
        m_preOrder.end());
}

double RyGltfSceneReader::findUnit() const
{
    const RyGltfModel &model = m_origin->document->model();
    double largest = 0.0;
    for (const Figure &figure : m_figures) {
        double low[3] = {1e300, 1e300, 1e300};
        double high[3] = {-1e300, -1e300, -1e300};
        std::map<int, RyAffine> toFigure;
        for (size_t s = 0; s < figure.joints.skins.size(); ++s)
            toFigure[figure.joints.skins[s]] = figure.rest.toFigure[s];
        for (const RyGltfNode &node : model.nodes) {
            const auto map = toFigure.find(node.skin);
            if (node.mesh < 0 || map == toFigure.end())
                continue;
            for (const RyGltfPrimitive &primitive : model.meshes[size_t(node.mesh)].primitives) {
                if (primitive.positions < 0)
                    continue;
                const std::vector<float> values = m_origin->document->readFloats(primitive.positions);
                const size_t step = 3 * (1 + values.size() / 300000); // a sample is enough for a height
                for (size_t i = 0; i + 2 < values.size(); i += step) {
                    const double from[3] = {values[i], values[i + 1], values[i + 2]};
                    double at[3];
                    map->second.mapPoint(from, at);
                    for (int axis = 0; axis < 3; ++axis) {
                        low[axis] = std::min(low[axis], at[axis]);
                        high[axis] = std::max(high[axis], at[axis]);
                    }
                }
            }
        }
        const double extent = std::max({high[0] - low[0], high[1] - low[1], high[2] - low[2]});
        if (extent > 0.0)
            largest = std::max(largest, high[1] - low[1] > 0.01 * extent ? high[1] - low[1] : extent);
    }
    return ryUnitFactor(100.0, largest);
}

// --- Figures

void RyGltfSceneReader::buildFigure(Figure &figure)
{
    const RyGltfModel &model = m_origin->document->model();
    if (figure.rest.rebound) {
        say(QStringLiteral("%1: the rest of these joints is taken from their nodes, and the mesh was brought there")
                .arg(figure.rest.reason));
    }
    figure.entry = RyFigureExtras::findEntry(*m_origin->document, figure.joints.bones, int(&figure - m_figures.data()));
    figure.figure = new RyFigure;
    figure.figure->setName(uniqueName(figureName(figure), m_topNames));
    figure.source.sceneNode = figure.figure;
    RyFigureExtras::applyToFigure(*m_origin->document, figure.entry, m_origin->unit, figure.rest.isStored,
                                  *figure.figure);
    m_tops.emplace_back(figure.figure);

    QSet<QString> &names = m_namesBelow[figure.figure];
    for (size_t i = 0; i < figure.joints.bones.size(); ++i) {
        const int node = figure.joints.bones[i];
        const QString &fileName = model.nodes[size_t(node)].name;
        auto *bone = new RyBone;
        bone->setName(uniqueName(fileName.isEmpty() ? QStringLiteral("joint%1").arg(node) : fileName, names));
        const int parent = figure.joints.parents[i];
        RyNode *above = parent < 0 ? static_cast<RyNode *>(figure.figure) : figure.bones[size_t(parent)];
        above->addNodeChild(bone);
        figure.bones.push_back(bone);
        m_sceneNodeOf[size_t(node)] = bone;
    }
    buildMesh(figure);
    std::vector<RyGltfMeshBuilder::BoneWeights> weights = figure.mesh->boneWeights(int(figure.bones.size()));
    placeBones(figure);
    attachMesh(figure, std::move(weights));
    figure.source.loaded = RyNodeValues::of(*figure.figure);
    figure.source.riggingText = RyRiggingExtras::nodeText(*figure.figure);
}

void RyGltfSceneReader::placeBones(Figure &figure)
{
    const RyGltfModel &model = m_origin->document->model();
    const size_t count = figure.bones.size();
    const double unit = m_origin->unit;
    float height = heightOf(figure.mesh->positions);

    std::vector<RyEndPointBone> bones(count);
    std::vector<RyGltfNodeSource> sources(count);
    RyBox3 joints;
    for (size_t i = 0; i < count; ++i) {
        RyGltfNodeSource &source = sources[i];
        source.node = figure.joints.bones[i];
        source.sceneNode = figure.bones[i];
        source.isBone = true;
        source.figure = int(&figure - m_figures.data());
        source.bind = figure.rest.bind[i] * RyAffine::fromScale(unit);
        source.localPose = RyAffine::fromScale(1.0 / unit) * figure.rest.localPose[i] * RyAffine::fromScale(unit);
        if (figure.joints.parents[i] < 0)
            source.localPose = source.localPose * figure.figure->worldMap().inverse();
        bones[i].parent = figure.joints.parents[i];
        bones[i].origin = source.bind.translation();
        source.bind.decomposePolar(source.stretch, bones[i].orientation);
        joints.include(bones[i].origin);
    }
    if (!(height > 0.0f))
        height = std::max(joints.getSize(), 1.0f);

    // Only leaves are measured by the vertices that follow them more than any other bone.
    std::vector<bool> isLeaf(count, true);
    for (const RyEndPointBone &bone : bones) {
        if (bone.parent >= 0)
            isLeaf[size_t(bone.parent)] = false;
    }
    const std::vector<int> &strongest = figure.mesh->strongestBones();
    for (size_t vertex = 0; vertex < strongest.size(); ++vertex) {
        if (strongest[vertex] >= 0 && isLeaf[size_t(strongest[vertex])])
            bones[size_t(strongest[vertex])].vertices.push_back(int(vertex));
    }
    for (size_t i = 0; i < count; ++i) {
        for (const int child : model.nodes[size_t(sources[i].node)].children) {
            const RyGltfNode &node = model.nodes[size_t(child)];
            if (ryGltfMarksEnd(node.name)) {
                bones[i].hasEndMarker = true;
                bones[i].endMarker = (node.transform.toAffine() * sources[i].bind).translation();
            }
        }
    }
    const std::vector<RyVec3> ends = ryGuessEndPoints(bones, figure.mesh->positions, height);
    for (size_t i = 0; i < count; ++i) {
        RyBone *bone = figure.bones[i];
        bone->setOrigin(bones[i].origin, true);
        bone->setOrientation(bones[i].orientation, true);
        bone->setEndPoint(ends[i], true);
        // The bone turns first about the axis that runs along it.
        const RyVec3 along = bones[i].orientation.inverse().multVec(ends[i] - bones[i].origin);
        int first = 0;
        for (int axis = 1; axis < 3; ++axis) {
            if (std::abs(along[axis]) > std::abs(along[first]))
                first = axis;
        }
        bone->setRotationOrder(RyRotationOrder::fromAxes(first, (first + 1) % 3, (first + 2) % 3));
        RyRiggingExtras::applyToNode(*m_origin->document, sources[i].node, unit, 1e-4f * height, sources[i].bind, *bone,
                                     m_messages);
        sources[i].stretch = linearPart(sources[i].bind) * RyAffine::fromRotation(bone->getOrientation().inverse());
        setPose(sources[i], height);
        RyRiggingExtras::applyLimits(*m_origin->document, sources[i].node, unit, *bone);
        sources[i].loaded = RyNodeValues::of(*bone);
        sources[i].riggingText = RyRiggingExtras::nodeText(*bone);
    }
    std::move(sources.begin(), sources.end(), std::back_inserter(m_origin->nodes));
}

void RyGltfSceneReader::setPose(RyGltfNodeSource &source, float height)
{
    RyNode *node = source.sceneNode;
    if (RyRiggingExtras::applyPose(*m_origin->document, source.node, m_origin->unit, source.localPose, 1e-4f * height,
                                   *node))
        return;
    const RyVec3 origin = node->getOrigin();
    const double from[3] = {origin.x, origin.y, origin.z};
    double at[3];
    source.localPose.mapPoint(from, at);
    RyAffine local = source.localPose;
    const RyNode *parent = node->getNodeParent();
    if (!node->inheritsScale() && parent) // what it leaves out of its parent's map the file's node holds against it
        local = linearPart(local * parent->figureMap()) * RyAffine::fromRotation(parent->getWSRot().inverse());
    RyAffine stretch;
    RyQuat rotation;
    local.decomposePolar(stretch, rotation);
    RyMatrix3 scale;
    bool unscaled = true;
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) {
            scale[i][j] = float(stretch.m[i][j]);
            unscaled = unscaled && std::abs(stretch.m[i][j] - (i == j ? 1.0 : 0.0)) < 2e-6;
        }
    }
    RyVec3 translation{float(at[0] - from[0]), float(at[1] - from[1]), float(at[2] - from[2])};
    // What is only the noise of single precision is no pose.
    if (translation.length() < 2e-6f * height)
        translation = RyVec3();
    if (std::abs(rotation.w) > 1.0f - 1e-12f || RyVec3(rotation.x, rotation.y, rotation.z).length() < 1e-6f)
        rotation = RyQuat();
    if (unscaled)
        scale = RyMatrix3();
    if (translation == RyVec3() && rotation == RyQuat() && unscaled)
        return;
    node->setLocalTransform(translation, rotation, scale, 1.0f);

    RyVec3 position;
    RyQuat held;
    RyMatrix3 heldScale;
    float general = 1.0f;
    node->getLocalTransform(position, held, heldScale, general);
    const RyMatrix3 wanted = scale * RyMatrix3(rotation);
    const RyMatrix3 got = heldScale * RyMatrix3(held);
    float worst = 0.0f;
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j)
            worst = std::max(worst, std::abs(wanted[i][j] - got[i][j]));
    }
    if (worst > 1e-3f) {
        say(QStringLiteral(
                "The pose of \"%1\" is sheared; the nearest pose without shear is shown, the file's own is kept")
                .arg(node->getName()));
    }
}

// --- Names and looks

QString RyGltfSceneReader::figureName(const Figure &figure) const
{
    const QString stored = RyFigureExtras::storedFigureName(*m_origin->document, figure.entry);
    if (!stored.isEmpty())
        return stored;
    const RyGltfModel &model = m_origin->document->model();
    const int above = model.nodes[size_t(figure.joints.bones.front())].parent;
    if (above >= 0 && !model.nodes[size_t(above)].name.isEmpty())
        return model.nodes[size_t(above)].name;
    for (const int skin : figure.joints.skins) {
        if (!model.skins[size_t(skin)].name.isEmpty())
            return model.skins[size_t(skin)].name;
    }
    const QString base = QFileInfo(m_origin->filePath).completeBaseName();
    return base.isEmpty() ? QStringLiteral("figure") : base;
}

QString RyGltfSceneReader::partName(int mesh, int primitive) const
{
    const RyGltfModel &model = m_origin->document->model();
    const RyGltfMesh &each = model.meshes[size_t(mesh)];
    QString name = each.name.isEmpty() ? QStringLiteral("mesh%1").arg(mesh) : each.name;
    const int material = each.primitives[size_t(primitive)].material;
    if (material >= 0 && each.primitives.size() > 1) {
        const QString &materialName = model.materials[size_t(material)].name;
        name += QLatin1Char(' ') + (materialName.isEmpty() ? QStringLiteral("material%1").arg(material) : materialName);
    }
    return name;
}

QString RyGltfSceneReader::uniqueName(const QString &wanted, QSet<QString> &taken) const
{
    QString name = wanted;
    for (int number = 2; taken.contains(name); ++number)
        name = wanted + QString::number(number);
    taken.insert(name);
    return name;
}

void RyGltfSceneReader::fillLooks(RyMeshParts &parts)
{
    const RyGltfModel &model = m_origin->document->model();
    for (size_t i = m_looks.size(); i < model.materials.size(); ++i) { // once; pictures are shared
        const RyGltfMaterial &material = model.materials[i];
        RyMaterialLook look;
        look.name = material.name;
        look.baseColor = material.baseColor;
        look.doubleSided = material.doubleSided;
        if (material.baseColorTexture >= 0)
            look.texture = QImage::fromData(m_origin->document->imageBytes(material.baseColorTexture));
        m_looks.push_back(std::move(look));
    }
    parts.looks = m_looks;
}
