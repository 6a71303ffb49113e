#pragma once
// The airport file looks like XML but is read line by line: these take one line apart into
// its element word, its key (text before the first "=") and its first two quoted values.

#include <string>
#include <string_view>

namespace velmora {

// Only the blank (code 32) counts; a tab stays.
std::string_view StripLead(std::string_view text);

// Tabs become blanks and leading blanks go. A line that holds "<" sets `curElement` to its
// first word; any other line leaves it.
void ScanElement(std::string& line, std::string& curElement);

// The line loses its leading blanks; the key is the text before the first "=", not trimmed
// at its right end, or the whole line when it has no "=".
std::string_view AttrKey(std::string_view& line);

// The text between the first and second double quote (AttrValue), or between the third and
// fourth (AttrValue2). Behind the last quote the rest of the line counts; with too few
// quotes there is no value, and the result is empty.
std::string_view AttrValue(std::string_view line);
std::string_view AttrValue2(std::string_view line);

}  // namespace velmora
