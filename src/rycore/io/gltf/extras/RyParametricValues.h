#pragma once

#include <nlohmann/json_fwd.hpp>

class RyLegacyJointParam;

/// Flags, controllers and spheres of one joint parameter in the extras of a file: what differs from a newly made one of
/// its kind. A controller is `[value, default]`, with limits `[value, default, min, max, clamped]`.
namespace RyParametricValues {

/// Adds the members to the parameter's entry.
void add(const RyLegacyJointParam &param, nlohmann::ordered_json &entry);
/// Gives the number of members that make no sense and were left out.
int apply(const nlohmann::ordered_json &entry, RyLegacyJointParam &param);

/// Brings what is measured in centimetres to others; zones that nobody has put in place stay where they are.
void scaleLengths(RyLegacyJointParam &param, float factor);

/// Null for an unknown kind.
RyLegacyJointParam *makeParam(const nlohmann::ordered_json &kind);
const char *kindOf(const RyLegacyJointParam &param);

} // namespace RyParametricValues
