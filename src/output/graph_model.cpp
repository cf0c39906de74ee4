#include "vantrel/graph_model.h"

#include <algorithm>

#include "platform/runtime_error.h"

namespace vantrel {

const GraphSeries& GraphModel::Series(int series) const {
  if (series < 1 || series > SeriesCount()) throw RuntimeError::SubscriptOutOfRange();
  return series_[static_cast<size_t>(series - 1)];
}

GraphSeries& GraphModel::SeriesAt(int series) {
  return const_cast<GraphSeries&>(static_cast<const GraphModel*>(this)->Series(series));
}

void GraphModel::CheckPoint(int point) const {
  if (point < 1 || point > PointCount()) throw RuntimeError::SubscriptOutOfRange();
}

const std::string& GraphModel::PointLabel(int point) const {
  CheckPoint(point);
  return labels_[static_cast<size_t>(point - 1)];
}

std::optional<double> GraphModel::Value(int series, int point) const {
  CheckPoint(point);
  return Series(series).values[static_cast<size_t>(point - 1)];
}

void GraphModel::RemoveAllSeries() {
  series_.clear();
  Changed();
}

void GraphModel::RemoveAllPoints() {
  labels_.clear();
  for (GraphSeries& s : series_)
    s.values.clear();
  Changed();
}

void GraphModel::SetSeriesCount(int count) {
  series_.resize(static_cast<size_t>(std::max(count, 0)));
  for (GraphSeries& s : series_)
    s.values.resize(labels_.size());
  Changed();
}

void GraphModel::SetPointCount(int count) {
  const auto points = static_cast<size_t>(std::max(count, 0));
  labels_.resize(points);
  for (GraphSeries& s : series_)
    s.values.resize(points);
  Changed();
}

void GraphModel::SetSeriesLabel(int series, std::string label) {
  SeriesAt(series).label = std::move(label);
  Changed();
}

void GraphModel::SetSeriesLineWidth(int series, int width) {
  SeriesAt(series).lineWidth = width;
  Changed();
}

void GraphModel::SetPointLabel(int point, std::string label) {
  CheckPoint(point);
  labels_[static_cast<size_t>(point - 1)] = std::move(label);
  Changed();
}

void GraphModel::SetValue(int series, int point, double value) {
  CheckPoint(point);
  SeriesAt(series).values[static_cast<size_t>(point - 1)] = value;
  Changed();
}

void GraphModel::SuspendRepaint() {
  suspended_ = true;
}

void GraphModel::ResumeRepaint() {
  suspended_ = false;
  Changed();
}

void GraphModel::AddObserver(GraphObserver* observer) {
  if (observer != nullptr) observers_.push_back(observer);
}

void GraphModel::RemoveObserver(GraphObserver* observer) {
  std::erase(observers_, observer);
}

void GraphModel::Changed() {
  if (suspended_) return;
  for (GraphObserver* observer : observers_)
    observer->GraphChanged();
}

}  // namespace vantrel
