#include "vantrel/qt/vantrel_widget.h"

#include <QApplication>
#include <QClipboard>
#include <QCoreApplication>
#include <QDir>
#include <QFrame>
#include <QHeaderView>
#include <QLabel>
#include <QMetaMethod>
#include <QMouseEvent>
#include <QPushButton>
#include <QScrollBar>
#include <QSettings>
#include <QTimer>
#include <algorithm>
#include <string>
#include <vector>

#include "activity_indicator.h"
#include "clipboard_text.h"
#include "column_sizer.h"
#include "graph_view.h"
#include "qt_prompts.h"
#include "record_table.h"
#include "record_table_model.h"
#include "surface_geometry.h"
#include "text_conversion.h"
#include "value_panel.h"
#include "vantrel/control.h"
#include "vantrel/qt/qt_timers.h"
#include "vantrel/qt/settings_property_bag.h"

namespace vantrel::qt {
namespace {

// What a label shows, so that an unchanged label is not set again on every row.
struct ShownLabel {
  std::string caption;
  int32_t color = -1;
};

void ShowLabel(QLabel* label, const LabelState& state, ShownLabel& shown) {
  if (state.caption != shown.caption) {
    label->setText(ToQString(state.caption));
    shown.caption = state.caption;
  }
  if (state.foreColor != shown.color) {
    QPalette palette = label->palette();
    palette.setColor(QPalette::WindowText, ColorFromBgr(state.foreColor));
    label->setPalette(palette);
    shown.color = state.foreColor;
  }
}

void ShowButton(QPushButton* button, const ButtonState& state) {
  const QString caption = ToQString(state.caption);
  if (button->text() != caption) button->setText(caption);
  if (button->isEnabled() != state.enabled) button->setEnabled(state.enabled);
}

}  // namespace

// The control's events, its container and the observer of its surface, all answered by the
// widget.
class VantrelWidget::Host final : public ControlEvents, public Container, public SurfaceObserver {
 public:
  explicit Host(VantrelWidget& widget) : w_(widget) {}

  void Click() override { emit w_.Click(); }
  void DblClick() override { emit w_.DblClick(); }
  void Resize() override { emit w_.Resize(); }
  void NewExportFile() override { emit w_.NewExportFile(); }
  void ReadPCDReg(int16_t RegisterNumber, int16_t NumberToRead) override {
    emit w_.ReadPCDReg(RegisterNumber, NumberToRead);
  }
  void ReadPCDDB(int16_t DBNumber, int16_t DBOffset, int16_t NumberToRead) override {
    emit w_.ReadPCDDB(DBNumber, DBOffset, NumberToRead);
  }
  void ModulError(int16_t ErrType, std::string_view ErrMessage) override {
    emit w_.ModulError(ErrType, ToQString(ErrMessage));
  }
  void OutputLine(std::string_view DataLine) override {
    // One line per row at full rate: converted only when someone listens.
    static const QMetaMethod signal = QMetaMethod::fromSignal(&VantrelWidget::OutputLine);
    if (w_.isSignalConnected(signal)) emit w_.OutputLine(ToQString(DataLine));
  }
  void Status(int16_t ReadStatus) override { emit w_.Status(ReadStatus); }
  void PCDCmd(int16_t Cmd) override { emit w_.PCDCmd(Cmd); }

  void PropertyChanged(std::string_view name) override {
    emit w_.PropertyChanged(QString::fromLatin1(name.data(), static_cast<qsizetype>(name.size())));
  }
  FontState AmbientFont() const override {
    const QFont font = w_.font();
    return {FromQString(font.family()), font.pointSizeF() > 0 ? font.pointSizeF() : 10.0};
  }

  void SurfaceChanged() override { w_.SynchronizeSurface(); }
  void RepaintRequested() override { w_.update(); }

 private:
  VantrelWidget& w_;
};

struct VantrelWidget::Impl {
  // Declared in the order they must be built; the control goes before the services it uses.
  QtTimerFactory timers;
  SystemClock clock;
  std::unique_ptr<QtPrompts> qtPrompts;
  std::unique_ptr<Host> host;
  std::unique_ptr<Control> control;

