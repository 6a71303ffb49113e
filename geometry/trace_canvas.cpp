#include "geometry/trace_canvas.h"

#include "data/text.h"

namespace velmora {
namespace {

std::ostream& operator<<(std::ostream& out, Rgb c) {
  return out << int{c.r} << ',' << int{c.g} << ',' << int{c.b};
}

}  // namespace

void TraceCanvas::step(int number, std::string_view what) {
  out_ << "# " << number << ' ' << Cp1252ToUtf8(what) << '\n';
}

void TraceCanvas::caption(std::string_view text) {
  out_ << "caption " << Cp1252ToUtf8(text) << '\n';
}

void TraceCanvas::drawCls() {
  out_ << "cls\n";
}

void TraceCanvas::drawLine(const Pen& p, std::int32_t x1, std::int32_t y1, std::int32_t x2,
                           std::int32_t y2) {
  out_ << "line " << x1 << ' ' << y1 << ' ' << x2 << ' ' << y2 << ' ' << p.ForeColor << ' '
       << p.DrawWidth << ' ' << p.DrawStyle << '\n';
}

void TraceCanvas::drawCircle(const Pen& p, std::int32_t x, std::int32_t y, std::int32_t radius) {
  out_ << "circle " << x << ' ' << y << ' ' << radius << ' ' << p.ForeColor << ' ' << p.DrawWidth
       << ' ' << p.DrawStyle << '\n';
}

void TraceCanvas::drawText(const Pen& p, std::string_view text) {
  out_ << "print " << p.CurrentX << ' ' << p.CurrentY << ' ' << p.ForeColor << ' ' << p.FontSize
       << ' ' << (p.FontBold ? 1 : 0) << ' ' << Cp1252ToUtf8(text) << '\n';
}

}  // namespace velmora
