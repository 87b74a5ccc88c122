#include "pluginsource/RyJointTools/pane/RyBindingToSelectionMapBuilder.h"

#include "pluginsource/RyJointTools/operations/findSelectableBindings.h"
#include "pluginsource/RyJointTools/operations/listBindingWeights.h"
#include "pluginsource/RyJointTools/operations/pairFaceGroups.h"
#include "pluginsource/RyJointTools/operations/regroupFacets.h"

#include "rycore/figure/RyFigure.h"
#include "rycore/scene/RyFacetShape.h"
#include "rycore/scene/RySelectionMap.h"
#include "rycore/skin/RySkinBinding.h"

#include <numeric>

RyBindingToSelectionMapBuilder::RyBindingToSelectionMapBuilder()
{
    setObjectName(QStringLiteral("RyBindingToSelectionMapBuilder"));
}

RyError RyBindingToSelectionMapBuilder::fail(RyError::Code code, const QString &message)
{
    m_lastError = message;
    return RyError(code);
}

/// For each binding the one that its weights count for.
static std::vector<int> bindingOfMaps(const std::vector<RyBoneBinding *> &bindings, bool respectSelectable)
{
    if (respectSelectable)
        return findSelectableBindings(bindings);
    std::vector<int> own(bindings.size());
    std::iota(own.begin(), own.end(), 0);
    return own;
}

RyError RyBindingToSelectionMapBuilder::buildSelectionMap(RyFigure *fig)
{
    m_lastError.clear();
    const RySkinBinding *skin = RySkinBinding::findSkinFromNode(fig);
    if (!skin)
        return fail(RyError::UnusableObject, tr("Figure has no skinbinding."));
    const auto *shape = qobject_cast<RyFacetShape *>(RyShape::getCurrentShapeForNode(fig));
    if (!shape)
        return fail(RyError::UnusableObject, tr("Figure has no shape (or none wrong kind of shape)."));
    const RyRef<RyFacetMesh> mesh(shape->getFacetMesh());
    if (!mesh || mesh->getNumVertices() < 1 || mesh->getNumFacets() < 1)
        return fail(RyError::UnusableObject, tr("Figure does not have a mesh with faces."));
    std::vector<RyRef<RyWeightMap>> maps;
    std::vector<RyBoneBinding *> bindings;
    skin->buildGeneralWeightMaps(maps, bindings, RySkinBinding::AverageLocalMaps);
    if (bindings.size() != maps.size() || bindings.empty())
        return fail(RyError::NotBound, tr("Figure is not bound to any bones."));

    const std::vector<RyBindingWeights> weights =
        listBindingWeights(maps, bindingOfMaps(bindings, m_respectSelectable), mesh->getNumVertices());
    if (!fig->getSelectionMap())
        fig->setSelectionMap(new RySelectionMap);
    else if (!m_maintainExisting)
        fig->getSelectionMap()->clearAll();
    RySelectionMap &map = *fig->getSelectionMap();
    if (m_allowRegrouping)
        regroupFacets(*mesh, weights, bindings, map, m_maintainExisting);
    else
        pairFaceGroups(*mesh, weights, bindings, map, m_maintainExisting);
    return RyError(RyError::Success);
}
