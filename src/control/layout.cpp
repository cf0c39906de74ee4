#include "vantrel/layout.h"

#include <algorithm>

namespace vantrel {
namespace {

int32_t AtLeastZero(int32_t value) {
  return std::max(value, 0);
}

}  // namespace

ControlLayout LayoutControl(int32_t width, int32_t height, TwipsRect gridOrigin) {
  ControlLayout l;
  l.frame = {0, 0, AtLeastZero(width - 180), AtLeastZero(height - 165)};
  const int32_t frameWidth = width - 180;
  const int32_t frameHeight = height - 165;
  l.grid = {gridOrigin.left, gridOrigin.top, AtLeastZero(frameWidth - 320),
            AtLeastZero(frameHeight - 1170)};
  l.chart = {l.grid.left, l.grid.top, AtLeastZero(frameWidth - 300),
             AtLeastZero(frameHeight - 1150)};
  l.infoButtonTop = AtLeastZero(frameHeight - 450);
  l.bottomLineTop = AtLeastZero(frameHeight - 375);
  return l;
}

}  // namespace vantrel
