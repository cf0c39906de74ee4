#pragma once
// frmShutDown: the notice shown before the controller's shut-down command reaches the host.
// It has two labels and a timer that closes the form after its interval; nothing else.

#include <QDialog>
#include <QTimer>

class QLabel;

namespace vantrel::qt {

class ShutDownDialog final : public QDialog {
  Q_OBJECT

 public:
  explicit ShutDownDialog(QWidget* parent = nullptr);

  // Shows the notice modally; returns once its timer has closed it after `durationMs`.
  void ShowFor(const QString& caption, const QString& message, const QString& command,
               int durationMs);

  QLabel* Label1() const { return label1_; }
  QLabel* LblShutDown() const { return lblShutDown_; }
  const QTimer& Timer1() const { return timer1_; }

 protected:
  // The timer counts from the moment the form is shown, so each display lasts one interval.
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;

 private:
  QLabel* label1_;
  QLabel* lblShutDown_;
  QTimer timer1_;
};

}  // namespace vantrel::qt
