#include "shell/chart_options.h"

#include <algorithm>
#include <ostream>

#include "data/platform.h"

namespace velmora {
namespace {

struct StepVerb {
  std::string_view verb;
  StepKind kind;
  std::string_view value;  // the usage's name for the value; empty for a step without one
  // A missing value reads as a bad one rather than as an unknown step.
  bool colonOptional = false;
};

constexpr StepVerb kStepVerbs[] = {
    {"type", StepKind::kType, "TEXT"},
    {"search", StepKind::kSearch, ""},
    {"load", StepKind::kLoad, ""},
    {"pick", StepKind::kPick, "N", true},
    {"approach", StepKind::kApproach, "TEXT"},
    {"plus", StepKind::kPlus, ""},
    {"minus", StepKind::kMinus, ""},
    {"reset", StepKind::kReset, ""},
    {"click", StepKind::kClick, "X,Y", true},
    {"fit", StepKind::kFit, ""},
};

// The command line as read, before it is checked as a whole.
struct Given {
  ChartOptions options;
  std::string airport;  // codes joined by commas
  std::vector<ChartStep> steps;
};

struct Option {
  std::string_view name;
  // The usage's name for the value, empty for a switch; for a choice the values allowed,
  // joined by "|".
  std::string_view value;
  bool choice;
  // False, with a message on `err`, for a value that won't do.
  bool (*set)(Given& given, const std::string& value, std::ostream& err);
  // The value may be left out: the next argument is taken only when it is neither an option
  // nor a step.
  bool valueOptional = false;
};

bool SetScale(Given& g, const std::string& v, std::ostream& err) {
  double& scale = g.options.scale;
  if (ParseArgNumber(v, scale) && scale > 0 && scale <= 16) return true;
  err << "velmora-chart: --scale takes a number above 0 and up to 16\n";
  return false;
}

// The value, as given, into the member `M` of the options.
template <auto M>
bool Set(Given& g, const std::string& value, std::ostream&) {
  g.options.*M = value;
  return true;
}

// A switch: the member `M` becomes true.
template <bool ChartOptions::*M>
bool Switch(Given& g, const std::string&, std::ostream&) {
  g.options.*M = true;
  return true;
}

// A path member `M` from the UTF-8 text of the command line.
template <std::filesystem::path ChartOptions::*M>
bool SetPath(Given& g, const std::string& value, std::ostream&) {
  g.options.*M = PathFromUtf8(value);
  return true;
}

bool AddOut(Given& g, const std::string& value, std::ostream&) {
  g.options.outPaths.push_back(PathFromUtf8(value));
  return true;
}

// "--profile FILE" writes the profile; a bare "--profile" puts strips on a kit's pages.
bool SetProfile(Given& g, const std::string& value, std::ostream&) {
  if (value.empty()) {
    g.options.profileStrips = true;
  } else {
    g.options.profilePath = PathFromUtf8(value);
  }
  return true;
}

bool SetAirports(Given& g, const std::string& value, std::ostream&) {
  g.airport = value;
  return true;
}

const Option kOptions[] = {
    {"--data", "DIR", false, SetPath<&ChartOptions::dataDir>},
    {"--trace", "FILE", false, SetPath<&ChartOptions::tracePath>},
    {"--state", "FILE", false, SetPath<&ChartOptions::statePath>},
    {"--out", "FILE", false, AddOut},
    {"--scale", "F", false, SetScale},
    {"--airport", "CODE", false, SetAirports},
    {"--approach", "TEXT", false, Set<&ChartOptions::approach>},
    {"--page", "a4|letter|a5", true, Set<&ChartOptions::page>},
    {"--format", "png|svg", true, Set<&ChartOptions::format>},
    {"--all-approaches", "", false, Switch<&ChartOptions::allApproaches>},
    {"--fit", "", false, Switch<&ChartOptions::fit>},
    {"--profile", "FILE", false, SetProfile, true},
    {"--profile-json", "FILE", false, SetPath<&ChartOptions::profileJsonPath>},
    {"--help", "", false, Switch<&ChartOptions::help>},
    {"-h", "", false, Switch<&ChartOptions::help>},
    {"--version", "", false, Switch<&ChartOptions::version>},
};

const Option* FindOption(std::string_view name) {
  for (const Option& o : kOptions) {
    if (o.name == name) return &o;
  }
  return nullptr;
}

// The values of a choice: "a4|letter|a5".
std::vector<std::string_view> Choices(std::string_view value) {
  std::vector<std::string_view> choices;
  for (std::size_t from = 0;;) {
    const std::size_t bar = value.find('|', from);
    choices.push_back(value.substr(from, bar - from));
    if (bar == std::string_view::npos) return choices;
    from = bar + 1;
  }
}

// "a4, letter or a5".
std::string ChoiceList(std::string_view value) {
  const std::vector<std::string_view> choices = Choices(value);
  std::string text;
  for (std::size_t i = 0; i < choices.size(); ++i) {
    if (i > 0) text += i + 1 == choices.size() ? " or " : ", ";
    text += choices[i];
  }
  return text;
}

// "--data DIR"; "[--data DIR]" when `optional`.
std::string Synopsis(std::string_view name, bool optional = true) {
  const Option& o = *FindOption(name);
  std::string text(o.name);
  if (!o.value.empty()) text += " " + std::string(o.value);
  return optional ? "[" + text + "]" : text;
}

std::string StepsSynopsis() {
  std::string text;
  for (const StepVerb& s : kStepVerbs) {
    if (!text.empty()) text += ' ';
    text += s.verb;
    if (!s.value.empty()) text += ":" + std::string(s.value);
  }
  return text;
}

// Empty, or the message for a command line that can't be run; `withUsage` says whether the
// usage follows it.
struct Problem {
  std::string message;
  bool withUsage = true;
};

std::optional<Problem> CheckProfile(const ChartOptions& o) {
  if (o.allApproaches && !o.profilePath.empty()) {
    return Problem{"--profile takes no FILE in a kit: each approach page gets the profile strip"};
  }
  if (o.allApproaches && !o.profileJsonPath.empty()) {
    return Problem{"--profile-json writes one approach's profile: give --approach, not a kit"};
  }
  if (!o.allApproaches && o.profileStrips) {
    return Problem{"--profile needs a FILE (.png, .svg or .pdf), or --all-approaches for a kit"};
  }
  return std::nullopt;
}

std::optional<Problem> CheckAirports(const Given& g, ChartOptions& o) {
  const ChartOptions& in = g.options;
  if (g.airport.empty() && g.steps.empty())
    return Problem{"nothing to do: give --airport or steps"};
  if (!in.approach.empty() && g.airport.empty())
    return Problem{"--approach needs --airport", false};
  for (std::size_t from = 0; !g.airport.empty();) {
    const std::size_t comma = g.airport.find(',', from);
    o.airports.push_back(g.airport.substr(from, comma - from));
    if (o.airports.back().empty())
      return Problem{"--airport: an empty code in '" + g.airport + "'"};
    if (comma == std::string::npos) break;
    from = comma + 1;
  }
  if (o.allApproaches) {
    if (o.airports.empty()) return Problem{"--all-approaches needs --airport"};
    if (!in.approach.empty() || !g.steps.empty()) {
      return Problem{"--all-approaches takes no --approach and no steps"};
    }
    if (o.outPaths.size() != 1) return Problem{"--all-approaches needs one --out, a .pdf or DIR/"};
  }
  if (o.airports.size() > 1 && !o.allApproaches) {
    return Problem{"several airports make a kit: add --all-approaches"};
  }
  return CheckProfile(o);
}

// Reads one option at `i` (and its value); a problem for one that can't be read.
std::optional<Problem> ReadOption(const std::vector<std::string>& args, std::size_t& i, Given& g,
                                  std::ostream& err) {
  const std::string& name = args[i];
  const Option* option = FindOption(name);
  if (option == nullptr) return Problem{"unknown option " + name};
  std::string value;
  const bool valueGiven = i + 1 < args.size() && !args[i + 1].starts_with("-") &&
                          ParseStep(args[i + 1]).kind == StepKind::kUnknown;
  if (!option->value.empty() && (!option->valueOptional || valueGiven)) {
    if (i + 1 == args.size()) return Problem{name + " needs a value"};
    value = args[++i];
    if (option->choice) {
      const auto choices = Choices(option->value);
      if (std::find(choices.begin(), choices.end(), value) == choices.end()) {
        return Problem{name + " takes " + ChoiceList(option->value)};
      }
    }
  }
  if (!option->set(g, value, err)) return Problem{{}, false};
  return std::nullopt;
}

}  // namespace

ChartStep ParseStep(std::string_view text) {
  const std::size_t colon = text.find(':');
  const std::string_view verb = text.substr(0, colon);
  ChartStep step{StepKind::kUnknown, std::string(text), {}};
  if (colon != std::string_view::npos) step.value = text.substr(colon + 1);
  for (const StepVerb& s : kStepVerbs) {
    if (s.verb != verb) continue;
    const bool hasColon = colon != std::string_view::npos;
    if (s.value.empty() ? !hasColon : hasColon || s.colonOptional) step.kind = s.kind;
  }
  return step;
}

std::optional<ChartOptions> ParseChartArgs(const std::vector<std::string>& args,
                                           const std::filesystem::path& exeDir, std::ostream& err) {
  Given g;
  g.options.dataDir = exeDir;
  const auto fail = [&](const Problem& p) {
    if (!p.message.empty()) err << "velmora-chart: " << p.message << "\n";
    if (p.withUsage) err << ChartUsage();
    return std::nullopt;
  };
  for (std::size_t i = 0; i < args.size(); ++i) {
    // "-h" is the one option with a single dash; anything else not "--" is a step.
    if (!args[i].starts_with("--") && FindOption(args[i]) == nullptr) {
      g.steps.push_back(ParseStep(args[i]));
      continue;
    }
    if (const auto problem = ReadOption(args, i, g, err)) return fail(*problem);
    if (g.options.help || g.options.version) return g.options;
  }
  ChartOptions o = g.options;
  if (const auto problem = CheckAirports(g, o)) return fail(*problem);
  o.steps = std::move(g.steps);
  return o;
}

std::string ChartUsage() {
  return "usage: velmora-chart " + Synopsis("--data") + " " + Synopsis("--trace") + " " +
         Synopsis("--state") + " " + Synopsis("--out") + "...\n                     " +
         Synopsis("--scale") + " " + Synopsis("--fit") + " " + Synopsis("--profile") + " " +
         Synopsis("--profile-json") + "\n                     [" + Synopsis("--airport", false) +
         " " + Synopsis("--approach") + "] STEP...\n       velmora-chart " +
         Synopsis("--airport", false) + "[,CODE...] " + Synopsis("--all-approaches", false) +
         " --out kit.pdf|DIR/\n                     " + Synopsis("--page") + " " +
         Synopsis("--format") + " " + Synopsis("--fit") + " [--profile]" +
         "\n       velmora-chart --help | --version\n"
         "steps: " +
         StepsSynopsis() +
         "\n"
         "FILE '-' is standard output; --out writes .png, .svg or .pdf\n"
         "--all-approaches: each airport's sheet, then one page per approach, in list order\n"
         "--fit: each approach at the closest zoom that holds all its fixes\n"
         "--profile: the picked approach's descent profile as a picture (.png, .svg, .pdf);\n"
         "           in a kit, a profile strip under the plan of every approach page\n"
         "--profile-json: the picked approach's profile for other programs ('-' to stdout)\n"
         "exit status: 0 done, 1 airport not found or an output not written,\n"
         "             2 bad command line or a step that can't be run\n";
}

std::string ChartVersion() {
  return "velmora-chart " VELMORA_VERSION "\n";
}

}  // namespace velmora
