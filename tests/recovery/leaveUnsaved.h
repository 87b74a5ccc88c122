#pragma once

#include "rycore/io/snapshot/RySceneSnapshot.h"
#include "rycore/io/snapshot/RySnapshotStore.h"
#include "ryhost/recovery/AutosaveSettings.h"
#include "ryhost/recovery/RecoveryInfo.h"
#include "ryhost/recovery/RecoverySession.h"

/// Leaves what a program that was killed would leave. Says why not where it could not.
[[nodiscard]] inline QString leaveUnsaved(const RySnapshotParts &parts)
{
    QString error;
    const auto session = RecoverySession::create(AutosaveSettings::ordinaryFolder(), &error);
    if (session && !RySnapshotStore(session->folder()).write(parts, &error) && error.isEmpty())
        error = QStringLiteral("it was not written");
    return error;
}

/// The same of that scene, which says that of itself.
[[nodiscard]] inline QString leaveUnsaved(const RyScene &scene, const RecoveryInfo &about)
{
    QString error;
    const auto snapshot = RySceneSnapshot::take(scene, false, &error);
    if (!snapshot)
        return error;
    RySnapshotParts parts = snapshot->parts();
    parts.push_back({RecoveryInfo::PartName, about.toBytes(), false, {}});
    return leaveUnsaved(parts);
}
