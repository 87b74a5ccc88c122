#include "pluginsource/RyJointTools/operations/RyFaceGroupCorners.h"

#include "rycore/mesh/RyFacetMesh.h"

RyFaceGroupCorners::RyFaceGroupCorners(const RyFacetMesh &mesh) : m_mesh(mesh), m_latest(size_t(mesh.getNumVertices()))
{}

void RyFaceGroupCorners::add(const RyFaceGroup &group, int key)
{
    const std::vector<RyFacet> &facets = m_mesh.getFacets();
    const int *members = group.getFacets().getIndicesPtr();
    const int memberCount = group.getFacets().count();
    for (int i = 0; i < memberCount; ++i) {
        const auto member = size_t(members[i]); // negative ones are beyond all facets
        if (member >= facets.size())
            continue;
        const RyFacet &facet = facets[member];
        const int cornerCount = facet.count();
        for (int corner = 0; corner < cornerCount; ++corner) {
            const auto vertex = size_t(facet.vertices[corner]);
            if (vertex >= m_latest.size())
                continue;
            Count &count = m_latest[vertex];
            if (count.key == key) {
                ++count.corners;
                continue;
            }
            const int before = count.key < 0 ? -1 : int(m_earlier.size());
            if (before >= 0)
                m_earlier.push_back(count);
            count = {key, 1, before};
        }
    }
}
