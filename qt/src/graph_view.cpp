#include "graph_view.h"

#include <QCategoryAxis>
#include <QLineSeries>
#include <QSet>
#include <QValueAxis>
#include <algorithm>
#include <cmath>
#include <limits>

#include "text_conversion.h"

namespace vantrel::qt {
namespace {

// Line widths of the model are in twentieths of a point (20 is a one-point line); nothing
// is drawn thinner than a pixel.
qreal PenWidth(int twentieths) {
  return std::max(1.0, twentieths / 20.0 * 96.0 / 72.0);
}

}  // namespace

GraphView::GraphView(GraphModel& graph, QWidget* parent)
    : QChartView(parent),
      graph_(&graph),
      pointAxis_(new QCategoryAxis),
      valueAxis_(new QValueAxis) {
  setObjectName(QStringLiteral("MSChart"));
  setRenderHint(QPainter::Antialiasing);
  QChart* c = chart();
  c->legend()->setAlignment(Qt::AlignBottom);
  c->setMargins(QMargins(4, 4, 4, 4));
  c->setAnimationOptions(QChart::NoAnimation);
  pointAxis_->setLabelsPosition(QCategoryAxis::AxisLabelsPositionOnValue);
  pointAxis_->setGridLineVisible(false);
  c->addAxis(pointAxis_, Qt::AlignBottom);
  c->addAxis(valueAxis_, Qt::AlignLeft);
  pending_.setSingleShot(true);
  pending_.setInterval(0);
  connect(&pending_, &QTimer::timeout, this, &GraphView::Synchronize);
  graph_->AddObserver(this);
}

GraphView::~GraphView() {
  Detach();
}

void GraphView::Detach() {
  if (graph_ != nullptr) graph_->RemoveObserver(this);
  graph_ = nullptr;
  pending_.stop();
}

void GraphView::GraphChanged() {
  ScheduleSynchronize();
}

void GraphView::ScheduleSynchronize() {
  if (!pending_.isActive()) pending_.start();
}

void GraphView::showEvent(QShowEvent* event) {
  QChartView::showEvent(event);
  Synchronize();
}

void GraphView::Synchronize() {
  pending_.stop();
  // Hidden, the chart is drawn when it is shown; suspended, the model is half refilled and
  // says when it is done.
  if (graph_ == nullptr || !isVisible() || graph_->RepaintSuspended()) return;
  RebuildSeries();
  FillPoints();
  FillPointLabels();
}

void GraphView::RebuildSeries() {
  const int count = graph_->SeriesCount();
  bool same = static_cast<int>(series_.size()) == count;
  for (int s = 0; same && s < count; ++s) {
    same = series_[static_cast<size_t>(s)]->name() == ToQString(graph_->Series(s + 1).label);
  }
  if (!same) {
    chart()->removeAllSeries();
    series_.clear();
    for (int s = 1; s <= count; ++s) {
      auto* line = new QLineSeries;
      line->setName(ToQString(graph_->Series(s).label));
      chart()->addSeries(line);
      line->attachAxis(pointAxis_);
      line->attachAxis(valueAxis_);
      series_.push_back(line);
    }
  }
  for (int s = 1; s <= count; ++s) {
    QLineSeries* line = series_[static_cast<size_t>(s - 1)];
    QPen pen = line->pen();
    pen.setWidthF(PenWidth(graph_->Series(s).lineWidth));
    line->setPen(pen);
  }
  QPen grid = valueAxis_->gridLinePen();
  grid.setWidthF(PenWidth(graph_->ValueAxisGridLineWidth()));
  valueAxis_->setGridLinePen(grid);
}

void GraphView::FillPoints() {
  const int points = graph_->PointCount();
  double low = std::numeric_limits<double>::max();
  double high = std::numeric_limits<double>::lowest();
  for (int s = 1; s <= graph_->SeriesCount(); ++s) {
    QList<QPointF> line;
    line.reserve(points);
    for (int p = 1; p <= points; ++p) {
      if (const auto value = graph_->Value(s, p)) {
        line.append(QPointF(p, *value));
        low = std::min(low, *value);
        high = std::max(high, *value);
      }
    }
    series_[static_cast<size_t>(s - 1)]->replace(line);
  }
  if (low > high) {
    low = 0;
    high = 1;
  } else if (low == high) {
    low -= 1;
    high += 1;
  }
  valueAxis_->setRange(low, high);
  valueAxis_->applyNiceNumbers();
  pointAxis_->setRange(0.5, std::max(points, 1) + 0.5);
}

void GraphView::FillPointLabels() {
  for (const QString& label : pointAxis_->categoriesLabels())
    pointAxis_->remove(label);
  pointAxis_->setStartValue(0.5);
  // The axis wants unique labels; a record number can repeat (a marker row carries the
  // number of the record before it), so a repeat gets invisible zero-width spaces.
  QSet<QString> used;
  int labelled = 0;
  for (int p = 1; p <= graph_->PointCount(); ++p) {
    QString label = ToQString(graph_->PointLabel(p)).trimmed();
    if (label.isEmpty()) continue;
    while (used.contains(label))
      label += QChar(0x200B);
    used.insert(label);
    pointAxis_->append(label, p);
    ++labelled;
  }
  pointAxis_->setLabelsAngle(labelled > 25 ? -90 : 0);
}

}  // namespace vantrel::qt
