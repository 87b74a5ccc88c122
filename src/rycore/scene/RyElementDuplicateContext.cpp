#include "rycore/scene/RyElementDuplicateContext.h"

#include "rycore/base/RyERCLink.h"
#include "rycore/base/RyFloatProperty.h"
#include "rycore/base/RyPropertyGroup.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyMorph.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/assets/RyAssetList.h"

RyElementDuplicateContext::RyElementDuplicateContext(QObject *owner)
    : QObject(owner), m_ownAssets(std::make_unique<RyAssetList>())
{}

RyElementDuplicateContext::~RyElementDuplicateContext() = default;

void RyElementDuplicateContext::clearDuplicateAssets()
{
    m_assets = nullptr;
    emit stageDone(AssetsCleared);
}

bool RyElementDuplicateContext::takesChild(const RyNode &child) const
{
    if (m_fullHierarchy)
        return true;
    if (!m_boneHierarchy)
        return false;
    return qobject_cast<const RyBone *>(&child) ||
           (m_hiddenAsBones && (child.isHidden() || child.isSelectionPromoted()));
}

void RyElementDuplicateContext::addDuplicate(const RyElement *original, RyElement *duplicate)
{
    if (!original || !duplicate)
        return;
    (m_assets ? m_assets : m_ownAssets.get())->add(duplicate);
    m_places.insert(original, int(m_pairs.size()));
    m_pairs.push_back({original, duplicate});
    emit elementDuplicated(duplicate);
}

RyElement *RyElementDuplicateContext::findNewElement(const RyElement *original) const
{
    const auto place = m_places.constFind(original);
    return original && place != m_places.constEnd() ? m_pairs[size_t(*place)].duplicate.data() : nullptr;
}

RyFloatProperty *RyElementDuplicateContext::findNewProperty(const RyFloatProperty *original) const
{
    const auto place = m_propertyPlaces.constFind(original);
    return original && place != m_propertyPlaces.constEnd() ? m_propertyPairs[size_t(*place)].duplicate.data()
                                                            : nullptr;
}

void RyElementDuplicateContext::pairProperties(const RyPropertyGroup *original, const RyPropertyGroup *duplicate)
{
    for (; original && duplicate; original = original->getNextSibling(), duplicate = duplicate->getNextSibling()) {
        for (int i = 0; i < std::min(original->getNumProperties(), duplicate->getNumProperties()); ++i) {
            auto *from = qobject_cast<RyFloatProperty *>(original->getProperty(i));
            auto *to = qobject_cast<RyFloatProperty *>(duplicate->getProperty(i));
            if (!from || !to)
                continue;
            m_propertyPlaces.insert(from, int(m_propertyPairs.size()));
            m_propertyPairs.push_back({from, to});
        }
        pairProperties(original->getFirstChild(), duplicate->getFirstChild());
    }
}

void RyElementDuplicateContext::createAlaises()
{
    m_propertyPairs.clear();
    m_propertyPlaces.clear();
    for (const Pair &pair : m_pairs) {
        if (!pair.original || !pair.duplicate)
            continue;
        pairProperties(pair.original->getPropertyGroups(), pair.duplicate->getPropertyGroups());
        pairProperties(pair.original->getPrivatePropertyGroups(), pair.duplicate->getPrivatePropertyGroups());
    }
    emit stageDone(AliasesCreated);
}

bool RyElementDuplicateContext::isOutsideRoot(const RyFloatProperty *controller) const
{
    const RyNode *owner = RyMorph::nodeOf(*controller);
    return m_root && owner != m_root && !(owner && owner->isDescendantOf(m_root));
}

void RyElementDuplicateContext::createERC()
{
    for (const PropertyPair &pair : m_propertyPairs) {
        if (!pair.original || !pair.duplicate)
            continue;
        const std::vector<RyERCLink *> links = pair.original->getControllerLinks();
        for (const RyERCLink *link : links) {
            RyFloatProperty *controller = link->getController();
            RyFloatProperty *remapped = m_remapAliases ? findNewProperty(controller) : nullptr;
            if (!remapped && isOutsideRoot(controller))
                continue;
            RyERCLink::create(remapped ? remapped : controller, pair.duplicate);
        }
    }
    emit stageDone(ERCCreated);
}

void RyElementDuplicateContext::doResolve()
{
    for (size_t i = 0; i < m_pairs.size(); ++i) {
        const Pair pair = m_pairs[i];
        if (pair.original && pair.duplicate)
            pair.duplicate->resolveDuplicate(pair.original, *this);
    }
    emit stageDone(Resolved);
}

void RyElementDuplicateContext::doFinalize()
{
    const std::vector<Pair> pairs = m_pairs;
    for (const Pair &pair : pairs) {
        const auto *original = qobject_cast<const RyNode *>(pair.original.data());
        auto *node = qobject_cast<RyNode *>(pair.duplicate.data());
        if (!node || node->getScene())
            continue;
        const RyNode *parent = node->getNodeParent();
        RyScene *scene = parent && parent->getScene()       ? parent->getScene()
                         : original && original->getScene() ? original->getScene()
                                                            : ryScene();
        scene->addNode(node);
    }
    emit stageDone(Finalized);
}
