#include "shell/qt/pictures.h"

#include <QLocale>
#include <QPageLayout>
#include <QPageSize>
#include <QPdfWriter>
#include <algorithm>
#include <ostream>
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFPageDocumentHelper.hh>
#include <qpdf/QPDFWriter.hh>
#include <stdexcept>
#include <vector>

#include "data/platform.h"
#include "shell/chart_run.h"
#include "shell/qt/qt_canvas.h"
#include "shell/qt/qt_paths.h"

namespace velmora {
namespace {

// Fine enough that a line of one pixel keeps its look when printed.
constexpr int kPdfDpi = 1200;

void SetUpPdf(QPdfWriter& writer, QPageSize::PageSizeId size, const QString& title) {
  writer.setPageLayout(
      QPageLayout(QPageSize(size), QPageLayout::Landscape, QMarginsF(10, 10, 10, 10)));
  writer.setResolution(kPdfDpi);
  writer.setTitle(title);
}

void PaintPage(QPainter& painter, const QPdfWriter& writer, const RecordingCanvas& picture,
               QtCanvas& canvas) {
  PaintPicture(painter, picture, QRectF(0, 0, writer.width(), writer.height()), canvas);
}

bool WritePdf(const RecordingCanvas& picture, const QString& path) {
  QPdfWriter writer(path);
  SetUpPdf(writer, QPageSize::A4, QStringLiteral("Velmora chart - not for real navigation"));
  QPainter painter;
  if (!painter.begin(&writer)) return false;
  QtCanvas canvas(&painter, 96.0 / writer.resolution());
  PaintPage(painter, writer, picture, canvas);
  return painter.end();
}

QPageSize::PageSizeId KitPaper(const std::string& page) {
  if (page == "letter") return QPageSize::Letter;
  if (page == "a5") return QPageSize::A5;
  if (page == "a4") return QPageSize::A4;
  // Qt knows the paper of a locale only by its measurement system.
  return QLocale().measurementSystem() == QLocale::ImperialUSSystem ? QPageSize::Letter
                                                                    : QPageSize::A4;
}

QPDFObjectHandle OutlineItem(QPDF& pdf, const std::string& title, QPDFObjectHandle parent,
                             QPDFObjectHandle page) {
  QPDFObjectHandle item = pdf.makeIndirectObject(QPDFObjectHandle::newDictionary());
  item.replaceKey("/Title", QPDFObjectHandle::newUnicodeString(title));
  item.replaceKey("/Parent", parent);
  item.replaceKey("/Dest", QPDFObjectHandle::newArray({page, QPDFObjectHandle::newName("/Fit")}));
  return item;
}

// Hangs `children` below `parent` as a chain, open, with their count.
void LinkOutline(QPDFObjectHandle parent, std::vector<QPDFObjectHandle> children) {
  if (children.empty()) return;
  parent.replaceKey("/First", children.front());
  parent.replaceKey("/Last", children.back());
  parent.replaceKey("/Count",
                    QPDFObjectHandle::newInteger(static_cast<long long>(children.size())));
  for (std::size_t i = 0; i + 1 < children.size(); ++i) {
    children[i].replaceKey("/Next", children[i + 1]);
    children[i + 1].replaceKey("/Prev", children[i]);
  }
}

// QPdfWriter has no bookmarks: the pages are painted into a temporary PDF, to which qpdf adds
// the outline while it writes the final file.
class KitPdf final : public KitDocument {
 public:
  KitPdf(const std::filesystem::path& path, const ChartOptions& options)
      : pages_(TempPath(path)), writer_(ToQString(pages_)) {
    SetUpPdf(writer_, KitPaper(options.page),
             QStringLiteral("Velmora trip kit - not for real navigation"));
  }
  ~KitPdf() override {
    if (painter_.isActive()) painter_.end();
    std::error_code ec;
    std::filesystem::remove(pages_, ec);
  }

  bool add(const KitPage& page, std::ostream& err) override {
    if (!painter_.isActive() ? !painter_.begin(&writer_) : !writer_.newPage()) {
      err << "velmora-chart: cannot write the pages to " << PathToUtf8(pages_.parent_path())
          << "\n";
      return false;
    }
    PaintPage(painter_, writer_, *page.picture, canvas_);
    marks_.push_back({page.title, page.row < 0});
    return true;
  }

