#pragma once

#include <nlohmann/json_fwd.hpp>

#include <QString>

class RyGltfDocument;
class RyShape;

/// What our key in the extras of a file says of the values of morphs where it is not what the weights of the file make:
/// limits, default and label. The share beside links is stored with these.
namespace RyMorphExtras {

/// Null where the weights say all.
nlohmann::ordered_json toJson(const RyShape &shape);
/// Applies what a figure's entry holds to morphs whose values are those of the file; the values stay.
void apply(const RyGltfDocument &document, int figure, const RyShape &shape);
/// All values without what links add to them, to see whether they were edited.
QString text(const RyShape &shape);

} // namespace RyMorphExtras
