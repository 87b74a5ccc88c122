#pragma once

#include <nlohmann/json_fwd.hpp>

#include <string>
#include <vector>

/// Where two JSON trees differ, as JSON pointers, except at or below one of the paths to leave out. There `*` stands
/// for any one step: "/nodes/*/rotation". Numbers are equal when their values are.
std::vector<std::string> gltfDifferences(const nlohmann::json &a, const nlohmann::json &b,
                                         const std::vector<std::string> &leaveOut = {});
