#include "ClipEdits.h"
#include "RigEdits.h"

#include "rycore/base/RyFloatProperty.h"
#include "rycore/mesh/RyWeightMap.h"
#include "rycore/scene/RyBone.h"
#include "rycore/scene/RySkeleton.h"
#include "rycore/skin/RyBoneBinding.h"
#include "rycore/skin/RySkinBinding.h"

#include <cmath>
#include <map>
#include <stdexcept>

namespace {

float number(std::mt19937 &random, double low, double high)
{
    return float(std::uniform_real_distribution<double>(low, high)(random));
}

RyVec3 direction(std::mt19937 &random)
{
    return {number(random, -1, 1), number(random, -1, 1), number(random, -1, 1)};
}

void nameAndLimit(RyBone *bone)
{
    bone->setLabel(bone->getLabel() + QStringLiteral(" \u00e4"));
    bone->setHidden(!bone->isHidden());
    bone->setPromoteSelection(!bone->isSelectionPromoted());
    bone->getXRotControl()->setMin(-179.0f);
    bone->getXRotControl()->setMax(178.0f);
}

/// Defaults alone, as remembering the current values changes them.
void changeDefaults(RyBone *bone, std::mt19937 &random)
{
    for (RyFloatProperty *control : {bone->getOriginXControl(), bone->getOriginYControl(), bone->getOriginZControl(),
                                     bone->getEndXControl(), bone->getEndYControl(), bone->getEndZControl(),
                                     bone->getOrientXControl(), bone->getOrientYControl(), bone->getOrientZControl()})
        control->setDefaultValue(control->getValue() + (random() % 2 ? number(random, -9, 9) : 0.0f));
}

/// A few bones, each once.
std::vector<RyBone *> some(CharacterScene &character, std::mt19937 &random, size_t count = 3)
{
    std::vector<RyBone *> bones = character.bones();
    std::shuffle(bones.begin(), bones.end(), random);
    bones.resize(std::min(bones.size(), count));
    return bones;
}

void moveBranch(CharacterScene &character, RyBone *bone, std::mt19937 &random)
{
    const RyVec3 shift = direction(random) * float(0.05 * character.height);
    std::vector<RyNode *> branch;
    bone->getNodeChildren(branch, true);
    branch.push_back(bone);
    for (RyNode *node : branch) {
        if (!qobject_cast<RyBone *>(node))
            continue;
        node->adjustOrigin(node->getOrigin() + shift);
        node->adjustEndPoint(node->getEndPoint() + shift);
    }
}

using Weights = std::map<const RyNode *, std::vector<quint16>>;

/// What hangs on a bone and is none: things, cameras, helpers.
void leaveThingsAside(const CharacterScene &character, const RyBone *bone, ClipChoice &choice)
{
    std::set<int> bones;
    for (const RyBone *each : character.bones())
        bones.insert(character.nodeOf(each));
    for (int node = 0; node < character.file.nodeCount(); ++node) {
        int holder = node;
        while (holder >= 0 && !bones.count(holder))
            holder = character.file.parent(holder);
        if (holder != character.nodeOf(bone))
            continue;
        choice.goneNodes.insert(node);
        choice.steadyNodes.erase(node);
    }
}

/// Of all bones of the figure.
Weights weightsOf(const RyBone *bone)
{
    Weights weights;
    const RySkinBinding *skin = RySkinBinding::findSkinFromNode(bone);
    for (const RyBoneBinding *binding : skin ? skin->bindings() : std::vector<RyBoneBinding *>()) {
        const RyWeightMap *map = binding->getWeights();
        if (!map)
            continue;
        std::vector<quint16> &each = weights[binding->getBone()];
        each.resize(size_t(map->getNumWeights()));
        for (int i = 0; i < map->getNumAffected(); ++i)
            each[size_t(map->getAffectedIndices()[i])] = map->getAffectedWeights()[i];
    }
    return weights;
}

/// Normalising takes weight from all bones of a vertex: back to what they had.
void shareEvenly(const RyBone *bone, const RyBone *fresh, Weights weights)
{
    const auto source = weights.find(bone);
    if (source == weights.end())
        return;
    std::vector<quint16> &half = weights[fresh];
    half = source->second;
    for (size_t v = 0; v < half.size(); ++v) {
        half[v] /= 2;
        source->second[v] -= half[v];
    }
    for (RyBoneBinding *binding : RySkinBinding::findSkinFromNode(bone)->bindings()) {
        const auto wanted = weights.find(binding->getBone());
        if (wanted == weights.end())
            continue;
        binding->getWeights()->beginEdit();
        std::copy(wanted->second.begin(), wanted->second.end(), binding->getWeights()->getWeights());
        binding->getWeights()->finishEdit();
    }
}

void hangHigher(RyBone *bone)
{
    RyNode *parent = bone->getNodeParent();
    RyNode *above = parent ? parent->getNodeParent() : nullptr;
    if (qobject_cast<RyBone *>(parent) && qobject_cast<RyBone *>(above))
        above->addNodeChild(bone, true);
}

using ClipEdits::Keeps;
using ClipEdits::Kind;

} // namespace

