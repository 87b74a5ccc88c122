#include "rycore/io/RySceneDump.h"

#include "rycore/base/RyERCLink.h"
#include "rycore/base/RyFloatProperty.h"
#include "rycore/base/RyPropertyGroup.h"
#include "rycore/io/RyPartNormals.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/mesh/RyWeightMap.h"
#include "rycore/parametric/RyLegacyBinding.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyCamera.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyMorph.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySelectionMap.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/skin/RyBoneBinding.h"
#include "rycore/skin/RyBulgeBinding.h"
#include "rycore/skin/RySkinBinding.h"

#include <QCache>
#include <QTextStream>

#include <algorithm>
#include <cstring>
#include <unordered_map>

namespace {

/// FNV-1a over 64 bits.
class Hash
{
public:
    template<typename T>
    void add(const T &value)
    {
        unsigned char bytes[sizeof(T)];
        std::memcpy(bytes, &value, sizeof(T));
        for (const unsigned char byte : bytes)
            m_value = (m_value ^ byte) * 0x100000001b3ull;
    }
    QString text() const { return QString::number(m_value, 16); }

private:
    quint64 m_value = 0xcbf29ce484222325ull;
};

QString number(double value)
{
    return QString::asprintf("%.9g", value == 0.0 ? 0.0 : value);
}

QString quoted(QString text)
{
    text.replace(QLatin1Char('\\'), QLatin1String("\\\\"));
    text.replace(QLatin1Char('"'), QLatin1String("\\\""));
    text.replace(QLatin1Char('\n'), QLatin1String("\\n"));
    return QLatin1Char('"') + text + QLatin1Char('"');
}

/// Begins at the lowest corner, of equal ones at the one that lower ones follow: it makes no difference where a polygon
/// starts.
void turnToLowest(std::vector<int> &corners)
{
    const size_t count = corners.size();
    size_t first = 0, other = 1, same = 0; // two starts, and how many corners from them on are alike
    while (first < count && other < count && same < count) {
        const int a = corners[(first + same) % count];
        const int b = corners[(other + same) % count];
        if (a == b) {
            ++same;
            continue;
        }
        // None of those that were compared begins a lower one.
        (a > b ? first : other) += same + 1;
        other += first == other;
        same = 0;
    }
    first = std::min(first, other);
    std::rotate(corners.begin(), corners.begin() + ptrdiff_t(first), corners.end());
}

/// Of the pixels. Many dumps are made of one picture, so that of each is worked out once.
QString pictureHash(const QImage &picture)
{
    static QCache<qint64, QString> known(1000);
    if (const QString *text = known.object(picture.cacheKey()))
        return *text;
    const QImage plain = picture.convertToFormat(QImage::Format_RGBA8888);
    Hash hash;
    hash.add(plain.width());
    hash.add(plain.height());
    for (int y = 0; y < plain.height(); ++y) {
        const auto *row = reinterpret_cast<const quint32 *>(plain.constScanLine(y));
        for (int x = 0; x < plain.width(); ++x)
            hash.add(row[x]);
    }
    auto *text = new QString(hash.text());
    const QString result = *text;
    known.insert(picture.cacheKey(), text);
    return result;
}

class Dump
{
public:
    explicit Dump(const RyScene &scene) : m_scene(scene), m_out(&m_text) {}

    QString text()
    {
        m_out << "scene time " << int(m_scene.getTime());
        if (m_scene.getOrigin())
            m_out << " unit " << number(m_scene.getOrigin()->unitFactor());
        m_out << '\n';
        const std::vector<RyNode *> nodes = m_scene.getNodesInTreeOrder();
        for (const RyNode *node : nodes)
            m_numbers.emplace(node, int(m_numbers.size()) + 1);
        for (const RyNode *node : nodes)
            writeNode(*node);
        m_out << "selection";
        for (const RyNode *node : m_scene.selectedNodeListIterator())
            m_out << ' ' << path(node);
        m_out << '\n';
        m_out.flush();
        return m_text;
    }

private:
    /// The node's number in tree order and its name: paths of deep chains would be as long as the chains.
    QString path(const RyNode *node) const
    {
        if (!node)
            return QStringLiteral("none");
        const auto known = m_numbers.find(node);
        const QString place = known == m_numbers.end() ? QStringLiteral("?") : QString::number(known->second);
        return QLatin1Char('#') + place + QLatin1Char(' ') + quoted(node->getName());
    }

