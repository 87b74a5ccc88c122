#pragma once

#include <QObject>
#include <QStringList>

/// The files that were opened or saved last, kept in the settings.
class RecentFiles : public QObject
{
    Q_OBJECT
public:
    explicit RecentFiles(QObject *parent = nullptr) : QObject(parent) {}

    static constexpr int Most = 10;

    /// Absolute, the latest first; some may be gone.
    QStringList paths() const;
    void add(const QString &path);
    void clear();

    /// What tells each of the paths from the others: its file name, with as many of the folders above as that takes.
    static QStringList labelsOf(const QStringList &paths);
    /// The same for one path among the recent ones.
    QString labelOf(const QString &path) const;

signals:
    void changed();
};
