#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

class RyGltfDocument;
class RyNode;
class RySkinBinding;

/// The influences of a skin's vertices, ready to be written: the joints as places in a list, 16-bit weights that sum to
/// exactly 65535. A binding with local maps counts with their mean.
class RyGltfInfluenceWriter
{
public:
    RyGltfInfluenceWriter(const RySkinBinding *skin, int vertexCount, const std::map<const RyNode *, int> &placeOf);

    /// Adds the accessors JOINTS_n and WEIGHTS_n of these vertices (all of them in order without a list). A vertex that nothing
    /// moves is held by the first joint, since the format has no other way to say so.
    std::vector<std::pair<std::string, int>> addTo(RyGltfDocument &document,
                                                   const std::vector<int> *vertexOfSplit = nullptr) const;

private:
    std::vector<std::vector<std::pair<int, int>>> m_ofVertex; // place, weight
};