  bool built = false;
  QFrame* frame = nullptr;
  RecordTable* table = nullptr;
  RecordTableModel* model = nullptr;
  GraphView* chart = nullptr;
  QPushButton* cmdGraph = nullptr;
  QPushButton* cmdExport = nullptr;
  QPushButton* cmdInfo = nullptr;
  QLabel* title = nullptr;
  QLabel* status = nullptr;
  QLabel* recordsCaption = nullptr;
  QLabel* recordCount = nullptr;
  QLabel* rowsCaption = nullptr;
  QLabel* rowCount = nullptr;
  ::vantrel::qt::ActivityIndicator* activity = nullptr;
  ValuePanel* valuePanel = nullptr;

  ShownLabel shownTitle, shownStatus, shownRecordsCaption, shownRecordCount, shownRowsCaption,
      shownRowCount;
  FontState shownTitleFont{"", -1};
  bool busyShown = false;

  // Work gathered from the table's notifications and done once per turn of the event loop.
  QTimer pending;
  int pendingTopRow = 0;

  ColumnSizer* columns = nullptr;
};

VantrelWidget::VantrelWidget(QWidget* parent) : VantrelWidget(nullptr, parent) {}

VantrelWidget::VantrelWidget(Prompts& prompts, QWidget* parent) : VantrelWidget(&prompts, parent) {}

VantrelWidget::VantrelWidget(Prompts* prompts, QWidget* parent)
    : QWidget(parent), d_(std::make_unique<Impl>()) {
  setObjectName(QStringLiteral("Vantrel"));
  if (prompts == nullptr) {
    d_->qtPrompts = std::make_unique<QtPrompts>(this, &d_->timers);
    prompts = d_->qtPrompts.get();
  }
  d_->host = std::make_unique<Host>(*this);
  ControlServices services{d_->timers, d_->clock, *prompts, d_->host.get()};
  services.ownDirectory = FromQString(QCoreApplication::applicationDirPath());
  services.currentDirectory = FromQString(QDir::currentPath());
  d_->control = std::make_unique<Control>(*d_->host, std::move(services));

  d_->pending.setSingleShot(true);
  d_->pending.setInterval(0);
  connect(&d_->pending, &QTimer::timeout, this, &VantrelWidget::RunPending);

  BuildSurface();
  d_->built = true;
  d_->control->AddSurfaceObserver(d_->host.get());
  ApplyTableFont();
  d_->columns->SizeAll();
  SynchronizeSurface();
  resize(640, 400);
}

VantrelWidget::~VantrelWidget() {
  // The views stop following the control before it goes; Qt deletes them afterwards.
  d_->built = false;
  d_->control->RemoveSurfaceObserver(d_->host.get());
  d_->model->Detach();
  d_->chart->Detach();
  d_->pending.stop();
  d_->control.reset();
}

void VantrelWidget::BuildSurface() {
  Impl& p = *d_;
  p.frame = new QFrame(this);
  p.frame->setObjectName(QStringLiteral("Frame1"));
  p.frame->setFrameShape(QFrame::StyledPanel);
  p.frame->setFrameShadow(QFrame::Sunken);

  p.table = new RecordTable(p.frame);
  p.model = new RecordTableModel(p.control->Table(), this);
  p.table->setModel(p.model);
  p.columns = new ColumnSizer(*p.table, p.control->Table(), this);
  // The control's graph model is only handed out read-only; the view only registers itself
  // as its observer, which the model keeps aside from the graph's contents.
  p.chart = new GraphView(const_cast<GraphModel&>(p.control->Graph()), p.frame);
  p.chart->hide();

  auto button = [&](const char* name) {
    auto* b = new QPushButton(p.frame);
    b->setObjectName(QLatin1String(name));
    b->setAutoDefault(false);
    return b;
  };
  p.cmdGraph = button("cmdGraph");
  p.cmdExport = button("cmdExport");
  p.cmdInfo = button("cmdInfo");
  auto label = [&](const char* name) {
    auto* l = new QLabel(p.frame);
    l->setObjectName(QLatin1String(name));
    l->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    return l;
  };
  p.title = label("lblTitle");
  p.status = label("lblStatus");
  p.recordsCaption = label("lblRecordsCaption");
  p.recordCount = label("lblRecordCount");
  p.rowsCaption = label("lblRowsCaption");
  p.rowCount = label("lblRowCount");
  p.activity = new ::vantrel::qt::ActivityIndicator(p.frame);
  p.activity->hide();

  Control& control = *p.control;
  connect(p.cmdGraph, &QPushButton::clicked, this, [&control] { control.ClickGraphButton(); });
  connect(p.cmdExport, &QPushButton::clicked, this, [&control] { control.ClickExportButton(); });
  connect(p.cmdInfo, &QPushButton::clicked, this, [this] {
    d_->control->ClickInfoButton();
    // The focus goes back to the table unless the graph is shown.
    if (d_->table->isVisible()) d_->table->setFocus();
  });

  connect(p.model, &RecordTableModel::tableReset, this, [this] {
    ApplyTableFont();
    d_->columns->SizeAll();
  });
  connect(p.model, &RecordTableModel::columnChanged, p.columns, &ColumnSizer::Size);
  connect(p.model, &RecordTableModel::rowsAppended, this, [this](int firstRow, int count) {
    d_->columns->Measure(firstRow, count);
    if (d_->chart->isVisible()) d_->chart->ScheduleSynchronize();
  });
  connect(p.model, &RecordTableModel::topRowChanged, this, [this](int topRow) {
    d_->pendingTopRow = topRow;
    SynchronizeLater();
  });
  connect(p.model, &RecordTableModel::redrawChanged, this,
          [this](bool redraw) { d_->table->setUpdatesEnabled(redraw); });

  connect(p.table, &RecordTable::tablePressed, this, &VantrelWidget::OnTablePressed);
  connect(p.table, &RecordTable::headerDoubleClicked, this, &VantrelWidget::OnHeaderDoubleClicked);
  connect(p.table, &RecordTable::cellDoubleClicked, this,
          [this](const QModelIndex& index) { OnCellDoubleClicked(index.row(), index.column()); });
  connect(p.table, &RecordTable::copyRequested, this, &VantrelWidget::CopySelection);
  connect(p.table, &RecordTable::gridResized, this, &VantrelWidget::ReportGridHeight);
}

Control& VantrelWidget::control() {
  return *d_->control;
}
const Control& VantrelWidget::control() const {
  return *d_->control;
}
QtTimerFactory& VantrelWidget::Timers() {
  return d_->timers;
}

void VantrelWidget::ReadProperties(QSettings& settings) {
  SettingsPropertyBag bag(settings);
  d_->control->ReadProperties(bag);
}

void VantrelWidget::WriteProperties(QSettings& settings) const {
  SettingsPropertyBag bag(settings);
  d_->control->WriteProperties(bag);
}

QFrame* VantrelWidget::Frame() const {
  return d_->frame;
}
QTableView* VantrelWidget::Table() const {
  return d_->table;
}
QChartView* VantrelWidget::Chart() const {
  return d_->chart;
}
QPushButton* VantrelWidget::GraphButton() const {
  return d_->cmdGraph;
}
QPushButton* VantrelWidget::ExportButton() const {
  return d_->cmdExport;
}
QPushButton* VantrelWidget::InfoButton() const {
  return d_->cmdInfo;
}
QLabel* VantrelWidget::TitleLabel() const {
  return d_->title;
}
QLabel* VantrelWidget::StatusLabel() const {
  return d_->status;
}
QLabel* VantrelWidget::RecordCountLabel() const {
  return d_->recordCount;
}
QLabel* VantrelWidget::RowCountLabel() const {
  return d_->rowCount;
}
QWidget* VantrelWidget::ActivityShape() const {
  return d_->activity;
}
ValuePanel* VantrelWidget::ValuePanelWidget() const {
  return d_->valuePanel;
}

void VantrelWidget::SetDataBlock(const QList<qint32>& values) {
  d_->control->SetDataBlock(
      std::span<const int32_t>(values.constData(), static_cast<size_t>(values.size())));
}

void VantrelWidget::Start() {
  d_->control->Start();
}

void VantrelWidget::Reset() {
  d_->control->Reset();
}

void VantrelWidget::Clear() {
  d_->control->Clear();
}

void VantrelWidget::Refresh() {
  // The grid font reaches the table when the control's font properties are read.
  ApplyTableFont();
  d_->control->Refresh();
}

void VantrelWidget::CopySelection() {
  const QTableView* table = d_->table;
  const QString text = SelectionText(*d_->model, table->selectionModel()->selectedIndexes(),
                                     [table](int column) { return table->isColumnHidden(column); });
  if (!text.isEmpty()) QGuiApplication::clipboard()->setText(text);
}

void VantrelWidget::SetFitColumnsToContents(bool fit) {
  d_->columns->SetFit(fit);
}

void VantrelWidget::LayOutTwips(int32_t width, int32_t height) {
  const SurfaceGeometry g = PlaceSurface(width, height);
  Impl& p = *d_;
  p.frame->setGeometry(g.frame);
  p.table->setGeometry(g.grid);
  p.chart->setGeometry(g.chart);
  p.cmdGraph->setGeometry(g.graphButton);
  p.cmdExport->setGeometry(g.exportButton);
  p.cmdInfo->setGeometry(g.infoButton);
  p.title->setGeometry(g.title);
  p.status->setGeometry(g.status);
  p.activity->setGeometry(g.activity);
  p.recordsCaption->setGeometry(g.recordsCaption);
  p.recordCount->setGeometry(g.recordCount);
  p.rowsCaption->setGeometry(g.rowsCaption);
  p.rowCount->setGeometry(g.rowCount);
  ReportGridHeight();
}

QSize VantrelWidget::SizeForRows(int rows) const {
  const RecordTable* table = d_->table;
  int gridWidth = 2 * table->frameWidth() + table->verticalScrollBar()->sizeHint().width();
  if (!table->verticalHeader()->isHidden()) gridWidth += table->verticalHeader()->width();
  for (int column = 0; column < d_->model->columnCount(); ++column) {
    if (!table->isColumnHidden(column)) gridWidth += table->columnWidth(column);
  }
  const int gridHeight = 2 * table->frameWidth() + table->RowHeight() * (std::max(rows, 0) + 1) + 2;
  // The control is wider and higher than its table by the layout's margins.
  return {gridWidth + PixelsFromTwips(180 + 320), gridHeight + PixelsFromTwips(165 + 1170)};
}

void VantrelWidget::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  LayOutTwips(TwipsFromPixels(width()), TwipsFromPixels(height()));
  emit Resize();
}

