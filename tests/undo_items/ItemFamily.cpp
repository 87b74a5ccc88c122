#include "ItemFamily.h"

#include "rycore/base/RyERCLink.h"
#include "rycore/base/RyFloatProperty.h"
#include "rycore/undo/RyUndoStackSilence.h"

#include <QTextStream>

#include <algorithm>

ItemFamily::ItemFamily(const QString &name) : m_name(name)
{
    // Made while a hold may be open: no part of it.
    const RyUndoStackSilence silence;
    makeNodes();
    makeGeometry();
    makeSkins();
}

// Nodes and what lists others without a guard first.
ItemFamily::~ItemFamily()
{
    skeletons.clear();
    bones.clear();
    objects.clear();
    skins.clear();
}

void ItemFamily::addObject(const QObject *object, const QString &kind, size_t index)
{
    m_ids[object] = m_name + kind + QString::number(index);
    m_all.emplace_back(const_cast<QObject *>(object));
}

std::vector<RyFloatProperty *> ItemFamily::controls(const RyNode *node)
{
    return {node->getOriginXControl(), node->getOriginYControl(), node->getOriginZControl(), node->getEndXControl(),
            node->getEndYControl(),    node->getEndZControl(),    node->getOrientXControl(), node->getOrientYControl(),
            node->getOrientZControl(), node->getXTransControl(),  node->getYTransControl(),  node->getZTransControl(),
            node->getXRotControl(),    node->getYRotControl(),    node->getZRotControl(),    node->getScaleControl(),
            node->getXScaleControl(),  node->getYScaleControl(),  node->getZScaleControl()};
}

static void pose(RyNode *node, int i)
{
    const auto f = float(i + 1);
    node->setOrigin({f, 10 * f, 0.5f}, true);
    node->setOrigin({f + 0.25f, 10 * f, 0.75f});
    node->setEndPoint({f, 10 * f + 8, -1}, true);
    node->getOrientZControl()->setDefaultValue(15 * f);
    node->getOrientZControl()->setValue(15 * f + 3);
    node->getXRotControl()->setValue(20 * f);
    node->getYRotControl()->setValue(-7);
    node->getScaleControl()->setValue(1.5f);
    node->getYScaleControl()->setValue(0.75f);
    node->getXTransControl()->setValue(2 * f);
}

void ItemFamily::makeNodes()
{
    for (size_t i = 0; i < 2; ++i) {
        skeletons.emplace_back(new RySkeleton);
        addObject(skeletons[i], QStringLiteral("figure"), i);
        skeletons[i]->setName(QStringLiteral("Figure%1").arg(i));
        pose(skeletons[i], 6 + int(i));
    }
    for (size_t i = 0; i < 5; ++i) {
        bones.emplace_back(new RyBone);
        addObject(bones[i], QStringLiteral("bone"), i);
        bones[i]->setName(QStringLiteral("Bone%1").arg(i));
        if (i % 2)
            bones[i]->setLabel(QStringLiteral("Label %1").arg(i));
        bones[i]->setRotationOrder(RyRotationOrder(int(i)));
        pose(bones[i], int(i));
        RyNode *parent = i == 0 ? static_cast<RyNode *>(skeletons[0]) : bones[i < 3 ? 0 : 1].get();
        parent->addNodeChild(bones[i]);
    }
    bones[2]->setHidden(true);
    bones[3]->setInheritScale(false);
    RyERCLink::create(bones[0]->getXRotControl(), bones[1]->getXRotControl());
    for (size_t i = 0; i < 2; ++i) {
        pairings.emplace_back(new RySelectionMap);
        addObject(pairings[i], QStringLiteral("pairing"), i);
        pairings[i]->addPair(QStringLiteral("body"), bones[i], false);
        pairings[i]->addPair(QStringLiteral("arm"), nullptr, false);
    }
    skeletons[0]->setSelectionMap(pairings[0]);
    skeletons[0]->setFollowTarget(skeletons[1]);
}

