#pragma once
// The graph: the newest MaxGraph rows of the selected table columns as lines, one series per
// column, labelled with the record numbers at a step that suits the number of points.

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "vantrel/graph_model.h"
#include "vantrel/table_model.h"

namespace vantrel {

class GraphView {
 public:
  GraphModel& Model() { return chart_; }
  const GraphModel& Model() const { return chart_; }
  bool Shown() const { return shown_; }
  void SetShown(bool shown) { shown_ = shown; }

  // Rebuilds the series from the selected trace columns, then fills the points.
  void Setup(const TableModel& table, int32_t points);
  // Refills the points from the newest rows of the table.
  void Refresh(const TableModel& table, int32_t points);

 private:
  GraphModel chart_;
  bool shown_ = false;
  // Table columns drawn as series, with their header texts, from the last set-up.
  std::vector<std::pair<int, std::string>> columns_;
};

// Selects every trace column when none is selected; false when there is no trace column.
bool SelectTraceColumnsForGraph(TableModel& table);

// Column selection by the mouse: a double-click on a column after a press on the header row
// toggles the column's selection (its yellow header).
class HeaderSelection {
 public:
  // A mouse press on the table at `y` twips from its top.
  void Press(const TableModel& table, int32_t y);
  // A double-click on a cell of `column`.
  void DoubleClick(TableModel& table, int column);

 private:
  bool pressOnHeader_ = false;
};

}  // namespace vantrel
