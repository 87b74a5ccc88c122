#pragma once

#include "pluginsource/RyJointTools/tool/handles/RyHandle.h"

#include <QString>

#include <span>
#include <vector>

/// All handles, in order of their ids; bones are not in it.
class RyHandleTable
{
public:
    static std::span<const RyHandle> handles();
    /// Null for ids that are no handle.
    static const RyHandle *find(int id);
    /// Those that change a target and are of one kind, in order of their ids.
    static std::vector<const RyHandle *> handlesOf(RyHandle::Target target, RyHandle::Kind kind);
    static QString toolTip(const RyHandle &handle);
    /// Rings may not be turned freely while rotation axes are restricted.
    static Qt::CursorShape cursor(const RyHandle &handle, bool restrictRotationAxes);
    /// What the mouse will do: "lForearm, end point X: drag to move along X, Ctrl keeps the bone's length".
    static QString statusText(const RyHandle &handle, const QString &nodeLabel);
    /// What a click on a bone or a part of the figure will do; `ctrlCreates` while Ctrl is taken by something else.
    static QString boneStatusText(const QString &boneLabel, bool ctrlCreates);
};
