#include "ryhost/commands/FileNotes.h"

#include <QFileInfo>
#include <QMessageBox>

FileNotes::FileNotes(QWidget *window) : QObject(window), m_window(window) {}

void FileNotes::take(const QString &path, const QStringList &texts)
{
    m_texts = texts;
    m_name = QFileInfo(path).fileName();
    emit changed();
}

QString FileNotes::shortText(const QString &what) const
{
    return m_texts.size() == 1
               ? tr("%1: %2").arg(what, m_texts.first())
               : tr("%1: %2 (and %n more: File, Notes)", nullptr, m_texts.size() - 1).arg(what, m_texts.first());
}

void FileNotes::show()
{
    QMessageBox box(QMessageBox::Information, tr("Notes"), tr("About %1:").arg(m_name), QMessageBox::Ok, m_window);
    box.setObjectName(QStringLiteral("NotesBox"));
    box.setInformativeText(m_texts.join(QStringLiteral("\n\n")));
    box.exec();
}
