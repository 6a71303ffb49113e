#include "import/xml_source.h"

#include <expat.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>

#include "data/files.h"
#include "data/runway_text.h"
#include "data/text.h"

namespace velmora {
namespace {

// What an element is to the chart; kSkip marks a subtree that is passed over whole.
enum class Kind { kDocument, kRoot, kAirport, kRunway, kApproach, kLegGroup, kTransition, kSkip };

struct Rule {
  Kind parent;
  std::string_view name;
  Kind kind;  // kSkip for a kept element without kept children
};

constexpr std::array kRules = {
    Rule{Kind::kAirport, "Runway", Kind::kRunway},
    Rule{Kind::kAirport, "Start", Kind::kSkip},
    Rule{Kind::kAirport, "Com", Kind::kSkip},
    Rule{Kind::kAirport, "Ils", Kind::kSkip},
    Rule{Kind::kAirport, "Ndb", Kind::kSkip},
    Rule{Kind::kAirport, "Waypoint", Kind::kSkip},
    Rule{Kind::kAirport, "Approach", Kind::kApproach},
    Rule{Kind::kRunway, "Ils", Kind::kSkip},
    Rule{Kind::kRunway, "RunwayStart", Kind::kSkip},
    Rule{Kind::kApproach, "ApproachLegs", Kind::kLegGroup},
    Rule{Kind::kApproach, "MissedApproachLegs", Kind::kLegGroup},
    Rule{Kind::kApproach, "Transition", Kind::kTransition},
    Rule{Kind::kTransition, "TransitionLegs", Kind::kLegGroup},
    Rule{Kind::kLegGroup, "Leg", Kind::kSkip},
};

constexpr std::array<std::string_view, 4> kTopRecords = {"Airport", "Ndb", "Waypoint", "Vor"};

// Longer values are no navigation data: a hostile file stops here rather than filling memory.
constexpr std::size_t kMaxValue = 1 << 20;

struct Frame {
  Kind kind;
  SourceElement* element;  // null for the root element, which is not kept
};

bool SameNoCase(std::string_view a, std::string_view b) {
  return a.size() == b.size() && ContainsNoCase(a, b);
}

// BglComp compiles a runway's <RunwayStart> into the same start record as an airport's
// <Start>, named by the runway end it gives: so it becomes that <Start>.
SourceElement StartOfRunwayEnd(SourceElement start, const SourceElement& runway) {
  const std::string* end = start.attr("end");
  const bool secondary = end != nullptr && SameNoCase(*end, "SECONDARY");
  std::erase_if(start.attrs, [](const auto& a) {
    return a.first == "end" || a.first == "number" || a.first == "designator";
  });
  start.name = "Start";
  std::vector<std::pair<std::string, std::string>> names;
  if (const std::string* number = runway.attr("number")) {
    std::string n = secondary ? ReciprocalRunwayNumber(*number) : *number;
    if (!n.empty()) names.emplace_back("number", std::move(n));
  }
  if (const std::string* designator = runway.attr("designator")) {
    names.emplace_back("designator",
                       secondary ? std::string(ReciprocalDesignator(*designator)) : *designator);
  }
  start.attrs.insert(start.attrs.begin(), names.begin(), names.end());
  return start;
}

// The runway's starts, taken out of it, in file order.
std::vector<SourceElement> TakeRunwayStarts(SourceElement& runway) {
  std::vector<SourceElement> starts, kept;
  for (SourceElement& c : runway.children) {
    if (c.name == "RunwayStart") {
      starts.push_back(StartOfRunwayEnd(std::move(c), runway));
    } else {
      kept.push_back(std::move(c));
    }
  }
  runway.children = std::move(kept);
  return starts;
}

}  // namespace

struct XmlSourceReader::Impl {
  XML_Parser parser = XML_ParserCreate(nullptr);
  SourceTree source;
  std::vector<Frame> stack;
  std::uint64_t skipDepth = 0;  // depth inside a passed-over subtree
  std::string stopReason;
  std::uint64_t stopLine = 0;

  void stop(std::string reason) {
    if (!stopReason.empty()) return;
    stopReason = std::move(reason);
    stopLine = XML_GetCurrentLineNumber(parser);
    XML_StopParser(parser, XML_FALSE);
  }

  // The kind of a child named `name` of the current element; none when it is passed over.
  std::optional<Kind> childKind(std::string_view name) const {
    const Kind parent = stack.empty() ? Kind::kDocument : stack.back().kind;
    const bool top = std::find(kTopRecords.begin(), kTopRecords.end(), name) != kTopRecords.end();
    if (parent == Kind::kDocument)
      return top ? (name == "Airport" ? Kind::kAirport : Kind::kSkip) : Kind::kRoot;
    if (parent == Kind::kRoot && top) return name == "Airport" ? Kind::kAirport : Kind::kSkip;
    for (const Rule& r : kRules) {
      if (r.parent == parent && r.name == name) return r.kind;
    }
    return std::nullopt;
  }

  void start(const XML_Char* name, const XML_Char** atts) {
    if (skipDepth > 0 || (!stack.empty() && stack.back().kind == Kind::kSkip)) {
      ++skipDepth;
      return;
    }
    const auto kind = childKind(name);
    if (!kind) {
      ++skipDepth;
      return;
    }
    SourceElement* element = nullptr;
    if (*kind != Kind::kRoot) {
      SourceElement* parent = stack.empty() ? nullptr : stack.back().element;
      element = parent ? &parent->children.emplace_back() : &source.records.emplace_back();
      element->name = name;
      element->line = XML_GetCurrentLineNumber(parser);
      for (const XML_Char** a = atts; a[0] != nullptr; a += 2) {
        const std::string_view value = a[1];
        if (value.size() > kMaxValue) return stop("an attribute value longer than 1 MB");
        // Most values are ASCII, which both encodings share.
        const bool ascii = std::all_of(value.begin(), value.end(),
                                       [](char c) { return static_cast<unsigned char>(c) < 0x80; });
        element->attrs.emplace_back(a[0], ascii ? std::string(value) : Utf8ToCp1252(value));
      }
    }
    stack.push_back({*kind, element});
  }

