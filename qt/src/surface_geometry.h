#pragma once
// Where every part of the control's surface goes, in pixels, for a size given in twips.
// The control's layout decides the frame, the table, the chart, the info button's top and
// the bottom line's top; the other positions are the surface's design, fixed in twips.
// Rectangles of the parts inside the frame are relative to the frame.

#include <QRect>
#include <cstdint>

#include "vantrel/layout.h"

namespace vantrel::qt {

// Twips per pixel at 96 dots per inch (Qt's logical pixels).
inline constexpr int kTwipsPerPixel = 15;

int PixelsFromTwips(int32_t twips);
int32_t TwipsFromPixels(int pixels);
QRect PixelRect(const TwipsRect& twips);

// Design positions, in twips inside the frame.
inline constexpr TwipsRect kGridOrigin{120, 480};
inline constexpr TwipsRect kGraphButton{120, 90, 900, 330};
inline constexpr TwipsRect kExportButton{1080, 90, 900, 330};
inline constexpr int32_t kTitleLeft = 2160;
inline constexpr int32_t kTitleTop = 120;
inline constexpr int32_t kTitleHeight = 270;
inline constexpr int32_t kBottomLineHeight = 255;
inline constexpr TwipsRect kStatusLabel{120, 0, 2700, kBottomLineHeight};
inline constexpr TwipsRect kActivityIndicator{2880, 45, 165, 165};
inline constexpr TwipsRect kRecordsCaption{3180, 0, 900, kBottomLineHeight};
inline constexpr TwipsRect kRecordCount{4080, 0, 900, kBottomLineHeight};
inline constexpr TwipsRect kRowsCaption{5100, 0, 750, kBottomLineHeight};
inline constexpr TwipsRect kRowCount{5850, 0, 900, kBottomLineHeight};
inline constexpr TwipsRect kInfoButton{6900, 0, 750, 375};

struct SurfaceGeometry {
  ControlLayout twips;  // what the control's layout gave
  QRect frame;          // in the widget
  QRect grid;           // the rest in the frame
  QRect chart;
  QRect title;
  QRect graphButton;
  QRect exportButton;
  QRect infoButton;
  QRect status;
  QRect activity;
  QRect recordsCaption;
  QRect recordCount;
  QRect rowsCaption;
  QRect rowCount;
};

SurfaceGeometry PlaceSurface(int32_t widthTwips, int32_t heightTwips);

}  // namespace vantrel::qt
