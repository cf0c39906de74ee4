#pragma once
// Everything on the control's surface besides the table and the chart: labels with their
// colours, buttons, the activity indicator and which of table and chart is visible. The
// core keeps it; a view draws it and listens for changes.

#include <cstdint>
#include <string>

namespace vantrel {

inline constexpr int32_t kColorBlack = 0;
inline constexpr int32_t kColorRed = 255;
inline constexpr int32_t kColorYellow = 65535;

struct LabelState {
  std::string caption;
  int32_t foreColor = kColorBlack;
};

struct ButtonState {
  std::string caption;
  bool enabled = true;
};

struct FontState {
  std::string name = "Courier";
  double size = 10;
};

struct Surface {
  LabelState title;
  FontState titleFont;
  LabelState status;
  LabelState recordsCaption{"Records :"};
  LabelState recordCount{"0"};
  LabelState rowsCaption{"Rows :"};
  LabelState rowCount{"0"};
  ButtonState graphButton{"Graph"};
  ButtonState exportButton{"Export"};
  ButtonState infoButton{"Info", false};
  bool activityVisible = false;
  bool gridVisible = true;
  bool chartVisible = false;
  bool busyCursor = false;
};

class SurfaceObserver {
 public:
  virtual ~SurfaceObserver() = default;
  virtual void SurfaceChanged() {}
  // Refresh() asks the view to repaint the whole control.
  virtual void RepaintRequested() {}
};

}  // namespace vantrel
