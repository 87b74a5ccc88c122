#pragma once

#include "rycore/io/gltf/extras/RyMapExtras.h"

#include <nlohmann/json_fwd.hpp>

#include <QStringList>

#include <functional>
#include <map>

class RyBone;
class RyLegacyBinding;
struct RyLegacyFit;
class RyNode;

/// The joints of a parametric figure with their parameters, in the figure's entry of a file's extras. Values are those
/// without what links add; a controller that says what it says on a newly made parameter is left out.
namespace RyParametricExtras {

/// `nodeOf`: nodes of bones. A joint of a bone that has none is left out with a message.
nlohmann::ordered_json toJson(const RyLegacyBinding &binding, const RyGltfNodeIndex &nodeOf, QStringList *messages);
/// How well the weights of the file fit, and which they are.
nlohmann::ordered_json fitJson(const RyLegacyBinding &binding, const RyMapExtras::Fingerprint &influences);
/// Whether the influences of the file are those that were written with the joints.
bool fits(const nlohmann::ordered_json &stored, const RyMapExtras::Fingerprint &influences);
/// What is stored of how well they fit.
void readReport(const nlohmann::ordered_json &stored, RyLegacyFit &fit);
/// Whether there is something to read.
bool isReadable(const nlohmann::ordered_json &stored);
/// The binding that is stored, for bones by their nodes. Joints of bones that are gone, and what these drove, are left
/// out with a message, and so is what is damaged; `isWhole`: nothing was. `unit`: centimetres for those that were
/// stored.
RyLegacyBinding *read(const nlohmann::ordered_json &stored, const std::map<int, RyBone *> &bones, float unit,
                      const QString &figure, bool *isWhole, QStringList *messages);
/// What is stored as a text, to see whether it was edited; empty without a binding.
QString text(const RyNode &figure);

/// A stored entry, as a text, for a file that has the nodes at other places; -1 for one that it lacks.
QString renumbered(const QString &entry, const std::function<int(int)> &nodeOf);

} // namespace RyParametricExtras
