#include "pluginsource/RyJointTools/pane/RyBoneFaceGroupSelectionDropDown.h"

#include "pluginsource/RyJointTools/pane/RyCheckInOneStep.h"
#include "pluginsource/RyJointTools/pane/RySimpleSelectionMapModel.h"

#include "rycore/scene/RyBone.h"
#include "rycore/scene/RyScene.h"
#include "rycore/ui/RyPopUpWidget.h"
#include "rycore/ui/RyStandardMetrics.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QTreeView>
#include <QVBoxLayout>

RyBoneFaceGroupSelectionDropDown::RyBoneFaceGroupSelectionDropDown(QWidget *parent)
    : RyPopUpButton(QStringLiteral("SceneSelectionPopUpWgt"), parent)
{
    setObjectName(QStringLiteral("JointEditorSelectionGroupBtn"));
    showText(tr("None"));
    setEnabled(false);
    connect(ryScene(), SIGNAL(nodeSelectionListChanged()), this, SLOT(updateText()));
    connect(ryScene(), SIGNAL(nodeListChanged()), this, SLOT(updateText()));
}

void RyBoneFaceGroupSelectionDropDown::follow(RySkeleton *skeleton)
{
    RySelectionMap *map = skeleton ? skeleton->getSelectionMap() : nullptr;
    if (m_skeleton != skeleton) {
        if (m_skeleton)
            disconnect(m_skeleton, nullptr, this, nullptr);
        if (skeleton)
            connect(skeleton, SIGNAL(selectionMapChanged()), this, SLOT(updateText()));
    }
    if (m_map != map) {
        if (m_map)
            disconnect(m_map, nullptr, this, nullptr);
        if (map)
            connect(map, SIGNAL(mapChanged()), this, SLOT(updateText()));
    }
    m_skeleton = skeleton;
    m_map = map;
}

void RyBoneFaceGroupSelectionDropDown::updateText()
{
    if (!isVisible())
        return;
    RyNode *primary = ryScene()->getPrimarySelection();
    RySkeleton *skeleton = primary ? primary->getSkeleton() : nullptr;
    const bool isBone = qobject_cast<RyBone *>(primary) && skeleton != primary && qobject_cast<RyFigure *>(skeleton);
    follow(isBone ? skeleton : nullptr);
    QString text = primary ? primary->getName() : tr("None");
    if (m_map) {
        const QString group = m_map->findGroupForNode(primary);
        text = group.isEmpty() ? tr("None") : group;
    }
    // Once: a button that is disabled for a moment loses the keyboard.
    setEnabled(isBone);
    showText(text);
    if (popup() && m_model->bone() != primary) {
        m_model->fill();
        goToCurrentRow();
    }
}

QWidget *RyBoneFaceGroupSelectionDropDown::fillPopup(RyPopUpWidget *popup)
{
    setupPopup(popup);
    popup->installEventFilter(this);
    connect(popup, &RyPopUpWidget::mouseLeave, this, &RyBoneFaceGroupSelectionDropDown::mouseLeave);
    return m_view;
}

void RyBoneFaceGroupSelectionDropDown::popupOpened()
{
    m_view->scrollTo(m_view->currentIndex());
}

void RyBoneFaceGroupSelectionDropDown::setupPopup(QWidget *widget)
{
    auto *layout = new QVBoxLayout(widget);
    const int gap = RyStandardMetrics::Spacing;
    layout->setContentsMargins(gap, gap, gap, gap);
    layout->setSpacing(gap);
    m_view = new QTreeView(widget);
    m_view->setObjectName(QStringLiteral("BoneFaceGroupSelectionDropDownListView"));
    m_view->setAccessibleName(tr("Face groups"));
    m_view->setFrameShape(QFrame::NoFrame);
    m_view->setRootIsDecorated(false);
    m_view->setUniformRowHeights(true);
    m_view->setAllColumnsShowFocus(true);
    m_view->setItemDelegate(new RyCheckInOneStep(tr("Selection Group"), m_view));
    m_view->setHeaderHidden(false);
    m_view->installEventFilter(this);
    m_model = new RySimpleSelectionMapModel(m_view);
    connect(m_model, SIGNAL(selectionChanged()), this, SLOT(updateText()));
    m_model->fill();
    m_view->setModel(m_model);
    m_view->header()->setSectionResizeMode(QHeaderView::Stretch);
    m_view->expandAll();
    m_view->clearSelection();
    layout->addWidget(m_view, 100);
    goToCurrentRow();
}

/// The keys start from the bone's row, which is not selected by that.
void RyBoneFaceGroupSelectionDropDown::goToCurrentRow()
{
    if (m_model->rowCount() == 0 || !m_model->bone())
        return;
    const QModelIndex row = m_model->index(m_model->currentRow(), 0);
    m_view->selectionModel()->setCurrentIndex(row, QItemSelectionModel::NoUpdate);
    m_view->scrollTo(row);
}

void RyBoneFaceGroupSelectionDropDown::mouseLeave()
{
    const bool isOverButton = rect().contains(mapFromGlobal(QCursor::pos()));
    if (popup() && !popup()->isMouseOver() && !isOverButton)
        hidePopup();
}

void RyBoneFaceGroupSelectionDropDown::leaveEvent(QEvent *event)
{
    RyPopUpButton::leaveEvent(event);
    mouseLeave();
}

void RyBoneFaceGroupSelectionDropDown::keyPressEvent(QKeyEvent *event)
{
    const int key = event->key();
    if (key == Qt::Key_Escape)
        hidePopup();
    if (key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Down)
        showPopup();
    else
        RyPopUpButton::keyPressEvent(event);
}

bool RyBoneFaceGroupSelectionDropDown::eventFilter(QObject *watched, QEvent *event)
{
    const bool isKey = event->type() == QEvent::KeyPress && popup() && (watched == popup() || watched == m_view);
    if (!isKey || static_cast<QKeyEvent *>(event)->key() != Qt::Key_Escape)
        return RyPopUpButton::eventFilter(watched, event);
    keyPressEvent(static_cast<QKeyEvent *>(event));
    return true;
}

void RyBoneFaceGroupSelectionDropDown::showEvent(QShowEvent *event)
{
    RyPopUpButton::showEvent(event);
    updateText();
    if (popup())
        m_model->fill();
}
