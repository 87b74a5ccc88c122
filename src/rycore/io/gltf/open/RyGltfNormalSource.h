#pragma once

#include "rycore/math/RyAffine.h"
#include "rycore/scene/RyNormalSource.h"

#include <memory>

class RyGltfDocument;

/// Normals and positions of a primitive of a document, which is kept for it as it is.
class RyGltfNormalSource : public RyNormalSource
{
public:
    /// Accessors of the document; `toFigure`: the primitive's mesh space to figure space in centimetres.
    RyGltfNormalSource(std::shared_ptr<const RyGltfDocument> document, int positions, int normals,
                       const RyAffine &toFigure);

    std::vector<RyVec3> normals() const override;
    std::vector<RyVec3> positions() const override;

private:
    std::shared_ptr<const RyGltfDocument> m_document;
    int m_positions;
    int m_normals;
    RyAffine m_toFigure;
};