    /// What a property belongs to.
    QString place(const RyProperty &property) const
    {
        const RyElement *owner = property.getOwner();
        const auto *sphere = qobject_cast<const RyLegacyJointSphere *>(owner);
        const auto *param = sphere ? sphere->getParam() : qobject_cast<const RyLegacyJointParam *>(owner);
        if (!param)
            return path(RyMorph::nodeOf(property));
        const RyLegacyJoint *joint = param->getJoint();
        if (!joint)
            return QStringLiteral("none");
        const auto found = std::find(joint->params().begin(), joint->params().end(), param);
        return path(joint->getBone()) + QStringLiteral(" parameter ") +
               QString::number(found - joint->params().begin());
    }

    void writeNode(const RyNode &node)
    {
        m_out << "node " << path(&node) << " below " << path(node.getNodeParent()) << ' '
              << node.metaObject()->className();
        if (node.hasOwnLabel())
            m_out << " label " << quoted(node.getLabel());
        if (node.isHidden())
            m_out << " hidden";
        if (!node.isSelectable())
            m_out << " unselectable";
        if (node.isSelectionPromoted())
            m_out << " promoting";
        if (!node.inheritsScale())
            m_out << " unscaled";
        if (!node.getScene())
            m_out << " unregistered";
        m_out << " order " << node.getRotationOrder().name() << '\n';
        writeGroup(node.getPrivatePropertyGroups());
        writeGroup(node.getPropertyGroups());
        if (const auto *camera = qobject_cast<const RyCamera *>(&node)) {
            m_out << "  lens " << number(camera->fieldOfView()) << ' ' << number(camera->orthographicHeight()) << ' '
                  << number(camera->focalDistance())
                  << (camera->isOrthographic() ? " orthographic\n" : " perspective\n");
        }
        if (const auto *skeleton = qobject_cast<const RySkeleton *>(&node))
            writeSkeleton(*skeleton);
        if (RyObject *object = node.getObject())
            writeObject(*object);
    }

    void writeGroup(const RyPropertyGroup *group)
    {
        if (!group)
            return;
        writeGroup(group->getFirstChild());
        for (int i = 0; i < group->getNumProperties(); ++i) {
            if (const auto *property = qobject_cast<const RyFloatProperty *>(group->getProperty(i)))
                writeProperty(*property);
        }
        writeGroup(group->getNextSibling());
    }

    void writeProperty(const RyFloatProperty &property, const char *indent = "  ")
    {
        m_out << indent << quoted(property.getName()) << ' ' << number(property.getRawValue()) << " default "
              << number(property.getDefaultValue()) << " limits " << number(property.getMin()) << ' '
              << number(property.getMax()) << (property.isClamped() ? " clamped" : "");
        if (property.hasOwnLabel())
            m_out << " label " << quoted(property.getLabel());
        for (const RyERCLink *link : property.getControllerLinks()) {
            m_out << " from " << place(*link->getController()) << ':' << quoted(link->getController()->getName());
        }
        m_out << '\n';
    }

    void writeSkeleton(const RySkeleton &skeleton)
    {
        if (skeleton.getFollowTarget())
            m_out << "  follows " << path(skeleton.getFollowTarget()) << '\n';
        if (skeleton.drawsGLBones())
            m_out << "  draws bones\n";
        if (const RySelectionMap *map = skeleton.getSelectionMap()) {
            for (int i = 0; i < map->getNumPairs(); ++i)
                m_out << "  pair " << quoted(map->getPairGroup(i)) << ' ' << path(map->getPairNode(i)) << '\n';
        }
    }

