#include "value_panel.h"

#include <QFontDatabase>
#include <QFormLayout>
#include <QLabel>
#include <string>

#include "decoding/field_readers.h"
#include "text_conversion.h"

namespace vantrel::qt {
namespace {

// ReadASCII cannot fail for a 32-bit pattern; a failure would show as an empty text.
class IgnoredErrors final : public ErrorSink {
 public:
  void ReportError(std::string_view) override {}
};

}  // namespace

RawValueTexts ConvertRawValue(int64_t value) {
  const auto pattern = static_cast<uint32_t>(value);
  RawValueTexts texts;
  texts.decimal = QString::number(value);
  texts.hexadecimal = QStringLiteral("%1").arg(pattern, 8, 16, QLatin1Char('0')).toUpper();
  const auto high = static_cast<int32_t>(pattern >> 16);
  const auto low = static_cast<int32_t>(pattern & 0xFFFFu);
  texts.binary = ToQString(FormatBinary(high, 16) + " " + FormatBinary(low, 16));
  IgnoredErrors errors;
  texts.characters = ToQString(ReadASCII(4, int64_t{pattern}, false, errors));
  return texts;
}

ValuePanel::ValuePanel(QWidget* parent)
    : QDialog(parent, Qt::Tool),
      cell_(new QLabel(this)),
      decimal_(new QLabel(this)),
      hexadecimal_(new QLabel(this)),
      binary_(new QLabel(this)),
      characters_(new QLabel(this)) {
  setObjectName(QStringLiteral("frmValue"));
  setWindowTitle(tr("Value"));
  const QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
  for (QLabel* label : {decimal_, hexadecimal_, binary_, characters_}) {
    label->setFont(fixed);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
  }
  cell_->setWordWrap(true);
  auto* layout = new QFormLayout(this);
  layout->addRow(cell_);
  layout->addRow(tr("Decimal"), decimal_);
  layout->addRow(tr("Hexadecimal"), hexadecimal_);
  layout->addRow(tr("Binary"), binary_);
  layout->addRow(tr("Characters"), characters_);
}

void ValuePanel::ShowCell(const QString& caption, const QString& record, const QString& text,
                          std::optional<int64_t> raw) {
  cell_->setText(tr("%1, record %2: %3").arg(caption, record, text));
  RawValueTexts texts;
  if (raw) texts = ConvertRawValue(*raw);
  decimal_->setText(raw ? texts.decimal : tr("(no raw value)"));
  hexadecimal_->setText(texts.hexadecimal);
  binary_->setText(texts.binary);
  characters_->setText(texts.characters);
  adjustSize();
  show();
  raise();
}

}  // namespace vantrel::qt
