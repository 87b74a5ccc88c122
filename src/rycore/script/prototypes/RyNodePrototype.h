#pragma once

#include "rycore/mesh/RyFacetMesh.h"
#include "rycore/scene/RyNode.h"
#include "rycore/script/prototypes/RyValuesPrototype.h"

/// Nodes in scripts. Values go by the names of the properties: "xrot", "originY".
class RyNodePrototype : public RyValuesPrototype
{
    Q_OBJECT
public:
    explicit RyNodePrototype(QObject *parent) : RyValuesPrototype(parent) {}

    Q_INVOKABLE QString className() const;
    Q_INVOKABLE bool isA(const QString &className) const;
    Q_INVOKABLE QString getName() const;
    /// Throws for an empty name and for one that another node of the figure has, or another top-level node.
    Q_INVOKABLE void setName(const QString &name);
    Q_INVOKABLE QString getLabel() const;
    /// An empty label falls back to the name.
    Q_INVOKABLE void setLabel(const QString &label);
    /// Names from the top-level node down, parted by "/".
    Q_INVOKABLE QString getPath() const;

    Q_INVOKABLE RyNode *getNodeParent() const;
    Q_INVOKABLE int getNumNodeChildren() const;
    Q_INVOKABLE RyNode *getNodeChild(int index) const;
    /// An array; all descendants when `recursive`.
    Q_INVOKABLE QScriptValue getNodeChildren(bool recursive = false) const;
    /// Throws when the names of the child or of what is below it are taken in the figure it would belong to.
    Q_INVOKABLE bool addNodeChild(RyNode *child, bool keepWorld = false);
    Q_INVOKABLE bool removeNodeChild(RyNode *child, bool keepWorld = false);
    Q_INVOKABLE RyNode *getSkeleton() const;
    Q_INVOKABLE bool isSelected() const;
    Q_INVOKABLE void select(bool onOff) const;

    Q_INVOKABLE void setDefaultValue(const QString &name, double value) const;

    /// Lets a value of another node add to one of this node what it is beyond its default. False where it does already;
    /// throws where that would close a circle, and says which.
    Q_INVOKABLE bool addLink(const QString &name, RyNode *controller, const QString &controllerName) const;
    /// False where there is no such link.
    Q_INVOKABLE bool removeLink(const QString &name, RyNode *controller, const QString &controllerName) const;
    /// What adds to a value, in its order: objects with `node` and `name`.
    Q_INVOKABLE QScriptValue getLinks(const QString &name) const;

    /// Places in figure space, in centimetres.
    Q_INVOKABLE QScriptValue getOrigin() const;
    Q_INVOKABLE void setOrigin(const QScriptValue &place) const;
    Q_INVOKABLE QScriptValue getEndPoint() const;
    Q_INVOKABLE void setEndPoint(const QScriptValue &place) const;
    /// Places in the world, posed.
    Q_INVOKABLE QScriptValue getWSPos() const;
    Q_INVOKABLE QScriptValue getWSEndPoint() const;
    /// "XYZ" and so on.
    Q_INVOKABLE QString getRotationOrder() const;
    Q_INVOKABLE void setRotationOrder(const QString &order) const;

    /// Null without one.
    Q_INVOKABLE RyFacetMesh *getMesh() const;
    /// Of the node's mesh; 0 without one.
    Q_INVOKABLE int getNumVertices() const;
    Q_INVOKABLE int getNumFacets() const;
    Q_INVOKABLE QStringList getFaceGroupNames() const;

protected:
    std::vector<RyFloatProperty *> values() const override;
    RyFloatProperty *value(const QString &name) const override;

private:
    RyFloatProperty *valueOf(const RyNode *node, const QString &name) const;
};
