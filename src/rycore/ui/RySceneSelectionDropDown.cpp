#include "rycore/ui/RySceneSelectionDropDown.h"

#include "rycore/scene/RyNode.h"
#include "rycore/scene/RyScene.h"
#include "rycore/ui/RyNodeListFilter.h"
#include "rycore/ui/RyNodeTreeWgt.h"
#include "rycore/ui/RyPopUpWidget.h"
#include "rycore/ui/RyStandardMetrics.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QVBoxLayout>

#include <algorithm>

RySceneSelectionDropDown::RySceneSelectionDropDown(std::unique_ptr<RyNodeListFilter> filter, QWidget *parent)
    : RyPopUpButton(QStringLiteral("SceneSelectionDropDownPopUpWgt"), parent),
      m_filter(filter ? std::move(filter) : std::make_unique<RyNodeListFilter>())
{
    connect(ryScene(), &RyScene::nodeSelectionListChanged, this, &RySceneSelectionDropDown::followPrimary);
    connect(ryScene(), &RyScene::nodeListChanged, this, &RySceneSelectionDropDown::followPrimary);
    followPrimary();
}

RySceneSelectionDropDown::~RySceneSelectionDropDown() = default;

void RySceneSelectionDropDown::followPrimary()
{
    RyNode *primary = ryScene()->getPrimarySelection();
    if (primary != m_primary) {
        if (m_primary)
            disconnect(m_primary, nullptr, this, nullptr);
        m_primary = primary;
        // The label stands for the name where none was given, and is told as changed with it.
        if (m_primary)
            connect(m_primary, &RyElement::labelChanged, this, &RySceneSelectionDropDown::updateText);
    }
    updateText();
}

void RySceneSelectionDropDown::updateText()
{
    showText(m_primary ? m_primary->getLabel() : tr("None"));
}

std::vector<RyNode *> RySceneSelectionDropDown::offeredNodes() const
{
    m_filter->refresh();
    std::vector<RyNode *> nodes = ryScene()->getNodesInTreeOrder();
    nodes.erase(std::remove_if(nodes.begin(), nodes.end(), [this](RyNode *node) { return !m_filter->accept(node); }),
                nodes.end());
    return nodes;
}

QWidget *RySceneSelectionDropDown::fillPopup(RyPopUpWidget *popup)
{
    m_search = new QLineEdit(popup);
    m_search->setObjectName(QStringLiteral("SceneSelectionDropDownSearchLEdit"));
    m_search->setAccessibleName(tr("Search nodes"));
    m_search->setPlaceholderText(tr("Search by name or label..."));
    m_search->setClearButtonEnabled(true);
    m_search->installEventFilter(this);
    m_tree = new RyNodeTreeWgt(popup);
    m_tree->setObjectName(QStringLiteral("SceneSelectionDropDownTree"));
    m_tree->setAccessibleName(tr("Nodes"));
    m_tree->setFrameStyle(QFrame::NoFrame);
    m_tree->setIndentation(fontMetrics().averageCharWidth() * 2);
    m_tree->installEventFilter(this);
    m_tree->setScene(ryScene(), m_filter.get());
    auto *layout = new QVBoxLayout(popup);
    layout->setContentsMargins(RyStandardMetrics::Spacing, RyStandardMetrics::Spacing, RyStandardMetrics::Spacing,
                               RyStandardMetrics::Spacing);
    layout->setSpacing(RyStandardMetrics::Spacing);
    layout->addWidget(m_search);
    layout->addWidget(m_tree, 1);
    connect(m_search, &QLineEdit::textChanged, m_tree, &RyNodeTreeWgt::filter);
    connect(m_tree, &QTreeWidget::itemClicked, this, &RySceneSelectionDropDown::chooseCurrent);
    return m_search;
}

void RySceneSelectionDropDown::popupOpened()
{
    if (m_tree->currentItem())
        m_tree->scrollToItem(m_tree->currentItem(), QAbstractItemView::PositionAtCenter);
}

void RySceneSelectionDropDown::chooseCurrent()
{
    const std::vector<RyNode *> picked = popup() ? m_tree->getPickedNodes() : std::vector<RyNode *>();
    RyNode *node = picked.empty() ? nullptr : picked.front();
    // An item that only shows the way to its children was clicked.
    if (!node)
        return;
    hidePopup();
    choose(node);
}

void RySceneSelectionDropDown::choose(RyNode *node)
{
    ryScene()->setSelection({node});
}

void RySceneSelectionDropDown::step(int places)
{
    const std::vector<RyNode *> nodes = offeredNodes();
    const auto place = std::find(nodes.begin(), nodes.end(), m_primary);
    if (nodes.empty())
        return;
    const int last = int(nodes.size()) - 1;
    const int wanted = place == nodes.end() ? 0 : int(place - nodes.begin()) + places;
    choose(nodes[size_t(std::clamp(wanted, 0, last))]);
}

void RySceneSelectionDropDown::keyPressEvent(QKeyEvent *event)
{
    const int key = event->key();
    const bool opens = key == Qt::Key_Return || key == Qt::Key_Enter ||
                       (key == Qt::Key_Down && event->modifiers().testFlag(Qt::AltModifier));
    if (opens)
        showPopup();
    else if (key == Qt::Key_Up || key == Qt::Key_Down)
        step(key == Qt::Key_Up ? -1 : 1);
    else
        RyPopUpButton::keyPressEvent(event);
}

bool RySceneSelectionDropDown::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::KeyPress || !popup())
        return RyPopUpButton::eventFilter(watched, event);
    const int key = static_cast<QKeyEvent *>(event)->key();
    if (key == Qt::Key_Return || key == Qt::Key_Enter) {
        chooseCurrent();
        return true;
    }
    // From the search line the list is walked without leaving it.
    const bool walks = key == Qt::Key_Up || key == Qt::Key_Down || key == Qt::Key_PageUp || key == Qt::Key_PageDown;
    if (watched == m_search && walks)
        return QCoreApplication::sendEvent(m_tree, event);
    return false;
}
