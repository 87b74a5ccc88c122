#include "ryhost/recovery/RecoveryDialog.h"

#include "rycore/io/RySceneFile.h"
#include "rycore/io/snapshot/RySceneSnapshot.h"
#include "rycore/io/snapshot/RySnapshotStore.h"
#include "ryhost/commands/timeText.h"
#include "ryhost/commands/unsavedChanges.h"

#include <QDialogButtonBox>
#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

RecoveryDialog::RecoveryDialog(const QStringList &folders, QWidget *parent)
    : QDialog(parent), m_list(new QListWidget(this)), m_detail(new QLabel(this))
{
    setObjectName(QStringLiteral("RecoveryDialog"));
    setWindowTitle(tr("Recover Unsaved Work"));
    auto *layout = new QVBoxLayout(this);
    auto *text = new QLabel(tr("The program ended before this was saved. What would you like to bring back?"), this);
    text->setObjectName(QStringLiteral("RecoveryText"));
    text->setWordWrap(true);
    m_list->setObjectName(QStringLiteral("RecoveryList"));
    m_list->setAccessibleName(tr("Unsaved work"));
    m_detail->setObjectName(QStringLiteral("RecoveryDetail"));
    m_detail->setWordWrap(true);
    m_detail->setMinimumWidth(480);
    auto *buttons = new QDialogButtonBox(this);
    m_recover = buttons->addButton(tr("&Recover"), QDialogButtonBox::AcceptRole);
    m_recover->setObjectName(QStringLiteral("RecoveryRecover"));
    m_recover->setDefault(true);
    QPushButton *remove = buttons->addButton(tr("&Delete..."), QDialogButtonBox::DestructiveRole);
    remove->setObjectName(QStringLiteral("RecoveryDelete"));
    QPushButton *later = buttons->addButton(tr("&Later"), QDialogButtonBox::RejectRole);
    later->setObjectName(QStringLiteral("RecoveryLater"));
    later->setToolTip(tr("Offer it again at the next start"));
    layout->addWidget(text);
    layout->addWidget(m_list);
    layout->addWidget(m_detail);
    layout->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(remove, &QPushButton::clicked, this, &RecoveryDialog::deleteCurrent);
    connect(m_list, &QListWidget::currentRowChanged, this, &RecoveryDialog::showCurrent);
    fill(folders);
    m_list->setCurrentRow(0);
    showCurrent();
}

void RecoveryDialog::fill(const QStringList &folders)
{
    for (const QString &folder : folders) {
        Entry entry;
        entry.session = RecoverySession::adopt(folder);
        if (!entry.session)
            continue; // another program that starts offers it
        RySnapshotParts parts;
        if (RySnapshotStore::readOthers(folder, &parts, &entry.damage))
            RySceneSnapshot::isKnown(parts, &entry.damage);
        const QByteArray info = rySnapshotBytes(parts, RecoveryInfo::PartName);
        entry.info = RecoveryInfo::fromBytes(info);
        if (entry.damage.isEmpty() && info.isEmpty())
            entry.damage = tr("it does not say what it is of");
        m_entries.push_back(std::move(entry));
    }
    std::stable_sort(m_entries.begin(), m_entries.end(),
                     [](const Entry &a, const Entry &b) { return a.info.time > b.info.time; });
    for (const Entry &entry : m_entries)
        m_list->addItem(titleOf(entry));
}

/// What is damaged may still say what it is of.
bool RecoveryDialog::isNamed(const Entry &entry)
{
    return entry.damage.isEmpty() || entry.info.time.isValid();
}

QString RecoveryDialog::titleOf(const Entry &entry)
{
    return isNamed(entry) ? tr("%1, as of %2").arg(entry.info.name(), entry.info.timeText())
                          : tr("Damaged: %1").arg(QDir::toNativeSeparators(entry.session->folder()));
}

int RecoveryDialog::current() const
{
    return m_list->currentRow();
}

QString RecoveryDialog::describe(const Entry &entry)
{
    if (!entry.damage.isEmpty())
        return tr("This cannot be brought back: %1.").arg(entry.damage);
    const RecoveryInfo &info = entry.info;
    QStringList lines;
    const bool isForeign = RySceneFile::isForeign(info.path);
    if (info.path.isEmpty() || info.isSample)
        lines.append(tr("It was never saved; saving it asks where."));
    else if (isForeign)
        lines.append(tr("It was read from %1, which stays as it is, and never saved; saving it asks where.")
                         .arg(QDir::toNativeSeparators(info.path)));
    else
        lines.append(
            tr("%1 is as it was and is replaced only when you save.").arg(QDir::toNativeSeparators(info.path)));
    if (info.mergedFiles > 0)
        lines.append(info.mergedFiles == 1 ? tr("1 file was merged into it.")
                                           : tr("%n files were merged into it.", nullptr, info.mergedFiles));
    if (info.isFileWrittenSince()) {
        const QString written = timeTextOf(QFileInfo(info.path).lastModified());
        lines.append((isForeign ? tr("Another program has written that file since (%1); this is from before.")
                                : tr("Another program has written that file since (%1): compare the two before you "
                                     "save over it."))
                         .arg(written));
    }
    lines.append(tr("The undo history is gone."));
    if (!info.losses.isEmpty())
        lines.append(tr("Not kept: %1").arg(info.losses.join(QStringLiteral("; "))));
    return lines.join(QLatin1Char('\n'));
}

void RecoveryDialog::showCurrent()
{
    const int row = current();
    const bool isThere = row >= 0 && size_t(row) < m_entries.size();
    m_detail->setText(isThere ? describe(m_entries[size_t(row)]) : QString());
    m_recover->setEnabled(isThere && m_entries[size_t(row)].damage.isEmpty());
}

void RecoveryDialog::deleteCurrent()
{
    const int row = current();
    if (row < 0)
        return;
    const Entry &entry = m_entries[size_t(row)];
    QMessageBox box(QMessageBox::Question, tr("Delete Unsaved Work"),
                    isNamed(entry)
                        ? tr("Delete what was not saved of %1?").arg(titleOf(entry))
                        : tr("Delete what is left in %1?").arg(QDir::toNativeSeparators(entry.session->folder())),
                    QMessageBox::NoButton, this);
    box.setObjectName(QStringLiteral("DeleteUnsavedWorkBox"));
    box.setInformativeText(tr("It cannot be brought back afterwards. The file itself stays as it is."));
    QPushButton *remove = box.addButton(tr("&Delete"), QMessageBox::DestructiveRole);
    box.setDefaultButton(box.addButton(QMessageBox::Cancel));
    box.exec();
    if (box.clickedButton() != remove)
        return;
    entry.session->remove();
    m_entries.erase(m_entries.begin() + row);
    delete m_list->takeItem(row);
    showCurrent();
    if (m_entries.empty())
        reject();
}

std::unique_ptr<RecoverySession> RecoveryDialog::takeChosen()
{
    const int row = current();
    return row >= 0 && size_t(row) < m_entries.size() ? std::move(m_entries[size_t(row)].session) : nullptr;
}
