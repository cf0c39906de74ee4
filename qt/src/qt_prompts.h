#pragma once
// The control's prompts shown with Qt: message boxes, the file-open dialog and the
// shut-down notice, all modal to the control's window. While one is up, the control's
// timers are held (see QtTimerFactory).

#include <QPointer>
#include <QString>
#include <memory>

#include "shut_down_dialog.h"
#include "vantrel/prompts.h"
#include "vantrel/qt/qt_timers.h"

class QWidget;

namespace vantrel::qt {

// A message text for display: Windows-1252 to Unicode, and the carriage returns the control
// separates lines with become line breaks.
QString PromptText(std::string_view cp1252);

// A filter of the form "Description|patterns|Description|patterns" (patterns separated by
// "," or ";") as a Qt file dialog filter: "Description (*.a *.b);;...".
QString FileDialogFilter(std::string_view filter);

class QtPrompts final : public Prompts {
 public:
  // `parent` is the widget the prompts are modal to; `timers`, when given, are held while a
  // prompt is shown.
  QtPrompts(QWidget* parent, QtTimerFactory* timers);
  ~QtPrompts() override;

  MessageResult ShowMessage(std::string_view text, std::string_view title, MessageIcon icon,
                            MessageButtons buttons) override;
  std::optional<std::string> ChooseFileToOpen(const FileOpenRequest& request) override;
  void ShowShutDownNotice(std::string_view caption, std::string_view message,
                          std::string_view command, int durationMs) override;

  // The shut-down notice, once it has been shown (it is created on first use and kept).
  ShutDownDialog* ShutDownNotice() const { return shutDown_; }

 private:
  QPointer<QWidget> parent_;
  QtTimerFactory* timers_;
  QPointer<ShutDownDialog> shutDown_;
};

}  // namespace vantrel::qt
