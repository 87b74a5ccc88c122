#include "pluginsource/RyJointTools/operations/extractDonor.h"

#include "pluginsource/RyJointTools/operations/normalizeWeights.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/figure/RyFigure.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyObject.h"
#include "rycore/scene/RyScene.h"
#include "rycore/skin/RySkinBinding.h"

#include <QHash>

namespace {

/// Current values as they result: the links that add to them do not come along.
void copyRigging(const RyNode &source, RyNode &copy)
{
    const RyNodeRigging::Controls &from = source.riggingControls();
    const RyNodeRigging::Controls &to = copy.riggingControls();
    for (size_t i = 0; i < from.size(); ++i) {
        to[i]->setDefaultValue(from[i]->getDefaultValue());
        to[i]->adjustValue(from[i]->getValue());
    }
}

class Donor
{
public:
    explicit Donor(const RyFigure &source) : m_source(source) {}

    RyFigure *extract()
    {
        auto *figure = new RyFigure;
        figure->setDrawGLBones(true);
        figure->setName(RyScene::getUniqueTopLevelName(QStringLiteral("Donor_%1").arg(m_source.getName())));
        figure->setLabel(RyScene::getUniqueTopLevelLabel(QStringLiteral("Donor %1").arg(m_source.getLabel())));
        copyBranch(m_source, *figure);
        figure->setObject(makeObject(figure->getName()));
        ryScene()->addNode(figure);
        return figure;
    }

private:
    void copyBranch(const RyNode &source, RyNode &copy)
    {
        copy.setHidden(source.isHidden());
        copy.setSelectable(source.isSelectable());
        copy.setPromoteSelection(source.isSelectionPromoted());
        copy.setInheritScale(source.inheritsScale());
        copy.copyPropertiesFrom(source, false); // limits and labels; the values are put right below
        copy.clearPose();
        copyRigging(source, copy);
        copy.setRotationOrder(source.getRotationOrder());
        m_copies.insert(&source, &copy);
        for (const RyNode *child : source.nodeChildrenIterator()) {
            if (!qobject_cast<const RyBone *>(child))
                continue;
            auto *bone = new RyBone;
            bone->setName(child->getName());
            if (child->hasOwnLabel())
                bone->setLabel(child->getLabel());
            copy.addNodeChild(bone, false);
            ryScene()->addNode(bone);
            copyBranch(*child, *bone);
        }
    }

    RyObject *makeObject(const QString &name) const
    {
        auto *object = new RyObject;
        object->setName(name);
        auto *skin = new RySkinBinding;
        object->addModifier(skin);
        if (const RySkinBinding *from = m_source.getSkinBinding()) {
            for (const RyBoneBinding *binding : from->bindings()) {
                if (auto *bone = qobject_cast<RyBone *>(m_copies.value(binding->getBone())))
                    copyBinding(*binding, bone, *skin);
            }
        }
        normalizeWeights(skin);
        return object;
    }

    static void copyBinding(const RyBoneBinding &from, RyBone *bone, RySkinBinding &skin)
    {
        RyBoneBinding *binding = from.copyFor(bone);
        for (int axis = 0; axis < 3; ++axis) {
            if (!from.getBulgeBinding(axis))
                continue;
            float values[4];
            from.getBulgeBinding(axis)->getBulgeValues(values[0], values[1], values[2], values[3]);
            binding->getBulgeBinding(axis)->adjustBulgeValues(values[0], values[1], values[2], values[3]);
        }
        skin.addBoneBinding(binding);
    }

    const RyFigure &m_source;
    QHash<const RyNode *, RyNode *> m_copies;
};

} // namespace

RyFigure *extractDonor(const RyFigure &source)
{
    return Donor(source).extract();
}
