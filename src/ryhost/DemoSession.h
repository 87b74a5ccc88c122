#pragma once

#include "ryhost/PointerDriver.h"

#include <QString>

class HostWindow;
class RyNode;

/// Plays a short session by itself: opens the sample, selects the left forearm, drags the end of its bone, aligns it,
/// undoes and redoes, saves. Leaves pictures and the saved file in a folder and says on standard output what happened.
class DemoSession
{
public:
    DemoSession(HostWindow &window, const QString &folder);
    /// 0 when every step did what it should.
    int run();

private:
    void picture(const QString &name);
    bool check(bool ok, const QString &text);
    void hoverPart();
    bool selectInTree(RyNode *node);
    bool dragEndPoint(RyNode *node);
    /// Where a click finds this handle: the place that shows it nearest to a point; false when it is nowhere near.
    bool findHandle(int id, const QPoint &near, QPoint &found) const;
    void alignNode();
    void undoAndRedo(RyNode *node);

    HostWindow &m_window;
    QString m_folder;
    PointerDriver m_pointer;
    int m_pictures = 0;
    int m_failures = 0;
};
