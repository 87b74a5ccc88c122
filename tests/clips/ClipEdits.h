#pragma once

#include "CharacterScene.h"
#include "ClipComparison.h"

#include <random>
#include <vector>

/// Edits after which the clips of a file must show what they showed.
namespace ClipEdits {

/// What an edit leaves as it was.
enum class Keeps {
    Frames,   ///< every vertex of every frame
    Channels, ///< the numbers of all channels as well
};

struct Kind
{
    const char *name;
    Keeps keeps;
    /// May narrow what is compared.
    void (*edit)(CharacterScene &character, std::mt19937 &random, ClipChoice &choice);
    bool isOfAll = false; ///< every bone changes in the same way each time
};

/// Of the rest alone: the bones of the figure and their tree stay.
const std::vector<Kind> &ofTheRest();
/// Bones come, go, or hang elsewhere.
const std::vector<Kind> &ofTheTree();

/// One of both lists.
const Kind &named(const char *name);

/// Origins moved by up to `size` in each direction, in centimetres.
void moveOrigins(const std::vector<RyBone *> &bones, double size, std::mt19937 &random);
/// Orientations anywhere.
void turnAtRandom(const std::vector<RyBone *> &bones, std::mt19937 &random);
/// The shortest turn that lays the first rotation axis of a bone along it, to its end point or away from it.
void align(RyBone *bone);
/// The bone in two, or one like it beside it; each takes half of its weights, and other bones keep theirs.
void splitEvenly(CharacterScene &character, RyBone *bone);
void addEvenSibling(CharacterScene &character, RyBone *bone);
/// Bones that hang below the bone stay where they stand; a thing on it follows the bone above it afterwards. Vertices
/// and channels of both are no longer compared.
void deleteInPlace(CharacterScene &character, RyBone *bone, ClipChoice &choice);

} // namespace ClipEdits