void ItemFamily::makeGeometry()
{
    for (size_t i = 0; i < 3; ++i) {
        meshes.emplace_back(new RyFacetMesh);
        addObject(meshes[i], QStringLiteral("mesh"), i);
        std::vector<RyVec3> positions;
        for (int vertex = 0; vertex < VertexCount; ++vertex)
            positions.emplace_back(float(vertex % 4) - 2, float(vertex / 4) * 5, float(i) + 0.5f);
        meshes[i]->setPositions(positions);
        std::vector<RyFacet> facets;
        for (int row = 0; row < 2; ++row) {
            for (int column = 0; column < 3; ++column) {
                const int first = row * 4 + column;
                facets.push_back({{first, first + 1, first + 5, first + 4}, -1});
            }
        }
        facets.push_back({{0, 5, 11, -1}, -1});
        meshes[i]->setFacets(facets);
        meshes[i]->createFaceGroup(QStringLiteral("body"));
        meshes[i]->createFaceGroup(QStringLiteral("arm"));
        meshes[i]->setGroupsOfFacets({0, 1, -1, 0, 1, 0, -1});
        parts.push_back(std::make_shared<RyMeshParts>());
    }
    for (size_t i = 0; i < 4; ++i) {
        shapes.emplace_back(new RyFacetShape(meshes[i % 3]));
        addObject(shapes[i], QStringLiteral("shape"), i);
        shapes[i]->setParts(parts[i % 2]);
    }
    for (size_t i = 0; i < 2; ++i) {
        objects.emplace_back(new RyObject);
        addObject(objects[i], QStringLiteral("object"), i);
        objects[i]->addShape(shapes[2 * i]);
    }
    skeletons[0]->setObject(objects[0]);
}

void ItemFamily::makeSkins()
{
    for (size_t i = 0; i < 5; ++i) {
        maps.emplace_back(new RyWeightMap(QStringLiteral("Map%1").arg(i)));
        addObject(maps[i], QStringLiteral("map"), i);
        maps[i]->setAffected(VertexCount, {int(i), int(i) + 3}, {20000, quint16(100 + i)});
    }
    for (size_t i = 0; i < 6; ++i) {
        bulges.emplace_back(new RyBulgeBinding(int(i % 3)));
        addObject(bulges[i], QStringLiteral("bulge"), i);
        bulges[i]->setLeftWeights(maps[i % 5]);
        bulges[i]->adjustBulgeValues(1, float(i), 0, 2);
    }
    for (size_t i = 0; i < 4; ++i) {
        bindings.emplace_back(new RyBoneBinding);
        addObject(bindings[i], QStringLiteral("binding"), i);
        bindings[i]->setName(QStringLiteral("Binding%1").arg(i));
        bindings[i]->setBone(bones[i]);
        if (i % 2) {
            bindings[i]->setWeights(maps[i]);
        } else {
            for (int axis = 0; axis < 3; ++axis)
                bindings[i]->setLocalWeights(maps[size_t(axis)], axis);
            bindings[i]->setScaleWeights(maps[4]);
        }
        bindings[i]->setBulgeBinding(int(i % 3), bulges[i % 3]);
    }
    for (size_t i = 0; i < 3; ++i) {
        skins.emplace_back(new RySkinBinding);
        addObject(skins[i], QStringLiteral("skin"), i);
    }
    for (size_t i = 0; i < 3; ++i)
        skins[i % 2]->addBoneBinding(bindings[i]);
    objects[0]->addModifier(skins[0]);
    objects[0]->addModifier(skins[1]);
}

void ItemFamily::destroy()
{
    // A parent and an object count their children in plain lists: from the top down.
    std::vector<QPointer<RyNode>> nodes(bones.begin(), bones.end());
    nodes.insert(nodes.end(), skeletons.begin(), skeletons.end());
    for (bool found = true; found;) {
        found = false;
        for (const QPointer<RyNode> &node : nodes) {
            if (node && !node->getNodeParent()) {
                delete node.data();
                found = true;
            }
        }
    }
    for (const auto &object : objects)
        delete object.get();
    for (const auto &skin : skins)
        delete skin.get();
    for (const QPointer<QObject> &object : m_all)
        delete object.data();
}

QString ItemFamily::propertyText(const RyFloatProperty *property) const
{
    QStringList links;
    for (const RyERCLink *link : property->getControllerLinks())
        links.append(link->getController()->getName() + QLatin1Char('@') + id(link->getController()->getOwner()));
    links.sort();
    return QStringLiteral("%1 %2 %3 %4 %5..%6 %7 [%8]")
        .arg(property->getName())
        .arg(double(property->getRawValue()), 0, 'g', 9)
        .arg(double(property->getValue()), 0, 'g', 9)
        .arg(double(property->getDefaultValue()), 0, 'g', 9)
        .arg(double(property->getMin()), 0, 'g', 9)
        .arg(double(property->getMax()), 0, 'g', 9)
        .arg(property->isClamped())
        .arg(links.join(QLatin1Char(' ')));
}

