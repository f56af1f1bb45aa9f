#pragma once

#include "platform/drawing.h"
#include "platform/text_line.h"

namespace orvo {

// What all charts have in common to the eye.

inline constexpr Font kTitleFont{u"Arial", 11, true};
inline constexpr Font kLegendFont{u"Arial", 8};
inline constexpr Font kAxisTitleFont{u"Arial", 10, true};
inline constexpr Font kLabelFont{u"Arial", 8};
inline constexpr Argb kTextColour = 0xFF000000;

inline constexpr Argb kPlainGridColour = 0xFFE4E7EB;
inline constexpr Argb kAxisColour = 0xFF8C949E;
inline constexpr Pen kLegendPen{0xFF000000, 1};
inline constexpr double kSeriesLineWidth = 1.5;

/// Blank space between the parts of a chart, and between a mark and its text.
inline constexpr double kGap = 6;
inline constexpr double kSmallGap = 3;

}  // namespace orvo
