#include "pluginsource/RyJointTools/operations/listMirrorPairs.h"

#include "rycore/figure/pairing/RyBonePairing.h"
#include "rycore/scene/RySkeleton.h"

static QString nameOf(RyBonePairing::Stage stage)
{
    return stage == RyBonePairing::Stage::Prefix  ? QStringLiteral("prefix")
           : stage == RyBonePairing::Stage::Marks ? QStringLiteral("name")
                                                  : QStringLiteral("place");
}

QVariantMap listMirrorPairs(const RyNode *node, int axis)
{
    QVariantList pairs, alone;
    const RySkeleton *skeleton = node ? node->getSkeleton() : nullptr;
    if (skeleton && axis >= 0 && axis <= 2) {
        const RyBonePairing pairing(*skeleton, axis);
        for (const RyBonePairing::Pair &pair : pairing.pairs()) {
            pairs.append(QVariantMap{{QStringLiteral("first"), QVariant::fromValue(pair.first)},
                                     {QStringLiteral("second"), QVariant::fromValue(pair.second)},
                                     {QStringLiteral("stage"), nameOf(pair.stage)}});
        }
        for (RyNode *bone : pairing.alone())
            alone.append(QVariant::fromValue(bone));
    }
    return {{QStringLiteral("pairs"), pairs}, {QStringLiteral("alone"), alone}};
}
