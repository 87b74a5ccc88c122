#include "rycore/io/gltf/save/RyGltfWeightComparison.h"

#include "rycore/base/RyPointerTable.h"
#include "rycore/io/gltf/extras/RyGltfInfluences.h"
#include "rycore/scene/RyBone.h"

#include <algorithm>
#include <climits>

namespace {

class Comparison
{
public:
    explicit Comparison(std::vector<bool> *changed) : m_changed(changed) {}

    bool differs() const { return m_differs; }
    void markAll(std::span<const int> vertices)
    {
        for (const int vertex : vertices)
            mark(vertex);
    }
    /// Marks the vertices that weigh otherwise; both lists are ascending.
    void compare(const RyGltfBindingWeights &now, const RyGltfLoadedWeights &old)
    {
        if (std::equal(now.vertices.begin(), now.vertices.end(), old.vertices.begin(), old.vertices.end()) &&
            std::equal(now.weights.begin(), now.weights.end(), old.weights.begin(), old.weights.end())) {
            return;
        }
        size_t i = 0;
        size_t j = 0;
        while (i < now.vertices.size() || j < old.vertices.size()) {
            const int a = i < now.vertices.size() ? now.vertices[i] : INT_MAX;
            const int b = j < old.vertices.size() ? old.vertices[j] : INT_MAX;
            if (a != b || now.weights[i] != old.weights[j])
                mark(std::min(a, b));
            i += a <= b;
            j += b <= a;
        }
    }

private:
    void mark(int vertex)
    {
        m_differs = true;
        if (m_changed && size_t(vertex) < m_changed->size())
            (*m_changed)[size_t(vertex)] = true;
    }

    std::vector<bool> *m_changed;
    bool m_differs = false;
};

} // namespace

bool ryGltfWeightsChanged(const RyGltfFigureSource &figure, std::vector<bool> *changed)
{
    Comparison comparison(changed);
    RyPointerTable<size_t> loaded;               // places in the list
    std::vector<const RyNode *> order, orderNow; // of bindings
    std::vector<bool> isLeft;                    // of those, the ones that have no weights now
    for (const RyGltfLoadedWeights &weights : *figure.weights) {
        isLeft.push_back(!weights.bone || loaded.insertNew(weights.bone, order.size()));
        order.push_back(weights.bone);
    }
    for (const RyGltfBoneWeights &now : ryGltfBoneWeights(figure.sceneNode)) {
        orderNow.push_back(now.bone);
        const size_t *before = loaded.find(now.bone);
        if (!before || !isLeft[*before]) {
            comparison.markAll(now.weights.vertices);
            continue;
        }
        comparison.compare(now.weights, (*figure.weights)[*before]);
        isLeft[*before] = false;
    }
    for (size_t place = 0; place < isLeft.size(); ++place) {
        if (isLeft[place])
            comparison.markAll((*figure.weights)[place].vertices);
    }
    return comparison.differs() || order != orderNow;
}
