#include "pluginsource/RyJointTools/pane/RyBindingBulgeView.h"

#include "pluginsource/RyJointTools/pane/layOutFields.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/skin/RyBoneBinding.h"
#include "rycore/ui/RyFloatPropertyWgt.h"
#include "rycore/ui/RyNumberField.h"
#include "rycore/ui/RyScrubLabel.h"
#include "rycore/ui/RyStandardMetrics.h"

#include <QHeaderView>

static constexpr float step = 0.05f;

RyBindingBulgeView::RyBindingBulgeView(QWidget *parent) : QTreeWidget(parent)
{
    setObjectName(QStringLiteral("JointEditorBindingBulgeView"));
    setAccessibleName(tr("Bulges"));
    setFrameShape(QFrame::NoFrame);
    viewport()->setBackgroundRole(QPalette::Window); // fields stand out from it
    setTextElideMode(Qt::ElideMiddle);
    setColumnCount(2);
    setHeaderLabels({tr("Bulge"), tr("Property")});
    setAllColumnsShowFocus(false);
    header()->setSectionResizeMode(QHeaderView::Stretch);
    header()->setSectionsMovable(false);
}

std::vector<RyBindingBulgeView::Side> RyBindingBulgeView::sidesOf(const RyBoneBinding &binding)
{
    std::vector<Side> sides;
    for (int axis = 0; axis < 3; ++axis) {
        const RyBulgeBinding *bulge = binding.getBulgeBinding(axis);
        if (!bulge)
            continue;
        const auto add = [&](const RyWeightMap *map, const QString &side, RyFloatProperty *pos, RyFloatProperty *neg) {
            if (map)
                sides.push_back({axis, map, map->getName().isEmpty() ? side : map->getName(), pos, neg});
        };
        add(bulge->getLeftWeights(), tr("Left"), bulge->getPosLeftBulgeController(),
            bulge->getNegLeftBulgeController());
        add(bulge->getRightWeights(), tr("Right"), bulge->getPosRightBulgeController(),
            bulge->getNegRightBulgeController());
    }
    return sides;
}

void RyBindingBulgeView::showBinding(const RyBoneBinding *binding)
{
    const std::vector<Side> sides = binding ? sidesOf(*binding) : std::vector<Side>();
    if (sides == m_sides && (topLevelItemCount() > 0) == (binding != nullptr))
        return;
    for (const Side &side : m_sides) {
        if (side.map)
            disconnect(side.map, nullptr, this, nullptr);
    }
    clear();
    m_binding = binding;
    m_sides = sides;
    m_lastField = this;
    followNames();
    for (int axis = 0; binding && axis < 3; ++axis)
        addAxis(axis);
    expandAll();
}

void RyBindingBulgeView::followNames()
{
    for (const Side &side : m_sides)
        connect(side.map, &RyBase::nameChanged, this, [this] { showBinding(m_binding); });
}

/// A title has both columns.
static void spread(QTreeWidgetItem *item)
{
    item->setFirstColumnSpanned(true);
    item->setData(1, Qt::AccessibleTextRole, item->text(0));
}

void RyBindingBulgeView::addAxis(int axis)
{
    const QString titles[] = {tr("X Axis"), tr("Y Axis"), tr("Z Axis")};
    auto *item = new QTreeWidgetItem(this, {titles[axis]});
    spread(item);
    for (const Side &side : m_sides) {
        if (side.axis == axis)
            addSide(item, side);
    }
}

void RyBindingBulgeView::addSide(QTreeWidgetItem *above, const Side &side)
{
    auto *item = new QTreeWidgetItem(above, {side.name});
    item->setToolTip(0, side.name);
    spread(item);
    addController(item, tr("Pos"), side.pos);
    addController(item, tr("Neg"), side.neg);
}

void RyBindingBulgeView::addController(QTreeWidgetItem *above, const QString &title, RyFloatProperty *property)
{
    auto *item = new QTreeWidgetItem(above, {title});
    const QString spoken = above->parent()->text(0) + QLatin1Char(' ') + above->text(0) + QLatin1Char(' ') + title;
    item->setData(1, Qt::AccessibleTextRole, spoken);
    auto *field = new RyFloatPropertyWgt;
    field->setAutoFillBackground(true); // over the row's own drawing
    field->setContentsMargins(0, 1, RyStandardMetrics::Spacing, 1);
    field->label()->hide();
    field->setFullLengthTextEdit(true);
    field->setStep(step);
    field->setLabelText(title);
    field->setSpokenName(spoken);
    field->addProperty(property);
    showMessagesOf(field);
    setItemWidget(item, 1, field);
    setTabOrder(m_lastField, field->numberField());
    m_lastField = field->numberField();
}
