#include "rycore/base/RyVersion.h"

QString RyVersion::toString() const
{
    return QStringLiteral("%1.%2.%3.%4").arg(m_major).arg(m_minor).arg(m_revision).arg(m_build);
}
