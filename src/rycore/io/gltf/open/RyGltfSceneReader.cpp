#include "rycore/io/gltf/open/RyGltfSceneReader.h"

#include "rycore/figure/RyFigure.h"
#include "rycore/figure/RyLegacyFigure.h"
#include "rycore/io/RyUnitFactor.h"
#include "rycore/io/RyWaiting.h"
#include "rycore/io/gltf/document/RyGltfFloats.h"
#include "rycore/io/gltf/document/RyGltfNodeWalk.h"
#include "rycore/io/gltf/extras/RyExtrasJson.h"
#include "rycore/io/gltf/extras/RyFigureExtras.h"
#include "rycore/io/gltf/extras/RyLinkExtras.h"
#include "rycore/io/gltf/extras/RyMorphExtras.h"
#include "rycore/io/gltf/extras/RyRiggingExtras.h"
#include "rycore/io/gltf/extras/RyTreeExtras.h"
#include "rycore/io/gltf/file/RyGltfUri.h"
#include "rycore/io/gltf/open/RyGltfBonePlacer.h"
#include "rycore/io/gltf/open/RyGltfFigureFinder.h"
#include "rycore/io/gltf/open/RyGltfNumberCheck.h"
#include "rycore/io/gltf/open/RyImageDecoder.h"
#include "rycore/io/gltf/play/RyGltfPlayedClip.h"
#include "rycore/math/RyLargePages.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyShape.h"
#include "rycore/skin/RySkinBinding.h"

#include <QFileInfo>

#include <algorithm>
#include <cmath>
#include <map>
#include <set>
#include <utility>

/// Bones from which on memory in small pages is what takes the time: each lies in dozens of pieces.
static constexpr size_t ManyBones = 1000;

RyGltfSceneReader::RyGltfSceneReader(std::unique_ptr<RyGltfDocument> document, const QString &path, double unit)
    : m_origin(std::make_unique<RyGltfOrigin>())
{
    m_origin->document = std::move(document);
    m_origin->filePath = path;
    m_origin->unit = unit;
    m_origin->readClips = &RyGltfPlayedClip::allOf;
}

RyGltfSceneReader::~RyGltfSceneReader() = default;

void RyGltfSceneReader::say(const QString &message)
{
    if (m_messages)
        m_messages->append(message);
}

/// Touches no node. False when nobody wants the scene any more.
bool RyGltfSceneReader::doLong(const std::function<void()> &work)
{
    if (m_waiting)
        m_waiting->run(work);
    else
        work();
    return !m_waiting || m_waiting->isWanted();
}

/// Between two things that take a while.
bool RyGltfSceneReader::isWanted()
{
    if (m_waiting)
        m_waiting->tell();
    return !m_waiting || m_waiting->isWanted();
}

