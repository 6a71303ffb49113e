#include "geometry/svg_canvas.h"

#include <locale>

#include "data/text.h"
#include "geometry/screen.h"

namespace velmora {
namespace {

std::string Colour(Rgb c) {
  return "rgb(" + std::to_string(c.r) + ',' + std::to_string(c.g) + ',' + std::to_string(c.b) + ')';
}

std::string Stroke(const Pen& p) {
  // DrawWidth is in pixels of 15 twips; dots exist only on the thinnest pen.
  std::string s = "stroke=\"" + Colour(p.ForeColor) + "\" stroke-width=\"" +
                  std::to_string(p.DrawWidth * Canvas::kTwipsPerPixel) + '"';
  if (p.DrawStyle == kDotted && p.DrawWidth == 1) s += " stroke-dasharray=\"15,30\"";
  return s;
}

}  // namespace

void SvgCanvas::drawCls() {
  // Numbers in SVG never take the machine's digit grouping.
  body_.imbue(std::locale::classic());
  body_.str({});
  clips_ = 0;
  body_ << "<rect width=\"" << size_.width << "\" height=\"" << size_.height << "\" fill=\""
        << Colour(kPictureBackground) << "\"/>\n";
}

void SvgCanvas::drawLine(const Pen& p, std::int32_t x1, std::int32_t y1, std::int32_t x2,
                         std::int32_t y2) {
  body_ << "<line x1=\"" << x1 << "\" y1=\"" << y1 << "\" x2=\"" << x2 << "\" y2=\"" << y2 << "\" "
        << Stroke(p) << "/>\n";
}

void SvgCanvas::drawCircle(const Pen& p, std::int32_t x, std::int32_t y, std::int32_t radius) {
  body_ << "<circle cx=\"" << x << "\" cy=\"" << y << "\" r=\"" << radius << "\" fill=\"none\" "
        << Stroke(p) << "/>\n";
}

void SvgCanvas::drawText(const Pen& p, std::string_view text) {
  // Print places the top of the text at CurrentY; SVG places the baseline, about 0.9 em lower.
  const int em = p.FontSize * 20;
  body_ << "<text x=\"" << p.CurrentX << "\" y=\"" << ScreenAdd(p.CurrentY, em * 9 / 10)
        << "\" font-size=\"" << em << '"' << (p.FontBold ? " font-weight=\"bold\"" : "")
        << " fill=\"" << Colour(p.ForeColor) << "\">" << EscapeXml(Cp1252ToUtf8(text), "&<>")
        << "</text>\n";
}

void SvgCanvas::drawClip(std::int32_t left, std::int32_t top, std::int32_t width,
                         std::int32_t height) {
  if (clips_ > 0) body_ << "</g>\n";
  ++clips_;
  body_ << "<clipPath id=\"part" << clips_ << "\"><rect x=\"" << left << "\" y=\"" << top
        << "\" width=\"" << width << "\" height=\"" << height << "\"/></clipPath>\n"
        << "<g clip-path=\"url(#part" << clips_ << ")\">\n";
}

std::string SvgCanvas::document() const {
  std::ostringstream doc;
  doc.imbue(std::locale::classic());
  doc << "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" << size_.width / kTwipsPerPixel
      << "\" height=\"" << size_.height / kTwipsPerPixel << "\" viewBox=\"0 0 " << size_.width
      << ' ' << size_.height << "\">\n"
      << "<g font-family=\"Lucida Sans Unicode, DejaVu Sans, sans-serif\" "
         "xml:space=\"preserve\">\n"
      << body_.str() << (clips_ > 0 ? "</g>\n" : "") << "</g>\n</svg>\n";
  return doc.str();
}

}  // namespace velmora
