#include "rycore/scene/RyUniqueNames.h"

#include "rycore/scene/RyScene.h"

QString RyUniqueNames::find(const QString &text)
{
    if (!m_taken.contains(text))
        return text;
    QString stem = m_kind == Names ? RyScene::stripNameNumber(text) : RyScene::stripLabelNumber(text);
    if (m_kind == Labels)
        stem += QLatin1Char(' ');
    auto number = m_numbers.find(stem);
    if (number == m_numbers.end())
        number = m_numbers.insert(stem, 2);
    while (m_taken.contains(stem + QString::number(*number)))
        ++*number;
    return stem + QString::number(*number);
}