    void writeObject(const RyObject &object)
    {
        m_out << "  object " << quoted(object.getName()) << '\n';
        for (const RyShape *shape : object.getShapes()) {
            m_out << "  shape " << shape->metaObject()->className()
                  << (shape == object.getCurrentShape() ? " current\n" : "\n");
            const auto *facets = qobject_cast<const RyFacetShape *>(shape);
            if (facets && facets->getFacetMesh()) {
                writeMesh(*facets->getFacetMesh());
                if (facets->getParts() && facets->getParts()->fits(*facets->getFacetMesh()))
                    writeParts(*facets);
            }
            for (const RyMorph *morph : shape->getMorphs())
                writeMorph(*morph);
        }
        for (RyModifier *modifier : object.getModifiers()) {
            m_out << "  modifier " << modifier->metaObject()->className() << '\n';
            if (const auto *skin = dynamic_cast<const RySkinBinding *>(modifier)) {
                for (const RyBoneBinding *binding : skin->bindings())
                    writeBinding(*binding);
            }
            if (const auto *legacy = qobject_cast<const RyLegacyBinding *>(modifier)) {
                for (const RyLegacyJoint *joint : legacy->joints())
                    writeJoint(*joint);
            }
        }
    }

    void writeMesh(const RyFacetMesh &mesh)
    {
        Hash positions;
        double sum[3] = {0, 0, 0};
        for (const RyVec3 &p : mesh.getPositions()) {
            for (int axis = 0; axis < 3; ++axis) {
                positions.add(p[axis] == 0.0f ? 0.0f : p[axis]);
                sum[axis] += double(p[axis]);
            }
        }
        Hash facets;
        std::vector<int> corners;
        for (int facet = 0; facet < mesh.getNumFacets();) {
            facet += mesh.readPolygon(facet, corners);
            turnToLowest(corners);
            if (corners.size() > 4)
                facets.add(-int(corners.size()));
            for (const int vertex : corners)
                facets.add(vertex);
            if (corners.size() == 3)
                facets.add(-1);
        }
        m_out << "    vertices " << mesh.getNumVertices() << " sum " << number(sum[0]) << ' ' << number(sum[1]) << ' '
              << number(sum[2]) << " hash " << positions.text() << '\n';
        m_out << "    facets " << mesh.getNumFacets();
        if (!mesh.getPolygons().empty())
            m_out << " polygons " << mesh.getPolygons().size();
        m_out << " hash " << facets.text() << '\n';
        for (int g = 0; g < mesh.getNumFaceGroups(); ++g) {
            const RyFaceGroup &group = *mesh.getFaceGroup(g);
            Hash members;
            for (int i = 0; i < group.getFacets().count(); ++i)
                members.add(group.getFacets().getIndex(i));
            m_out << "    group " << quoted(group.getName()) << ' ' << group.getFacets().count() << " hash "
                  << members.text() << '\n';
        }
    }

    void writeParts(const RyFacetShape &shape)
    {
        const RyMeshParts &parts = *shape.getParts();
        const RyPartNormals shown(shape);
        for (const RyMeshPart &part : parts.parts) {
            const bool hasLook = part.look >= 0 && size_t(part.look) < parts.looks.size();
            if (!hasLook && part.uvs.empty() && !part.hasNormals())
                continue;
            m_out << "    part of " << part.facetCount;
            if (!part.uvs.empty()) {
                Hash uvs;
                for (const float number : part.uvs)
                    uvs.add(number == 0.0f ? 0.0f : number);
                for (const int split : part.withoutUv)
                    uvs.add(split);
                m_out << " coordinates " << part.uvs.size() / 2;
                if (!part.withoutUv.empty())
                    m_out << " without " << part.withoutUv.size();
                m_out << " hash " << uvs.text();
            }
            if (part.hasNormals()) {
                // Sums, since they are worked out through the maps of a file. Two that change places would not do.
                const std::vector<RyVec3> normals = shown.of(part);
                double sum[3] = {0, 0, 0};
                for (size_t i = 0; i < normals.size(); ++i) {
                    for (int axis = 0; axis < 3; ++axis)
                        sum[axis] += double(1 + i % 7) * double(normals[i][axis]);
                }
                m_out << " normals " << normals.size() << " sum " << number(sum[0]) << ' ' << number(sum[1]) << ' '
                      << number(sum[2]);
            }
            m_out << '\n';
            if (hasLook)
                writeLook(parts.looks[size_t(part.look)]);
        }
    }

