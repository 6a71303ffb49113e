#pragma once
// The chart canvas: 14415 x 10215 twips, X to the right, Y downward, drawn with a pen whose
// values stay as set until the next assignment. Every painter shares the one pen state and
// nobody saves or restores it; the look of the chart depends on what each step leaves.

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace velmora {

struct Rgb {
  std::uint8_t r = 0, g = 0, b = 0;
  friend bool operator==(Rgb, Rgb) = default;
};

inline constexpr Rgb kBlack{0, 0, 0};
inline constexpr Rgb kRed{192, 0, 0};
inline constexpr Rgb kYellow{192, 192, 0};
inline constexpr Rgb kBlue{0, 0, 255};
inline constexpr Rgb kGreen{0, 128, 0};

// The picture's background, the light grey of an inactive window border; Cls clears to it.
inline constexpr Rgb kPictureBackground{212, 208, 200};

// DrawStyle.
inline constexpr int kSolid = 0;
inline constexpr int kDotted = 2;

struct Pen {
  Rgb ForeColor = kBlack;
  int DrawWidth = 1;       // pixels: 1, 2 or 5
  int DrawStyle = kSolid;  // dotted only at DrawWidth 1
  int FontSize = 6;        // points
  bool FontBold = false;
  std::int32_t CurrentX = 0;  // twips, top left of the next Print
  std::int32_t CurrentY = 0;
};

class Canvas {
 public:
  static constexpr std::int32_t Width = 14415;
  static constexpr std::int32_t Height = 10215;
  static constexpr int kTwipsPerPixel = 15;

  virtual ~Canvas() = default;

  Pen pen;

  void Cls();
  void Line(std::int32_t x1, std::int32_t y1, std::int32_t x2, std::int32_t y2);
  void Circle(std::int32_t x, std::int32_t y, std::int32_t radius);
  // Text is Windows-1252; an empty text draws nothing.
  void Print(std::string_view text);

  // What a backend does. The pen comes along so that one canvas can hand its work on.
  virtual void drawCls() = 0;
  virtual void drawLine(const Pen& pen, std::int32_t x1, std::int32_t y1, std::int32_t x2,
                        std::int32_t y2) = 0;
  virtual void drawCircle(const Pen& pen, std::int32_t x, std::int32_t y, std::int32_t radius) = 0;
  virtual void drawText(const Pen& pen, std::string_view text) = 0;
  // What follows stands within this rectangle (twips) up to the next clip or Cls: the parts
  // of a picture put together from others. Canvases that don't show pictures ignore it.
  virtual void drawClip(std::int32_t /*left*/, std::int32_t /*top*/, std::int32_t /*width*/,
                        std::int32_t /*height*/) {}
};

// The size of a picture, twips: the chart sheet, or another picture drawn on the same canvas
// operations (the approach profile, a kit page with its profile strip).
struct PictureSize {
  std::int32_t width = Canvas::Width;
  std::int32_t height = Canvas::Height;
  friend bool operator==(PictureSize, PictureSize) = default;
};
inline constexpr PictureSize kSheetSize{};

// Draws nothing: the baseline against which the cost of real drawing is measured.
class NullCanvas final : public Canvas {
 public:
  void drawCls() override {}
  void drawLine(const Pen&, std::int32_t, std::int32_t, std::int32_t, std::int32_t) override {}
  void drawCircle(const Pen&, std::int32_t, std::int32_t, std::int32_t) override {}
  void drawText(const Pen&, std::string_view) override {}
};

// Hands every operation to several canvases, so one run gives a trace and a picture.
class TeeCanvas final : public Canvas {
 public:
  void add(Canvas& target) { targets_.push_back(&target); }
  void drawCls() override;
  void drawLine(const Pen& pen, std::int32_t x1, std::int32_t y1, std::int32_t x2,
                std::int32_t y2) override;
  void drawCircle(const Pen& pen, std::int32_t x, std::int32_t y, std::int32_t radius) override;
  void drawText(const Pen& pen, std::string_view text) override;
  void drawClip(std::int32_t left, std::int32_t top, std::int32_t width,
                std::int32_t height) override;

 private:
  std::vector<Canvas*> targets_;
};

// Keeps the operations since the last Cls, which is the picture as it stands, so it can be
// painted later onto any canvas (a PNG, a PDF page, an SVG file).
class RecordingCanvas final : public Canvas {
 public:
  explicit RecordingCanvas(PictureSize size = kSheetSize) : size_(size) {}
  PictureSize size() const { return size_; }

  void drawCls() override { ops_.clear(); }
  void drawLine(const Pen& pen, std::int32_t x1, std::int32_t y1, std::int32_t x2,
                std::int32_t y2) override;
  void drawCircle(const Pen& pen, std::int32_t x, std::int32_t y, std::int32_t radius) override;
  void drawText(const Pen& pen, std::string_view text) override;
  void drawClip(std::int32_t left, std::int32_t top, std::int32_t width,
                std::int32_t height) override;

  // Paints the picture after a Cls of `target`.
  void replay(Canvas& target) const;

  // `below` added under the picture, `gap` twips lower; the picture grows to hold both, and
  // each part stays within its own rectangle.
  void stack(const RecordingCanvas& below, std::int32_t gap);

 private:
  enum class Kind { kLine, kCircle, kText, kClip };
  struct Op {
    Kind kind;
    Pen pen;
    std::int32_t a, b, c, d;
    std::string text;
  };
  PictureSize size_;
  std::vector<Op> ops_;
};

}  // namespace velmora
