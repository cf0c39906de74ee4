#pragma once
// The chart view (MSChart): the control's graph model drawn with Qt Charts, one line series
// per series of the model over its points, point labels on a category axis along the
// bottom and the values on a value axis. Changes are gathered and drawn once per turn of
// the event loop, and not at all while the chart is hidden or the model's repainting is
// suspended.

#include <QChartView>
#include <QTimer>
#include <vector>

#include "vantrel/graph_model.h"

class QCategoryAxis;
class QLineSeries;
class QValueAxis;

namespace vantrel::qt {

class GraphView final : public QChartView, private GraphObserver {
  Q_OBJECT

 public:
  // The model must outlive the view, or the view must be detached first.
  GraphView(GraphModel& graph, QWidget* parent = nullptr);
  ~GraphView() override;
  GraphView(const GraphView&) = delete;
  GraphView& operator=(const GraphView&) = delete;

  void Detach();

  // Draws the model as it stands now.
  void Synchronize();
  // Draws on the next turn of the event loop (repeated calls in one turn draw once).
  void ScheduleSynchronize();

  int SeriesCount() const { return static_cast<int>(series_.size()); }
  QLineSeries* Series(int index) const { return series_[static_cast<size_t>(index)]; }
  QCategoryAxis* PointAxis() const { return pointAxis_; }
  QValueAxis* ValueAxis() const { return valueAxis_; }

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  void GraphChanged() override;
  void RebuildSeries();
  void FillPoints();
  void FillPointLabels();

  GraphModel* graph_;
  std::vector<QLineSeries*> series_;
  QCategoryAxis* pointAxis_;
  QValueAxis* valueAxis_;
  QTimer pending_;
};

}  // namespace vantrel::qt
