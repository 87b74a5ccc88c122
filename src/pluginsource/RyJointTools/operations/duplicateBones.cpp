#include "pluginsource/RyJointTools/operations/duplicateBones.h"

#include "pluginsource/RyJointTools/operations/hierarchyLevel.h"

#include "rycore/figure/RyFigure.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyElementDuplicateContext.h"
#include "rycore/scene/RyUniqueNames.h"
#include "rycore/scene/assets/RyAssetIOMgr.h"
#include "rycore/scene/assets/RyAssetLoadScope.h"
#include "rycore/skin/RySkinBinding.h"
#include "rycore/undo/RyUndoStackLock.h"

#include <algorithm>

namespace {

QString nameAndClass(const RyBone *bone)
{
    return QStringLiteral("%1 (%2)").arg(bone->getName(), QLatin1String(bone->metaObject()->className()));
}

void setOptions(RyElementDuplicateContext &context, const RyAssetLoadScope &scope)
{
    context.setDuplicateAssets(scope.getAssets());
    context.setRemapAliases(true);
    context.setSkipNonUserProperties(true);
    context.setDuplicateBoneHierarchy(false);
    context.setDuplicateFullNodeHierarchy(false);
    context.setTreatHiddenAndPromotingAsBones(true);
    context.setFacetCompatible(true);
    context.setVertexCompatible(true);
    context.setDuplicateRoot(nullptr);
}

/// Duplicates one bone after the other, parents first.
class Duplicator
{
public:
    Duplicator(const RyFigure *figure, RySkinBinding *skin, RyElementDuplicateContext &context)
        : m_skin(skin), m_context(context)
    {
        for (const RyBone *bone : figure->getAllBones()) {
            m_names.add(bone->getName());
            m_labels.add(bone->getLabel());
        }
    }

    void duplicate(RyBone *bone)
    {
        RyNode *parent = bone->getNodeParent();
        if (auto *newParent = qobject_cast<RyNode *>(m_context.findNewElement(parent)))
            parent = newParent;
        m_context.setParentNode(parent);
        RyElement *element = bone->doDuplicateElement(&m_context);
        auto *copy = qobject_cast<RyBone *>(element);
        if (!copy) {
            delete element;
            m_failures.push_back({RyDuplicateFailure::NoBone, nameAndClass(bone)});
            return;
        }
        copy->setName(m_names.find(bone->objectName()));
        copy->setLabel(m_labels.find(bone->getLabel()));
        m_names.add(copy->getName());
        m_labels.add(copy->getLabel());
        if (RyBoneBinding *binding = m_skin->findBoneBinding(bone))
            duplicateBinding(binding);
        else
            m_failures.push_back({RyDuplicateFailure::NoBinding, nameAndClass(bone)});
    }

    const std::vector<RyDuplicateFailure> &failures() const { return m_failures; }
    /// Whether the skin has new bindings.
    bool hasChangedSkin() const { return m_changedSkin; }

private:
    void duplicateBinding(RyBoneBinding *binding)
    {
        RyElement *element = binding->doDuplicateElement(&m_context);
        auto *copy = qobject_cast<RyBoneBinding *>(element);
        if (!copy) {
            delete element;
            return;
        }
        // A bone that was just made has no influence yet.
        std::vector<RyWeightMap *> maps = copy->getAllWeightMaps();
        for (int axis = 0; axis < 3; ++axis) {
            if (const RyBulgeBinding *bulge = copy->getBulgeBinding(axis))
                maps.insert(maps.end(), {bulge->getLeftWeights(), bulge->getRightWeights()});
        }
        for (RyWeightMap *map : maps) {
            if (!map)
                continue;
            map->beginEdit();
            map->setNumWeights(map->getNumWeights());
            map->finishEdit();
        }
        m_skin->addBoneBinding(copy);
        m_changedSkin = true;
    }

    RySkinBinding *m_skin;
    RyElementDuplicateContext &m_context;
    RyUniqueNames m_names{RyUniqueNames::Names};
    RyUniqueNames m_labels{RyUniqueNames::Labels};
    std::vector<RyDuplicateFailure> m_failures;
    bool m_changedSkin = false;
};

} // namespace

std::vector<RyDuplicateFailure> duplicateBones(RyFigure *figure, std::vector<RyBone *> bones, RyAssetIOMgr &assets)
{
    const RyUndoStackLock lock;
    RySkinBinding *skin = RySkinBinding::findSkinFromNode(figure);
    if (!skin)
        return {{RyDuplicateFailure::NoSkin, QString()}};
    std::stable_sort(bones.begin(), bones.end(),
                     [](const RyBone *a, const RyBone *b) { return boneDepth(a) < boneDepth(b); });
    RyAssetLoadScope scope;
    assets.doScopedLoad(scope, true);
    QObject owner;
    auto *context = new RyElementDuplicateContext(&owner);
    setOptions(*context, scope);
    Duplicator duplicator(figure, skin, *context);
    for (RyBone *bone : bones)
        duplicator.duplicate(bone);
    context->createAlaises();
    context->createERC();
    context->doResolve();
    context->doFinalize();
    context->clearDuplicateAssets();
    scope.finishLoad();
    if (duplicator.hasChangedSkin())
        skin->reduceWeightMemory();
    return duplicator.failures();
}
