#pragma once

#include "RyPaneScene.h"

#include "pluginsource/RyJointTools/pane/RyCenterEndGeneralPage.h"
#include "rycore/base/RyFloatProperty.h"
#include "rycore/ui/RyScrubLabel.h"

#include <QCheckBox>

/// A row of numbers of the page.
struct RyCenterEndRow
{
    const char *name;
    const char *text;
    RyFloatProperty *(RyNode::*control)() const;
    const char *suffix;
    const char *caption;
};

inline const RyCenterEndRow centerEndRows[] = {
    {"JointEditorOriginX", "X Position", &RyNode::getOriginXControl, " cm", "Change Center Point X Position"},
    {"JointEditorOriginY", "Y Position", &RyNode::getOriginYControl, " cm", "Change Center Point Y Position"},
    {"JointEditorOriginZ", "Z Position", &RyNode::getOriginZControl, " cm", "Change Center Point Z Position"},
    {"JointEditorEndPointX", "X Position", &RyNode::getEndXControl, " cm", "Change End Point X Position"},
    {"JointEditorEndPointY", "Y Position", &RyNode::getEndYControl, " cm", "Change End Point Y Position"},
    {"JointEditorEndPointZ", "Z Position", &RyNode::getEndZControl, " cm", "Change End Point Z Position"},
    {"JointEditorOrientationX", "X Rotation", &RyNode::getOrientXControl, "\u00b0", "Change Orientation X Rotation"},
    {"JointEditorOrientationY", "Y Rotation", &RyNode::getOrientYControl, "\u00b0", "Change Orientation Y Rotation"},
    {"JointEditorOrientationZ", "Z Rotation", &RyNode::getOrientZControl, "\u00b0", "Change Orientation Z Rotation"},
};

inline QByteArray widgetOf(const RyCenterEndRow &row)
{
    return QByteArray(row.name) + "Wgt";
}

/// The scene with the left leg posed and placed otherwise than it was modelled, and the page of its pane.
struct RyCenterEndPageScene : RyPaneScene
{
    RyCenterEndPageScene() : page(*find<RyCenterEndGeneralPage>("JointEditorCenterEndGeneralPage"))
    {
        pose();
        lShin->setOrigin({12, 49, 3.5f});
        lShin->setOrientation(RyQuat({1, 2, 3}, 0.4f));
        select(lShin);
        ryUndoStack()->clearAll();
    }
    QCheckBox &inherit() const { return *find<QCheckBox>("JointEditorInheritParentScaleCbx"); }
    QCheckBox &promote() const { return *find<QCheckBox>("JointEditorPromoteSelectionCbx"); }
    QCheckBox &hidden() const { return *find<QCheckBox>("JointEditorHiddenCbx"); }
    void call(const char *slot) const { QVERIFY(QMetaObject::invokeMethod(&page, slot)); }

    void mouse(QEvent::Type type, int x) const
    {
        RyScrubLabel *label = field("JointEditorEndPointXWgt")->label();
        const QPoint point(x, label->height() / 2);
        const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
        const Qt::MouseButtons held = type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
        QMouseEvent event(type, point, label->mapToGlobal(point), button, held, Qt::NoModifier);
        QCoreApplication::sendEvent(label, &event);
    }
    /// Until before the release.
    void startScrubbing() const
    {
        mouse(QEvent::MouseButtonPress, 5);
        for (int x : {15, 25, 40})
            mouse(QEvent::MouseMove, x);
    }

    RyCenterEndGeneralPage &page;
};
