#pragma once
// The value conversion panel that a double-click on a data cell opens: the cell's raw value
// (the register value behind the text shown) in decimal, hexadecimal, binary and as
// characters. One panel per widget, reused for every cell.

#include <QDialog>
#include <cstdint>
#include <optional>

class QLabel;

namespace vantrel::qt {

struct RawValueTexts {
  QString decimal;
  QString hexadecimal;  // the 32-bit pattern, eight digits
  QString binary;       // the 32-bit pattern, four groups of eight
  QString characters;   // the four bytes as characters, most significant first, quoted
};

RawValueTexts ConvertRawValue(int64_t value);

class ValuePanel final : public QDialog {
  Q_OBJECT

 public:
  explicit ValuePanel(QWidget* parent = nullptr);

  // Shows the cell: its column caption, record number and text, and the conversions of its
  // raw value (none on a marker or status row).
  void ShowCell(const QString& caption, const QString& record, const QString& text,
                std::optional<int64_t> raw);

  QLabel* Decimal() const { return decimal_; }
  QLabel* Hexadecimal() const { return hexadecimal_; }
  QLabel* Binary() const { return binary_; }
  QLabel* Characters() const { return characters_; }
  QLabel* Cell() const { return cell_; }

 private:
  QLabel* cell_;
  QLabel* decimal_;
  QLabel* hexadecimal_;
  QLabel* binary_;
  QLabel* characters_;
};

}  // namespace vantrel::qt
