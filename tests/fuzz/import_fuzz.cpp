// The importer on any bytes: parse in the pieces the input's size picks, convert, write the
// reader's layout, and read every airport of it back with the airport file reader.

#include <cstddef>
#include <cstdint>

#include "data/extract.h"
#include "import/vor_merge.h"
#include "import/writer.h"
#include "import/xml_source.h"
#include "tests/fuzz/fuzz_input.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const velmora::fuzz::Input in = velmora::fuzz::Take(data, size);
  velmora::XmlSourceReader reader;
  std::string_view rest = in.bytes;
  while (rest.size() > in.chunk && reader.feed(rest.substr(0, in.chunk), false)) {
    rest.remove_prefix(in.chunk);
  }
  reader.feed(rest, true);
  const velmora::SourceTree source = reader.take();
  const velmora::ConvertedSource converted = velmora::ConvertSource(source, "fuzz");
  std::vector<std::vector<const velmora::NavaidText*>> copies(converted.airports.size());
  for (std::size_t i = 0; i < copies.size(); ++i) {
    for (const velmora::NavaidText& n : converted.navaids) copies[i].push_back(&n);
  }
  const std::string text = velmora::AirportFileText(converted, copies, converted.vors);
  for (const velmora::VorRecord& v : converted.vors) velmora::VorLine(v);
  static velmora::Store& store = *new velmora::Store;  // its tables are large
  for (const velmora::AirportText& a : converted.airports) {
    velmora::LineReader lines(in.chunk, velmora::fuzz::kMaxLine);
    lines.openMemory(text);
    velmora::ExtractArpt(store, lines, a.ident);
  }
  return 0;
}
