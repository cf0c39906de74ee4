#include "vantrel/qt/qt_timers.h"

#include <QTimer>

#include "platform/basic_timer.h"

namespace vantrel::qt {
namespace {

class QtTimer final : public BasicTimer {
 public:
  explicit QtTimer(const QtTimerFactory& factory) : factory_(factory) {
    QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] {
      if (!factory_.Held()) RunHandler();
    });
  }

 protected:
  void Rearm() override {
    if (Ticking()) {
      timer_.start(Interval());
    } else {
      timer_.stop();
    }
  }

 private:
  const QtTimerFactory& factory_;
  QTimer timer_;
};

}  // namespace

std::unique_ptr<Timer> QtTimerFactory::CreateTimer() {
  return std::make_unique<QtTimer>(*this);
}

}  // namespace vantrel::qt
