#include "rycore/ui/RyNodeDlg.h"

#include "rycore/scene/RyNode.h"
#include "rycore/ui/RyNodeTreeWgt.h"
#include "rycore/ui/RyStandardMetrics.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

RyNodeDlg::RyNodeDlg(QWidget *parent, RyNode *root, const QString &className, bool showRoot, bool allowSelection,
                     bool several)
    : RyBasicDialog(parent), m_search(new QLineEdit(this)), m_tree(new RyNodeTreeWgt(this)), m_pick(new QLabel(this))
{
    setObjectName(QStringLiteral("NodeDlg"));
    setWindowTitle(!allowSelection ? tr("Nodes") : several ? tr("Choose Nodes") : tr("Choose Node"));
    setModal(true);
    m_search->setObjectName(QStringLiteral("NodeDlgSearchLEdit"));
    m_search->setAccessibleName(tr("Search nodes"));
    m_search->setPlaceholderText(tr("Search by name or label..."));
    m_search->setClearButtonEnabled(true);
    m_search->installEventFilter(this);
    m_tree->setObjectName(QStringLiteral("NodeDlgTree"));
    m_tree->setAccessibleName(tr("Nodes"));
    m_tree->setSelectionMode(!allowSelection ? QAbstractItemView::NoSelection
                             : several       ? QAbstractItemView::ExtendedSelection
                                             : QAbstractItemView::SingleSelection);
    m_pick->setObjectName(QStringLiteral("NodeDlgPickLbl"));
    m_pick->setTextFormat(Qt::PlainText);
    m_pick->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed); // a long name must not widen the dialog

    auto *layout = new QVBoxLayout;
    layout->setSpacing(RyStandardMetrics::Margin);
    layout->addWidget(m_search);
    layout->addWidget(m_tree, 1);
    layout->addWidget(m_pick);
    setContentLayout(layout);
    acceptButton()->setVisible(allowSelection);
    m_pick->setVisible(allowSelection);
    const QFontMetrics metrics(font());
    resize(metrics.averageCharWidth() * 52, metrics.height() * 30);

    connect(m_search, &QLineEdit::textChanged, this, &RyNodeDlg::search);
    connect(m_tree, &RyNodeTreeWgt::pickChanged, this, &RyNodeDlg::updatePick);
    connect(m_tree, &QTreeWidget::itemDoubleClicked, this, [this](QTreeWidgetItem *item) {
        if (item->isSelected())
            accept();
    });
    m_tree->setRoot(root, className, showRoot);
}

RyNode *RyNodeDlg::getNode() const
{
    const std::vector<RyNode *> nodes = getNodes();
    return nodes.empty() ? nullptr : nodes.front();
}

std::vector<RyNode *> RyNodeDlg::getNodes() const
{
    return m_tree->getPickedNodes();
}

void RyNodeDlg::reject()
{
    m_tree->clearSelection();
    RyBasicDialog::reject();
}

void RyNodeDlg::search(const QString &text)
{
    m_searchFails = !m_tree->filter(text) && !text.trimmed().isEmpty();
    updatePick();
}

void RyNodeDlg::updatePick()
{
    const std::vector<RyNode *> nodes = getNodes();
    enableAccept(!nodes.empty());
    QString text;
    if (nodes.size() > 1)
        text = tr("%1 nodes chosen").arg(nodes.size());
    else if (nodes.empty())
        text = m_tree->topLevelItemCount() == 0 ? tr("There is no node to choose.")
               : m_searchFails                  ? tr("No node is called so.")
                                                : tr("Nothing chosen yet.");
    else if (nodes.front()->getLabel() == nodes.front()->getName())
        text = nodes.front()->getName();
    else
        text = tr("%1 (%2)", "label, name").arg(nodes.front()->getLabel(), nodes.front()->getName());
    m_pick->setText(text);
    m_pick->setToolTip(text);
}

bool RyNodeDlg::eventFilter(QObject *watched, QEvent *event)
{
    // The search field keeps the focus while the arrow keys walk the tree.
    if (watched == m_search && event->type() == QEvent::KeyPress) {
        switch (static_cast<QKeyEvent *>(event)->key()) {
        case Qt::Key_Up:
        case Qt::Key_Down:
        case Qt::Key_PageUp:
        case Qt::Key_PageDown:
            return QCoreApplication::sendEvent(m_tree, event);
        default:
            break;
        }
    }
    return RyBasicDialog::eventFilter(watched, event);
}
