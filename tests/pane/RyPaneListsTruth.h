#pragma once

#include "RyPaneScene.h"

#include "pluginsource/RyJointTools/pane/RyBindingBulgeView.h"
#include "rycore/skin/RySkinBinding.h"
#include "rycore/ui/RyNumberExpression.h"
#include "rycore/ui/RySceneSelectionDropDown.h"

#include <QCheckBox>
#include <QTabWidget>

/// What the lists of the pane must show and its switches of what is drawn, told from the scene and the tool alone.
class RyPaneListsTruth
{
public:
    explicit RyPaneListsTruth(const RyPaneScene &scene)
        : m_scene(scene), m_primary(ryScene()->getPrimarySelection()), m_node(scene.tool->currentNode())
    {}

    /// Empty when the pane shows just that.
    QString difference() const { return wrongNodes() + wrongGroup() + wrongBulges() + wrongDisplay(); }

private:
    QString wrongNodes() const
    {
        const auto *bone = qobject_cast<const RyBone *>(m_primary);
        const RyNode *skeleton =
            bone ? static_cast<const RyNode *>(bone->getSkeleton()) : qobject_cast<const RySkeleton *>(m_primary);
        std::vector<RyNode *> wanted;
        for (RyNode *node : ryScene()->getNodesInTreeOrder()) {
            const bool isOfFigure = skeleton && qobject_cast<RyBone *>(node) && node->getSkeleton() == skeleton;
            if (!m_primary || node == m_primary || node == skeleton || isOfFigure)
                wanted.push_back(node);
        }
        return m_scene.find<RySceneSelectionDropDown>("JointEditorNodeBtn")->offeredNodes() == wanted
                   ? QString()
                   : QStringLiteral("other nodes are offered");
    }
    QString wrongGroup() const
    {
        const auto *bone = qobject_cast<const RyBone *>(m_primary);
        const auto *figure = qobject_cast<const RyFigure *>(bone ? bone->getSkeleton() : nullptr);
        const RySelectionMap *map = figure ? figure->getSelectionMap() : nullptr;
        QString text = m_primary ? m_primary->getName() : QStringLiteral("None");
        if (map)
            text = QStringLiteral("None");
        for (int i = map ? map->getNumPairs() : 0; i-- > 0;) {
            if (map->getPairNode(i) == m_primary)
                text = map->getPairGroup(i);
        }
        const auto *button = m_scene.find<QPushButton>("JointEditorSelectionGroupBtn");
        if (button->text() != text)
            return QStringLiteral("the group is %1, not %2").arg(button->text(), text);
        return button->isEnabled() == (figure != nullptr) ? QString()
                                                          : QStringLiteral("the group can be chosen or not");
    }
    QString wrongBulges() const
    {
        const RyBoneBinding *binding = bindingWithBulges();
        if (m_scene.find<QTabWidget>("JointEditorParameterTabWgt")->isTabEnabled(1) != (binding != nullptr))
            return QStringLiteral("the bulges can be seen or not");
        const auto *view = m_scene.find<RyBindingBulgeView>("JointEditorBindingBulgeView");
        const QStringList rows = shownBulges(*view);
        const QStringList wanted = binding ? wantedBulges(*binding) : QStringList();
        return rows == wanted ? QString()
                              : QStringLiteral("the bulges are %1, not %2").arg(rows.join(';'), wanted.join(';'));
    }
    const RyBoneBinding *bindingWithBulges() const
    {
        const auto *bone = qobject_cast<const RyBone *>(m_node);
        const auto *figure = qobject_cast<const RyFigure *>(bone ? bone->getSkeleton() : nullptr);
        const RyObject *object = figure ? figure->getObject() : nullptr;
        for (const RyModifier *modifier : object ? object->getModifiers() : std::vector<RyModifier *>()) {
            const auto *skin = qobject_cast<const RySkinBinding *>(modifier);
            for (const RyBoneBinding *binding : skin ? skin->bindings() : std::vector<RyBoneBinding *>()) {
                if (binding->getBone() == bone)
                    return binding->hasBulgeWeights() ? binding : nullptr;
            }
        }
        return nullptr;
    }
    /// A row for each item, with a dot for each level; leaves with the field's text and whose value that is.
    static QStringList shownBulges(const RyBindingBulgeView &view)
    {
        QStringList rows;
        for (QTreeWidgetItemIterator it(const_cast<RyBindingBulgeView *>(&view)); *it; ++it) {
            const auto *field = qobject_cast<const RyFloatPropertyWgt *>(view.itemWidget(*it, 1));
            int level = 0;
            for (const QTreeWidgetItem *item = (*it)->parent(); item; item = item->parent())
                ++level;
            rows.append(QString(level, QLatin1Char('.')) + (*it)->text(0));
            if (field)
                rows.last() += leaf(field->getFirstProperty(), field->numberField()->text());
        }
        return rows;
    }
    static QString leaf(const RyFloatProperty *property, const QString &text)
    {
        return QStringLiteral("=%1 %2").arg(text).arg(quintptr(property), 0, 16);
    }
    static QStringList wantedBulges(const RyBoneBinding &binding)
    {
        QStringList rows;
        for (int axis = 0; axis < 3; ++axis) {
            rows.append(QStringLiteral("%1 Axis").arg(QLatin1Char("XYZ"[axis])));
            const RyBulgeBinding *bulge = binding.getBulgeBinding(axis);
            if (bulge && bulge->getLeftWeights())
                addSide(rows, *bulge->getLeftWeights(), bulge->getPosLeftBulgeController(),
                        bulge->getNegLeftBulgeController());
            if (bulge && bulge->getRightWeights())
                addSide(rows, *bulge->getRightWeights(), bulge->getPosRightBulgeController(),
                        bulge->getNegRightBulgeController());
        }
        return rows;
    }
    static void addSide(QStringList &rows, const RyWeightMap &map, const RyFloatProperty *pos,
                        const RyFloatProperty *neg)
    {
        rows.append(QLatin1Char('.') + map.objectName());
        rows.append(QStringLiteral("..Pos") + leaf(pos, RyNumberExpression::format(double(pos->getValue()))));
        rows.append(QStringLiteral("..Neg") + leaf(neg, RyNumberExpression::format(double(neg->getValue()))));
    }
    QString wrongDisplay() const
    {
        const RyJointToolDisplay &display = m_scene.tool->display();
        const struct
        {
            const char *name;
            bool isOn;
            bool ofParam;
        } boxes[] = {
            {"VertexWeights", display.weightVis, true},
            {"JointAngles", display.angleVis, true},
            {"StaticSphere", display.matBVis, true},
            {"TwistBlendZone", display.twistVis, true},
            {"DynamicSphere", display.matAVis, true},
            {"SmoothZones", display.smoothVis, true},
            {"MeshBoundaries", display.drawMeshBoundaries, false},
            {"Relationships", display.showBoneHierarchy, false},
            {"BoneGhosting", display.ghostBones, false},
            {"Manipulators", display.showManipulators, false},
        };
        QString wrong;
        for (const auto &box : boxes) {
            const auto *widget = m_scene.find<QCheckBox>(QByteArray("JointEditor") + box.name + "Cbx");
            if (widget->isChecked() != box.isOn)
                wrong += QStringLiteral("%1 is another one").arg(widget->text());
            if (widget->isEnabled() != (!box.ofParam || m_scene.tool->currentParam()))
                wrong += QStringLiteral("%1 can be switched or not").arg(widget->text());
        }
        if (m_scene.find<QComboBox>("JointEditorVisibleBonesCmb")->currentIndex() != 3 - display.boneDrawMode)
            wrong += QStringLiteral("other bones are visible");
        return wrong;
    }

    const RyPaneScene &m_scene;
    const RyNode *m_primary;
    const RyNode *m_node;
};
