#include "ryforeign/RyColladaText.h"

#include "ryforeign/RyForeignText.h"

#include <assimp/scene.h>

#include <QFile>
#include <QXmlStreamReader>

#include <cmath>

namespace {

const QLatin1String NumberedName("$ColladaAutoName$_"); // how the library calls nodes without ids
constexpr int DeepestNode = 1000;

bool isShape(const QStringRef &element)
{
    return element == QLatin1String("node") || element == QLatin1String("visual_scene");
}

/// Libraries of physics and kinematics.
bool isOfMachines(const QStringRef &element)
{
    return element.startsWith(QLatin1String("library_physics_")) ||
           element.startsWith(QLatin1String("library_kinematics_")) || element == QLatin1String("library_joints") ||
           element == QLatin1String("library_articulated_systems") || element == QLatin1String("library_force_fields");
}

QString withoutHash(const QStringRef &url)
{
    return (url.startsWith(QLatin1Char('#')) ? url.mid(1) : url).toString();
}

} // namespace

RyColladaText::RyColladaText(const QString &path, const aiNode &root)
{
    QFile file(path);
    if (file.open(QIODevice::ReadOnly)) {
        QXmlStreamReader reader(&file);
        read(reader);
    }
    const int scene = m_entryOf.value(m_scene, -1);
    if (scene >= 0)
        match(root, scene, 0);
    nameTheRest(root);
}

void RyColladaText::read(QXmlStreamReader &reader)
{
    QStringList elements;   // from the root to here
    std::vector<int> above; // nodes likewise
    while (!reader.atEnd()) {
        const QXmlStreamReader::TokenType token = reader.readNext();
        if (token == QXmlStreamReader::EndElement) {
            elements.removeLast();
            if (isShape(reader.name()) && !above.empty())
                above.pop_back();
        }
        if (token != QXmlStreamReader::StartElement)
            continue;
        if (reader.name() == QLatin1String("extra")) { // what other programs keep there is theirs
            readExtra(reader);
            continue;
        }
        if (isOfMachines(reader.name()))
            leftOut.append(reader.name().toString());
        elements.append(reader.name().toString());
        const QXmlStreamAttributes attributes = reader.attributes();
        if (isShape(reader.name())) {
            open(reader, above);
        } else if (reader.name() == QLatin1String("unit")) {
            const QStringList place{QStringLiteral("COLLADA"), QStringLiteral("asset"), QStringLiteral("unit")};
            if (elements != place || m_hasUnit)
                continue;
            m_hasUnit = true;
            const double length = attributes.value(QLatin1String("meter")).toDouble();
            if (std::isfinite(length) && length > 0.0)
                metre = length;
        } else if (reader.name() == QLatin1String("instance_node") && !above.empty()) {
            m_entries[size_t(above.back())].instances.append(withoutHash(attributes.value(QLatin1String("url"))));
        } else if (reader.name() == QLatin1String("instance_visual_scene")) {
            m_scene = withoutHash(attributes.value(QLatin1String("url")));
        }
    }
}

void RyColladaText::readExtra(QXmlStreamReader &reader)
{
    while (reader.readNextStartElement()) {
        if (reader.name() == QLatin1String("technique"))
            extras.append(reader.attributes().value(QLatin1String("profile")).toString());
        reader.skipCurrentElement();
    }
}

void RyColladaText::open(const QXmlStreamReader &reader, std::vector<int> &above)
{
    const QXmlStreamAttributes attributes = reader.attributes();
    Entry entry;
    entry.id = attributes.value(QLatin1String("id")).toString();
    const QString id = entry.id.isEmpty() ? attributes.value(QLatin1String("sid")).toString() : entry.id;
    entry.name = attributes.value(QLatin1String("name")).toString();
    entry.isJoint = attributes.value(QLatin1String("type")) == QLatin1String("JOINT");
    if (!id.isEmpty() && reader.name() == QLatin1String("node")) {
        if (!entry.name.isEmpty())
            nameOf.insert(id, entry.name);
        if (entry.isJoint)
            joints.insert(id);
    }
    const int place = int(m_entries.size());
    if (!entry.id.isEmpty())
        m_entryOf.insert(entry.id, place);
    if (!above.empty())
        m_entries[size_t(above.back())].children.push_back(place);
    m_entries.push_back(std::move(entry));
    above.push_back(place);
}

/// Its own, then those that it only refers to.
std::vector<int> RyColladaText::childrenOf(int entry) const
{
    std::vector<int> children = m_entries[size_t(entry)].children;
    for (const QString &id : m_entries[size_t(entry)].instances) {
        if (m_entryOf.contains(id))
            children.push_back(m_entryOf.value(id));
    }
    return children;
}

void RyColladaText::match(const aiNode &node, int entry, int depth)
{
    const QString known = ryForeignText(node.mName);
    const Entry &said = m_entries[size_t(entry)];
    if (known.startsWith(NumberedName)) {
        if (!said.name.isEmpty())
            nameOf.insert(known, said.name);
        if (said.isJoint)
            joints.insert(known);
    }
    const std::vector<int> children = childrenOf(entry);
    if (children.size() != node.mNumChildren || depth > DeepestNode)
        return; // not the same tree
    for (size_t i = 0; i < children.size(); ++i)
        match(*node.mChildren[i], children[i], depth + 1);
}

/// Nodes without any name get one that people can read.
void RyColladaText::nameTheRest(const aiNode &root)
{
    std::vector<const aiNode *> pending{&root};
    while (!pending.empty()) {
        const aiNode &node = *pending.back();
        pending.pop_back();
        const QString known = ryForeignText(node.mName);
        if (known.startsWith(NumberedName) && !nameOf.contains(known))
            nameOf.insert(known, QStringLiteral("Node ") + known.mid(NumberedName.size()));
        pending.insert(pending.end(), node.mChildren, node.mChildren + node.mNumChildren);
    }
}
