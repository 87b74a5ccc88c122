#include "rycore/script/prototypes/RyNodePrototype.h"

#include "rycore/base/RyERCLink.h"
#include "rycore/base/RyFloatProperty.h"
#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RyMorph.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/scene/node/RyNodeLookup.h"
#include "rycore/script/prototypes/RyFacetMeshPrototype.h"

#include <algorithm>

static RyFacetMesh *meshOf(const RyNode *node)
{
    const auto *shape = qobject_cast<const RyFacetShape *>(RyShape::getCurrentShapeForNode(node));
    return shape ? shape->getFacetMesh() : nullptr;
}

/// The node among whose descendants names are unique: the figure of a bone, or else the top-level node.
static RyNode *rootOfNames(RyNode *node)
{
    RyNode *root = node;
    while (root->getNodeParent() && (root == node || root != node->getSkeleton()))
        root = root->getNodeParent();
    return root;
}

/// Another node that has the name where it must be unique for `node`; null when there is none.
static const RyNode *nodeCalled(RyNode *node, const QString &name)
{
    RyNode *root = rootOfNames(node);
    std::vector<RyNode *> others;
    if (root != node)
        root->getNodeChildren(others, true);
    else if (const RyScene *scene = node->getScene())
        others = scene->getTopLevelNodes();
    const auto found = std::find_if(others.begin(), others.end(),
                                    [&](const RyNode *other) { return other != node && other->getName() == name; });
    return found == others.end() ? nullptr : *found;
}

QString RyNodePrototype::className() const
{
    const RyNode *node = self<RyNode>();
    return node ? QString::fromLatin1(node->metaObject()->className()) : QString();
}

bool RyNodePrototype::isA(const QString &className) const
{
    const RyNode *node = self<RyNode>();
    return node && node->inherits(className.toLatin1().constData());
}

QString RyNodePrototype::getName() const
{
    const RyNode *node = self<RyNode>();
    return node ? node->getName() : QString();
}

void RyNodePrototype::setName(const QString &name)
{
    RyNode *node = self<RyNode>();
    if (!node)
        return;
    if (name.isEmpty())
        fail(tr("A node cannot be without a name."));
    else if (const RyNode *other = nodeCalled(node, name))
        fail(tr("The name \"%1\" is taken: it belongs to %2.").arg(name, RyNodeLookup::pathOf(other)));
    else
        node->setName(name);
}

QString RyNodePrototype::getLabel() const
{
    const RyNode *node = self<RyNode>();
    return node ? node->getLabel() : QString();
}

void RyNodePrototype::setLabel(const QString &label)
{
    // A node without a label of its own shows its name.
    if (RyNode *node = self<RyNode>())
        node->setLabel(label.trimmed().isEmpty() ? QString() : label);
}

QString RyNodePrototype::getPath() const
{
    const RyNode *node = self<RyNode>();
    return node ? RyNodeLookup::pathOf(node) : QString();
}

RyNode *RyNodePrototype::getNodeParent() const
{
    const RyNode *node = self<RyNode>();
    return node ? node->getNodeParent() : nullptr;
}

int RyNodePrototype::getNumNodeChildren() const
{
    const RyNode *node = self<RyNode>();
    return node ? node->getNumNodeChildren() : 0;
}

RyNode *RyNodePrototype::getNodeChild(int index) const
{
    const RyNode *node = self<RyNode>();
    return node ? node->getNodeChild(index) : nullptr;
}

QScriptValue RyNodePrototype::getNodeChildren(bool recursive) const
{
    std::vector<RyNode *> children;
    if (const RyNode *node = self<RyNode>())
        node->getNodeChildren(children, recursive);
    return toArray(children);
}

bool RyNodePrototype::addNodeChild(RyNode *child, bool keepWorld)
{
    RyNode *node = self<RyNode>();
    if (!node || !child)
        return false;
    RyNode *root = node->getSkeleton() ? static_cast<RyNode *>(node->getSkeleton()) : rootOfNames(node);
    std::vector<RyNode *> present, coming{child};
    root->getNodeChildren(present, true);
    child->getNodeChildren(coming, true);
    for (const RyNode *each : coming) {
        for (const RyNode *other : present) {
            if (each->getName() == other->getName() && std::find(coming.begin(), coming.end(), other) == coming.end()) {
                fail(tr("The name \"%1\" is taken: it belongs to %2.")
                         .arg(each->getName(), RyNodeLookup::pathOf(other)));
                return false;
            }
        }
    }
    return node->addNodeChild(child, keepWorld);
}

bool RyNodePrototype::removeNodeChild(RyNode *child, bool keepWorld)
{
    RyNode *node = self<RyNode>();
    return node && child && node->removeNodeChild(child, keepWorld);
}

RyNode *RyNodePrototype::getSkeleton() const
{
    const RyNode *node = self<RyNode>();
    return node ? node->getSkeleton() : nullptr;
}

bool RyNodePrototype::isSelected() const
{
    const RyNode *node = self<RyNode>();
    return node && node->isSelected();
}

void RyNodePrototype::select(bool onOff) const
{
    if (RyNode *node = self<RyNode>())
        node->select(onOff);
}

