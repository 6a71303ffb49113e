#include "shell/qt/main_window.h"

#include <QAbstractItemView>
#include <QAction>
#include <QApplication>
#include <QDropEvent>
#include <QFileDialog>
#include <QFontDatabase>
#include <QKeyEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>
#include <QPrintDialog>
#include <QPrinter>
#include <QScrollBar>
#include <QWheelEvent>
#include <sstream>
#include <tuple>

#include "data/platform.h"
#include "data/text.h"
#include "import/library.h"
#include "import/run.h"
#include "shell/chart_name.h"
#include "shell/chart_run.h"
#include "shell/qt/import_dialogs.h"
#include "shell/qt/pictures.h"
#include "shell/qt/qt_paths.h"

namespace velmora {
namespace {

int Px(int twips) {
  return (twips + Canvas::kTwipsPerPixel / 2) / Canvas::kTwipsPerPixel;
}

// The form, twips: 16815 x 10470 without the profile pane, which adds its height and a margin
// beneath the chart.
constexpr int kFormWidth = 16815;
constexpr int kFormHeight = 10470;
constexpr int kProfileTop = 10455;
constexpr int kProfileGrowth = kProfileTop + kProfileSize.height + 135 - kFormHeight;
constexpr const char* kProfileShownKey = "profileShown";

QRect TwipRect(int left, int top, int width, int height) {
  return QRect(Px(left), Px(top), Px(width), Px(height));
}

QString ToQt(const std::string& cp1252) {
  return FromCp1252(cp1252);
}

// "Lucida Console" where the machine has it, else a monospace of the same build.
QFont ConsoleFont(double points, bool bold) {
  const QStringList families = QFontDatabase::families();
  QFont font(families.contains("Lucida Console") ? "Lucida Console" : "DejaVu Sans Mono");
  font.setPointSizeF(points);
  font.setBold(bold);
  return font;
}

// Disabled lists still say what they are for ("Approach", "XWHL APP"): grey, not faint.
constexpr Rgb kDisabledListText{96, 96, 96};

// A 48 x 48 icon in 256 colours: a runway under an approach arrow.
QIcon MakeIcon() {
  QImage image(48, 48, QImage::Format_RGB32);
  image.fill(ToQColor(kPictureBackground));
  QPainter p(&image);
  p.setRenderHint(QPainter::Antialiasing);
  p.setPen(QPen(ToQColor(kBlack), 5));
  p.drawLine(10, 38, 38, 10);
  p.setPen(QPen(ToQColor(kGreen), 2));
  p.drawLine(6, 22, 20, 22);
  p.drawLine(26, 42, 26, 28);
  p.setPen(QPen(ToQColor(kBlue), 2));
  p.drawEllipse(QPoint(36, 36), 6, 6);
  p.end();
  return QIcon(QPixmap::fromImage(image.convertToFormat(QImage::Format_Indexed8)));
}

void ShowCombo(QComboBox* box, const ComboBox& state) {
  QStringList rows;
  for (const std::string& row : state.rows) rows << ToQt(row);
  QStringList shown;
  for (int i = 0; i < box->count(); ++i) shown << box->itemText(i);
  const QSignalBlocker block(box);
  const QString text = ToQt(state.text);
  int current = box->currentIndex();
  if (rows != shown) {
    box->clear();
    box->addItems(rows);
    current = -1;
    // The opened list is as wide as its longest row, however narrow the box.
    QAbstractItemView* view = box->view();
    const bool scrolls = box->count() > box->maxVisibleItems();
    view->setMinimumWidth(view->sizeHintForColumn(0) + 2 * view->frameWidth() +
                          (scrolls ? view->verticalScrollBar()->sizeHint().width() : 0));
  }
  // Keep the row that was picked, so that Up and Down go on from there.
  if (current < 0 || box->itemText(current) != text) current = rows.indexOf(text);
  box->setCurrentIndex(current);
  box->setEditText(text);
  box->setEnabled(state.enabled);
}

void ShowButton(QPushButton* button, const Control& state) {
  QString text = ToQt(state.text);
  text.replace('\r', '\n');
  button->setText(text);
  button->setEnabled(state.enabled);
}

bool AskPrinter(QWidget* parent, QPrinter& printer) {
  QPrintDialog dialog(&printer, parent);
  return dialog.exec() == QDialog::Accepted;
}

std::optional<SaveChoice> AskSavePath(QWidget* parent, const QString& suggested) {
  struct Kind {
    const char* filter;
    const char* ext;
    double scale;
  };
  static constexpr Kind kKinds[] = {{"PNG picture, screen size (*.png)", ".png", 1},
                                    {"PNG picture, double size (*.png)", ".png", 2},
                                    {"PNG picture, four times the size (*.png)", ".png", 4},
                                    {"SVG drawing (*.svg)", ".svg", 1},
                                    {"PDF page (*.pdf)", ".pdf", 1}};
  QStringList filters;
  for (const Kind& k : kKinds) filters << k.filter;
  QFileDialog dialog(parent, "Save chart");
  dialog.setAcceptMode(QFileDialog::AcceptSave);
  dialog.setNameFilters(filters);
  dialog.selectFile(suggested + ".png");
  if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return std::nullopt;
  const Kind& kind = kKinds[std::max<qsizetype>(0, filters.indexOf(dialog.selectedNameFilter()))];
  SaveChoice choice{dialog.selectedFiles().front(), kind.scale};
  // A name typed without extension takes the chosen kind's.
  if (PictureExtension(ToPath(choice.path)).empty()) choice.path += kind.ext;
  return choice;
}

}  // namespace

ChartView::ChartView(QWidget* parent) : QWidget(parent) {
  setAttribute(Qt::WA_OpaquePaintEvent);
  setFocusPolicy(Qt::StrongFocus);
  tee_.add(recording_);
  tee_.add(raster_);
  tee_.add(ink_);
  // Start from the background the picture clears to.
  raster_.drawCls();
}

void ChartView::paintEvent(QPaintEvent*) {
  const double ratio = devicePixelRatioF();
  if (ratio != raster_.pixelRatio()) {
    raster_.setPixelRatio(ratio);
    recording_.replay(raster_);
  }
  QPainter painter(this);
  painter.drawImage(QPointF(0, 0), raster_.image());
}

void ChartView::mousePressEvent(QMouseEvent* event) {
  const QPointF at = event->position() * Canvas::kTwipsPerPixel;
  emit pressed(static_cast<int>(event->button()), static_cast<int>(event->modifiers()), at.x(),
               at.y());
}

void ChartView::wheelEvent(QWheelEvent* event) {
  // One step per notch of 15 degrees; finer wheels add up to a notch.
  wheelEighths_ += event->angleDelta().y();
  for (; wheelEighths_ >= 120; wheelEighths_ -= 120) emit zoomStep(+1);
  for (; wheelEighths_ <= -120; wheelEighths_ += 120) emit zoomStep(-1);
  event->accept();
}

void ChartView::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Plus) {
    emit zoomStep(+1);
  } else if (event->key() == Qt::Key_Minus) {
    emit zoomStep(-1);
  } else {
    QWidget::keyPressEvent(event);
  }
}

