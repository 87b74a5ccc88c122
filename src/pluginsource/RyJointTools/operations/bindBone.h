#pragma once

class RyBone;
class RyBoneBinding;
class RyNode;
class RySkinBinding;

// How a skin learns of a bone that was just made. All record into an undo hold that is open, but open none.

/// Binds a bone to the skin of the figure of `parent`: maps of the kinds that the skin has, one weight per vertex of
/// the figure's current shape, all zero; no maps where there are no vertices. Normalizes the skin.
///
/// Returns the new binding; null without a bone and without a skin.
RyBoneBinding *addEmptyBoneBinding(RyBone *bone, const RyNode *parent);
/// Binds a bone with copies of the maps (general, local and scale) of the bone `source`; a map that serves as several
/// of them has one copy, which serves as the same. Bulges are not copied, and the skin is not normalized.
///
/// Returns the new binding; null for nulls and where the skin does not bind `source`.
RyBoneBinding *copyBoneBinding(RySkinBinding *skin, RyBone *bone, const RyBone *source);
/// The same, and then the two share what the one had, half each, so that vertices stay where they are as long as the
/// bones move alike. Where there was a weight to share, `bone` knows its giver from then on. Normalizes the skin.
RyBoneBinding *bindWithHalfOf(RySkinBinding *skin, RyBone *bone, const RyBone *source);
/// The same in every skin that binds `source`, those of other figures included.
void bindWithHalfOf(RyBone *bone, const RyBone *source);
