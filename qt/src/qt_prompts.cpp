#include "qt_prompts.h"

#include <QFileDialog>
#include <QMessageBox>
#include <QRegularExpression>
#include <QStringList>

#include "shut_down_dialog.h"
#include "text_conversion.h"

namespace vantrel::qt {
namespace {

QMessageBox::Icon ToQtIcon(MessageIcon icon) {
  switch (icon) {
    case MessageIcon::Information:
      return QMessageBox::Information;
    case MessageIcon::Exclamation:
      return QMessageBox::Warning;
    case MessageIcon::Critical:
      return QMessageBox::Critical;
    case MessageIcon::Question:
      return QMessageBox::Question;
    case MessageIcon::None:
      break;
  }
  return QMessageBox::NoIcon;
}

}  // namespace

QString PromptText(std::string_view cp1252) {
  QString text = ToQString(cp1252);
  text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
  text.replace(QLatin1Char('\r'), QLatin1Char('\n'));
  return text;
}

QString FileDialogFilter(std::string_view filter) {
  const QStringList parts = ToQString(filter).split(QLatin1Char('|'));
  QStringList filters;
  for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
    // The description may show the patterns in parentheses already; Qt reads the patterns
    // from the parentheses, so they are rebuilt there, separated by blanks.
    QString description = parts[i];
    const qsizetype open = description.indexOf(QLatin1Char('('));
    if (open >= 0) description.truncate(open);
    description = description.trimmed();
    QStringList patterns =
        parts[i + 1].split(QRegularExpression(QStringLiteral("[,;\\s]+")), Qt::SkipEmptyParts);
    filters << QStringLiteral("%1 (%2)").arg(description, patterns.join(QLatin1Char(' ')));
  }
  return filters.join(QStringLiteral(";;"));
}

QtPrompts::QtPrompts(QWidget* parent, QtTimerFactory* timers) : parent_(parent), timers_(timers) {}

QtPrompts::~QtPrompts() {
  delete shutDown_;
}

MessageResult QtPrompts::ShowMessage(std::string_view text, std::string_view title,
                                     MessageIcon icon, MessageButtons buttons) {
  const TimerHold hold(timers_);
  QMessageBox box(
      ToQtIcon(icon), PromptText(title), PromptText(text),
      buttons == MessageButtons::YesNo ? QMessageBox::Yes | QMessageBox::No : QMessageBox::Ok,
      parent_);
  const int answer = box.exec();
  if (buttons == MessageButtons::Ok) return MessageResult::Ok;
  return answer == QMessageBox::Yes ? MessageResult::Yes : MessageResult::No;
}

std::optional<std::string> QtPrompts::ChooseFileToOpen(const FileOpenRequest& request) {
  const TimerHold hold(timers_);
  QFileDialog dialog(parent_,
                     request.title.empty() ? QStringLiteral("Open") : ToQString(request.title));
  dialog.setAcceptMode(QFileDialog::AcceptOpen);
  dialog.setFileMode(request.fileMustExist ? QFileDialog::ExistingFile : QFileDialog::AnyFile);
  dialog.setNameFilter(FileDialogFilter(request.filter));
  QString suffix = ToQString(request.defaultExtension);
  if (suffix.startsWith(QLatin1Char('.'))) suffix.remove(0, 1);
  dialog.setDefaultSuffix(suffix);
  if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return std::nullopt;
  return FromQString(dialog.selectedFiles().constFirst());
}

void QtPrompts::ShowShutDownNotice(std::string_view caption, std::string_view message,
                                   std::string_view command, int durationMs) {
  const TimerHold hold(timers_);
  if (shutDown_ == nullptr) shutDown_ = new ShutDownDialog(parent_);
  shutDown_->ShowFor(ToQString(caption), ToQString(message), ToQString(command), durationMs);
}

}  // namespace vantrel::qt
