#include <gtest/gtest.h>

#include <QProcess>
#include <fstream>
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFOutlineDocumentHelper.hh>
#include <qpdf/QPDFPageDocumentHelper.hh>
#include <regex>
#include <sstream>

#include "shell/chart_run.h"
#include "shell/qt/pictures.h"
#include "tests/test_support.h"

namespace velmora::test {
namespace {

// Passes pages on to the real PDF and keeps each page's drawing as trace lines.
class RecordingKit final : public KitDocument {
 public:
  RecordingKit(std::unique_ptr<KitDocument> pdf, std::vector<Lines>& pages)
      : pdf_(std::move(pdf)), pages_(pages) {}
  bool add(const KitPage& page, std::ostream& err) override {
    std::ostringstream out;
    TraceCanvas trace(out);
    page.picture->replay(trace);
    pages_.push_back(TakeLines(out));
    return pdf_->add(page, err);
  }
  bool finish(const std::filesystem::path& p, std::ostream& e) override {
    return pdf_->finish(p, e);
  }

 private:
  std::unique_ptr<KitDocument> pdf_;
  std::vector<Lines>& pages_;
};

// The picture at the end of a velmora-chart run over `steps`: what its last Cls began.
Lines LastStep(const std::filesystem::path& data, const Lines& steps) {
  Lines args = {"--data", data.string(), "--trace", "-"};
  args.insert(args.end(), steps.begin(), steps.end());
  std::ostringstream out, err;
  EXPECT_EQ(RunChart(*ParseChartArgs(args, "/nowhere", err), WritePicture, out, err), 0)
      << err.str();
  Lines drawn;
  for (const std::string& line : TakeLines(out)) {
    if (line == "cls") drawn.clear();
    if (!line.starts_with("# ") && !line.starts_with("caption")) drawn.push_back(line);
  }
  return drawn;
}

TEST(KitPdf, OnePagePerApproachWithBookmarksAndTheChartsOfTheirPicks) {
  TempDir d;
  GenAirport airport{"XGEN", {}};
  for (int n = 0; n < 10; ++n) {
    airport.approaches.push_back(
        {n % 2 ? "VOR" : "GPS", std::to_string(n + 1), {{3000 + 300 * n, 2000}, {7000, 5000}}});
  }
  WriteAirports(d, {airport});
  for (const bool fit : {false, true}) {
    const auto pdf = d.path() / (fit ? "fit.pdf" : "kit.pdf");
    Lines args = {"--data", d.path().string(), "--airport", "XGEN",      "--all-approaches",
                  "--page", "letter",          "--out",     pdf.string()};
    if (fit) args.push_back("--fit");
    std::vector<Lines> pages;
    const KitMaker recording = [&](const auto& path, const auto& options, std::ostream& err) {
      return std::make_unique<RecordingKit>(MakeKitPdf(path, options, err), pages);
    };
    std::ostringstream out, err;
    const auto options = ParseChartArgs(args, "/nowhere", err);
    ASSERT_TRUE(options.has_value()) << err.str();
    ASSERT_EQ(RunChart(*options, WritePicture, recording, out, err), 0) << err.str();
    EXPECT_EQ(err.str(), "");

    QPDF read;
    read.processFile(pdf.c_str());
    auto pdfPages = QPDFPageDocumentHelper(read).getAllPages();
    ASSERT_EQ(pdfPages.size(), 11u);
    const auto box = pdfPages[0].getMediaBox().getArrayAsRectangle();  // letter, landscape
    EXPECT_NEAR(box.urx - box.llx, 792, 1);
    EXPECT_NEAR(box.ury - box.lly, 612, 1);
    auto top = QPDFOutlineDocumentHelper(read).getTopLevelOutlines();
    ASSERT_EQ(top.size(), 1u);
    EXPECT_EQ(top[0].getTitle(), "XGEN");
    auto kids = top[0].getKids();
    ASSERT_EQ(kids.size(), 10u);
    ASSERT_EQ(pages.size(), 11u);
    EXPECT_EQ(pages[0], LastStep(d.path(), {"--airport", "XGEN"}));
    for (int k = 0; k < 10; ++k) {
      EXPECT_EQ(kids[k].getTitle(),
                "XGEN " + airport.approaches[k].type + " " + std::to_string(k + 1));
      EXPECT_EQ(kids[k].getDestPage().getObjGen(), pdfPages[k + 1].getObjectHandle().getObjGen());
      Lines steps = {"--airport", "XGEN", "pick:" + std::to_string(k)};
      if (fit) steps.push_back("fit");
      EXPECT_EQ(pages[k + 1], LastStep(d.path(), steps)) << "page of pick:" << k;
    }
  }
}

// A word of a PDF page as poppler's pdftotext reads it back, with its place (points, y down).
struct PdfWord {
  double x, y;
  std::string text;
};

std::vector<PdfWord> PdfWords(const std::filesystem::path& pdf, int page) {
  const std::string html = pdf.string() + "-" + std::to_string(page) + ".html";
  const QString n = QString::number(page);
  QProcess::execute("pdftotext", {"-bbox", "-f", n, "-l", n, QString::fromStdString(pdf.string()),
                                  QString::fromStdString(html)});
  const std::string text = Slurp(html);
  const std::regex word(R"re(<word xMin="([0-9.]+)" yMin="([0-9.]+)"[^>]*>([^<]*)</word>)re");
  std::vector<PdfWord> words;
  for (std::sregex_iterator it(text.begin(), text.end(), word), end; it != end; ++it) {
    words.push_back({std::stod((*it)[1]), std::stod((*it)[2]), (*it)[3]});
  }
  return words;
}

const PdfWord* Find(const std::vector<PdfWord>& words, const std::string& text) {
  for (const PdfWord& w : words) {
    if (w.text == text) return &w;
  }
  return nullptr;
}

// A kit made with --profile: under the plan of each approach page stands the approach's
// profile, its distances growing to the left as the hand-worked profiles of the sample give
// them; the airport's sheet gets none, and a kit made without --profile none at all.
TEST(KitPdf, ProfileStripUnderThePlanOfEveryApproachPage) {
  TempDir d;
  const struct {
    std::string approach;
    std::vector<std::string> distances;  // from the farthest fix to the threshold
  } pages[] = {{"ILS 16L", {"16.0", "10.0", "5.2", "0.0"}},
               {"ILS 34R", {"15.0", "10.0", "5.5", "0.0"}},
               {"VORDME 9", {"13.0", "6.0", "3.0", "0.0"}},
               {"GPS 27", {"12.0", "5.0", "0.0"}}};
  for (const bool strips : {true, false}) {
    const auto pdf = d.path() / (strips ? "strips.pdf" : "plain.pdf");
    Lines args = {"--data", SampleDir().string(), "--airport", "XWHL", "--all-approaches",
                  "--out",  pdf.string()};
    if (strips) args.push_back("--profile");
    std::ostringstream out, err;
    const auto options = ParseChartArgs(args, "/nowhere", err);
    ASSERT_TRUE(options.has_value()) << err.str();
    ASSERT_EQ(RunChart(*options, WritePicture, MakeKitPdf, out, err), 0) << err.str();
    EXPECT_EQ(Find(PdfWords(pdf, 1), "THR"), nullptr);  // the sheet
    for (int k = 0; k < 4; ++k) {
      SCOPED_TRACE(pages[k].approach);
      const std::vector<PdfWord> words = PdfWords(pdf, k + 2);
      const PdfWord* warning = Find(words, "DO");  // the plan's last line
      ASSERT_NE(warning, nullptr);
      EXPECT_EQ(Find(words, "THR") != nullptr, strips);
      EXPECT_EQ(Find(words, "MAP") != nullptr, strips);
      if (!strips) continue;
      double left = 0;
      for (const std::string& distance : pages[k].distances) {
        const PdfWord* w = Find(words, distance);
        ASSERT_NE(w, nullptr) << distance;
        EXPECT_GT(w->y, warning->y) << distance;
        EXPECT_GT(w->x, left) << distance;
        left = w->x;
      }
    }
  }
}

}  // namespace
}  // namespace velmora::test