void VantrelWidget::mouseReleaseEvent(QMouseEvent* event) {
  QWidget::mouseReleaseEvent(event);
  if (event->button() == Qt::LeftButton && rect().contains(event->position().toPoint())) {
    emit Click();
  }
}

void VantrelWidget::mouseDoubleClickEvent(QMouseEvent* event) {
  QWidget::mouseDoubleClickEvent(event);
  emit DblClick();
}

void VantrelWidget::SynchronizeSurface() {
  if (!d_->built) return;
  Impl& p = *d_;
  const Surface& s = p.control->GetSurface();
  ShowLabel(p.title, s.title, p.shownTitle);
  if (s.titleFont.name != p.shownTitleFont.name || s.titleFont.size != p.shownTitleFont.size) {
    QFont font(ToQString(s.titleFont.name));
    if (s.titleFont.size > 0) font.setPointSizeF(s.titleFont.size);
    p.title->setFont(font);
    p.shownTitleFont = s.titleFont;
  }
  ShowLabel(p.recordsCaption, s.recordsCaption, p.shownRecordsCaption);
  ShowLabel(p.recordCount, s.recordCount, p.shownRecordCount);
  ShowLabel(p.rowsCaption, s.rowsCaption, p.shownRowsCaption);
  ShowLabel(p.rowCount, s.rowCount, p.shownRowCount);
  ShowButton(p.cmdGraph, s.graphButton);
  ShowButton(p.cmdExport, s.exportButton);
  ShowButton(p.cmdInfo, s.infoButton);
  if (p.activity->isVisible() != s.activityVisible) p.activity->setVisible(s.activityVisible);
  if (p.table->isHidden() == s.gridVisible) p.table->setVisible(s.gridVisible);
  if (p.chart->isHidden() == s.chartVisible) p.chart->setVisible(s.chartVisible);

  if (s.busyCursor && !p.busyShown) {
    // An export walks the whole table before it returns: the busy cursor and the status
    // line are shown at once, not at the next turn of the event loop.
    p.busyShown = true;
    setCursor(Qt::BusyCursor);
    p.status->setText(tr("Exporting %1 rows...").arg(p.control->Table().DataRowCount()));
    p.shownStatus.caption.clear();
    p.status->repaint();
  } else if (!s.busyCursor && p.busyShown) {
    p.busyShown = false;
    unsetCursor();
  }
  if (!p.busyShown) ShowLabel(p.status, s.status, p.shownStatus);
}

