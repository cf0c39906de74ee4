#include "control/export_control.h"

#include <string>

#include "control/clear.h"
#include "description/profile_file.h"
#include "output/export_naming.h"
#include "output/export_service.h"
#include "output/trace_export.h"

namespace vantrel {
namespace {

// Messages meant for whoever asked for the export are shown only for the controller's
// command; the writer's own failures always.
bool ShowsMessages(const Module& m) {
  return !m.props.AutoExport && m.CommandedExport;
}

void Show(Module& m, const ExportMessage& message) {
  if (message.toRequester && !ShowsMessages(m)) return;
  m.services.prompts.ShowMessage(message.text, message.title, message.icon, MessageButtons::Ok);
}

void SetBusy(Module& m, bool busy) {
  m.surface.busyCursor = busy;
  m.SurfaceChanged();
}

}  // namespace

void ExportExcelFile(Module& m) {
  PropertyFields& p = m.props;
  if (p.ExportFile.empty()) {
    if (!p.AutoExport && !m.CommandedExport) {
      m.services.prompts.ShowMessage("No export file defined !", "Vantrel Export File",
                                     MessageIcon::Information, MessageButtons::Ok);
      return;
    }
    p.ExportFile = AddTrailingSeparator(m.services.currentDirectory) +
                   std::string(DefaultExportName(p.ExportFormat));
  }
  SetBusy(m, true);
  p.ExportFile = WithDefaultExportName(p.ExportFile, DefaultExportName(p.ExportFormat));
  ExportRequest request;
  request.format = p.ExportFormat;
  request.target = ExportTargetName(p.ExportFile, p.IndexFile, m.services.clock.Now(),
                                    m.cycle.Buffer().ExportIndex);
  request.xlsx = m.services.xlsx;
  request.checkWritable = p.IndexFile == 0;
  request.source.files = m.services.exportFiles;
  request.starting = [&m](ExportSource& source) {
    m.events.NewExportFile();
    m.grid.SetRedraw(false);
    const PropertyFields& shown = m.props;
    source = TraceExportSource(m.grid, m.description,
                               {shown.DateStampCol, shown.TimeStampCol, shown.PCDStatusCol},
                               m.decimalSeparator);
    source.files = m.services.exportFiles;
  };
  const ExportResult result = ExportTable(std::move(request));
  m.LastExportError = result.lastColumnError;
  for (const ExportMessage& message : result.messages)
    Show(m, message);
  if (result.failed) Show(m, result.outcome);
  m.grid.SetRedraw(true);
  SetBusy(m, false);
  if (result.failed) return;
  if (result.written) ClearTable(m);
  Show(m, result.outcome);
}

void ExportFromButton(Module& m) {
  if (m.grid.RowCount() < 2) return;
  ExportExcelFile(m);
}

}  // namespace vantrel
