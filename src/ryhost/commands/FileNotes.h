#pragma once

#include <QObject>
#include <QStringList>

class QWidget;

/// What there was to say about the file that was opened, merged or saved last.
class FileNotes : public QObject
{
    Q_OBJECT
public:
    explicit FileNotes(QWidget *window);

    const QStringList &texts() const { return m_texts; }
    void take(const QString &path, const QStringList &texts);
    /// `what` with the first note, and how many more there are; there must be one.
    QString shortText(const QString &what) const;

public slots:
    /// All of them in a box.
    void show();

signals:
    void changed();

private:
    QWidget *m_window;
    QString m_name; // of the file
    QStringList m_texts;
};
