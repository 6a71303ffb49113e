#include "data/text.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace velmora {
namespace {

// Code points of bytes 0x80 to 0x9F; 0 marks the five bytes Windows-1252 leaves undefined,
// which pass through as the same code point, as Windows does.
constexpr std::array<char32_t, 32> kHigh = {
    0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0,      0x017D, 0,      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

void AppendUtf8(std::string& out, char32_t cp) {
  if (cp < 0x80) {
    out += static_cast<char>(cp);
  } else if (cp < 0x800) {
    out += static_cast<char>(0xC0 | (cp >> 6));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  } else if (cp < 0x10000) {
    out += static_cast<char>(0xE0 | (cp >> 12));
    out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  } else {
    out += static_cast<char>(0xF0 | (cp >> 18));
    out += static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
    out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  }
}

char FromCodePoint(char32_t cp) {
  if (cp < 0x100 && !(cp >= 0x80 && cp < 0xA0 && kHigh[cp - 0x80] != 0)) {
    return static_cast<char>(cp);
  }
  for (std::size_t i = 0; i < kHigh.size(); ++i) {
    if (kHigh[i] == cp) return static_cast<char>(0x80 + i);
  }
  return '?';
}

char UpperChar(unsigned char c) {
  if (c >= 'a' && c <= 'z') return static_cast<char>(c - 32);
  if (c >= 0xE0 && c <= 0xFE && c != 0xF7) return static_cast<char>(c - 32);
  switch (c) {
    case 0x9A:
      return '\x8A';
    case 0x9C:
      return '\x8C';
    case 0x9E:
      return '\x8E';
    case 0xFF:
      return '\x9F';
    default:
      return static_cast<char>(c);
  }
}

char LowerAscii(char c) {
  return (c >= 'A' && c <= 'Z') ? static_cast<char>(c + 32) : c;
}

}  // namespace

char32_t Cp1252CodePoint(unsigned char c) {
  if (c >= 0x80 && c < 0xA0 && kHigh[c - 0x80] != 0) return kHigh[c - 0x80];
  return c;
}

std::string Cp1252ToUtf8(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (unsigned char c : text) AppendUtf8(out, Cp1252CodePoint(c));
  return out;
}

std::string JsonString(std::string_view cp1252) {
  std::string out = "\"";
  for (char c : Cp1252ToUtf8(cp1252)) {
    switch (c) {
      case '"':
        out += "\\\"";
        break;
      case '\\':
        out += "\\\\";
        break;
      case '\r':
        out += "\\r";
        break;
      case '\n':
        out += "\\n";
        break;
      case '\t':
        out += "\\t";
        break;
      default:
        if (static_cast<unsigned char>(c) < 0x20) {
          const char* hex = "0123456789abcdef";
          out += "\\u00";
          out += hex[(c >> 4) & 0xF];
          out += hex[c & 0xF];
        } else {
          out += c;
        }
    }
  }
  return out + "\"";
}

std::string Utf8ToCp1252(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  const std::size_t n = text.size();
  for (std::size_t i = 0; i < n;) {
    const auto c = static_cast<unsigned char>(text[i]);
    if (c < 0x80) {
      out += static_cast<char>(c);
      ++i;
      continue;
    }
    const int extra = (c >= 0xF0 && c < 0xF8) ? 3 : c >= 0xE0 ? 2 : c >= 0xC0 ? 1 : -1;
    bool ok = extra > 0 && i + extra < n;
    char32_t cp = ok ? (c & (0x3F >> extra)) : 0;
    for (int k = 1; ok && k <= extra; ++k) {
      const auto b = static_cast<unsigned char>(text[i + k]);
      ok = (b & 0xC0) == 0x80;
      cp = (cp << 6) | (b & 0x3F);
    }
    if (!ok) {
      out += '?';
      ++i;
      continue;
    }
    out += FromCodePoint(cp);
    i += extra + 1;
  }
  return out;
}

bool IsUtf8(std::string_view text) {
  const std::size_t n = text.size();
  for (std::size_t i = 0; i < n;) {
    const auto c = static_cast<unsigned char>(text[i]);
    const int extra = c < 0x80                  ? 0
                      : (c >= 0xC2 && c < 0xE0) ? 1
                      : (c >= 0xE0 && c < 0xF0) ? 2
                      : (c >= 0xF0 && c < 0xF5) ? 3
                                                : -1;
    if (extra < 0 || n - i <= static_cast<std::size_t>(extra)) return false;
    for (int k = 1; k <= extra; ++k) {
      if ((static_cast<unsigned char>(text[i + k]) & 0xC0) != 0x80) return false;
    }
    i += static_cast<std::size_t>(extra) + 1;
  }
  return true;
}

std::string Utf16ToUtf8(std::string_view bytes, bool bigEndian) {
  constexpr char32_t kReplacement = 0xFFFD;
  std::string out;
  out.reserve(bytes.size() / 2);
  auto unit = [&](std::size_t i) -> char32_t {
    const auto a = static_cast<unsigned char>(bytes[i]),
               b = static_cast<unsigned char>(bytes[i + 1]);
    return bigEndian ? (a << 8 | b) : (b << 8 | a);
  };
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
    const char32_t u = unit(i);
    if (u >= 0xD800 && u < 0xDC00 && i + 3 < bytes.size() && unit(i + 2) >= 0xDC00 &&
        unit(i + 2) < 0xE000) {
      AppendUtf8(out, 0x10000 + ((u - 0xD800) << 10) + (unit(i + 2) - 0xDC00));
      i += 2;
    } else {
      AppendUtf8(out, (u >= 0xD800 && u < 0xE000) ? kReplacement : u);
    }
  }
  if (bytes.size() % 2 != 0) AppendUtf8(out, kReplacement);
  return out;
}

std::string AsciiLowerCase(std::string_view text) {
  std::string out(text);
  for (char& c : out) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + ('a' - 'A'));
  }
  return out;
}

std::string UpperCase(std::string_view text) {
  std::string out(text);
  for (char& c : out) c = UpperChar(static_cast<unsigned char>(c));
  return out;
}

bool ContainsNoCase(std::string_view text, std::string_view word) {
  if (word.empty()) return true;
  auto it = std::search(text.begin(), text.end(), word.begin(), word.end(),
                        [](char a, char b) { return LowerAscii(a) == LowerAscii(b); });
  return it != text.end();
}

std::string RemoveBlanks(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (char c : text) {
    if (c != ' ') out += c;
  }
  return out;
}

std::vector<std::string_view> Split(std::string_view text, char sep) {
  std::vector<std::string_view> pieces;
  std::size_t start = 0;
  for (;;) {
    const std::size_t at = text.find(sep, start);
    if (at == std::string_view::npos) {
      pieces.push_back(text.substr(start));
      return pieces;
    }
    pieces.push_back(text.substr(start, at - start));
    start = at + 1;
  }
}

std::string EscapeXml(std::string_view text, std::string_view special) {
  std::string out;
  out.reserve(text.size());
  for (char c : text) {
    if (special.find(c) == std::string_view::npos) {
      out += c;
      continue;
    }
    switch (c) {
      case '&':
        out += "&amp;";
        break;
      case '<':
        out += "&lt;";
        break;
      case '>':
        out += "&gt;";
        break;
      case '"':
        out += "&quot;";
        break;
      default:
        out += c;
    }
  }
  return out;
}

}  // namespace velmora
