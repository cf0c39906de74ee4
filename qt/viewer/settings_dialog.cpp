#include "settings_dialog.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>

#include "text_conversion.h"
#include "vantrel/control.h"

namespace vantrel::viewer {
namespace {

using qt::FromQString;
using qt::ToQString;

QSpinBox* SpinBox(QWidget* parent, int minimum, int maximum, const QString& suffix = {}) {
  auto* box = new QSpinBox(parent);
  box->setRange(minimum, maximum);
  box->setSuffix(suffix);
  return box;
}

// A line edit with a "..." button that picks a file.
QWidget* WithBrowse(QLineEdit* edit, const QString& filter, bool save, QWidget* parent) {
  auto* row = new QWidget(parent);
  auto* layout = new QHBoxLayout(row);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(edit);
  auto* browse = new QPushButton(QStringLiteral("..."), row);
  browse->setMaximumWidth(32);
  layout->addWidget(browse);
  QObject::connect(browse, &QPushButton::clicked, row, [edit, filter, save, row] {
    const QString file = save ? QFileDialog::getSaveFileName(row, QString(), edit->text(), filter)
                              : QFileDialog::getOpenFileName(row, QString(), edit->text(), filter);
    if (!file.isEmpty()) edit->setText(file);
  });
  return row;
}

}  // namespace

SettingsDialog::SettingsDialog(Control& control, QWidget* parent)
    : QDialog(parent),
      control_(control),
      resourcePath_(new QLineEdit(this)),
      projectPath_(new QLineEdit(this)),
      userFile_(new QLineEdit(this)),
      symbFile_(new QLineEdit(this)),
      startRegister_(SpinBox(this, 0, 32767)),
      interval_(SpinBox(this, 1, 3600000, tr(" ms"))),
      maxRows_(SpinBox(this, 1, 1000000)),
      maxGraph_(SpinBox(this, 20, 100000)),
      dateStampCol_(new QCheckBox(tr("PC date"), this)),
      timeStampCol_(new QCheckBox(tr("PC time"), this)),
      pcdStatusCol_(new QCheckBox(tr("Controller status"), this)),
      exportFile_(new QLineEdit(this)),
      indexFile_(new QComboBox(this)),
      exportFormat_(new QComboBox(this)),
      autoExport_(new QCheckBox(tr("Export whenever the table is full"), this)),
      historyFile_(new QLineEdit(this)),
      gridFontName_(new QLineEdit(this)),
      gridFontSize_(new QLineEdit(this)) {
  setWindowTitle(tr("Vantrel settings"));
  indexFile_->addItems(
      {tr("0 - fixed name"), tr("1 - time-stamped name"), tr("2 - name indexed by the buffer")});
  exportFormat_->addItems(
      {tr("Excel 2.x worksheet (.xls)"), tr("Excel workbook (.xlsx)"), tr("CSV, UTF-8 (.csv)")});
  historyFile_->setToolTip(
      tr("Every row is also kept in this SQLite file, or in the PostgreSQL database of a "
         "postgresql:// URL (empty: none); takes effect when acquisition starts again"));
  resourcePath_->setToolTip(tr("Directories searched for description files, separated by commas"));

  auto* form = new QFormLayout;
  form->addRow(tr("Resource path"), resourcePath_);
  form->addRow(tr("Project path"), projectPath_);
  form->addRow(tr("User buffer file"),
               WithBrowse(userFile_, tr("User buffer files (*.vtlr)"), false, this));
  form->addRow(tr("Symbol file"), WithBrowse(symbFile_, tr("Symbol files (*.sym)"), false, this));
  form->addRow(tr("Start register"), startRegister_);
  form->addRow(tr("Refresh interval"), interval_);
  form->addRow(tr("Rows kept"), maxRows_);
  form->addRow(tr("Graph points"), maxGraph_);
  auto* stamps = new QWidget(this);
  auto* stampLayout = new QHBoxLayout(stamps);
  stampLayout->setContentsMargins(0, 0, 0, 0);
  stampLayout->addWidget(dateStampCol_);
  stampLayout->addWidget(timeStampCol_);
  stampLayout->addWidget(pcdStatusCol_);
  form->addRow(tr("Columns"), stamps);
  form->addRow(tr("Export file"),
               WithBrowse(exportFile_, tr("Spreadsheets (*.xls *.xlsx *.csv)"), true, this));
  form->addRow(tr("Export format"), exportFormat_);
  form->addRow(tr("Export naming"), indexFile_);
  form->addRow(QString(), autoExport_);
  form->addRow(tr("Record history"),
               WithBrowse(historyFile_, tr("SQLite histories (*.db)"), true, this));
  form->addRow(tr("Table font"), gridFontName_);
  form->addRow(tr("Table font size"), gridFontSize_);

  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(form);
  layout->addWidget(buttons);
  Load();
}

void SettingsDialog::Load() {
  Control& c = control_;
  resourcePath_->setText(ToQString(c.ResourcePath()));
  projectPath_->setText(ToQString(c.ProjectPath()));
  userFile_->setText(ToQString(c.UserFile()));
  symbFile_->setText(ToQString(c.SymbFile()));
  startRegister_->setValue(c.StartRegister());
  interval_->setValue(c.Interval());
  maxRows_->setValue(c.MaxRows());
  maxGraph_->setValue(c.MaxGraph());
  dateStampCol_->setChecked(c.DateStampCol());
  timeStampCol_->setChecked(c.TimeStampCol());
  pcdStatusCol_->setChecked(c.PCDStatusCol());
  exportFile_->setText(ToQString(c.ExportFile()));
  indexFile_->setCurrentIndex(c.IndexFile() >= 0 && c.IndexFile() <= 2 ? c.IndexFile() : 0);
  autoExport_->setChecked(c.AutoExport());
  exportFormat_->setCurrentIndex(c.ExportFormat() >= 0 && c.ExportFormat() <= 2 ? c.ExportFormat()
                                                                                : 0);
  historyFile_->setText(ToQString(c.HistoryFile()));
  gridFontName_->setText(ToQString(c.GridFontName()));
  gridFontSize_->setText(ToQString(c.GridFontSize()));
}

void SettingsDialog::Apply() {
  Control& c = control_;
  const auto text = [](const QLineEdit* edit) { return FromQString(edit->text()); };
  if (text(resourcePath_) != c.ResourcePath()) c.SetResourcePath(text(resourcePath_));
  if (text(projectPath_) != c.ProjectPath()) c.SetProjectPath(text(projectPath_));
  if (text(userFile_) != c.UserFile()) c.SetUserFile(text(userFile_));
  if (text(symbFile_) != c.SymbFile()) c.SetSymbFile(text(symbFile_));
  if (startRegister_->value() != c.StartRegister()) {
    c.SetStartRegister(static_cast<int16_t>(startRegister_->value()));
  }
  if (interval_->value() != c.Interval()) c.SetInterval(interval_->value());
  if (maxRows_->value() != c.MaxRows()) c.SetMaxRows(maxRows_->value());
  if (maxGraph_->value() != c.MaxGraph()) c.SetMaxGraph(maxGraph_->value());
  if (dateStampCol_->isChecked() != c.DateStampCol()) c.SetDateStampCol(dateStampCol_->isChecked());
  if (timeStampCol_->isChecked() != c.TimeStampCol()) c.SetTimeStampCol(timeStampCol_->isChecked());
  if (pcdStatusCol_->isChecked() != c.PCDStatusCol()) c.SetPCDStatusCol(pcdStatusCol_->isChecked());
  if (text(exportFile_) != c.ExportFile()) c.SetExportFile(text(exportFile_));
  if (indexFile_->currentIndex() != c.IndexFile()) {
    c.SetIndexFile(static_cast<int16_t>(indexFile_->currentIndex()));
  }
  if (autoExport_->isChecked() != c.AutoExport()) c.SetAutoExport(autoExport_->isChecked());
  if (exportFormat_->currentIndex() != c.ExportFormat()) {
    c.SetExportFormat(static_cast<int16_t>(exportFormat_->currentIndex()));
  }
  if (text(historyFile_) != c.HistoryFile()) c.SetHistoryFile(text(historyFile_));
  if (text(gridFontName_) != c.GridFontName()) c.SetGridFontName(text(gridFontName_));
  if (text(gridFontSize_) != c.GridFontSize()) c.SetGridFontSize(text(gridFontSize_));
}

}  // namespace vantrel::viewer
