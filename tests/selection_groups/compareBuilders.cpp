#include <tbb/global_control.h>
#include <tbb/task_arena.h>

#include "RyLiteralMapBuilder.h"
#include "RySelectionState.h"
#include "compareBuilders.h"

#include "pluginsource/RyJointTools/pane/RyBindingToSelectionMapBuilder.h"
#include "rycore/undo/RyUndoStackHold.h"

namespace {

/// Every third facet, so that it shows who empties the selection.
void selectSomeFacets(RyFacetMesh *mesh)
{
    if (!mesh)
        return;
    RyIndexList facets;
    for (int i = 0; i < mesh->getNumFacets(); i += 3)
        facets.append(i);
    mesh->deselectAllFacets();
    mesh->selectFacetsByIndexList(facets, true);
}

struct Result
{
    int code;
    QString error;
    RySelectionState state;
};

/// What a builder makes of the figure; the figure is as before then.
template<typename Build>
Result resultOf(RyFigure *figure, const Build &build)
{
    selectSomeFacets(RySelectionState::meshOf(figure));
    RyUndoStackHold hold;
    const auto [code, error] = build();
    const RySelectionState state(figure);
    hold.cancel();
    return {code, error, state};
}

Result ours(RyFigure *figure, int setting, int threads)
{
    const tbb::global_control limit(tbb::global_control::max_allowed_parallelism, size_t(threads));
    tbb::task_arena arena(threads);
    return resultOf(figure, [&] {
        RyBindingToSelectionMapBuilder builder;
        builder.setAllowRegrouping(setting & 1);
        builder.setMaintainExistingSelectionMappings(setting & 2);
        builder.setRespectBoneSelectable(setting & 4);
        const int code = arena.execute([&] { return builder.buildSelectionMap(figure).code(); });
        return std::pair(code, builder.getLastError());
    });
}

Result plain(RyFigure *figure, int setting)
{
    return resultOf(figure, [&] {
        RyLiteralMapBuilder builder;
        builder.allowRegrouping = setting & 1;
        builder.maintainExisting = setting & 2;
        builder.respectSelectable = setting & 4;
        const int code = builder.build(figure).code();
        return std::pair(code, builder.error);
    });
}

} // namespace

RyBuilderComparison compareBuilders(RyFigure *figure)
{
    RyBuilderComparison comparison;
    selectSomeFacets(RySelectionState::meshOf(figure));
    const RySelectionState before(figure);
    for (int setting = 0; setting < 8; ++setting) {
        const Result wanted = plain(figure, setting);
        comparison.changes += wanted.state == before ? 0 : 1;
        const auto fault = [&](const QString &what) {
            comparison.faults.append(
                QStringLiteral("%1, setting %2: %3").arg(figure->getName()).arg(setting).arg(what));
        };
        for (const int threads : {1, 2, 4}) {
            const Result result = ours(figure, setting, threads);
            if (result.code != wanted.code || result.error != wanted.error)
                fault(QStringLiteral("%1 \"%2\", not %3 \"%4\"")
                          .arg(result.code)
                          .arg(result.error)
                          .arg(wanted.code)
                          .arg(wanted.error));
            else if (!(result.state == wanted.state))
                fault(QStringLiteral("%1 threads, %2").arg(threads).arg(result.state.difference(wanted.state)));
        }
        selectSomeFacets(RySelectionState::meshOf(figure));
        if (const RySelectionState after(figure); !(after == before))
            fault(QStringLiteral("not taken back, %1").arg(after.difference(before)));
    }
    return comparison;
}
