#include "rycore/io/RyFigureFits.h"

#include "rycore/parametric/RyLegacyBinding.h"
#include "rycore/parametric/fit/RyLegacyFitter.h"
#include "rycore/scene/RyScene.h"
#include "rycore/scene/RySkeleton.h"

#include <algorithm>

namespace {

/// Whether the bones of a fit are those that stand in the figure: one that was made anew may look like one that is
/// gone.
bool isOf(const RyLegacyFit &fit, const RySkeleton &skeleton)
{
    return std::all_of(fit.bones.begin(), fit.bones.end(), [&skeleton](const RyLegacyFit::Bone &each) {
        return each.vertices.empty() || (each.bone && each.bone->getSkeleton() == &skeleton);
    });
}

const RyLegacyFit &fitOf(RyLegacyBinding &binding, const RySkeleton &skeleton, const RyFigureFits::Progress &progress)
{
    RyLegacyFitInput input = RyLegacyFitInput::of(binding, skeleton);
    const std::shared_ptr<const RyLegacyFit> kept = binding.keptFit();
    if (kept && !kept->isPlain && isOf(*kept, skeleton) && kept->input == input)
        return *kept;
    const auto told = [&](double done) { return !progress || progress(skeleton.getName(), done); };
    const std::shared_ptr<RyLegacyFit> fit = RyLegacyFitter(std::move(input)).fit(told);
    const std::vector<RyNode *> bones = RyLegacyRig::bonesOf(&binding, skeleton);
    for (size_t i = 0; i < fit->bones.size(); ++i)
        fit->bones[i].bone = qobject_cast<RyBone *>(bones[i]);
    binding.keepFit(fit);
    return *fit;
}

QString messageOf(const RyFigureFits::Fit &fit)
{
    const QString percent = QStringLiteral(" %");
    const auto number = [&percent](double value) { return QString::number(value, 'f', 2) + percent; };
    const RyLegacyFitReport &report = fit.report;
    QString text =
        QStringLiteral("Weights fitted to the joints of \"%1\" are off by %2 of its height, %3 where bones move "
                       "it partly, over %4 poses")
            .arg(fit.figure, number(report.rms), number(report.rmsPartly))
            .arg(report.poses);
    if (report.max > 0.0)
        text += QStringLiteral("; at most by %1 (%2, %3)").arg(number(report.max), report.bone, report.pose);
    if (report.bulges > 0.0)
        text += QStringLiteral("; bulges, which weights cannot say, make %1").arg(number(report.bulges));
    return text;
}

} // namespace

std::vector<RyFigureFits::Fit> RyFigureFits::make(const RyScene &scene, const Progress &progress, QStringList *messages)
{
    std::vector<Fit> fits;
    for (const RyNode *node : scene.getNodes()) {
        const auto *skeleton = qobject_cast<const RySkeleton *>(node);
        RyLegacyBinding *binding = RyLegacyBinding::findBinding(skeleton);
        if (!binding || skeleton->getAllBones().empty())
            continue;
        const RyLegacyFit &fit = fitOf(*binding, *skeleton, progress);
        fits.push_back({skeleton->getName(), fit.isPlain, fit.report});
        if (!messages)
            continue;
        messages->append(
            fit.isPlain ? QStringLiteral("The fit of \"%1\" was cancelled: other programs will see it move by plain "
                                         "averages of its joints")
                              .arg(skeleton->getName())
                        : messageOf(fits.back()));
    }
    return fits;
}
