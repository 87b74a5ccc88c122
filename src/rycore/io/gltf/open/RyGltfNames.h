#pragma once

#include <QHash>
#include <QSet>
#include <QString>

/// Names that must differ, as they are given to nodes that are read.
class RyGltfNames
{
public:
    /// The wanted name, or where it is taken the same with the first number from 2 that is free behind it. It is taken
    /// from then on.
    QString take(const QString &wanted)
    {
        QString name = wanted;
        if (m_taken.contains(wanted)) {
            int &number = m_numbers[wanted];
            for (number = number < 2 ? 2 : number; m_taken.contains(name); ++number)
                name = wanted + QString::number(number);
        }
        m_taken.insert(name);
        return name;
    }

private:
    QSet<QString> m_taken;
    QHash<QString, int> m_numbers; // by wanted name: none from 2 to below it is free
};
