#include "check/support/requirement.h"

#include <map>

namespace check {
namespace {

std::map<std::string, std::string>& Requirements() {
  static std::map<std::string, std::string> requirements;
  return requirements;
}

}  // namespace

Requirement::Requirement(const std::string& suite, const std::string& name,
                         const std::string& text) {
  Requirements()[suite + "." + name] = text;
}

std::string RequirementOf(const std::string& check) {
  const auto requirement = Requirements().find(check.substr(0, check.find('/')));
  return requirement == Requirements().end() ? "" : requirement->second;
}

}  // namespace check