  bool finish(const std::filesystem::path& path, std::ostream& err) override {
    if (!painter_.isActive() || !painter_.end()) {
      err << "velmora-chart: " << PathToUtf8(path) << ": no pages were written\n";
      return false;
    }
    return WriteOutput(
        path, [&](const std::filesystem::path& temp) { return addOutline(temp, err); }, err);
  }

 private:
  struct Mark {
    std::string title;
    bool airport;
  };

  bool addOutline(const std::filesystem::path& out, std::ostream& err) const {
    try {
      // qpdf keeps the name's pointer for its messages: the text must outlive the calls.
      const std::string inName = PathToUtf8(pages_);
      const std::string outName = PathToUtf8(out);
      QPDF pdf;
      pdf.processFile(inName.c_str());
      const auto pages = QPDFPageDocumentHelper(pdf).getAllPages();
      if (pages.size() != marks_.size()) throw std::runtime_error("pages lost on the way");
      QPDFObjectHandle outlines = pdf.makeIndirectObject(QPDFObjectHandle::newDictionary());
      outlines.replaceKey("/Type", QPDFObjectHandle::newName("/Outlines"));
      std::vector<QPDFObjectHandle> airports, approaches;
      for (std::size_t i = 0; i < marks_.size(); ++i) {
        const QPDFObjectHandle page = pages[i].getObjectHandle();
        if (marks_[i].airport) {
          if (!airports.empty()) LinkOutline(airports.back(), approaches);
          approaches.clear();
          airports.push_back(OutlineItem(pdf, marks_[i].title, outlines, page));
        } else {
          approaches.push_back(OutlineItem(pdf, marks_[i].title, airports.back(), page));
        }
      }
      if (!airports.empty()) LinkOutline(airports.back(), approaches);
      LinkOutline(outlines, airports);
      QPDFObjectHandle root = pdf.getRoot();
      root.replaceKey("/Outlines", outlines);
      root.replaceKey("/PageMode", QPDFObjectHandle::newName("/UseOutlines"));
      // qpdf takes UTF-8 names on every system.
      QPDFWriter writer(pdf, outName.c_str());
      writer.write();
      return true;
    } catch (const std::exception& e) {
      err << "velmora-chart: PDF bookmarks: " << e.what() << "\n";
      return false;
    }
  }

  std::filesystem::path pages_;
  QPdfWriter writer_;
  QPainter painter_;
  // One canvas for every page: most labels come again on each page, laid out once.
  QtCanvas canvas_{&painter_, 96.0 / kPdfDpi};
  std::vector<Mark> marks_;
};

}  // namespace

void PaintPicture(QPainter& painter, const RecordingCanvas& picture, const QRectF& area,
                  double dpi) {
  QtCanvas canvas(&painter, 96.0 / dpi, picture.size());
  PaintPicture(painter, picture, area, canvas);
}

void PaintPicture(QPainter& painter, const RecordingCanvas& picture, const QRectF& area,
                  QtCanvas& canvas) {
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  // The canvas counts screen pixels; fit them to the area.
  const double pixels = Canvas::kTwipsPerPixel;
  const PictureSize size = picture.size();
  const double fit =
      std::min(area.width() / (size.width / pixels), area.height() / (size.height / pixels));
  painter.translate(area.topLeft());
  painter.scale(fit, fit);
  painter.setClipRect(QRectF(0, 0, size.width / pixels, size.height / pixels));
  canvas.setSize(size);
  picture.replay(canvas);
  painter.restore();
}

bool WritePicture(const RecordingCanvas& picture, const std::filesystem::path& path, double scale,
                  std::ostream& err) {
  const std::string ext = PictureExtension(path);
  const QString file = ToQString(path);
  bool ok = false;
  if (ext == ".png") {
    RasterCanvas canvas(scale, picture.size());
    picture.replay(canvas);
    ok = canvas.image().save(file, "PNG");
  } else if (ext == ".pdf") {
    ok = WritePdf(picture, file);
  } else {
    err << "velmora-chart: " << PathToUtf8(path) << ": pictures are .png, .svg or .pdf\n";
    return false;
  }
  if (!ok) err << "velmora-chart: cannot write " << PathToUtf8(path) << "\n";
  return ok;
}

std::unique_ptr<KitDocument> MakeKitPdf(const std::filesystem::path& path,
                                        const ChartOptions& options, std::ostream& err) {
  if (PictureExtension(path) != ".pdf") {
    err << "velmora-chart: " << PathToUtf8(path) << ": a kit is a .pdf or a folder (DIR/)\n";
    return nullptr;
  }
  return std::make_unique<KitPdf>(path, options);
}

}  // namespace velmora
