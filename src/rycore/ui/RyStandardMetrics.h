#pragma once

/// Sizes that panes share, in logical pixels.
namespace RyStandardMetrics {

constexpr int Margin = 6;
constexpr int Spacing = 4;
constexpr int DropDownHeight = 24;
constexpr int FieldWidth = 78;
constexpr int LabelWidth = 84;
constexpr int PopUpWidth = 280;
constexpr int PopUpHeight = 360;

} // namespace RyStandardMetrics
