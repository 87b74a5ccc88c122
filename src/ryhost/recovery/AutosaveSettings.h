#pragma once

#include <QObject>
#include <QStringList>

/// Whether and where unsaved work is kept, as the user wants it and as it really is.
class AutosaveSettings : public QObject
{
    Q_OBJECT
public:
    static AutosaveSettings &global();

    bool isOn() const;
    /// What the user chose; empty for the ordinary place.
    QString chosenFolder() const;
    void set(bool isOn, const QString &folder);

    /// Below the settings of the program.
    static QString ordinaryFolder();
    /// Where unsaved work is kept, the wanted place first. The others are taken where that cannot be written.
    QStringList folders() const;
    /// Where unsaved work may lie: those, and all that were ever chosen.
    QStringList searchedFolders() const;

    /// Where the latest state was kept, or why it could not be; empty before.
    QString state() const { return m_state; }
    void setState(const QString &state);

signals:
    void changed();
    void stateChanged();

private:
    QString m_state;
};