void ClipEdits::moveOrigins(const std::vector<RyBone *> &bones, double size, std::mt19937 &random)
{
    for (RyBone *bone : bones)
        bone->adjustOrigin(bone->getOrigin() + direction(random) * float(size));
}

void ClipEdits::turnAtRandom(const std::vector<RyBone *> &bones, std::mt19937 &random)
{
    for (RyBone *bone : bones)
        bone->adjustOrientation(RyQuat(direction(random), number(random, -3, 3)) * bone->getOrientation());
}

void ClipEdits::align(RyBone *bone)
{
    const RyVec3 along = (bone->getEndPoint() - bone->getOrigin()).normalized();
    RyVec3 axis = bone->getOrientation().multVec(RyVec3::axis(bone->getRotationOrder()[0]));
    if (along.dot(axis) < 0.0f)
        axis = axis * -1.0f;
    const RyVec3 across = axis.cross(along);
    if (across.length() < 1e-6f)
        return;
    // A turn by minus its angle: see RyQuat.
    const RyQuat turn(across.normalized(), -std::atan2(across.length(), axis.dot(along)));
    bone->adjustOrientation(bone->getOrientation() * turn);
}

void ClipEdits::splitEvenly(CharacterScene &character, RyBone *bone)
{
    const Weights weights = weightsOf(bone);
    shareEvenly(bone, RigEdits::splitBone(character.scene, bone), weights);
}

void ClipEdits::addEvenSibling(CharacterScene &character, RyBone *bone)
{
    const Weights weights = weightsOf(bone);
    shareEvenly(bone, RigEdits::addSibling(character.scene, bone), weights);
}

void ClipEdits::deleteInPlace(CharacterScene &character, RyBone *bone, ClipChoice &choice)
{
    RyNode *parent = bone->getNodeParent();
    if (!qobject_cast<RyBone *>(parent))
        return;
    leaveThingsAside(character, bone, choice);
    for (RyNode *child : bone->nodeChildrenIterator())
        parent->addNodeChild(child, true);
    RigEdits::deleteBone(character.scene, bone);
}

