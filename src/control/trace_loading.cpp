// Loading the trace description after a valid buffer header: the description file named by
// the buffer key (or the user buffer file), then the empty table built from it.

#include <optional>

#include "acquisition/simulation.h"
#include "acquisition/trace_steps.h"
#include "decoding/grid_setup.h"
#include "decoding/row_history.h"
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
    ReadValueTextFile(m.valueTexts, path, m.buffer.HeaderKey, m.services.prompts);
  };
  sources.prompts = &m.services.prompts;
  return sources;
}

void PrepareTable(Module& m) {
  ShowTitle(m, m.props.Simulation);
  BuildGrid(m);
  AnnounceDescription(m);
}

bool LoadUserBufferFile(Module& m) {
  if (!HasUserBufferExtension(m.props.UserFile)) {
    m.ErrMsg = "Invalid user buffer file :\r" + m.props.UserFile;
    return false;
  }
  std::optional<UserBufferSimulation> simulation;
  if (!LoadUserBuffer(m.description, m.props.UserFile, m.buffer.HeaderKey, m.props.Simulation,
                      simulation, m.ErrMsg)) {
    return false;
  }
  if (simulation) PrepareSimulation(m, simulation->intervalMs, simulation->recordCount);
  PrepareTable(m);
  return true;
}

}  // namespace

bool LoadTraceDescription(Module& m) {
  m.valueTexts = cValues{};
  if (m.props.UserFile.size() >= 2) return LoadUserBufferFile(m);
  if (LocateDescriptionFile(m.buffer.HeaderKey, m.SearchPaths, m.services.prompts,
                            m.description.DescriptionFile) != 1) {
    m.ErrMsg = "No description file from driver found (*.vtl)";
    return false;
  }
  if (!LoadDescription(m.description, m.buffer.HeaderLength, SourcesOf(m), m.ErrMsg)) {
    return false;
  }
  m.surface.infoButton.enabled = !m.description.InfoText.empty();
  m.SurfaceChanged();
  PrepareTable(m);
  return true;
}

}  // namespace vantrel
