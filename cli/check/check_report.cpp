#include "cli/check/check_report.h"

#include <algorithm>
#include <iomanip>
#include <ostream>
#include <sstream>

#include <nlohmann/json.hpp>

#include "base/files/escaped_text.h"

namespace tarvo {
namespace {

using check::Name;
using check::Result;

constexpr check::Outcome kOutcomes[] = {check::Outcome::kFailed, check::Outcome::kCrashed,
                                        check::Outcome::kTimedOut, check::Outcome::kPassed,
                                        check::Outcome::kSkipped};

std::string Indented(const std::string& text) {
  constexpr const char* kIndent = "    ";
  std::string lines = kIndent;
  for (const char letter : text) {
    lines += letter;
    if (letter == '\n') {
      lines += kIndent;
    }
  }
  lines += '\n';
  return lines;
}

std::string TextOf(const Result& result) {
  std::ostringstream text;
  text << std::left << std::setw(10) << Name(result.outcome) << std::right << std::fixed
       << std::setprecision(2) << std::setw(7) << result.seconds << " s  " << result.name << '\n';
  if (check::IsBad(result.outcome)) {
    text << Indented("requirement: " + result.requirement);
  }
  for (const std::string& message : result.messages) {
    text << Indented(message);
  }
  for (const auto& [what, figure] : result.figures) {
    text << "    " << what << ": " << figure << '\n';
  }
  return text.str();
}

std::string Joined(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) {
    text += (text.empty() ? "" : "\n") + line;
  }
  return text;
}

/// The element of JUnit's that says how a check ended; none for one that passed.
std::string ElementOf(check::Outcome outcome) {
  switch (outcome) {
    case check::Outcome::kPassed:
      return "";
    case check::Outcome::kSkipped:
      return "skipped";
    case check::Outcome::kFailed:
      return "failure";
    default:
      return "error";
  }
}

std::string TestCase(const Result& result) {
  const std::size_t dot = result.name.find('.');
  std::ostringstream text;
  text << "  <testcase classname=\"" << ForXml(result.name.substr(0, dot)) << "\" name=\""
       << ForXml(result.name.substr(dot + 1)) << "\" time=\"" << result.seconds << "\">";
  if (!result.figures.empty()) {
    text << "<properties>";
    for (const auto& [what, figure] : result.figures) {
      text << "<property name=\"" << ForXml(what) << "\" value=\"" << ForXml(figure) << "\"/>";
    }
    text << "</properties>";
  }
  if (const std::string element = ElementOf(result.outcome); !element.empty()) {
    text << "<" << element << " message=\"" << ForXml(Name(result.outcome)) << "\">"
         << ForXml(Joined(result.messages)) << "</" << element << ">";
  }
  text << "</testcase>\n";
  return text.str();
}

}  // namespace

void CheckReport::Take(const Result& result) {
  results_.push_back(result);
  if (!json_) {
    console_.out << LinesForTerminal(TextOf(result)) << std::flush;
  }
}

std::size_t CheckReport::Count(check::Outcome outcome) const {
  return static_cast<std::size_t>(std::ranges::count(results_, outcome, &Result::outcome));
}

bool CheckReport::IsConformant() const {
  return Count(check::Outcome::kPassed) != 0 &&
         std::ranges::none_of(results_, check::IsBad, &Result::outcome);
}

std::string CheckReport::Verdict() const {
  if (!notLoaded_.empty()) {
    return notLoaded_;
  }
  if (Count(check::Outcome::kSkipped) == results_.size()) {
    return "not conformant: nothing was checked, " + std::to_string(results_.size()) + " skipped";
  }
  if (IsConformant()) {
    const std::size_t passed = Count(check::Outcome::kPassed);
    return "conformant: " + std::to_string(passed) + (passed == 1 ? " check" : " checks") +
           " passed, " + std::to_string(Count(check::Outcome::kSkipped)) + " skipped";
  }
  std::string text;
  for (const check::Outcome outcome : kOutcomes) {
    if (const std::size_t count = Count(outcome); count != 0) {
      text +=
          (text.empty() ? "not conformant: " : ", ") + std::to_string(count) + " " + Name(outcome);
    }
  }
  return text;
}

std::string CheckReport::Json() const {
  nlohmann::ordered_json json{{"plugin", plugin_},
                              {"seed", seed_},
                              {"conformant", IsConformant()},
                              {"verdict", Verdict()},
                              {"checks", nlohmann::ordered_json::array()}};
  for (const Result& result : results_) {
    json["checks"].push_back(check::ToJson(result));
  }
  return json.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
}

int CheckReport::End() const {
  if (json_) {
    console_.out << Json();
  }
  const bool isLoaded = notLoaded_.empty();
  if (json_ || !isLoaded) {
    console_.err << LinesForTerminal(Verdict()) << std::endl;
  } else {
    PrintResult(console_, LinesForTerminal(Verdict()) + "\n");
  }
  if (!isLoaded) {
    return kCannotRun;
  }
  return IsConformant() ? kMade : kNotConformant;
}

std::string CheckReport::JUnit() const {
  const auto counted = [](const char* what, std::size_t count) {
    return " " + std::string(what) + "=\"" + std::to_string(count) + "\"";
  };
  const std::size_t notLoaded = notLoaded_.empty() ? 0 : 1;
  const std::size_t errors = Count(check::Outcome::kCrashed) + Count(check::Outcome::kTimedOut);
  std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuite name=\"tarvo check\"" +
                     counted("tests", results_.size() + notLoaded) +
                     counted("failures", Count(check::Outcome::kFailed)) +
                     counted("errors", errors + notLoaded) +
                     counted("skipped", Count(check::Outcome::kSkipped)) + ">\n";
  if (notLoaded != 0) {
    text += R"(  <testcase classname="Build" name="CanBeLoaded"><error message=")" +
            ForXml(notLoaded_) + "\"/></testcase>\n";
  }
  for (const Result& result : results_) {
    text += TestCase(result);
  }
  return text + "</testsuite>\n";
}

}  // namespace tarvo