std::vector<RyFloatProperty *> RyNodePrototype::values() const
{
    const RyNode *node = self<RyNode>();
    return node ? RyNodeLookup::values(*node) : std::vector<RyFloatProperty *>();
}

RyFloatProperty *RyNodePrototype::value(const QString &name) const
{
    const RyNode *node = self<RyNode>();
    return node ? valueOf(node, name) : nullptr;
}

RyFloatProperty *RyNodePrototype::valueOf(const RyNode *node, const QString &name) const
{
    QString error = tr("There is no node.");
    RyFloatProperty *property = node ? RyNodeLookup::findValue(*node, name, false, &error) : nullptr;
    if (!property)
        fail(error);
    return property;
}

void RyNodePrototype::setDefaultValue(const QString &name, double value) const
{
    RyFloatProperty *property = this->value(name);
    if (property && isNumber(name, value))
        property->setDefaultValue(float(value));
}

bool RyNodePrototype::addLink(const QString &name, RyNode *controller, const QString &controllerName) const
{
    RyFloatProperty *controlled = value(name);
    RyFloatProperty *from = controlled ? valueOf(controller, controllerName) : nullptr;
    if (!from)
        return false;
    RyError error;
    QString reason;
    const bool isMade = RyERCLink::create(from, controlled, &error, &reason);
    if (!error.isSuccess())
        fail(reason);
    return isMade;
}

bool RyNodePrototype::removeLink(const QString &name, RyNode *controller, const QString &controllerName) const
{
    const RyFloatProperty *controlled = value(name);
    const RyFloatProperty *from = controlled ? valueOf(controller, controllerName) : nullptr;
    if (!from)
        return false;
    const std::vector<RyERCLink *> &links = controlled->getControllerLinks();
    const auto found = std::find_if(links.begin(), links.end(),
                                    [from](const RyERCLink *link) { return link->getController() == from; });
    if (found == links.end())
        return false;
    RyERCLink::remove(*found);
    return true;
}

QScriptValue RyNodePrototype::getLinks(const QString &name) const
{
    const RyFloatProperty *controlled = value(name);
    if (!controlled)
        return {};
    QScriptValue array = engine()->newArray();
    for (const RyERCLink *link : controlled->getControllerLinks()) {
        QScriptValue entry = engine()->newObject();
        entry.setProperty(QStringLiteral("node"), engine()->toScriptValue(RyMorph::nodeOf(*link->getController())));
        entry.setProperty(QStringLiteral("name"), link->getController()->getName());
        array.setProperty(array.property(QStringLiteral("length")).toUInt32(), entry);
    }
    return array;
}

QScriptValue RyNodePrototype::getOrigin() const
{
    const RyNode *node = self<RyNode>();
    return node ? toObject(node->getOrigin()) : QScriptValue();
}

void RyNodePrototype::setOrigin(const QScriptValue &place) const
{
    RyNode *node = self<RyNode>();
    RyVec3 v;
    if (node && toVector(place, &v))
        node->adjustOrigin(v);
}

QScriptValue RyNodePrototype::getEndPoint() const
{
    const RyNode *node = self<RyNode>();
    return node ? toObject(node->getEndPoint()) : QScriptValue();
}

void RyNodePrototype::setEndPoint(const QScriptValue &place) const
{
    RyNode *node = self<RyNode>();
    RyVec3 v;
    if (node && toVector(place, &v))
        node->adjustEndPoint(v);
}

QScriptValue RyNodePrototype::getWSPos() const
{
    const RyNode *node = self<RyNode>();
    return node ? toObject(node->getWSPos()) : QScriptValue();
}

QScriptValue RyNodePrototype::getWSEndPoint() const
{
    const RyNode *node = self<RyNode>();
    return node ? toObject(node->getWSEndPoint()) : QScriptValue();
}

QString RyNodePrototype::getRotationOrder() const
{
    const RyNode *node = self<RyNode>();
    return node ? node->getRotationOrder().name() : QString();
}

void RyNodePrototype::setRotationOrder(const QString &order) const
{
    RyNode *node = self<RyNode>();
    for (int code = RyRotationOrder::XYZ; node && code <= RyRotationOrder::ZYX; ++code) {
        if (RyRotationOrder(code).name() == order) {
            node->setRotationOrder(RyRotationOrder(code));
            return;
        }
    }
    if (node)
        fail(tr("\"%1\" is no rotation order; there is XYZ, XZY, YXZ, YZX, ZXY and ZYX.").arg(order));
}

RyFacetMesh *RyNodePrototype::getMesh() const
{
    const RyNode *node = self<RyNode>();
    return node ? meshOf(node) : nullptr;
}

int RyNodePrototype::getNumVertices() const
{
    return RyFacetMeshPrototype::numVertices(getMesh());
}

int RyNodePrototype::getNumFacets() const
{
    return RyFacetMeshPrototype::numFacets(getMesh());
}

QStringList RyNodePrototype::getFaceGroupNames() const
{
    return RyFacetMeshPrototype::faceGroupNames(getMesh());
}
