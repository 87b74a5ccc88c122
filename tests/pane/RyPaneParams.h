#pragma once

#include "RyPaneScene.h"

/// What the pane lists and shows of the parameters of a joint.
namespace RyPaneParams {

inline QComboBox &combo(const RyPaneScene &scene)
{
    return *scene.find<QComboBox>("JointEditorParameterCmb");
}

inline QStringList items(const RyPaneScene &scene)
{
    QStringList list;
    for (int i = 0; i < combo(scene).count(); ++i)
        list.append(combo(scene).itemText(i));
    return list;
}

/// "points", "parameter", "none", and the chosen item.
inline QString look(const RyPaneScene &scene)
{
    const bool points = scene.find<QWidget>("JointEditorCenterEndPanel")->isVisible();
    const bool panel = scene.find<QWidget>("JointEditorParamPanel")->isVisible();
    const QString page = points && panel ? "both" : points ? "points" : panel ? "parameter" : "none";
    return page + ' ' + combo(scene).currentText();
}

} // namespace RyPaneParams