ProfileView::ProfileView(QWidget* parent) : QWidget(parent), raster_(1.0, kProfileSize) {
  setAttribute(Qt::WA_OpaquePaintEvent);
  tee_.add(recording_);
  tee_.add(raster_);
  raster_.drawCls();
}

void ProfileView::paintEvent(QPaintEvent*) {
  const double ratio = devicePixelRatioF();
  if (ratio != raster_.pixelRatio()) {
    raster_.setPixelRatio(ratio);
    recording_.replay(raster_);
  }
  QPainter painter(this);
  painter.drawImage(QPointF(0, 0), raster_.image());
}

std::unique_ptr<QSettings> WindowSettings() {
  return std::make_unique<QSettings>(QSettings::NativeFormat, QSettings::UserScope, "Velmora",
                                     "velmora");
}

MainWindow::MainWindow(std::filesystem::path dataDir, const std::string& commandLine)
    : store_(std::make_unique<Store>()), dataDir_(dataDir) {
  askPrinter = [this](QPrinter& printer) { return AskPrinter(this, printer); };
  askSavePath = [this](const QString& suggested) { return AskSavePath(this, suggested); };
  askSimulatorFolder = [this] { return AskSimulatorFolder(this); };
  askSceneryFile = [this](const QString& why) { return AskSceneryFile(this, why); };
  setWindowTitle("Velmora");
  setWindowIcon(MakeIcon());
  setAcceptDrops(true);
  // An ordinary frame: resizing moves nothing, the rest is black background.
  profileShown_ = WindowSettings()->value(kProfileShownKey, true).toBool();
  resize(Px(kFormWidth), Px(kFormHeight + (profileShown_ ? kProfileGrowth : 0)));
  QPalette black = palette();
  black.setColor(QPalette::Window, Qt::black);
  setPalette(black);
  setAutoFillBackground(true);

  makeControls();
  placeControls();
  picProfile_->setVisible(profileShown_);
  showProfileButton();

  form_ = std::make_unique<ArptForm>(*store_, picArpt_->canvas(), std::move(dataDir),
                                     &picProfile_->canvas());
  form_->onCaption = [this](const std::string& text) {
    setWindowTitle(ToQt(text));
    // The search's progress must show while the scan runs.
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
  };
  connectControls();

  run([&] { form_->Form_Load(Utf8ToCp1252(commandLine)); });
  txtSearch_->setFocus();
}

