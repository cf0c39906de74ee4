#include "viewer_window.h"

#include <QMenuBar>
#include <QSettings>
#include <QStatusBar>
#include <QTimer>
#include <cstdio>

#include "gui_thread_post.h"
#include "settings_dialog.h"
#include "text_conversion.h"
#include "vantrel/control.h"
#include "vantrel/hosts/examples_directory.h"
#include "vantrel/posix_export_files.h"

namespace vantrel::viewer {

ViewerWindow::ViewerWindow(ViewerOptions options, QWidget* parent)
    : QMainWindow(parent),
      options_(std::move(options)),
      widget_(options_.screenshot.empty() ? new qt::VantrelWidget(this)
                                          : new qt::VantrelWidget(shotPrompts_, this)) {
  setWindowTitle(tr("Vantrel Viewer"));
  setCentralWidget(widget_);
  widget_->control().SetXlsxExporter(&xlsx_);
  widget_->control().SetExportFiles(&PosixExportFiles());
  BuildMenus();
  resize(1100, 700);

  connect(widget_, &qt::VantrelWidget::ReadPCDReg, this, [this](qint16 first, qint16 count) {
    if (controller_.link) controller_.link->ReadRegisters(first, count);
  });
  connect(widget_, &qt::VantrelWidget::ReadPCDDB, this,
          [this](qint16 block, qint16 offset, qint16 count) {
            if (controller_.link) controller_.link->ReadDataBlock(block, offset, count);
          });
  connect(widget_, &qt::VantrelWidget::Status, this, &ViewerWindow::OnStatus);
  connect(widget_, &qt::VantrelWidget::ModulError, this, [this](qint16 type, const QString& text) {
    statusBar()->showMessage(tr("Error %1: %2").arg(type).arg(text));
    if (!options_.screenshot.empty()) {
      QString line = text;
      line.replace(QLatin1Char('\r'), QLatin1String("\\r"))
          .replace(QLatin1Char('\n'), QLatin1String("\\n"));
      std::fprintf(stderr, "vantrel-viewer: ModulError %d: %s\n", type, line.toUtf8().constData());
    }
  });
  connect(widget_, &qt::VantrelWidget::NewExportFile, this, [this] {
    statusBar()->showMessage(
        tr("Exporting to %1").arg(qt::ToQString(widget_->control().ExportFile())), 5000);
  });
  // The controller asks its host to shut down (after the control's notice has closed).
  connect(widget_, &qt::VantrelWidget::PCDCmd, this, [this](qint16 command) {
    if (command == 9) QTimer::singleShot(0, this, &QWidget::close);
  });
}

ViewerWindow::~ViewerWindow() {
  // The link goes first: nothing may answer the control once it is going.
  controller_.link.reset();
  if (history_) history_->Close();
}

bool ViewerWindow::Open(std::string& error) {
  hosts::LinkHandlers handlers;
  handlers.answer = [this](std::vector<int32_t> words) { widget_->control().SetDataBlock(words); };
  // A transport that loses its controller says so through the controller status.
  handlers.connection = [this](bool connected) {
    widget_->control().SetPCDStatus(connected ? 2 : 1);
  };
  handlers.error = [this](const std::string& message) {
    statusBar()->showMessage(QString::fromStdString(message));
  };
  auto opened = OpenController(options_, controllerTimers_, clock_, PostToThreadOf(this),
                               std::move(handlers), error);
  if (!opened) return false;
  controller_ = std::move(*opened);
  if (!ApplyProperties(error)) return false;
  ApplyCommandLine();
  if (!OpenHistory(error)) return false;
  Control& control = widget_->control();
  control.SetPCDStatus(controller_.runningAtStart ? 2 : 1);
  control.Start();
  return true;
}

bool ViewerWindow::ApplyProperties(std::string& error) {
  Control& control = widget_->control();
  bool bundledExample = !options_.resourcePath.has_value();
  if (!options_.propertiesFile.empty()) {
    if (!propertyFile_.Load(options_.propertiesFile)) {
      error = "cannot read " + options_.propertiesFile;
      return false;
    }
    control.ReadProperties(propertyFile_);
    bundledExample = false;
  } else if (options_.screenshot.empty()) {
    // A shot is taken with the defaults, so that it does not depend on the user's settings.
    settings_ = std::make_unique<QSettings>();
    settings_->beginGroup(QStringLiteral("Control"));
    widget_->ReadProperties(*settings_);
    bundledExample = bundledExample && !settings_->contains(QStringLiteral("ResourcePath"));
  } else {
    control.InitProperties();
  }
  // Without a place to look for descriptions, the bundled example is read.
  if (bundledExample) {
    const std::string examples = hosts::ExamplesDirectory();
    control.SetResourcePath(examples);
    if (!options_.symbols && control.SymbFile().empty()) {
      control.SetSymbFile(examples + "/pumps_symbols.sym");
    }
  }
  return true;
}

void ViewerWindow::ApplyCommandLine() {
  const ViewerOptions& o = options_;
  Control& control = widget_->control();
  // Saved properties may name the pointer register; otherwise the controller's program does.
  if (o.startRegister) {
    control.SetStartRegister(*o.startRegister);
  } else if (control.StartRegister() == 0) {
    control.SetStartRegister(controller_.defaultStartRegister);
  }
  hosts::ApplyControlOptions(control, o);
  if (o.maxGraph) control.SetMaxGraph(*o.maxGraph);
  if (o.historyFile) control.SetHistoryFile(*o.historyFile);
  if (o.simulation) control.SetSimulation(true);
}

void ViewerWindow::OnStatus(qint16 readStatus) {
  // Once the pointer is read, refresh; later stops are the user's.
  if (readStatus == 2 && !refreshing_) {
    refreshing_ = true;
    QTimer::singleShot(0, this, [this] { widget_->control().SetRunMode(2); });
  }
}

void ViewerWindow::BuildMenus() {
  QMenu* file = menuBar()->addMenu(tr("&File"));
  file->addAction(tr("&Export"), QKeySequence(tr("Ctrl+E")), this,
                  [this] { widget_->control().ClickExportButton(); });
  file->addAction(tr("&Settings..."), this, &ViewerWindow::EditSettings);
  file->addSeparator();
  file->addAction(tr("&Quit"), QKeySequence::Quit, this, &QWidget::close);

  QMenu* acquisition = menuBar()->addMenu(tr("&Acquisition"));
  auto runMode = [this](int16_t mode) {
    return [this, mode] { widget_->control().SetRunMode(mode); };
  };
  acquisition->addAction(tr("&Run"), this, runMode(2));
  acquisition->addAction(tr("&Pause"), this, runMode(1));
  acquisition->addAction(tr("&Stop"), this, runMode(0));
  acquisition->addAction(tr("Read &once"), this, runMode(3));
  acquisition->addSeparator();
  acquisition->addAction(tr("&Clear table"), this, [this] { widget_->control().Clear(); });
  acquisition->addAction(tr("Re&start"), this, [this] {
    refreshing_ = false;
    widget_->control().Reset();
    widget_->control().Start();
  });
}

void ViewerWindow::EditSettings() {
  SettingsDialog dialog(widget_->control(), this);
  if (dialog.exec() != QDialog::Accepted) return;
  const std::string historyBefore = widget_->control().HistoryFile();
  dialog.Apply();
  std::string error;
  if (widget_->control().HistoryFile() != historyBefore && !OpenHistory(error)) {
    statusBar()->showMessage(QString::fromStdString(error));
  }
  SaveProperties();
}

bool ViewerWindow::OpenHistory(std::string& error) {
  Control& control = widget_->control();
  if (history_) {
    history_->Close();
    history_.reset();
  }
  if (control.HistoryFile().empty()) return true;
  // A file, or a PostgreSQL server by URL; what it says and the rows it loses show in the
  // status bar (and, for the rows lost, as the control's error).
  history::RecordHistorySettings settings;
  settings.target = control.HistoryFile();
  settings.source = options_.controller;
  if (options_.historySpool) settings.spoolDirectory = *options_.historySpool;
  if (options_.historySpoolLimit) settings.spoolLimitBytes = *options_.historySpoolLimit;
  // Posted calls to a window that has gone are dropped with it.
  settings.post = PostToThreadOf(this);
  settings.notice = [this, post = settings.post](std::string_view message) {
    post([this, text = QString::fromStdString(std::string(message))] {
      statusBar()->showMessage(text);
    });
  };
  history_ = history::RecordHistory::Open(std::move(settings), control, error);
  return history_ != nullptr;
}

void ViewerWindow::SaveProperties() {
  if (!options_.propertiesFile.empty()) {
    widget_->control().WriteProperties(propertyFile_);
    if (!propertyFile_.Save(options_.propertiesFile)) {
      statusBar()->showMessage(
          tr("Cannot save %1").arg(QString::fromStdString(options_.propertiesFile)));
    }
  } else if (settings_) {
    widget_->WriteProperties(*settings_);
  }
  // Saving reads the font properties, which hands them to the table.
  widget_->Refresh();
}

}  // namespace vantrel::viewer
