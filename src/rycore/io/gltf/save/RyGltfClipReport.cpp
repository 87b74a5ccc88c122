#include "rycore/io/gltf/save/RyGltfClipReport.h"

#include "rycore/io/gltf/save/RyGltfRewrittenClip.h"

#include <cmath>

/// What anybody would see, in heights of the figure.
static constexpr double seen = 1e-5;

static QString withShare(const QString &name, double heights)
{
    return QStringLiteral("%1 (%2 %)").arg(name, QString::number(100.0 * heights, 'g', 2));
}

void RyGltfClipReport::add(const QString &name, const RyGltfRewrittenClip &clip)
{
    m_heldByMatrix.insert(clip.heldByMatrix.begin(), clip.heldByMatrix.end());
    if (!clip.isRead)
        m_unreadable.append(name);
    if (std::isinf(clip.missed))
        m_vanishing.append(name);
    else if (clip.missed > seen)
        m_sheared.append(withShare(name, clip.missed));
    if (clip.following > seen)
        m_following.append(withShare(name, clip.following));
    if (clip.blended > seen)
        m_blended.append(withShare(name, clip.blended));
}

void RyGltfClipReport::say() const
{
    m_patch.sayOf(QStringLiteral("Clips with channels that cannot be followed (damaged, or through an extension) keep "
                                 "them as they were, for edited joints too: %1"),
                  m_unreadable);
    m_patch.sayOf(QStringLiteral("Clips need shear that no animation can hold, and put vertices off by up to this "
                                 "share of the height: %1"),
                  m_sheared);
    m_patch.sayOf(QStringLiteral("Vertices that followed deleted bones move with others in clips, by up to this share "
                                 "of the height elsewhere: %1"),
                  m_following);
    m_patch.sayOf(QStringLiteral("Vertices between several joints are blended anew from the pose that became the rest; "
                                 "clips put them off by up to this share of the height: %1"),
                  m_blended);
    QStringList matrices;
    for (const int node : m_heldByMatrix)
        matrices.append(m_patch.document.model().nodes[size_t(node)].name);
    m_patch.sayOf(QStringLiteral("Clips cannot hold joints in their places that are sheared in the file: %1"),
                  matrices);
    m_patch.sayOf(QStringLiteral("Clips scale joints to nothing or beyond all numbers; what hangs on these, and did "
                                 "not before, cannot be held "
                                 "in its place: %1"),
                  m_vanishing);
}