bool RyGltfSceneReader::build(QString *error, QStringList *messages, RyWaiting *waiting)
{
    m_messages = messages;
    m_waiting = waiting;
    const RyGltfModel &model = m_origin->document->model();
    m_origin->unitWasChosen = m_origin->unit > 0.0;
    m_preOrder = ryGltfPreOrder(model);
    m_nodeToWorld = ryGltfWorldMaps(model, m_preOrder);
    m_sceneNodeOf.assign(model.nodes.size(), nullptr);
    m_sourceOf.assign(model.nodes.size(), -1);
    m_entries.emplace(*m_origin->document);
    leaveOutRemoved();
    m_placeInOrder.assign(model.nodes.size(), -1);
    for (size_t place = 0; place < m_preOrder.size(); ++place)
        m_placeInOrder[size_t(m_preOrder[place])] = int(place);
    draftFigures();
    if (!(m_origin->unit > 0.0))
        m_origin->unit = RyFigureExtras::storedUnit(*m_origin->document);
    if (!(m_origin->unit > 0.0))
        m_origin->unit = findUnit();
    QString refusal;
    if (!doLong([&] { refusal = findUnusableNumbers(); }))
        return false;
    if (!refusal.isEmpty()) {
        *error = QStringLiteral("%1 cannot be opened: %2").arg(m_origin->filePath, refusal);
        return false;
    }
    // In the order of the file, so that what something hangs on is there before it: a figure with the node that
    // carries it, since something else may hang there before its first bone.
    std::map<int, std::vector<Figure *>> figuresAt;
    for (Figure &figure : m_figures)
        figuresAt[figure.carrier >= 0 ? figure.carrier : figure.joints.bones.front()].push_back(&figure);
    const std::vector<bool> isProp = findProps();
    for (const int node : m_preOrder) {
        if (m_waiting && !m_waiting->isWanted())
            return false;
        const auto figures = figuresAt.find(node);
        if (figures != figuresAt.end())
            std::for_each(figures->second.begin(), figures->second.end(), [this](Figure *each) { buildFigure(*each); });
        else if (isProp[size_t(node)])
            buildProp(node);
    }
    // Props stand behind all figures, which go by their number.
    std::vector<RyGltfFigureSource> props = std::move(m_origin->figures);
    m_origin->figures.clear();
    for (Figure &figure : m_figures)
        m_origin->figures.push_back(std::move(figure.source));
    std::move(props.begin(), props.end(), std::back_inserter(m_origin->figures));
    for (const RyRef<RyNode> &top : m_tops)
        m_origin->tops.emplace_back(top.get());
    if (!isWanted())
        return false;
    readLinks();
    noteFits();
    m_origin->recordTree();
    return true;
}

/// What nodes of the whole file have to do with one another. A value that links add to has another share of its own.
void RyGltfSceneReader::readLinks()
{
    RyLinkExtras::Places places{m_sceneNodeOf, {}};
    for (const Figure &figure : m_figures) {
        if (figure.entry >= 0)
            places.figures.emplace(figure.entry, figure.figure);
    }
    RyFigureExtras::applyFollowTargets(*m_origin->document, places.figures, m_messages);
    const std::set<const RyNode *> linked = RyLinkExtras::apply(*m_origin->document, places, m_messages);
    std::set<const RyNode *> figures;
    for (const RyNode *node : linked)
        figures.insert(node->getSkeleton());
    const auto noteValues = [&linked](auto &source) {
        if (!linked.count(source.sceneNode))
            return;
        source.loaded = RyNodeValues::of(*source.sceneNode);
        source.riggingState = RyRiggingExtras::nodeState(*source.sceneNode);
    };
    for (RyGltfNodeSource &source : m_origin->nodes)
        noteValues(source);
    for (RyGltfFigureSource &source : m_origin->figures) {
        noteValues(source);
        const RyShape *shape = RyShape::getCurrentShapeForNode(source.sceneNode);
        if (shape && linked.count(source.sceneNode))
            source.morphsText = RyMorphExtras::text(*shape);
        if (figures.count(source.sceneNode))
            source.mapsText = RyMapExtras::text(RySkinBinding::findSkinFromNode(source.sceneNode));
    }
}

void RyGltfSceneReader::draftFigures()
{
    const RyGltfModel &model = m_origin->document->model();
    RyGltfFigureMarks marks;
    for (size_t skin = 0; skin < model.skins.size(); ++skin)
        marks.isLeftOut.push_back(RyTreeExtras::isRemoved(*m_origin->document, "skins", int(skin)));
    for (size_t node = 0; node < model.nodes.size(); ++node)
        marks.carries.push_back(RyTreeExtras::isFigure(*m_origin->document, int(node)));
    const auto restOf = [this](int node, const RyAffine &posed) {
        const double unit = RyFigureExtras::storedUnit(*m_origin->document);
        return unit > 0.0
                   ? RyRiggingExtras::restOf(*m_origin->document, node, unit, posed * RyAffine::fromScale(unit)) *
                         RyAffine::fromScale(1.0 / unit)
                   : posed;
    };
    for (RyGltfJointSet &set : ryGltfFindJointSets(model, m_preOrder, marks)) {
        Figure figure;
        figure.carrier = findCarrier(set, marks.carries);
        figure.place = int(m_figures.size());
        figure.rest = ryGltfFindRest(*m_origin->document, set, m_nodeToWorld, restOf);
        figure.joints = std::move(set);
        m_figures.push_back(std::move(figure));
    }
}