const std::vector<Kind> &ClipEdits::ofTheRest()
{
    static const std::vector<Kind> list{
        {"nothing", Keeps::Channels, [](CharacterScene &, std::mt19937 &, ClipChoice &) {}, true},
        {"origins", Keeps::Frames,
         [](CharacterScene &character, std::mt19937 &random, ClipChoice &) {
             moveOrigins(character.bones(), 0.05 * character.height, random);
         },
         true},
        {"align all", Keeps::Frames,
         [](CharacterScene &character, std::mt19937 &, ClipChoice &) {
             for (RyBone *bone : character.bones())
                 align(bone);
         },
         true},
        {"orientations", Keeps::Frames,
         [](CharacterScene &character, std::mt19937 &random, ClipChoice &) { turnAtRandom(character.bones(), random); },
         true},
        {"origins and orientations", Keeps::Frames,
         [](CharacterScene &character, std::mt19937 &random, ClipChoice &) {
             moveOrigins(character.bones(), 0.03 * character.height, random);
             turnAtRandom(character.bones(), random);
         },
         true},
        {"some of both", Keeps::Frames,
         [](CharacterScene &character, std::mt19937 &random, ClipChoice &) {
             moveOrigins(some(character, random), 0.05 * character.height, random);
             turnAtRandom(some(character, random), random);
         }},
        {"branches", Keeps::Frames,
         [](CharacterScene &character, std::mt19937 &random, ClipChoice &) {
             for (RyBone *bone : some(character, random))
                 moveBranch(character, bone, random);
         }},
        {"what no clip knows", Keeps::Channels,
         [](CharacterScene &character, std::mt19937 &random, ClipChoice &) {
             for (RyBone *bone : character.bones()) {
                 bone->adjustEndPoint(bone->getEndPoint() + direction(random) * float(0.05 * character.height));
                 nameAndLimit(bone);
                 changeDefaults(bone, random);
             }
         },
         true},
        {"rotation orders", Keeps::Channels,
         [](CharacterScene &character, std::mt19937 &random, ClipChoice &) {
             for (RyBone *bone : character.bones())
                 bone->setRotationOrder(RyRotationOrder(int(random() % 6)));
         }},
    };
    return list;
}

const std::vector<Kind> &ClipEdits::ofTheTree()
{
    static const std::vector<Kind> list{
        {"split", Keeps::Frames,
         [](CharacterScene &character, std::mt19937 &random, ClipChoice &) {
             for (RyBone *bone : some(character, random))
                 splitEvenly(character, bone);
         }},
        {"sibling", Keeps::Frames,
         [](CharacterScene &character, std::mt19937 &random, ClipChoice &) {
             for (RyBone *bone : some(character, random))
                 addEvenSibling(character, bone);
         }},
        {"duplicate", Keeps::Frames,
         [](CharacterScene &character, std::mt19937 &random, ClipChoice &) {
             for (RyBone *bone : some(character, random))
                 RigEdits::duplicateChain(character.scene, bone);
         }},
        {"child", Keeps::Frames,
         [](CharacterScene &character, std::mt19937 &random, ClipChoice &) {
             for (RyBone *bone : some(character, random))
                 RigEdits::addChild(character.scene, bone);
         }},
        {"delete", Keeps::Frames,
         [](CharacterScene &character, std::mt19937 &random, ClipChoice &choice) {
             for (RyBone *bone : some(character, random, 2))
                 deleteInPlace(character, bone, choice);
         }},
        {"hang higher", Keeps::Frames,
         [](CharacterScene &character, std::mt19937 &random, ClipChoice &) {
             for (RyBone *bone : some(character, random, 2))
                 hangHigher(bone);
         }},
        {"tree and rest", Keeps::Frames,
         [](CharacterScene &character, std::mt19937 &random, ClipChoice &) {
             for (RyBone *bone : some(character, random, 2))
                 splitEvenly(character, bone);
             for (RyBone *bone : some(character, random, 2))
                 addEvenSibling(character, bone);
             moveOrigins(some(character, random, 9), 0.03 * character.height, random);
             turnAtRandom(some(character, random, 9), random);
         }},
    };
    return list;
}

const Kind &ClipEdits::named(const char *name)
{
    for (const std::vector<Kind> *list : {&ofTheRest(), &ofTheTree()}) {
        for (const Kind &kind : *list) {
            if (qstrcmp(kind.name, name) == 0)
                return kind;
        }
    }
    throw std::runtime_error(name);
}
