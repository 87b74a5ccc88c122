#include "pluginsource/RyJointTools/dialogs/reportMirror.h"

#include "pluginsource/RyJointTools/dialogs/RyJointEditorToolMirrorDlg.h"
#include "pluginsource/RyJointTools/operations/mirrorBones.h"

#include "rycore/app/RyApp.h"
#include "rycore/app/RyMainWindow.h"
#include "rycore/base/RyMessageLog.h"
#include "rycore/scene/RyNode.h"
#include "rycore/skin/RySkinBinding.h"

#include <cmath>

// Of the size of the rig.
static constexpr float largestOffset = 0.02f;

using Dialog = RyJointEditorToolMirrorDlg;

static QString tellStage(RyBonePairing::Stage stage)
{
    switch (stage) {
    case RyBonePairing::Stage::Prefix:
        return Dialog::tr("by the beginning of its name");
    case RyBonePairing::Stage::Marks:
        return Dialog::tr("by the side that its name says");
    case RyBonePairing::Stage::Place:
        return Dialog::tr("by its place");
    case RyBonePairing::Stage::None:
        break;
    }
    return {};
}

static QString summaryOf(const MirrorReport &report)
{
    const int copied = int(report.copied.size());
    const int skipped = int(report.skipped.size());
    const QString done = copied == 1 ? Dialog::tr("Mirrored 1 bone") : Dialog::tr("Mirrored %1 bones").arg(copied);
    if (skipped == 0)
        return Dialog::tr("%1.").arg(done);
    return skipped == 1 ? Dialog::tr("%1; 1 has no opposite.").arg(done)
                        : Dialog::tr("%1; %2 have no opposite.").arg(done).arg(skipped);
}

/// What has no skin at all has no bulges to miss.
static bool lacksBulges(const MirrorReport::Copied &copied)
{
    return copied.withoutBulges && RySkinBinding::findSkinFromNode(copied.source);
}

void reportMirror(const MirrorReport &report)
{
    RyMessageLog &log = RyMessageLog::global();
    for (const MirrorReport::Copied &copied : report.copied) {
        const QString line = Dialog::tr("Mirrored %1 to %2 (%3)")
                                 .arg(copied.source->getName(), copied.target->getName(), tellStage(copied.stage));
        log.info(lacksBulges(copied) ? Dialog::tr("%1, without bulges: the skin does not bind both.").arg(line)
                                     : Dialog::tr("%1.").arg(line));
    }
    for (const RyNode *node : report.skipped)
        log.info(Dialog::tr("%1 has no opposite.").arg(node->getName()));
    if (!report.copied.empty() && std::abs(report.offset) > largestOffset)
        log.info(Dialog::tr("The two sides do not lie opposite each other: their middle is %1 % of the size of the "
                            "figure beside the plane through the zero point, through which joints are mirrored.")
                     .arg(std::abs(report.offset) * 100.0f, 0, 'f', 1));
    if (RyMainWindow *window = RyApp::getInterface())
        window->showMessage(summaryOf(report));
}
