#pragma once
// The viewer's main window: one VantrelWidget reading the chosen controller, a menu for
// acquisition, export and settings, and a status bar for the control's errors. The control's
// properties come from a property file (--properties), else from the user's settings, and
// the command line overrides them.

#include <QMainWindow>
#include <memory>
#include <string>

#include "controller_choice.h"
#include "shot_prompts.h"
#include "vantrel/history/record_history.h"
#include "vantrel/property_bag.h"
#include "vantrel/qt/qt_timers.h"
#include "vantrel/qt/vantrel_widget.h"
#include "vantrel/xlsx_exporter.h"
#include "viewer_options.h"

class QSettings;

namespace vantrel::viewer {

class ViewerWindow final : public QMainWindow {
  Q_OBJECT

 public:
  explicit ViewerWindow(ViewerOptions options, QWidget* parent = nullptr);
  ~ViewerWindow() override;

  // Opens the controller, applies the properties and starts the control. False, with
  // `error` set, when the controller or the property file cannot be opened.
  bool Open(std::string& error);

  qt::VantrelWidget& Widget() { return *widget_; }
  // The virtual controller, when it is the one read.
  hosts::EmbeddedController* Embedded() const { return controller_.embedded; }

  // Opens the settings dialog; accepted values go to the control and are saved.
  void EditSettings();
  // Saves the control's properties where they were read from.
  void SaveProperties();

 private:
  bool ApplyProperties(std::string& error);
  void ApplyCommandLine();
  void BuildMenus();
  void OnStatus(qint16 readStatus);
  // Opens the record history the HistoryFile property names, or closes it when empty.
  bool OpenHistory(std::string& error);

  ViewerOptions options_;
  // A screenshot is taken with no one at the screen: the control's prompts print instead.
  ShotPrompts shotPrompts_;
  qt::VantrelWidget* widget_;
  // The virtual controller's program runs on timers of its own, which outlive it.
  qt::QtTimerFactory controllerTimers_;
  SystemClock clock_;
  OpenedController controller_;
  std::unique_ptr<QSettings> settings_;
  FilePropertyBag propertyFile_;
  bool refreshing_ = false;
  XlsxExporter xlsx_;
  std::unique_ptr<history::RecordHistory> history_;
};

}  // namespace vantrel::viewer
