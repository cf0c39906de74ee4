#pragma once
// The graph as the core keeps it: one line series per selected table column over a fixed
// number of points, with point labels and values. A chart view presents it.

#include <optional>
#include <string>
#include <vector>

namespace vantrel {

class GraphObserver {
 public:
  virtual ~GraphObserver() = default;
  // Series, points, labels or values changed; repainting may be suspended meanwhile.
  virtual void GraphChanged() {}
};

struct GraphSeries {
  std::string label;
  int lineWidth = 1;
  std::vector<std::optional<double>> values;  // one per point; empty until set
};

class GraphModel {
 public:
  int SeriesCount() const { return static_cast<int>(series_.size()); }
  int PointCount() const { return static_cast<int>(labels_.size()); }
  // Series and points are numbered from 1.
  const GraphSeries& Series(int series) const;
  const std::string& PointLabel(int point) const;
  std::optional<double> Value(int series, int point) const;
  int ValueAxisGridLineWidth() const { return gridLineWidth_; }
  bool RepaintSuspended() const { return suspended_; }

  void RemoveAllSeries();
  void RemoveAllPoints();
  void SetSeriesCount(int count);
  void SetPointCount(int count);
  void SetSeriesLabel(int series, std::string label);
  void SetSeriesLineWidth(int series, int width);
  void SetPointLabel(int point, std::string label);
  void SetValue(int series, int point, double value);
  void SetValueAxisGridLineWidth(int width) { gridLineWidth_ = width; }
  // While suspended, observers are not told of changes; resuming tells them once.
  void SuspendRepaint();
  void ResumeRepaint();

  void AddObserver(GraphObserver* observer);
  void RemoveObserver(GraphObserver* observer);

 private:
  GraphSeries& SeriesAt(int series);
  void CheckPoint(int point) const;
  void Changed();

  std::vector<GraphSeries> series_;
  std::vector<std::string> labels_;
  int gridLineWidth_ = 1;
  bool suspended_ = false;
  std::vector<GraphObserver*> observers_;
};

}  // namespace vantrel