  void end() {
    if (skipDepth > 0) {
      --skipDepth;
      return;
    }
    if (stack.empty()) return;
    const Frame done = stack.back();
    stack.pop_back();
    if (done.kind != Kind::kRunway || stack.empty()) return;
    // Taken out first: adding to the airport's children may move the runway.
    std::vector<SourceElement> starts = TakeRunwayStarts(*done.element);
    for (SourceElement& s : starts) stack.back().element->children.push_back(std::move(s));
  }
};

namespace {

void XMLCALL OnStart(void* data, const XML_Char* name, const XML_Char** atts) {
  static_cast<XmlSourceReader::Impl*>(data)->start(name, atts);
}

void XMLCALL OnEnd(void* data, const XML_Char*) {
  static_cast<XmlSourceReader::Impl*>(data)->end();
}

// Entities declared in the file are the stuff of expansion attacks; BglComp has none.
void XMLCALL OnEntityDecl(void* data, const XML_Char*, int, const XML_Char*, int, const XML_Char*,
                          const XML_Char*, const XML_Char*, const XML_Char*) {
  static_cast<XmlSourceReader::Impl*>(data)->stop(
      "declares entities, which airport files never do");
}

// Expat knows UTF-8, UTF-16, ISO-8859-1 and US-ASCII itself; Windows-1252 comes from our table.
int XMLCALL OnUnknownEncoding(void*, const XML_Char* name, XML_Encoding* info) {
  const std::string_view n = name;
  if (!SameNoCase(n, "windows-1252") && !SameNoCase(n, "cp1252")) return XML_STATUS_ERROR;
  for (int byte = 0; byte < 256; ++byte) {
    info->map[byte] = static_cast<int>(Cp1252CodePoint(static_cast<unsigned char>(byte)));
  }
  info->data = nullptr;
  info->convert = nullptr;
  info->release = nullptr;
  return XML_STATUS_OK;
}

}  // namespace

const std::string* SourceElement::attr(std::string_view key) const {
  for (const auto& [k, v] : attrs) {
    if (k == key) return &v;
  }
  return nullptr;
}

XmlSourceReader::XmlSourceReader() : impl_(std::make_unique<Impl>()) {
  XML_Parser p = impl_->parser;
  XML_SetUserData(p, impl_.get());
  XML_SetElementHandler(p, OnStart, OnEnd);
  XML_SetEntityDeclHandler(p, OnEntityDecl);
  XML_SetUnknownEncodingHandler(p, OnUnknownEncoding, nullptr);
}

XmlSourceReader::~XmlSourceReader() {
  XML_ParserFree(impl_->parser);
}

bool XmlSourceReader::feed(std::string_view bytes, bool last) {
  Impl& d = *impl_;
  if (!d.source.error.empty()) return false;
  if (d.parser == nullptr) {
    d.source.error = "0: out of memory";
    return false;
  }
  // Expat takes int lengths; pieces are cut to fit.
  constexpr std::size_t kPiece = 1 << 24;
  do {
    const std::size_t n = std::min(bytes.size(), kPiece);
    const bool final = last && n == bytes.size();
    if (XML_Parse(d.parser, bytes.data(), static_cast<int>(n), final ? XML_TRUE : XML_FALSE) ==
        XML_STATUS_OK) {
      bytes.remove_prefix(n);
      continue;
    }
    if (!d.stopReason.empty()) {
      d.source.error = std::to_string(d.stopLine) + ": " + d.stopReason;
    } else {
      const XML_Error code = XML_GetErrorCode(d.parser);
      std::string reason = XML_ErrorString(code);
      if (code == XML_ERROR_UNKNOWN_ENCODING) {
        reason += " (read are UTF-8, UTF-16, ISO-8859-1, Windows-1252 and US-ASCII)";
      }
      d.source.error = std::to_string(XML_GetErrorLineNumber(d.parser)) + ": " + reason;
    }
    d.source.records.clear();
    return false;
  } while (!bytes.empty());
  return true;
}

SourceTree XmlSourceReader::take() {
  return std::move(impl_->source);
}

SourceTree ParseXmlSource(std::string_view bytes) {
  XmlSourceReader reader;
  reader.feed(bytes, true);
  return reader.take();
}

SourceTree ReadXmlSource(const std::filesystem::path& path) {
  SourceTree failed;
  std::FILE* file = nullptr;
  const OpenStatus status = OpenRegularFile(path, file);
  if (status != OpenStatus::kOpened) {
    failed.error = status == OpenStatus::kNotRegular ? "0: not a plain file" : "0: can't be read";
    return failed;
  }
  XmlSourceReader reader;
  std::vector<char> buffer(1 << 20);
  std::uintmax_t total = 0;
  bool going = true;
  while (going) {
    const std::size_t n = std::fread(buffer.data(), 1, buffer.size(), file);
    total += n;
    if (total > kMaxSourceBytes) {
      failed.error = "0: larger than 512 MB - not read";
      break;
    }
    if (n < buffer.size() && std::ferror(file)) {
      failed.error = "0: a read failed";
      break;
    }
    const bool last = n < buffer.size();
    going = reader.feed({buffer.data(), n}, last) && !last;
  }
  std::fclose(file);
  return failed.error.empty() ? reader.take() : failed;
}

}  // namespace velmora
