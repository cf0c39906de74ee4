#include "shut_down_dialog.h"

#include <QLabel>
#include <QVBoxLayout>

namespace vantrel::qt {

ShutDownDialog::ShutDownDialog(QWidget* parent)
    : QDialog(parent), label1_(new QLabel(this)), lblShutDown_(new QLabel(this)) {
  setObjectName(QStringLiteral("frmShutDown"));
  label1_->setObjectName(QStringLiteral("Label1"));
  lblShutDown_->setObjectName(QStringLiteral("lblShutDown"));
  QFont font(QStringLiteral("MS Sans Serif"));
  font.setStyleHint(QFont::SansSerif);
  label1_->setFont(font);
  lblShutDown_->setFont(font);
  label1_->setAlignment(Qt::AlignCenter);
  lblShutDown_->setAlignment(Qt::AlignCenter);

  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(24, 18, 24, 18);
  layout->setSpacing(12);
  layout->addWidget(label1_);
  layout->addWidget(lblShutDown_);
  setMinimumWidth(300);

  timer1_.setSingleShot(true);
  connect(&timer1_, &QTimer::timeout, this, &QDialog::accept);
}

void ShutDownDialog::ShowFor(const QString& caption, const QString& message, const QString& command,
                             int durationMs) {
  setWindowTitle(caption);
  label1_->setText(message);
  lblShutDown_->setText(command);
  timer1_.setInterval(durationMs);
  exec();
}

void ShutDownDialog::showEvent(QShowEvent* event) {
  QDialog::showEvent(event);
  timer1_.start();
}

void ShutDownDialog::hideEvent(QHideEvent* event) {
  timer1_.stop();
  QDialog::hideEvent(event);
}

}  // namespace vantrel::qt
