#pragma once
// Where the control's parts go for a given size, in twips: the frame, the table and the
// chart in the same place, the info button and the bottom line of status and counters.
// Sizes too small for the margins give zero, never negative, measures.

#include <cstdint>

namespace vantrel {

struct TwipsRect {
  int32_t left = 0;
  int32_t top = 0;
  int32_t width = 0;
  int32_t height = 0;
  bool operator==(const TwipsRect&) const = default;
};

struct ControlLayout {
  TwipsRect frame;
  TwipsRect grid;
  TwipsRect chart;
  int32_t infoButtonTop = 0;
  // Top of the status label, activity indicator and the record and row counters.
  int32_t bottomLineTop = 0;
};

// `gridOrigin` is the table's top-left corner inside the frame, fixed by design.
ControlLayout LayoutControl(int32_t width, int32_t height, TwipsRect gridOrigin = {120, 480});

}  // namespace vantrel