/// The nearest node above the topmost joints that is marked so, if it is the same for all of them.
int RyGltfSceneReader::findCarrier(const RyGltfJointSet &joints, const std::vector<bool> &carries) const
{
    const RyGltfModel &model = m_origin->document->model();
    int carrier = -1;
    for (size_t i = 0; i < joints.bones.size(); ++i) {
        if (joints.parents[i] >= 0)
            continue;
        int above = model.nodes[size_t(joints.bones[i])].parent;
        while (above >= 0 && !carries[size_t(above)])
            above = model.nodes[size_t(above)].parent;
        if (above < 0 || (i > 0 && above != carrier))
            return -1;
        carrier = above;
    }
    return carrier;
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
                const RyGltfFloats positions(*m_origin->document, primitive.positions);
                const size_t step = 1 + positions.count() / 100000; // a sample is enough for a height
                for (size_t i = 0; i < positions.count(); i += step) {
                    const float *point = positions.data() + 3 * i;
                    const double from[3] = {double(point[0]), double(point[1]), double(point[2])};
                    double at[3];
                    map->second.mapPoint(from, at);
                    for (int axis = 0; axis < 3; ++axis) {
                        if (!std::isfinite(at[axis])) // such a file is refused later
                            continue;
                        low[axis] = std::min(low[axis], at[axis]);
                        high[axis] = std::max(high[axis], at[axis]);
                    }
                }
            }
        }
        largest = std::max(largest, ryFigureHeight(high[0] - low[0], high[1] - low[1], high[2] - low[2]));
    }
    return ryUnitFactor(100.0, largest);
}

QString RyGltfSceneReader::findUnusableNumbers() const
{
    RyGltfNumberCheck check(*m_origin->document, m_origin->unit);
    for (const Figure &figure : m_figures) {
        for (size_t s = 0; s < figure.joints.skins.size(); ++s)
            check.checkSkin(figure.joints.skins[s], figure.rest.toFigure[s]);
    }
    return check.reason();
}

// --- Figures

void RyGltfSceneReader::buildFigure(Figure &figure)
{
    const RyGltfModel &model = m_origin->document->model();
    if (figure.rest.rebound) {
        say(QStringLiteral("%1: the rest of these joints is taken from their nodes, and the mesh was brought there")
                .arg(figure.rest.reason));
    }
    figure.entry = m_entries->find(figure.joints.bones, figure.place);
    std::vector<RyGltfMeshBuilder::BoneWeights> weights;
    const auto makeMesh = [&] {
        buildMesh(figure);
        weights = figure.mesh->boneWeights(int(figure.joints.bones.size()));
        figure.mesh->finish();
    };
    if (!doLong(makeMesh))
        return;
    if (findParametric(figure, weights))
        figure.figure = new RyLegacyFigure;
    else
        figure.figure = new RyFigure;
    figure.source.sceneNode = figure.figure;
    RyFigureExtras::applyToFigure(*m_origin->document, figure.entry, m_origin->unit, figure.rest.isStored,
                                  *figure.figure);
    hangFigure(figure);

    RyGltfNames &names = m_namesBelow[figure.figure];
    for (size_t i = 0; i < figure.joints.bones.size(); ++i) {
        const int node = figure.joints.bones[i];
        const QString &fileName = model.nodes[size_t(node)].name;
        auto *bone = new RyBone;
        if (figure.joints.bones.size() >= ManyBones)
            RyLargePages::growHeapBehind(bone);
        bone->setName(names.take(fileName.isEmpty() ? QStringLiteral("joint%1").arg(node) : fileName));
        const int parent = figure.joints.parents[i];
        RyNode *above = parent < 0 ? static_cast<RyNode *>(figure.figure) : figure.bones[size_t(parent)];
        above->addNodeChild(bone);
        figure.bones.push_back(bone);
        noteNode(node, *bone);
    }
    isWanted();
    std::vector<RyGltfNodeSource> sources = RyGltfBonePlacer(*m_origin, figure, m_messages).place();
    if (figure.carrier >= 0)
        addSource(carrierSource(figure));
    for (RyGltfNodeSource &source : sources)
        addSource(std::move(source));
    if (!attachSkin(figure))
        attachMesh(figure, std::move(weights));
    figure.source.loaded = RyNodeValues::of(*figure.figure);
    figure.source.riggingState = RyRiggingExtras::nodeState(*figure.figure);
}

