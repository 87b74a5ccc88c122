#include "rycore/scene/node/RyNodeLookup.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/base/RyNearTexts.h"
#include "rycore/base/RyPropertyGroup.h"
#include "rycore/scene/RyNode.h"
#include "rycore/scene/RyScene.h"

#include <QStringList>

#include <algorithm>
#include <cmath>

namespace {

bool endsPath(const RyNode *node, const QStringList &names)
{
    for (int i = names.size() - 1; i >= 0; --i, node = node->getNodeParent()) {
        if (!node || node->getName() != names.at(i))
            return false;
    }
    return true;
}

void collect(const RyPropertyGroup *group, std::vector<RyFloatProperty *> &properties)
{
    for (; group; group = group->getNextSibling()) {
        collect(group->getFirstChild(), properties);
        for (int i = 0; i < group->getNumProperties(); ++i) {
            if (auto *property = qobject_cast<RyFloatProperty *>(group->getProperty(i)))
                properties.push_back(property);
        }
    }
}

/// The names that are near, or the paths where a path was written.
QStringList nearNodes(const RyScene &scene, const QString &text)
{
    const bool isPath = text.contains(QLatin1Char('/'));
    const QString name = text.section(QLatin1Char('/'), -1, -1, QString::SectionSkipEmpty);
    QStringList names, texts;
    for (const RyNode *node : scene.getNodesInTreeOrder())
        names.append(node->getName());
    const QStringList near = ryNearTexts(name, names);
    if (!isPath)
        return near;
    for (const QString &each : near) {
        for (const RyNode *node : scene.getNodesInTreeOrder()) {
            if (node->getName() == each)
                texts.append(RyNodeLookup::pathOf(node));
        }
    }
    return texts;
}

} // namespace

QString RyNodeLookup::pathOf(const RyNode *node)
{
    QStringList names;
    for (; node; node = node->getNodeParent())
        names.prepend(node->getName());
    return names.join(QLatin1Char('/'));
}

RyNode *RyNodeLookup::findNode(const RyScene &scene, const QString &text, QString *error)
{
    std::vector<RyNode *> found;
    for (RyNode *node : scene.getNodesInTreeOrder()) {
        if (node->getName() == text)
            found.push_back(node);
    }
    if (found.empty() && text.contains(QLatin1Char('/'))) {
        const QStringList names = text.split(QLatin1Char('/'), Qt::SkipEmptyParts);
        for (RyNode *node : scene.getNodesInTreeOrder()) {
            if (!names.isEmpty() && endsPath(node, names))
                found.push_back(node);
        }
    }
    if (found.empty()) {
        *error = QStringLiteral("no node is called \"%1\"").arg(text) + ryDidYouMean(nearNodes(scene, text));
        return nullptr;
    }
    if (found.size() > 1) {
        QStringList paths;
        for (const RyNode *node : found)
            paths.append(pathOf(node));
        *error = QStringLiteral("\"%1\" is the name of %2 nodes; write one of their paths: %3")
                     .arg(text)
                     .arg(found.size())
                     .arg(paths.join(QStringLiteral(", ")));
        return nullptr;
    }
    return found.front();
}

std::vector<RyFloatProperty *> RyNodeLookup::values(const RyNode &node, bool poseOnly)
{
    std::vector<RyFloatProperty *> properties;
    collect(node.getPropertyGroups(), properties);
    if (poseOnly)
        std::erase_if(properties, [&node](const auto *property) { return property->getOwner() != &node; }); // morphs
    else
        collect(node.getPrivatePropertyGroups(), properties);
    return properties;
}

RyFloatProperty *RyNodeLookup::findValue(const RyNode &node, const QString &name, bool poseOnly, QString *error)
{
    QStringList names;
    for (RyFloatProperty *property : values(node, poseOnly)) {
        if (property->getName() == name)
            return property;
        names.append(property->getName());
    }
    *error = QStringLiteral("\"%1\" has no value called \"%2\"; it has %3")
                 .arg(node.getName(), name, names.join(QStringLiteral(", ")));
    return nullptr;
}

RyFloatProperty *RyNodeLookup::findProperty(const RyScene &scene, const QString &text, bool poseOnly, float *value,
                                            QString *error)
{
    const int equals = text.lastIndexOf(QLatin1Char('='));
    const int colon = equals < 0 ? -1 : text.lastIndexOf(QLatin1Char(':'), equals);
    if (colon <= 0 || equals < colon + 2) {
        *error = QStringLiteral("\"%1\" does not have the form NODE:NAME=VALUE").arg(text);
        return nullptr;
    }
    bool isNumber = false;
    *value = text.mid(equals + 1).trimmed().toFloat(&isNumber);
    if (!isNumber || !std::isfinite(*value)) {
        *error = QStringLiteral("\"%1\" is no number").arg(text.mid(equals + 1));
        return nullptr;
    }
    const RyNode *node = findNode(scene, text.left(colon), error);
    if (!node)
        return nullptr;
    return findValue(*node, text.mid(colon + 1, equals - colon - 1), poseOnly, error);
}

bool RyNodeLookup::canBecome(const RyFloatProperty &property, float value, QString *error)
{
    if (!property.isClamped())
        return true;
    // What links contribute comes on top of the property's own share, which is what has limits.
    const float links = property.getValue() - property.getRawValue();
    const float own = value - links;
    const float tolerance = 1e-4f * std::max(1.0f, std::abs(value));
    if (own >= property.getMin() - tolerance && own <= property.getMax() + tolerance)
        return true;
    *error = QStringLiteral("\"%1\" cannot become %2; its limits are %3 to %4")
                 .arg(property.getName())
                 .arg(double(value))
                 .arg(double(property.getMin() + links))
                 .arg(double(property.getMax() + links));
    return false;
}