QString ItemFamily::nodeText(const RyNode *node) const
{
    QString text;
    QTextStream out(&text);
    out << "hidden " << node->isHidden() << " selectable " << node->isSelectable() << " promote "
        << node->isSelectionPromoted() << " scale " << node->inheritsScale() << " order "
        << node->getRotationOrder().name() << " object " << id(node->getObject()) << " parent "
        << id(node->getNodeParent()) << " scene " << (node->getScene() != nullptr);
    for (const RyNode *child : node->nodeChildrenIterator())
        out << " child " << id(child);
    for (const RyFloatProperty *property : controls(node))
        out << '\n' << propertyText(property);
    const RyVec3 place = node->getWSEndPoint();
    out << "\nends at " << place.x << ' ' << place.y << ' ' << place.z;
    if (const auto *skeleton = qobject_cast<const RySkeleton *>(node))
        out << " follows " << id(skeleton->getFollowTarget()) << " draws " << skeleton->drawsGLBones() << " pairs "
            << id(skeleton->getSelectionMap());
    return text;
}

QString ItemFamily::meshText(const RyFacetMesh *mesh) const
{
    QString text;
    QTextStream out(&text);
    for (const RyVec3 &position : mesh->getPositions())
        out << position.x << ',' << position.y << ',' << position.z << ' ';
    for (const RyFacet &facet : mesh->getFacets())
        out << facet.vertices[0] << '-' << facet.vertices[1] << '-' << facet.vertices[2] << '-' << facet.vertices[3]
            << ':' << facet.group << ' ';
    for (int i = 0; i < mesh->getNumFaceGroups(); ++i)
        out << mesh->getFaceGroup(i)->getName() << ' ';
    return text;
}

QString ItemFamily::ownText(const QObject *object) const
{
    QString text;
    QTextStream out(&text);
    if (const auto *element = qobject_cast<const RyElement *>(object))
        out << element->getName() << " \"" << element->getLabel() << "\" " << element->hasOwnLabel() << ' ';
    if (const auto *node = qobject_cast<const RyNode *>(object)) {
        out << nodeText(node);
    } else if (const auto *mesh = qobject_cast<const RyFacetMesh *>(object)) {
        out << meshText(mesh);
    } else if (const auto *pairs = qobject_cast<const RySelectionMap *>(object)) {
        for (int i = 0; i < pairs->getNumPairs(); ++i)
            out << pairs->getPairGroup(i) << '=' << id(pairs->getPairNode(i)) << ' ';
    } else if (const auto *shape = qobject_cast<const RyFacetShape *>(object)) {
        const auto place = std::find(parts.begin(), parts.end(), shape->getParts());
        out << id(shape->getFacetMesh()) << " parts " << (place - parts.begin());
    } else if (const auto *shown = qobject_cast<const RyObject *>(object)) {
        out << "current " << id(shown->getCurrentShape());
        for (const RyShape *each : shown->getShapes())
            out << ' ' << id(each);
        for (const RyModifier *each : shown->getModifiers())
            out << ' ' << id(each);
    } else if (const auto *skin = qobject_cast<const RySkinBinding *>(object)) {
        out << "local " << skin->hasLocalMaps() << " general " << skin->hasGeneralMaps();
        for (const RyBoneBinding *each : skin->bindings())
            out << ' ' << id(each);
    } else if (const auto *binding = qobject_cast<const RyBoneBinding *>(object)) {
        out << id(binding->getBone()) << " in " << id(binding->getSkin()) << ' ' << id(binding->getWeights()) << ' '
            << id(binding->getScaleWeights());
        for (int axis = 0; axis < 3; ++axis)
            out << ' ' << id(binding->getLocalWeights(axis)) << ' ' << id(binding->getBulgeBinding(axis));
    } else if (const auto *bulge = qobject_cast<const RyBulgeBinding *>(object)) {
        out << id(bulge->getLeftWeights()) << ' ' << id(bulge->getRightWeights()) << " in "
            << id(bulge->getBoneBinding()) << ' ' << propertyText(bulge->getNegLeftBulgeController());
    } else if (const auto *map = qobject_cast<const RyWeightMap *>(object)) {
        out << map->getNumWeights();
        for (int i = 0; i < map->getNumAffected(); ++i)
            out << ' ' << map->getAffectedIndices()[i] << ':' << map->getAffectedWeights()[i];
    }
    return text;
}

QMap<QString, QString> ItemFamily::state() const
{
    QMap<QString, QString> state;
    for (const QPointer<QObject> &object : m_all)
        state[id(object)] = ownText(object);
    return state;
}

void ItemFamily::watch(SignalLog &log) const
{
    const auto shortId = [this](const QObject *object) { return id(object).mid(m_name.size()); };
    for (const QPointer<QObject> &object : m_all) {
        log.watch(shortId(object), object);
        if (const auto *node = qobject_cast<const RyNode *>(object.data())) {
            for (const RyFloatProperty *property : controls(node))
                log.watch(shortId(object) + QLatin1Char('/') + property->getName(), property);
        }
    }
}
