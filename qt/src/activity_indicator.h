#pragma once
// The small round shape that blinks while the control refreshes: the read timer shows and
// hides it on each tick.

#include <QWidget>

namespace vantrel::qt {

class ActivityIndicator final : public QWidget {
  Q_OBJECT

 public:
  explicit ActivityIndicator(QWidget* parent = nullptr);

 protected:
  void paintEvent(QPaintEvent* event) override;
};

}  // namespace vantrel::qt
