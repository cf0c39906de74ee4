#include "activity_indicator.h"

#include <QPainter>
#include <algorithm>

namespace vantrel::qt {

ActivityIndicator::ActivityIndicator(QWidget* parent) : QWidget(parent) {
  setObjectName(QStringLiteral("shpActivity"));
  setAttribute(Qt::WA_TransparentForMouseEvents);
}

void ActivityIndicator::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(QColor(0, 96, 0), 1));
  painter.setBrush(QColor(0, 170, 0));
  const int side = std::min(width(), height()) - 1;
  painter.drawEllipse(QRectF(0.5, 0.5, side, side));
}

}  // namespace vantrel::qt