void MainWindow::makeControls() {
  picArpt_ = new ChartView(this);
  picProfile_ = new ProfileView(this);
  cmdProfile_ = new QPushButton(this);
  txtSearch_ = new QLineEdit(this);
  txtSearch_->setFont(ConsoleFont(9.75, true));
  cmdSearch_ = new QPushButton("Search", this);
  cmdSearch_->setDefault(true);
  lblSearch_ = new QLabel("    ICAO Code", this);
  QPalette label = lblSearch_->palette();
  label.setColor(QPalette::Window, Qt::black);
  label.setColor(QPalette::WindowText, ToQColor(kPictureBackground));
  lblSearch_->setPalette(label);
  lblSearch_->setAutoFillBackground(true);
  cmdExit_ = new QPushButton("EXIT", this);
  cmdArpt_ = new QPushButton("APP Chart", this);
  cmdPlus_ = new QPushButton("Zoom In", this);
  cmdMinus_ = new QPushButton("Zoom Out", this);
  cmdZoom_ = new QPushButton("Reset Zoom", this);
  cmbAPP_ = new QComboBox(this);
  cmbTerm_ = new QComboBox(this);
  for (QComboBox* box : {cmbAPP_, cmbTerm_}) {
    box->setEditable(true);
    box->setInsertPolicy(QComboBox::NoInsert);
    box->setFont(ConsoleFont(14.25, false));
    QPalette readable = box->palette();
    readable.setColor(QPalette::Disabled, QPalette::Text, ToQColor(kDisabledListText));
    readable.setColor(QPalette::Disabled, QPalette::ButtonText, ToQColor(kDisabledListText));
    box->setPalette(readable);
    // Typing into the edit field picks nothing: no completion, and neither Enter nor leaving
    // the field looks the text up among the rows.
    box->setCompleter(nullptr);
    QObject::disconnect(box->lineEdit(), &QLineEdit::editingFinished, box, nullptr);
    QObject::disconnect(box->lineEdit(), &QLineEdit::returnPressed, box, nullptr);
  }
}

void MainWindow::placeControls() {
  struct Place {
    QWidget* widget;
    const char* name;
    int left, top, width, height;  // twips
    bool control;                  // takes focus: in the tab order, with Enter seen by eventFilter
  };
  // In tab order.
  const Place places[] = {
      {picArpt_, "picArpt", 120, 120, 14415, 10215, true},
      {lblSearch_, "lblSearch", 14520, 120, 2175, 375, false},
      {txtSearch_, "txtSearch", 14520, 600, 1215, 375, true},
      {cmdSearch_, "cmdSearch", 15720, 600, 975, 735, true},
      {cmdExit_, "cmdExit", 15600, 9360, 1095, 855, true},
      {cmdArpt_, "cmdArpt", 14640, 1440, 2055, 975, true},
      {cmdPlus_, "cmdPlus", 14760, 5880, 975, 975, true},
      {cmdMinus_, "cmdMinus", 15720, 5880, 975, 975, true},
      {cmdZoom_, "cmdZoom", 14760, 5040, 1935, 735, true},
      {cmbAPP_, "cmbAPP", 14640, 2520, 2055, 405, true},
      {cmbTerm_, "cmbTerm", 14640, 3960, 2055, 405, true},
      {cmdProfile_, "cmdProfile", 14760, 7080, 1935, 735, true},
      {picProfile_, "picProfile", 120, kProfileTop, kProfileSize.width, kProfileSize.height, false},
  };
  QWidget* previous = nullptr;
  for (const Place& p : places) {
    p.widget->setObjectName(p.name);
    p.widget->setGeometry(TwipRect(p.left, p.top, p.width, p.height));
    if (!p.control) continue;
    if (previous != nullptr) setTabOrder(previous, p.widget);
    previous = p.widget;
    // Enter goes where the desktop sends it; see eventFilter.
    p.widget->installEventFilter(this);
    if (auto* box = qobject_cast<QComboBox*>(p.widget)) box->lineEdit()->installEventFilter(this);
  }
}

