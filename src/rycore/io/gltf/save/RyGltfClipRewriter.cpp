#include "rycore/io/gltf/save/RyGltfClipRewriter.h"

#include "rycore/io/gltf/save/RyGltfClipReport.h"
#include "rycore/io/gltf/save/RyGltfRewrittenClip.h"
#include "rycore/skin/RyParallel.h"

#include <optional>

std::vector<RyGltfClipChange> RyGltfClipRewriter::rewrite() const
{
    const std::vector<RyGltfNodeMotion> nodes = RyGltfNodeMotions(m_patch).find();
    const RyGltfDeletedBones deleted(m_patch);
    if (nodes.empty() && deleted.isEmpty())
        return {};
    const RyGltfCarriedVertices carried(m_patch);
    const RyGltfClipMotions motions(m_patch, m_clips, nodes);
    const RyGltfRewrittenClip::Source source{m_patch, m_clips, nodes, motions, deleted, carried};
    std::vector<std::optional<RyGltfRewrittenClip>> clips(m_clips.clips().size());
    RyParallel::forRanges(clips.size(), 1, [&](size_t begin, size_t end) {
        for (size_t clip = begin; clip < end; ++clip)
            clips[clip].emplace(source, clip);
    });

    // In the order of the file, whoever was done first.
    std::vector<RyGltfClipChange> changes;
    RyGltfClipReport report(m_patch);
    for (size_t i = 0; i < clips.size(); ++i) {
        const RyGltfRewrittenClip &clip = *clips[i];
        report.add(m_clips.clips()[i].name, clip);
        changes.insert(changes.end(), clip.changes.begin(), clip.changes.end());
        for (const int node : clip.taken) {
            const RyGltfTransform transform = m_patch.document.model().nodes[size_t(node)].transform;
            if (transform.hasMatrix)
                m_patch.document.setNodeTransform(node, RyGltfParts::of(transform).transform());
        }
    }
    report.say();
    return changes;
}