void VantrelWidget::ApplyTableFont() {
  Impl& p = *d_;
  const TableModel& table = p.control->Table();
  QFont font(ToQString(table.FontName()));
  if (table.FontSize() > 0) font.setPointSizeF(table.FontSize());
  if (font != p.table->font()) p.table->setFont(font);
  const int rowHeight = QFontMetrics(font).height() + 6;
  if (rowHeight != p.table->RowHeight()) {
    p.table->SetRowHeight(rowHeight);
    p.control->Table().SetRowHeight(TwipsFromPixels(rowHeight));
    ReportGridHeight();
  }
}

void VantrelWidget::ReportGridHeight() {
  d_->control->Table().SetViewHeight(TwipsFromPixels(d_->table->GridHeight()));
}

void VantrelWidget::SynchronizeLater() {
  if (!d_->pending.isActive()) d_->pending.start();
}

void VantrelWidget::RunPending() {
  Impl& p = *d_;
  // The views must know of the rows before they can scroll to them.
  p.model->Flush();
  if (p.pendingTopRow >= 1 && p.pendingTopRow <= p.model->rowCount()) {
    p.table->ScrollToTopRow(p.pendingTopRow - 1);
  }
  p.pendingTopRow = 0;
}

void VantrelWidget::OnTablePressed(int y) {
  d_->control->PressTable(TwipsFromPixels(y));
}

void VantrelWidget::OnHeaderDoubleClicked(int modelColumn) {
  d_->control->DoubleClickTable(RecordTableModel::TableColumn(modelColumn));
}

void VantrelWidget::OnCellDoubleClicked(int modelRow, int modelColumn) {
  Impl& p = *d_;
  const int column = RecordTableModel::TableColumn(modelColumn);
  p.control->DoubleClickTable(column);
  // The trace columns follow the stamp columns; only a record row has raw values.
  const TableModel& table = p.control->Table();
  const int row = RecordTableModel::TableRow(modelRow);
  if (column < kFirstTraceColumn || column >= table.ColumnCount() || row < 1 ||
      row >= table.RowCount()) {
    return;
  }
  const vantrel::TableRow& shown = table.Row(row);
  std::optional<int64_t> raw;
  if (shown.kind == RowKind::Record) raw = shown.Raw(column);
  if (p.valuePanel == nullptr) p.valuePanel = new ValuePanel(this);
  p.valuePanel->ShowCell(ToQString(table.Text(0, column)), ToQString(table.Text(row, 0)).trimmed(),
                         ToQString(table.Text(row, column)), raw);
}

}  // namespace vantrel::qt
