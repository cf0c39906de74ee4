#include "surface_geometry.h"

#include <algorithm>
#include <cmath>

namespace vantrel::qt {
namespace {

// A part of the bottom line: its design rectangle moved down to the line's top.
QRect OnLine(const TwipsRect& design, int32_t lineTop) {
  return PixelRect({design.left, lineTop + design.top, design.width, design.height});
}

}  // namespace

int PixelsFromTwips(int32_t twips) {
  return static_cast<int>(std::lround(static_cast<double>(twips) / kTwipsPerPixel));
}

int32_t TwipsFromPixels(int pixels) {
  return pixels * kTwipsPerPixel;
}

QRect PixelRect(const TwipsRect& twips) {
  return {PixelsFromTwips(twips.left), PixelsFromTwips(twips.top), PixelsFromTwips(twips.width),
          PixelsFromTwips(twips.height)};
}

SurfaceGeometry PlaceSurface(int32_t widthTwips, int32_t heightTwips) {
  SurfaceGeometry g;
  g.twips = LayoutControl(widthTwips, heightTwips, kGridOrigin);
  const ControlLayout& l = g.twips;
  g.frame = PixelRect(l.frame);
  g.grid = PixelRect(l.grid);
  g.chart = PixelRect(l.chart);
  g.graphButton = PixelRect(kGraphButton);
  g.exportButton = PixelRect(kExportButton);
  // The title keeps its place and takes the width up to the frame's right edge.
  const int32_t titleWidth = std::max(l.frame.width - kTitleLeft - kGridOrigin.left, 0);
  g.title = PixelRect({kTitleLeft, kTitleTop, titleWidth, kTitleHeight});
  g.infoButton =
      PixelRect({kInfoButton.left, l.infoButtonTop, kInfoButton.width, kInfoButton.height});
  g.status = OnLine(kStatusLabel, l.bottomLineTop);
  g.activity = OnLine(kActivityIndicator, l.bottomLineTop);
  g.recordsCaption = OnLine(kRecordsCaption, l.bottomLineTop);
  g.recordCount = OnLine(kRecordCount, l.bottomLineTop);
  g.rowsCaption = OnLine(kRowsCaption, l.bottomLineTop);
  g.rowCount = OnLine(kRowCount, l.bottomLineTop);
  return g;
}

}  // namespace vantrel::qt