    /// Its value stands with the properties of the node, but for what a clip shows.
    void writeMorph(const RyMorph &morph)
    {
        Hash vertices;
        for (const int vertex : morph.vertices())
            vertices.add(vertex);
        // Sums, since they are worked out through the maps of a file.
        double sum[3] = {0, 0, 0};
        for (size_t i = 0; i < morph.deltas().size(); ++i) {
            for (int axis = 0; axis < 3; ++axis)
                sum[axis] += double(1 + i % 7) * double(morph.deltas()[i][axis]);
        }
        m_out << "    morph " << quoted(morph.getName()) << " of " << morph.vertices().size() << " hash "
              << vertices.text() << " sum " << number(sum[0]) << ' ' << number(sum[1]) << ' ' << number(sum[2]) << '\n';
    }

    void writeLook(const RyMaterialLook &look)
    {
        m_out << "      look " << quoted(look.name);
        for (const float share : look.baseColor)
            m_out << ' ' << number(double(share));
        if (look.doubleSided)
            m_out << " double";
        if (!look.texture.isNull())
            m_out << " picture " << pictureHash(look.texture);
        m_out << '\n';
    }

    void writeMap(const char *kind, const RyWeightMap *map)
    {
        if (!map)
            return;
        Hash hash;
        quint64 sum = 0;
        for (int i = 0; i < map->getNumAffected(); ++i) {
            hash.add(map->getAffectedIndices()[i]);
            hash.add(map->getAffectedWeights()[i]);
            sum += map->getAffectedWeights()[i];
        }
        m_out << ' ' << kind << ' ' << map->getNumAffected() << " of " << map->getNumWeights() << " sum " << sum
              << " hash " << hash.text();
    }

    void writeNamedMap(const char *kind, const RyWeightMap *map)
    {
        writeMap(kind, map);
        if (map && !map->getName().isEmpty())
            m_out << ' ' << quoted(map->getName());
    }

    void writeBinding(const RyBoneBinding &binding)
    {
        m_out << "    binding " << path(binding.getBone());
        writeMap("general", binding.getWeights());
        for (int axis = 0; axis < 3; ++axis)
            writeMap(axis == 0 ? "x" : axis == 1 ? "y" : "z", binding.getLocalWeights(axis));
        writeMap("scale", binding.getScaleWeights());
        m_out << '\n';
        for (int axis = 0; axis < 3; ++axis) {
            const RyBulgeBinding *bulge = binding.getBulgeBinding(axis);
            if (!bulge)
                continue;
            m_out << "      bulge " << axis;
            writeNamedMap("left", bulge->getLeftWeights());
            writeNamedMap("right", bulge->getRightWeights());
            m_out << '\n';
            for (const RyFloatProperty *controller : bulge->controllers())
                writeProperty(*controller, "        ");
        }
    }

    void writeJoint(const RyLegacyJoint &joint)
    {
        m_out << "    joint " << quoted(joint.getName()) << " of " << path(joint.getBone());
        if (joint.hasOwnLabel())
            m_out << " label " << quoted(joint.getLabel());
        m_out << '\n';
        for (const RyLegacyJointParam *param : joint.params())
            writeParam(*param);
    }

    void writeParam(const RyLegacyJointParam &param)
    {
        m_out << "      " << param.metaObject()->className() << ' ' << quoted(param.getName()) << " axis "
              << param.getAxis() << " flags " << param.flags() << " driver " << path(param.getDriver());
        if (param.hasOwnLabel())
            m_out << " label " << quoted(param.getLabel());
        m_out << '\n';
        for (const RyFloatProperty *controller : param.controllers())
            writeProperty(*controller, "        ");
        for (const RyLegacyJointSphere *sphere : {param.getDynamicSphere(), param.getStaticSphere()}) {
            for (const RyFloatProperty *control : sphere->controls())
                writeProperty(*control, "        ");
        }
    }

    const RyScene &m_scene;
    std::unordered_map<const RyNode *, int> m_numbers;
    QString m_text;
    QTextStream m_out;
};

} // namespace

QString rySceneDump(const RyScene &scene)
{
    return Dump(scene).text();
}
