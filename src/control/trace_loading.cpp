// Loading the trace description after a valid buffer header: the description file named by
// the buffer key (or the user buffer file), then the empty table built from it.

#include <optional>

#include "control/clear.h"
#include "control/trace_loading.h"
#include "description/description_loader.h"
#include "description/locator.h"
#include "description/user_buffer.h"
#include "symbols/symbol_file.h"
#include "symbols/value_text_file.h"

namespace vantrel {
namespace {

DescriptionSources SourcesOf(Module& m) {
  DescriptionSources sources;
  sources.textFileDirectories.push_back(m.props.ProjectPath);
  sources.textFileDirectories.push_back(m.services.ownDirectory);
  for (const std::string& path : m.SearchPaths)
    sources.textFileDirectories.push_back(path);
  sources.readSymbolFile = [&m] { m.symbols = ReadSymbolFile(m.props.SymbFile); };
  sources.readValueTextFile = [&m](const std::string& path) {
    ReadValueTextFile(m.valueTexts, path, m.cycle.Buffer().HeaderKey, m.services.prompts);
  };
  sources.prompts = &m.services.prompts;
  return sources;
}

void PrepareTable(Module& m) {
  ShowTitle(m, m.props.Simulation);
  BuildGrid(m);
  m.rows.AnnounceDescription(HistoryDescriptionOf(m.description, m.cycle.Buffer().HeaderKey));
}

bool LoadUserBufferFile(Module& m, std::string& errMsg) {
  if (!HasUserBufferExtension(m.props.UserFile)) {
    errMsg = "Invalid user buffer file :\r" + m.props.UserFile;
    return false;
  }
  std::optional<UserBufferSimulation> simulation;
  if (!LoadUserBuffer(m.description, m.props.UserFile, m.cycle.Buffer().HeaderKey,
                      m.props.Simulation, simulation, errMsg)) {
    return false;
  }
  if (simulation) {
    m.simulTimer->SetInterval(simulation->intervalMs);
    m.cycle.Simulation().SizeRing(m.description.RecordLength, simulation->recordCount);
  }
  PrepareTable(m);
  return true;
}

}  // namespace

bool LoadTraceDescription(Module& m, std::string& errMsg) {
  m.valueTexts = cValues{};
  if (m.props.UserFile.size() >= 2) return LoadUserBufferFile(m, errMsg);
  if (LocateDescriptionFile(m.cycle.Buffer().HeaderKey, m.SearchPaths, m.services.prompts,
                            m.description.DescriptionFile) != 1) {
    errMsg = "No description file from driver found (*.vtl)";
    return false;
  }
  if (!LoadDescription(m.description, m.cycle.Buffer().HeaderLength, SourcesOf(m), errMsg)) {
    return false;
  }
  m.surface.infoButton.enabled = !m.description.InfoText.empty();
  m.SurfaceChanged();
  PrepareTable(m);
  return true;
}

void ShowTitle(Module& m, bool simulated) {
  if (simulated) {
    m.surface.title = {"Vantrel running with congured buffer simulation", kColorRed};
  } else {
    m.surface.title = {"Vantrel for : " + m.description.Title + "      version " +
                           std::to_string(m.cycle.Buffer().HeaderVersion),
                       kColorBlack};
  }
  m.SurfaceChanged();
}

void ShowInfo(Module& m) {
  if (!m.cycle.Buffer().HeaderKey.empty()) {
    if (!m.description.InfoText.empty()) {
      m.services.prompts.ShowMessage("Info section :\r\r" + m.description.InfoText,
                                     m.description.DescriptionFile, MessageIcon::Information,
                                     MessageButtons::Ok);
    }
    return;
  }
  m.services.prompts.ShowMessage("No info avalaible.", "Vantrel", MessageIcon::Information,
                                 MessageButtons::Ok);
}

}  // namespace vantrel
