#include "standin/core/argument_formatter.h"

#include <array>
#include <cstdio>
#include <string_view>

namespace standin {
namespace {

constexpr std::size_t kLongestQuote = 120;

std::string Quoted(const A_char* text) {
  if (text == nullptr) {
    return "null";
  }
  const std::string_view whole(text);
  return '"' + std::string(whole.substr(0, kLongestQuote)) +
         (whole.size() > kLongestQuote ? "…\"" : "\"");
}

}  // namespace

std::string ArgumentFormatter::operator()(const A_char* text) const { return Quoted(text); }

std::string ArgumentFormatter::operator()(A_char* text) const {
  return done_ ? Quoted(text) : "out";
}

std::string ArgumentFormatter::operator()(const PF_EffectWorld* world) const {
  return world == nullptr ? "null" : done_ ? tracker_.Describe(world->reserved0) : "a world";
}

std::string ArgumentFormatter::operator()(const PF_Rect* area) const {
  return area == nullptr
             ? "all"
             : "(" + std::to_string(area->left) + ", " + std::to_string(area->top) + ", " +
                   std::to_string(area->right) + ", " + std::to_string(area->bottom) + ")";
}

std::string ArgumentFormatter::operator()(const PF_Pixel* colour) const {
  return colour == nullptr ? "transparent" : "a colour";
}

std::string ArgumentFormatter::operator()(const A_Time* time) const {
  return time == nullptr ? "null"
                         : std::to_string(time->value) + "/" + std::to_string(time->scale) + " s";
}

std::string ArgumentFormatter::operator()(const AEGP_StreamValue2* value) const {
  return value == nullptr ? "null" : done_ ? (*this)(value->val.one_d) : "a value";
}

std::string ArgumentFormatter::operator()(const PF_ParamDef* definition) const {
  return definition == nullptr ? "null" : Quoted(definition->name);
}

std::string ArgumentFormatter::operator()(const AEGP_ErrReportState* state) const {
  return state == nullptr ? "null" : "state";
}

std::string ArgumentFormatter::operator()(double value) const {
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%.9g", value);
  return text.data();
}

}  // namespace standin
