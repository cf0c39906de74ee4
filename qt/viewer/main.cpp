// vantrel-viewer: a controller's trace in a window (the embedded virtual controller unless
// told otherwise), or rendered into a PNG file for documentation and tests.

#include <QApplication>
#include <QByteArray>
#include <cstdio>
#include <cstring>

#include "screenshot_driver.h"
#include "viewer_options.h"
#include "viewer_window.h"

namespace {

// Whether Qt will find somewhere to show windows: a platform named on the command line or
// in QT_QPA_PLATFORM, or an X11 or Wayland display.
bool HasDisplay(int argc, char** argv) {
  for (int i = 1; i < argc; ++i) {
    if (std::strcmp(argv[i], "-platform") == 0 || std::strcmp(argv[i], "--platform") == 0) {
      return true;
    }
  }
  const QByteArray platform = qgetenv("QT_QPA_PLATFORM");
  if (!platform.isEmpty() && !platform.startsWith("xcb") && !platform.startsWith("wayland")) {
    return true;
  }
  return !qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

}  // namespace

int main(int argc, char** argv) {
  using namespace vantrel::viewer;
  if (!HasDisplay(argc, argv)) {
    std::fprintf(stderr,
                 "vantrel-viewer: no display to show the window on.\n"
                 "Use `vantrel run` to follow a trace in the terminal, or run the viewer "
                 "without a screen with QT_QPA_PLATFORM=offscreen (e.g. with --screenshot).\n");
    return 2;
  }
  QApplication app(argc, argv);
  QCoreApplication::setOrganizationName(QStringLiteral("Vantrel"));
  QCoreApplication::setApplicationName(QStringLiteral("vantrel-viewer"));

  ViewerOptions options;
  const ParseOutcome parsed = ParseViewerOptions(argc, argv, options);
  if (parsed.exitCode) {
    std::fputs(parsed.message.c_str(), *parsed.exitCode == 0 ? stdout : stderr);
    return *parsed.exitCode;
  }

  ViewerWindow window(options);
  std::string error;
  if (!window.Open(error)) {
    std::fprintf(stderr, "vantrel-viewer: %s\n", error.c_str());
    return 2;
  }
  if (options.size) {
    const auto size = ParseSize(*options.size);
    window.resize(size->first, size->second);
  }

  std::unique_ptr<ScreenshotDriver> driver;
  int exitCode = 0;
  if (!options.screenshot.empty()) {
    if (auto* embedded = window.Embedded()) {
      // The virtual controller writes the shot's records at once and then stops, so that
      // the table shows exactly that many rows; a ring too small for them runs on instead.
      auto& program = embedded->Program();
      if (options.afterRecords < program.Config().ringRecords) {
        program.WriteRecords(options.afterRecords);
        program.SetPaused(true);
      }
    }
    ScreenshotRequest request;
    request.file = QString::fromStdString(options.screenshot);
    request.afterRecords = options.afterRecords;
    for (const std::string& caption : options.graphColumns)
      request.graphColumns << QString::fromStdString(caption);
    request.showGraph = options.showGraph;
    request.fitRows = !options.size.has_value();
    driver = std::make_unique<ScreenshotDriver>(window, window.Widget(), request);
    QObject::connect(driver.get(), &ScreenshotDriver::finished, &app,
                     [&exitCode](int code, const QString& message) {
                       std::fprintf(code == 0 ? stdout : stderr, "vantrel-viewer: %s\n",
                                    message.toLocal8Bit().constData());
                       exitCode = code;
                       QCoreApplication::exit(code);
                     });
  }
  window.show();
  const int loopCode = QApplication::exec();
  return driver ? exitCode : loopCode;
}