void MainWindow::connectControls() {
  connect(txtSearch_, &QLineEdit::textEdited, this,
          [this](const QString& text) { form_->setSearchText(Utf8ToCp1252(text.toStdString())); });
  // The window's own actions, by key and by its context menu (the chart keeps its right
  // button for the click that moves the view).
  setContextMenuPolicy(Qt::ActionsContextMenu);
  picArpt_->setContextMenuPolicy(Qt::PreventContextMenu);
  const std::tuple<const char*, QKeySequence, void (MainWindow::*)()> actions[] = {
      {"Import from the simulator...", QKeySequence(Qt::CTRL | Qt::Key_I),
       &MainWindow::importFromSimulator},
      {"Print...", QKeySequence::Print, &MainWindow::printChart},
      {"Save...", QKeySequence::Save, &MainWindow::saveChart},
      {"Profile pane", QKeySequence(Qt::Key_F7), &MainWindow::toggleProfile}};
  for (const auto& [text, keys, slot] : actions) {
    auto* action = new QAction(text, this);
    action->setShortcut(keys);
    action->setShortcutContext(Qt::WindowShortcut);
    connect(action, &QAction::triggered, this, slot);
    addAction(action);
  }
  connect(cmdProfile_, &QPushButton::clicked, this, &MainWindow::toggleProfile);
  connect(picArpt_, &ChartView::zoomStep, this, [this](int direction) {
    QPushButton* button = direction > 0 ? cmdPlus_ : cmdMinus_;
    if (button->isEnabled()) button->click();
  });
  connect(cmdExit_, &QPushButton::clicked, this, &QWidget::close);
  const std::pair<QPushButton*, void (ArptForm::*)()> buttons[] = {
      {cmdSearch_, &ArptForm::cmdSearch_Click},
      {cmdArpt_, &ArptForm::cmdArpt_Click},
      {cmdPlus_, &ArptForm::cmdPlus_Click},
      {cmdMinus_, &ArptForm::cmdMinus_Click},
      {cmdZoom_, &ArptForm::cmdZoom_Click}};
  for (const auto& [button, click] : buttons) {
    connect(button, &QPushButton::clicked, this,
            [this, click] { run([&] { (*form_.*click)(); }); });
  }
  connect(cmbAPP_, &QComboBox::activated, this, &MainWindow::pick);
  connect(picArpt_, &ChartView::pressed, this, [this](int button, int shift, double x, double y) {
    run([&] { form_->picArpt_MouseDown(button, shift, x, y); });
  });
}

MainWindow::~MainWindow() = default;

namespace {

std::vector<std::filesystem::path> LocalPaths(const QMimeData* data) {
  std::vector<std::filesystem::path> paths;
  if (data == nullptr) return paths;
  for (const QUrl& url : data->urls()) {
    if (url.isLocalFile()) paths.push_back(ToPath(url.toLocalFile()));
  }
  return paths;
}

}  // namespace

void MainWindow::dragEnterEvent(QDragEnterEvent* event) {
  if (!LocalPaths(event->mimeData()).empty()) event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent* event) {
  const std::vector<std::filesystem::path> paths = LocalPaths(event->mimeData());
  if (paths.empty()) return;
  event->acceptProposedAction();
  ImportOptions options = SourcesImport(dataDir_, paths);
  // A library file dropped alone is the library of the simulator folder it stands in.
  if (paths.size() == 1 && AsciiLowerCase(PathToUtf8(paths[0].extension())) == ".cfg") {
    options.sources.clear();
    options.simDir = paths[0].parent_path();
    options.sceneryFile = paths[0];
  }
  importAndTell(options);
}

void MainWindow::importFromSimulator() {
  const auto folder = askSimulatorFolder();
  if (!folder) return;
  ImportOptions options = SourcesImport(dataDir_, {});
  options.simDir = *folder;
  if (!FindSceneryFile(*folder, GetEnv("ProgramData"))) {
    const auto cfg = askSceneryFile("No scenery.cfg found for " + ToQString(*folder) +
                                    " - where is the simulator's scenery.cfg?");
    if (!cfg) return;
    options.sceneryFile = *cfg;
  }
  importAndTell(options);
}

void MainWindow::importAndTell(const ImportOptions& options) {
  setWindowTitle("Velmora - importing...");
  std::ostringstream messages;
  const ImportResult result = RunImportWithProgress(this, options, messages);
  std::string caption =
      result.unchanged || result.cancelled ? result.summary : "Imported " + result.summary;
  // A failure is named by the first message; velmora-import on a terminal tells them all.
  if (result.status != 0 && !result.cancelled) {
    const std::string all = messages.str();
    caption += " - " + all.substr(0, all.find('\n'));
  }
  run([&] { form_->importFinished(Utf8ToCp1252(caption)); });
}

