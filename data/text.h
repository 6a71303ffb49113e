#pragma once
// Text helpers. All text in the store is single-byte Windows-1252, as the files give it;
// it becomes UTF-8 only at the edges (trace, SVG, the Qt window).

#include <string>
#include <string_view>
#include <vector>

namespace velmora {

inline constexpr char kDegreeSign = '\xB0';  // Windows-1252 code 176

std::string Cp1252ToUtf8(std::string_view text);
// The Unicode code point of one Windows-1252 byte.
char32_t Cp1252CodePoint(unsigned char byte);
// Characters that Windows-1252 lacks become '?'.
std::string Utf8ToCp1252(std::string_view text);

// Whether `text` is well-formed UTF-8 (ASCII included).
bool IsUtf8(std::string_view text);
// UTF-16 bytes (no BOM) as UTF-8; a lone surrogate or an odd last byte becomes U+FFFD.
std::string Utf16ToUtf8(std::string_view bytes, bool bigEndian);

// Upper case of the Windows-1252 letters, accented ones included.
std::string UpperCase(std::string_view text);
// Lower case of the ASCII letters alone, for names such as file extensions.
std::string AsciiLowerCase(std::string_view text);
// Letter case ignored for ASCII letters, as the searches for "ATIS" or "VOR" need.
bool ContainsNoCase(std::string_view text, std::string_view word);

std::string RemoveBlanks(std::string_view text);

// A JSON string, quotes included, of Windows-1252 text: UTF-8 with its escapes.
std::string JsonString(std::string_view cp1252);

// `text` with each of the characters of `special` among & < > " written as its XML entity.
std::string EscapeXml(std::string_view text, std::string_view special);
// Pieces between every `sep`; an empty text gives one empty piece.
std::vector<std::string_view> Split(std::string_view text, char sep);

}  // namespace velmora
