#include "ryhost/panes/ClipList.h"

#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/scene/clips/RyClipPlayer.h"
#include "ryhost/look/HostIcons.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QSortFilterProxyModel>
#include <QStandardItemModel>
#include <QTimer>

#include <algorithm>
#include <map>

namespace {

constexpr int RowRole = Qt::UserRole;

QStandardItem *makeItem(const QString &text)
{
    auto *item = new QStandardItem(text);
    item->setEditable(false);
    return item;
}

} // namespace

ClipList::ClipList(RyScene *scene, QWidget *parent)
    : QTreeView(parent), m_scene(scene), m_model(new QStandardItemModel(0, 2, this)),
      m_proxy(new QSortFilterProxyModel(this))
{
    setObjectName(QStringLiteral("ClipList"));
    setAccessibleName(tr("Clips"));
    setHeaderHidden(true);
    setUniformRowHeights(true);
    setSelectionMode(SingleSelection);
    setTextElideMode(Qt::ElideMiddle);
    m_proxy->setSourceModel(m_model);
    m_proxy->setRecursiveFilteringEnabled(true);
    m_proxy->setFilterCaseSensitivity(Qt::CaseInsensitive);
    setModel(m_proxy);
    header()->setStretchLastSection(false);
    header()->setSectionResizeMode(NameColumn, QHeaderView::Stretch);
    header()->setSectionResizeMode(LengthColumn, QHeaderView::ResizeToContents);

    connect(this, &QTreeView::clicked, this, &ClipList::choose);
    connect(scene, &RyScene::nodeListChanged, this, &ClipList::follow);
    connect(scene, &RyScene::originChanged, this, &ClipList::follow);
    connect(scene->getClipPlayer(), &RyClipPlayer::shownChanged, this, &ClipList::markShown);
    fill();
}

/// Many nodes may come and go before there is time to look.
void ClipList::follow()
{
    if (m_isStale)
        return;
    m_isStale = true;
    QTimer::singleShot(0, this, &ClipList::fill);
}

std::vector<ClipList::Row> ClipList::rowsOfScene() const
{
    std::vector<Row> rows;
    std::map<const RyNode *, size_t> places; // of what is moved, in the order in which clips name it
    for (const Clip &clip : m_scene->getClips()) {
        for (RyNode *subject : clip->subjects(*m_scene)) {
            rows.push_back({subject, clip});
            places.try_emplace(subject, places.size());
        }
    }
    std::stable_sort(rows.begin(), rows.end(),
                     [&places](const Row &a, const Row &b) { return places.at(a.subject) < places.at(b.subject); });
    return rows;
}

void ClipList::fill()
{
    m_isStale = false;
    if (!m_scene)
        return;
    std::vector<Row> rows = rowsOfScene();
    if (rows == m_rows)
        return;
    const bool wasEmpty = isEmpty();
    m_rows = std::move(rows);
    m_items.clear();
    m_branches.clear();
    m_model->removeRows(0, m_model->rowCount());
    RyNode *subject = nullptr;
    QStandardItem *branch = nullptr;
    for (size_t i = 0; i < m_rows.size(); ++i) {
        if (m_rows[i].subject != subject) {
            subject = m_rows[i].subject;
            branch = makeItem(subject->getLabel());
            branch->setIcon(HostIcons::icon(qobject_cast<const RySkeleton *>(subject) ? QStringLiteral("figure")
                                                                                      : QStringLiteral("mesh")));
            m_model->appendRow({branch, makeItem(QString())});
            m_branches.emplace_back(subject, branch);
            connect(subject, &RyElement::labelChanged, this, &ClipList::nameBranches, Qt::UniqueConnection);
        }
        const RyClip &clip = *m_rows[i].clip;
        QStandardItem *name = makeItem(clip.name());
        QStandardItem *length = makeItem(tr("%1 s").arg(QString::number(clip.length(), 'f', 2)));
        length->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
        for (QStandardItem *item : {name, length}) {
            item->setData(int(i), RowRole);
            item->setToolTip(tr("%1: %2 frames. Click to watch it.").arg(clip.name()).arg(clip.lastFrame()));
        }
        branch->appendRow({name, length});
        m_items.push_back(name);
    }
    nameBranches();
    expandAll();
    markShown();
    updateGeometry();
    if (wasEmpty != isEmpty())
        emit emptyChanged();
}

void ClipList::nameBranches()
{
    for (const auto &[subject, branch] : m_branches) {
        if (!subject)
            continue;
        branch->setText(subject->getLabel());
        m_model->item(branch->row(), LengthColumn)
            ->setData(tr("Clips of %1").arg(subject->getLabel()), Qt::AccessibleTextRole);
    }
}

void ClipList::markShown()
{
    const Clip shown = m_scene ? m_scene->getClipPlayer()->clip() : Clip();
    for (size_t i = 0; i < m_items.size(); ++i) {
        const bool isShown = m_rows[i].clip == shown;
        QFont font = m_items[i]->font();
        font.setBold(isShown);
        m_items[i]->setFont(font);
        m_items[i]->setIcon(HostIcons::icon(isShown ? QStringLiteral("play") : QStringLiteral("clip")));
        m_items[i]->setAccessibleDescription(isShown ? tr("shown") : QString());
    }
}

ClipList::Clip ClipList::clipAt(const QModelIndex &index) const
{
    const QVariant row = index.data(RowRole);
    return row.isValid() ? m_rows[size_t(row.toInt())].clip : Clip();
}

ClipList::Clip ClipList::current() const
{
    if (Clip clip = clipAt(currentIndex()))
        return clip;
    const RyNode *selected = m_scene ? m_scene->getPrimarySelection() : nullptr;
    const RyNode *figure = selected && selected->getSkeleton() ? selected->getSkeleton() : selected;
    const auto own =
        std::find_if(m_rows.begin(), m_rows.end(), [figure](const Row &row) { return row.subject == figure; });
    return own != m_rows.end() ? own->clip : isEmpty() ? Clip() : m_rows.front().clip;
}

void ClipList::setFilter(const QString &text)
{
    m_proxy->setFilterFixedString(text);
    expandAll();
}

QSize ClipList::sizeHint() const
{
    ensurePolished(); // the style takes the frame away
    constexpr int FewestRows = 3, MostRows = 8;
    const int rows = int(m_rows.size() + m_branches.size());
    const int height = std::clamp(rows, FewestRows, MostRows) * std::max(sizeHintForRow(0), fontMetrics().height());
    return {QTreeView::sizeHint().width(), height + 2 * frameWidth()};
}

void ClipList::choose(const QModelIndex &index)
{
    if (const Clip clip = clipAt(index))
        emit clipChosen(clip);
}

void ClipList::keyPressEvent(QKeyEvent *event)
{
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
        choose(currentIndex());
        break;
    case Qt::Key_Escape:
        emit escaped();
        break;
    default:
        QTreeView::keyPressEvent(event);
    }
}
