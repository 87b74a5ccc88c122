#include "rycore/automation/RyDialogRepeats.h"

#include <algorithm>

namespace {

constexpr int MostOpenings = 10;   // of one dialog object
constexpr int MostSameInARow = 50; // of dialogs and boxes that look alike

bool lookAlike(const RyDialogRecord &a, const RyDialogRecord &b)
{
    return a.kind == b.kind && a.className == b.className && a.objectName == b.objectName && a.title == b.title &&
           a.text == b.text && a.buttons == b.buttons;
}

} // namespace

bool RyDialogRepeats::note(QDialog *dialog, const RyDialogRecord &record)
{
    m_sameInARow = lookAlike(m_last, record) ? m_sameInARow + 1 : 1;
    m_last = record;
    std::erase_if(m_openings, [](const Opening &opening) { return !opening.dialog; });
    auto opening =
        std::find_if(m_openings.begin(), m_openings.end(), [&](const Opening &o) { return o.dialog == dialog; });
    if (opening == m_openings.end())
        opening = m_openings.insert(m_openings.end(), Opening{dialog, 0});
    return ++opening->times > MostOpenings || m_sameInARow > MostSameInARow;
}
