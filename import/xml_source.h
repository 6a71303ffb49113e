#pragma once
// Airport sources in the BglComp XML format as decompilers and hand edits write them, read with
// a real XML parser whatever the layout, quotes or encoding. Only the records the chart uses
// are kept; scenery, taxiways and the rest are passed over while the file streams by.

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace velmora {

// A kept element: attributes in source order, text in Windows-1252, and its kept children.
struct SourceElement {
  std::string name;
  std::vector<std::pair<std::string, std::string>> attrs;
  std::vector<SourceElement> children;
  std::uint64_t line = 0;  // where its start tag stands
  // The value of `key`, or null when the element lacks it.
  const std::string* attr(std::string_view key) const;
};

struct SourceTree {
  // Airport, Ndb, Waypoint and Vor records at the top of the file, in file order.
  std::vector<SourceElement> records;
  // Why the file is not read ("LINE: reason", "offset N: reason", or "0: reason" for the whole
  // file); nothing of it counts then.
  std::string error;
  bool ok() const { return error.empty(); }
  bool outline = false;  // airports without their children: read again whole to write them
};

// Takes the source in pieces, so that a large file never has to be held whole.
class XmlSourceReader {
 public:
  XmlSourceReader();
  ~XmlSourceReader();
  XmlSourceReader(const XmlSourceReader&) = delete;
  XmlSourceReader& operator=(const XmlSourceReader&) = delete;
  // False once the text has proved not well-formed or not readable.
  bool feed(std::string_view bytes, bool last);
  SourceTree take();

  struct Impl;  // the parser's state, seen by its callbacks

 private:
  std::unique_ptr<Impl> impl_;
};

SourceTree ParseXmlSource(std::string_view bytes);

// Sources larger than this are refused unread.
inline constexpr std::uintmax_t kMaxSourceBytes = std::uintmax_t{512} << 20;
// A file, read in pieces. Only regular files are read, never with a wait.
SourceTree ReadXmlSource(const std::filesystem::path& path);

}  // namespace velmora
