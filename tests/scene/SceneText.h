#pragma once

#include "rycore/scene/RyNode.h"
#include "rycore/scene/RyScene.h"

#include <QStringList>

/// The tree of a scene as text: names by depth, each with its place in the list of nodes.
inline QString sceneText(const RyScene &scene)
{
    QStringList lines;
    const std::vector<RyNode *> &nodes = scene.getNodes();
    for (size_t i = 0; i < nodes.size(); ++i) {
        const RyNode *node = nodes[i];
        QStringList children;
        for (int c = 0; c < node->getNumNodeChildren(); ++c)
            children << node->getNodeChild(c)->getName();
        lines << QStringLiteral("%1 %2 %3 under %4: %5")
                     .arg(i)
                     .arg(QLatin1String(node->metaObject()->className()), node->getName(),
                          node->getNodeParent() ? node->getNodeParent()->getName() : QStringLiteral("nothing"),
                          children.join(QLatin1Char(',')));
    }
    return lines.join(QLatin1Char('\n'));
}

inline RyNode *named(RyNode *node, const char *name)
{
    node->setName(QLatin1String(name));
    return node;
}