void RyGltfSceneReader::addSource(RyGltfNodeSource source)
{
    m_sourceOf[size_t(source.node)] = int(m_origin->nodes.size());
    m_origin->nodes.push_back(std::move(source));
}

void RyGltfSceneReader::noteNode(int node, RyNode &sceneNode)
{
    m_sceneNodeOf[size_t(node)] = &sceneNode;
    m_placeOf.emplace(&sceneNode, m_placeInOrder[size_t(node)]);
}

/// What a node of the file stands below in the scene.
RyNode *RyGltfSceneReader::sceneNodeAbove(int node) const
{
    const RyGltfModel &model = m_origin->document->model();
    for (int at = model.nodes[size_t(node)].parent; at >= 0; at = model.nodes[size_t(at)].parent) {
        if (m_sceneNodeOf[size_t(at)])
            return m_sceneNodeOf[size_t(at)];
    }
    return nullptr;
}

void RyGltfSceneReader::hangFigure(Figure &figure)
{
    RyNode *above = figure.carrier >= 0 ? sceneNodeAbove(figure.carrier) : nullptr;
    figure.figure->setName(namesBeside(above).take(figureName(figure)));
    if (figure.carrier >= 0)
        noteNode(figure.carrier, *figure.figure);
    if (above)
        above->addNodeChild(figure.figure, false, placeBelow(*above, figure.carrier));
    else
        m_tops.emplace_back(figure.figure);
}

/// The node that carries a figure: where it stands while the figure does not move it.
RyGltfNodeSource RyGltfSceneReader::carrierSource(const Figure &figure) const
{
    RyGltfNodeSource source;
    source.node = figure.carrier;
    source.sceneNode = figure.figure;
    source.bind = m_nodeToWorld[size_t(figure.carrier)] * RyAffine::fromScale(m_origin->unit) *
                  figure.figure->worldMap().inverse();
    source.localPose = figure.figure->getLocalMap();
    source.loaded = RyNodeValues::of(*figure.figure);
    source.riggingState = RyRiggingExtras::nodeState(*figure.figure);
    return source;
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

/// Names that are taken where something hangs: in a figure, or at the top of the scene.
RyGltfNames &RyGltfSceneReader::namesBeside(RyNode *above)
{
    if (!above)
        return m_topNames;
    RyNode *figure = above->getSkeleton();
    return m_namesBelow[figure ? figure : above];
}

/// As the file calls it, or that of its own file; empty without one.
QString RyGltfSceneReader::imageName(int image) const
{
    const RyExtrasJson::Json *entry = RyExtrasJson::entry(std::as_const(*m_origin->document).json(), "images", image);
    for (const char *key : {"name", "uri"}) {
        const RyExtrasJson::Json *text = entry ? RyExtrasJson::find(*entry, key) : nullptr;
        if (text && text->is_string() && !RyGltfUri::isData(text->get_ref<const std::string &>()))
            return QString::fromStdString(text->get<std::string>()).section(QLatin1Char('/'), -1);
    }
    return {};
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
            readPicture(material.baseColorTexture, look);
        m_looks.push_back(std::move(look));
    }
    parts.looks = m_looks;
}

void RyGltfSceneReader::readPicture(int image, RyMaterialLook &look)
{
    QStringList words;
    look.picture = m_origin->document->imageBytes(image);
    look.pictureName = imageName(image);
    look.texture = RyImageDecoder::decode(look.picture, &words);
    words.removeDuplicates();
    for (const QString &each : words)
        say(QStringLiteral("%1: images[%2]: %3").arg(QFileInfo(m_origin->filePath).fileName()).arg(image).arg(each));
}