template <class Handler>
void MainWindow::run(Handler handler) {
  handler();
  showState(form_->controls());
  picArpt_->update();
  picProfile_->update();
}

void MainWindow::showProfileButton() {
  cmdProfile_->setText(profileShown_ ? "Hide Profile\n(F7)" : "Show Profile\n(F7)");
}

void MainWindow::toggleProfile() {
  profileShown_ = !profileShown_;
  picProfile_->setVisible(profileShown_);
  showProfileButton();
  // A maximised window keeps its size; any other grows or shrinks by the pane.
  if (!isMaximized() && !isFullScreen()) {
    resize(width(), height() + (profileShown_ ? 1 : -1) * Px(kProfileGrowth));
  }
  WindowSettings()->setValue(kProfileShownKey, profileShown_);
}

void MainWindow::showState(const Controls& c) {
  setWindowTitle(ToQt(c.caption));
  if (txtSearch_->text() != ToQt(c.txtSearch.text)) txtSearch_->setText(ToQt(c.txtSearch.text));
  ShowButton(cmdSearch_, c.cmdSearch);
  ShowButton(cmdExit_, c.cmdExit);
  ShowButton(cmdArpt_, c.cmdArpt);
  ShowButton(cmdPlus_, c.cmdPlus);
  ShowButton(cmdMinus_, c.cmdMinus);
  ShowButton(cmdZoom_, c.cmdZoom);
  ShowCombo(cmbAPP_, c.cmbAPP);
  ShowCombo(cmbTerm_, c.cmbTerm);
}

bool MainWindow::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() != QEvent::KeyPress) return false;
  const int key = static_cast<QKeyEvent*>(event)->key();
  if (key != Qt::Key_Return && key != Qt::Key_Enter) return false;
  // Enter presses the focused button; in cmbAPP it picks the row shown, in cmbTerm nothing;
  // anywhere else it presses the default button.
  if (auto* button = qobject_cast<QPushButton*>(watched)) {
    if (button->isEnabled()) button->click();
  } else if (watched == cmbAPP_ || watched == cmbAPP_->lineEdit()) {
    pickShownRow();
  } else if (watched != cmbTerm_ && watched != cmbTerm_->lineEdit()) {
    cmdSearch_->click();
  }
  return true;
}

void MainWindow::pick(int row) {
  run([&] { form_->cmbAPP_Click(row); });
}

void MainWindow::pickShownRow() {
  const int row = cmbAPP_->currentIndex();
  if (cmbAPP_->isEnabled() && row >= 0) pick(row);
}

void MainWindow::printChart() {
  if (!picArpt_->hasChart()) {
    setWindowTitle("No chart to print yet - search for an airport and show its chart first");
    return;
  }
  QPrinter printer(QPrinter::HighResolution);
  printer.setPageOrientation(QPageLayout::Landscape);
  printer.setDocName(QString::fromStdString(SuggestedChartName(form_->store())));
  if (!askPrinter(printer)) return;
  QPainter painter;
  if (!painter.begin(&printer)) {
    setWindowTitle("The printer could not be started - nothing printed");
    return;
  }
  PaintPicture(painter, picArpt_->recording(), QRectF(0, 0, printer.width(), printer.height()),
               printer.resolution());
  painter.end();
}

void MainWindow::saveChart() {
  if (!picArpt_->hasChart()) {
    setWindowTitle("No chart to save yet - search for an airport and show its chart first");
    return;
  }
  const std::optional<SaveChoice> choice =
      askSavePath(QString::fromStdString(SuggestedChartName(form_->store())));
  if (!choice) return;
  const std::filesystem::path path = ToPath(choice->path);
  const std::string ext = PictureExtension(path);
  if (ext != ".png" && ext != ".svg" && ext != ".pdf") {
    setWindowTitle("Charts are saved as .png, .svg or .pdf - nothing saved");
    return;
  }
  std::ostringstream ignored;  // velmora-chart's words; the window gives the reason instead
  std::string reason;
  const PictureWriter writer = WritePicture;
  if (!WriteWhole(path, PictureFiller(picArpt_->recording(), path, choice->scale, writer, ignored),
                  reason)) {
    setWindowTitle(QString("Could not write %1 - nothing saved (%2)")
                       .arg(choice->path, QString::fromStdString(reason)));
  } else {
    setWindowTitle(QString("Chart saved as %1").arg(choice->path));
  }
}

}  // namespace velmora
