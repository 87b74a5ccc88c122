#pragma once

#include "rycore/scene/RyNode.h"

#include <QHash>
#include <QObject>
#include <QPointer>

#include <memory>
#include <vector>

class RyAssetList;
class RyPropertyGroup;

/// What one run of duplicating has made so far, and how it is made. Elements are duplicated one after the other by
/// `RyElement::doDuplicateElement`, parents before their children; then come, in this order, `createAlaises`,
/// `createERC`, `doResolve` and `doFinalize`. Duplicates that nobody has taken by the end go with the asset list or the
/// context.
class RyElementDuplicateContext : public QObject
{
    Q_OBJECT
public:
    explicit RyElementDuplicateContext(QObject *owner);
    ~RyElementDuplicateContext() override;

    /// The list that keeps the duplicates until they are taken over; a list of the context's own while there is none.
    RyAssetList *duplicateAssets() const { return m_assets; }
    void setDuplicateAssets(RyAssetList *assets) { m_assets = assets; }
    /// The context lets go of the list; what is in it stays there.
    void clearDuplicateAssets();
    /// Links between duplicated elements go to the duplicates; otherwise duplicates keep the controllers of their
    /// originals.
    bool remapAliases() const { return m_remapAliases; }
    void setRemapAliases(bool onOff) { m_remapAliases = onOff; }
    /// Properties that an element carries beside those of its class stay behind.
    bool skipNonUserProperties() const { return m_skipNonUserProperties; }
    void setSkipNonUserProperties(bool onOff) { m_skipNonUserProperties = onOff; }
    /// The bones below a duplicated node are duplicated with it.
    bool duplicateBoneHierarchy() const { return m_boneHierarchy; }
    void setDuplicateBoneHierarchy(bool onOff) { m_boneHierarchy = onOff; }
    /// All nodes below a duplicated node are.
    bool duplicateFullNodeHierarchy() const { return m_fullHierarchy; }
    void setDuplicateFullNodeHierarchy(bool onOff) { m_fullHierarchy = onOff; }
    /// Hidden nodes and nodes that promote their selection count as bones.
    bool treatHiddenAndPromotingAsBones() const { return m_hiddenAsBones; }
    void setTreatHiddenAndPromotingAsBones(bool onOff) { m_hiddenAsBones = onOff; }
    /// The duplicates are for a mesh with the same facets: face groups stay assigned.
    bool facetCompatible() const { return m_facetCompatible; }
    void setFacetCompatible(bool onOff) { m_facetCompatible = onOff; }
    /// The duplicates are for a mesh with the same vertices: weight maps are copied.
    bool vertexCompatible() const { return m_vertexCompatible; }
    void setVertexCompatible(bool onOff) { m_vertexCompatible = onOff; }
    /// Where set, duplicates keep no controllers of nodes outside this one's subtree.
    RyNode *duplicateRoot() const { return m_root; }
    void setDuplicateRoot(RyNode *root) { m_root = root; }

    /// Where the next duplicated node hangs; null leaves it without a parent.
    RyNode *getParentNode() const { return m_parent; }
    void setParentNode(RyNode *parent) { m_parent = parent; }
    /// Whether the options take a child along when its parent is duplicated.
    bool takesChild(const RyNode &child) const;
    /// Called by elements that duplicate themselves.
    void addDuplicate(const RyElement *original, RyElement *duplicate);
    /// The duplicate of an element, null for one that has none (any more) and for null.
    RyElement *findNewElement(const RyElement *original) const;
    /// The duplicate of a property, known from `createAlaises` on.
    RyFloatProperty *findNewProperty(const RyFloatProperty *original) const;

    /// Pairs the properties of originals and duplicates.
    void createAlaises();
    /// Makes the links of the originals anew at the duplicates.
    void createERC();
    /// Duplicates that refer to duplicated elements get to refer to the duplicates.
    void doResolve();
    /// The nodes among the duplicates enter the scene.
    void doFinalize();

    enum Stage { AliasesCreated, ERCCreated, Resolved, Finalized, AssetsCleared };
    Q_ENUM(Stage)

signals:
    void elementDuplicated(RyElement *duplicate);
    void stageDone(RyElementDuplicateContext::Stage stage);

private:
    struct Pair
    {
        QPointer<const RyElement> original;
        QPointer<RyElement> duplicate;
    };
    void pairProperties(const RyPropertyGroup *original, const RyPropertyGroup *duplicate);
    bool isOutsideRoot(const RyFloatProperty *controller) const;

    std::unique_ptr<RyAssetList> m_ownAssets;
    RyAssetList *m_assets = nullptr;
    bool m_remapAliases = true;
    bool m_skipNonUserProperties = false;
    bool m_boneHierarchy = false;
    bool m_fullHierarchy = false;
    bool m_hiddenAsBones = false;
    bool m_facetCompatible = true;
    bool m_vertexCompatible = true;
    QPointer<RyNode> m_root;
    QPointer<RyNode> m_parent;
    std::vector<Pair> m_pairs;
    QHash<const RyElement *, int> m_places;
    struct PropertyPair
    {
        QPointer<RyFloatProperty> original;
        QPointer<RyFloatProperty> duplicate;
    };
    std::vector<PropertyPair> m_propertyPairs;
    QHash<const RyFloatProperty *, int> m_propertyPlaces;
};
