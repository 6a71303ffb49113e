#include "shell/qt/main_window.h"

#include <QApplication>
#include <QFontDatabase>
#include <QMouseEvent>
#include <QPainter>
#include <QShortcut>

#include "data/text.h"

namespace velmora {
namespace {

int Px(int twips) {
  return (twips + Canvas::kTwipsPerPixel / 2) / Canvas::kTwipsPerPixel;
}

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

// A 48 x 48 icon in 256 colours: a runway under an approach arrow.
QIcon MakeIcon() {
  QImage image(48, 48, QImage::Format_RGB32);
  image.fill(QColor(212, 208, 200));
  QPainter p(&image);
  p.setRenderHint(QPainter::Antialiasing);
  p.setPen(QPen(Qt::black, 5));
  p.drawLine(10, 38, 38, 10);
  p.setPen(QPen(QColor(0, 128, 0), 2));
  p.drawLine(6, 22, 20, 22);
  p.drawLine(26, 42, 26, 28);
  p.setPen(QPen(QColor(0, 0, 255), 2));
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
  if (rows != shown) {
    box->clear();
    box->addItems(rows);
  }
  box->setCurrentIndex(-1);
  box->setEditText(ToQt(state.text));
  box->setEnabled(state.enabled);
}

void ShowButton(QPushButton* button, const Control& state) {
  QString text = ToQt(state.text);
  text.replace('\r', '\n');
  button->setText(text);
  button->setEnabled(state.enabled);
}

}  // namespace

ChartView::ChartView(QWidget* parent) : QWidget(parent) {
  setAttribute(Qt::WA_OpaquePaintEvent);
  tee_.add(recording_);
  tee_.add(raster_);
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

MainWindow::MainWindow(std::filesystem::path dataDir, const std::string& commandLine)
    : store_(std::make_unique<Store>()) {
  setWindowTitle("Velmora");
  setWindowIcon(MakeIcon());
  setFixedSize(Px(16815), Px(10470));
  QPalette black = palette();
  black.setColor(QPalette::Window, Qt::black);
  setPalette(black);
  setAutoFillBackground(true);

  picArpt_ = new ChartView(this);
  picArpt_->setGeometry(TwipRect(120, 120, 14415, 10215));
  txtSearch_ = new QLineEdit(this);
  txtSearch_->setGeometry(TwipRect(14520, 600, 1215, 375));
  txtSearch_->setFont(ConsoleFont(9.75, true));
  cmdSearch_ = new QPushButton("Search", this);
  cmdSearch_->setGeometry(TwipRect(15720, 600, 975, 735));
  cmdSearch_->setDefault(true);
  lblSearch_ = new QLabel("    ICAO Code", this);
  lblSearch_->setGeometry(TwipRect(14520, 120, 2175, 375));
  QPalette label = lblSearch_->palette();
  label.setColor(QPalette::Window, Qt::black);
  label.setColor(QPalette::WindowText,
                 QColor(kPictureBackground.r, kPictureBackground.g, kPictureBackground.b));
  lblSearch_->setPalette(label);
  lblSearch_->setAutoFillBackground(true);
  cmdExit_ = new QPushButton("EXIT", this);
  cmdExit_->setGeometry(TwipRect(15600, 9360, 1095, 855));
  cmdArpt_ = new QPushButton("APP Chart", this);
  cmdArpt_->setGeometry(TwipRect(14640, 1440, 2055, 975));
  cmdPlus_ = new QPushButton("Zoom In", this);
  cmdPlus_->setGeometry(TwipRect(14760, 5880, 975, 975));
  cmdMinus_ = new QPushButton("Zoom Out", this);
  cmdMinus_->setGeometry(TwipRect(15720, 5880, 975, 975));
  cmdZoom_ = new QPushButton("Reset Zoom", this);
  cmdZoom_->setGeometry(TwipRect(14760, 5040, 1935, 735));
  cmbAPP_ = new QComboBox(this);
  cmbAPP_->setGeometry(TwipRect(14640, 2520, 2055, 405));
  cmbTerm_ = new QComboBox(this);
  cmbTerm_->setGeometry(TwipRect(14640, 3960, 2055, 405));
  for (QComboBox* box : {cmbAPP_, cmbTerm_}) {
    box->setEditable(true);
    box->setInsertPolicy(QComboBox::NoInsert);
    box->setFont(ConsoleFont(14.25, false));
  }
  QWidget* order[] = {picArpt_, txtSearch_, cmdSearch_, cmdExit_, cmdArpt_,
                      cmdPlus_, cmdMinus_,  cmdZoom_,   cmbAPP_,  cmbTerm_};
  for (std::size_t i = 0; i + 1 < std::size(order); ++i) setTabOrder(order[i], order[i + 1]);

  form_ = std::make_unique<ArptForm>(*store_, picArpt_->canvas(), std::move(dataDir));
  form_->onCaption = [this](const std::string& text) {
    setWindowTitle(ToQt(text));
    // The search's progress must show while the scan runs.
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
  };

  connect(txtSearch_, &QLineEdit::textEdited, this,
          [this](const QString& text) { form_->setSearchText(Utf8ToCp1252(text.toStdString())); });
  connect(cmdSearch_, &QPushButton::clicked, this,
          [this] { run([&] { form_->cmdSearch_Click(); }); });
  // Enter searches, as with a default button, except in the lists, where it picks a row.
  for (auto key : {Qt::Key_Return, Qt::Key_Enter}) {
    connect(new QShortcut(QKeySequence(key), this), &QShortcut::activated, this, [this] {
      const QWidget* focus = focusWidget();
      const bool inList =
          focus != nullptr && (cmbAPP_->isAncestorOf(focus) || cmbTerm_->isAncestorOf(focus) ||
                               focus == cmbAPP_ || focus == cmbTerm_);
      if (!inList) cmdSearch_->click();
    });
  }
  connect(cmdExit_, &QPushButton::clicked, this, &QWidget::close);
  connect(cmdArpt_, &QPushButton::clicked, this, [this] { run([&] { form_->cmdArpt_Click(); }); });
  connect(cmdPlus_, &QPushButton::clicked, this, [this] { run([&] { form_->cmdPlus_Click(); }); });
  connect(cmdMinus_, &QPushButton::clicked, this,
          [this] { run([&] { form_->cmdMinus_Click(); }); });
  connect(cmdZoom_, &QPushButton::clicked, this, [this] { run([&] { form_->cmdZoom_Click(); }); });
  connect(cmbAPP_, &QComboBox::activated, this,
          [this](int row) { run([&] { form_->cmbAPP_Click(row); }); });
  connect(picArpt_, &ChartView::pressed, this, [this](int button, int shift, double x, double y) {
    run([&] { form_->picArpt_MouseDown(button, shift, x, y); });
  });

  run([&] { form_->Form_Load(Utf8ToCp1252(commandLine)); });
}

MainWindow::~MainWindow() = default;

template <class Handler>
void MainWindow::run(Handler handler) {
  handler();
  showState(form_->controls());
  picArpt_->update();
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

void MainWindow::clickSearch(const QString& code) {
  txtSearch_->setText(code);
  form_->setSearchText(Utf8ToCp1252(code.toStdString()));
  cmdSearch_->click();
}

void MainWindow::pickApproach(int row) {
  cmbAPP_->setCurrentIndex(row);
  emit cmbAPP_->activated(row);
}

void MainWindow::clickChart(double xTwips, double yTwips) {
  run([&] { form_->picArpt_MouseDown(1, 0, xTwips, yTwips); });
}

}  // namespace velmora
