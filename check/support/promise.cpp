#include "check/support/promise.h"

#include <map>

namespace check {
namespace {

std::map<std::string, std::string>& Promises() {
  static std::map<std::string, std::string> promises;
  return promises;
}

}  // namespace

Promise::Promise(const std::string& suite, const std::string& name, const std::string& text) {
  Promises()[suite + "." + name] = text;
}

std::string PromiseOf(const std::string& check) {
  const auto promise = Promises().find(check.substr(0, check.find('/')));
  return promise == Promises().end() ? "" : promise->second;
}

}  // namespace check
