#pragma once

#include <QString>

#include <vector>

class RyAssetIOMgr;
class RyBone;
class RyFigure;

/// Why a bone, or a whole figure, was not duplicated as it should.
struct RyDuplicateFailure
{
    enum Reason { NoSkin, NoBone, NoBinding };
    Reason reason;
    QString bone; // name and class, "hip (RyBone)"; empty for NoSkin
};

/// Makes a bone like each of these bones of one figure, beside it, or below the duplicate of its parent where that is
/// among them too. Duplicates are bound like their originals, but without weights. Bones that cannot be duplicated are
/// left out. Nothing is recorded for undo, and the selection stays.
///
/// Returns what could not be done, in order.
std::vector<RyDuplicateFailure> duplicateBones(RyFigure *figure, std::vector<RyBone *> bones, RyAssetIOMgr &assets);
