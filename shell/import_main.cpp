// velmora-import: airport sources or a simulator's scenery library into the data folder. Needs
// no fonts and no Qt.

#include <iostream>
#include <streambuf>
#include <string>

#include "data/platform.h"
#include "import/run.h"
#include "shell/data_dir.h"

namespace {

// Standard error on a terminal: the progress as one line written over itself, cleared before
// each message so that messages stand on lines of their own.
class ProgressLine : public std::streambuf {
 public:
  explicit ProgressLine(std::streambuf* out) : out_(out) {}
  void show(const velmora::ImportProgress& p) {
    const std::string text = std::string(p.step) + " file " + std::to_string(p.done + 1) + " of " +
                             std::to_string(p.total) + "...";
    put("\r" + text + std::string(shown_ > text.size() ? shown_ - text.size() : 0, ' '));
    shown_ = text.size();
  }
  void clear() {
    if (shown_ == 0) return;
    put("\r" + std::string(shown_, ' ') + "\r");
    shown_ = 0;
  }

 protected:
  int overflow(int c) override {
    if (c == traits_type::eof()) return 0;
    clear();
    return out_->sputc(static_cast<char>(c));
  }
  std::streamsize xsputn(const char* s, std::streamsize n) override {
    clear();
    return out_->sputn(s, n);
  }
  int sync() override { return out_->pubsync(); }

 private:
  void put(const std::string& s) {
    out_->sputn(s.data(), static_cast<std::streamsize>(s.size()));
    out_->pubsync();
  }
  std::streambuf* out_;
  std::size_t shown_ = 0;
};

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> args = velmora::CommandLineArgs(argc, argv);
  if (args.size() == 1 && (args[0] == "--help" || args[0] == "-h")) {
    std::cout << velmora::ImportUsage();
    return 0;
  }
  const std::filesystem::path dataDir =
      velmora::ChooseDataDir(velmora::ExecutableDir(), velmora::UserDataDir());
  auto options = velmora::ParseImportArgs(args, dataDir, std::cerr);
  if (!options) return 2;
  ProgressLine line(std::cerr.rdbuf());
  std::ostream err(&line);
  if (velmora::StderrIsTerminal()) {
    options->progress = [&](const velmora::ImportProgress& p) {
      line.show(p);
      return true;
    };
  }
  return velmora::RunImport(*options, err).status;
}
