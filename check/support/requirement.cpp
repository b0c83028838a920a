#include "check/support/requirement.h"

#include <map>

namespace check {
namespace {

std::map<std::string, std::string>& Promises() {
  static std::map<std::string, std::string> requirements;
  return requirements;
}

}  // namespace

Requirement::Requirement(const std::string& suite, const std::string& name,
                         const std::string& text) {
  Promises()[suite + "." + name] = text;
}

std::string RequirementOf(const std::string& check) {
  const auto requirement = Promises().find(check.substr(0, check.find('/')));
  return requirement == Promises().end() ? "" : requirement->second;
}

}  // namespace check
