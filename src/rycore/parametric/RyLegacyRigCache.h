#pragma once

#include "rycore/mesh/RyVertexMesh.h"
#include "rycore/parametric/RyLegacyJointParam.h"
#include "rycore/parametric/RyLegacyRig.h"

#include <QPointer>
#include <QString>

#include <utility>

/// The rig of a binding, of which only what changed is read anew.
class RyLegacyRigCache
{
public:
    const RyLegacyRig &of(const RyLegacyBinding &binding, const RySkeleton &skeleton);
    /// Of a parameter in the rig of the last call; -1 when it is not there.
    int indexOf(const RyLegacyJointParam &param) const;

private:
    /// What owners are made from.
    struct OwnersKey
    {
        QPointer<const RyVertexMesh> mesh;
        quint64 meshRevision = 0;
        quint64 groupRevision = 0;
        std::vector<std::pair<QString, const void *>> pairs;
        std::vector<const void *> bones;
        std::vector<int> parents;
        int firstBone = -1;
        bool operator==(const OwnersKey &) const = default;
    };
    struct ParamSource
    {
        QPointer<const RyLegacyJointParam> param;
        quint64 revision = 0;
    };
    static OwnersKey ownersKey(const RySkeleton &skeleton, const std::vector<RyNode *> &bones);

    RyLegacyRig m_rig;
    OwnersKey m_ownersKey;
    std::vector<ParamSource> m_params;
};
