#include "ryhost/panes/HistoryPane.h"

#include "rycore/undo/RyUndoStack.h"
#include "ryhost/commands/HostFiles.h"
#include "ryhost/panes/HistoryModel.h"

#include <QHeaderView>
#include <QLabel>
#include <QScopedValueRollback>
#include <QTreeView>
#include <QVBoxLayout>

HistoryPane::HistoryPane(HostFiles *files, QWidget *parent)
    : QWidget(parent), m_files(files), m_stack(ryUndoStack()), m_model(new HistoryModel(m_stack, this)),
      m_state(new QLabel(this)), m_list(new QTreeView(this))
{
    setObjectName(QStringLiteral("HistoryPane"));
    m_state->setObjectName(QStringLiteral("HistoryState"));
    m_state->setWordWrap(true);
    m_state->setTextFormat(Qt::PlainText);
    m_list->setObjectName(QStringLiteral("HistoryList"));
    m_list->setAccessibleName(tr("Undo history"));
    m_list->setModel(m_model);
    m_list->setRootIsDecorated(false);
    m_list->setItemsExpandable(false);
    m_list->setUniformRowHeights(true);
    m_list->setSelectionMode(QAbstractItemView::SingleSelection);
    m_list->setTextElideMode(Qt::ElideMiddle);
    m_list->header()->setStretchLastSection(false);
    m_list->header()->setSectionResizeMode(HistoryModel::StepColumn, QHeaderView::Stretch);
    m_list->header()->setSectionResizeMode(HistoryModel::TimeColumn, QHeaderView::ResizeToContents);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(6, 4, 6, 4);
    layout->addWidget(m_state);
    layout->addWidget(m_list, 1);

    connect(m_list->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            [this](const QModelIndex &current) { goTo(current.row()); });
    connect(m_stack, &RyUndoStack::changed, this, &HistoryPane::refresh);
    connect(m_stack, &RyUndoStack::cleanChanged, this, &HistoryPane::refresh);
    connect(files, &HostFiles::titleChanged, this, &HistoryPane::refresh);
}

void HistoryPane::showEvent(QShowEvent *event)
{
    refresh();
    QWidget::showEvent(event);
}

void HistoryPane::goTo(int row)
{
    // Rows that come and go move the current one as well.
    if (m_showing || row < 0 || row == m_stack->index())
        return;
    const QScopedValueRollback<bool> showing(m_showing, true);
    if (m_stack->goTo(row))
        return;
    emit messagePosted(tr("Finish what the mouse is dragging first."));
    // The list selects what was clicked once this returns.
    QMetaObject::invokeMethod(this, &HistoryPane::refresh, Qt::QueuedConnection);
}

void HistoryPane::refresh()
{
    if (!isVisible())
        return;
    const QString changes = m_files->file().unsavedChanges();
    m_state->setText(changes.isEmpty() ? tr("Nothing has changed since %1.").arg(m_files->file().savedState().text())
                                       : changes);
    const bool isWalking = m_showing;
    const QScopedValueRollback<bool> showing(m_showing, true);
    m_model->refresh(m_files->file().savedState());
    if (isWalking)
        return;
    const QModelIndex present = m_model->index(m_stack->index(), HistoryModel::StepColumn);
    m_list->setCurrentIndex(present);
    m_list->scrollTo(present);
}
