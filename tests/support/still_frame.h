#pragma once

#include <vector>

#include "plugin/host/host_calls.h"
#include "plugin/host/parameters.h"
#include "plugin/render/frame.h"

namespace check {

/// A frame as a render call makes it, for stages that are called by themselves. Until it is changed
/// it is without pieces, at full resolution and with its origin at the layer's corner; it says what
/// the public members say when it is made.
class StillFrame {
 public:
  explicit StillFrame(const PF_InData& input) : in(input), host_(in.pica_basicP) {
    for (PF_ParamDef& definition : parameters) {
      pointers_.push_back(&definition);
    }
  }

  /// Must not outlive this object.
  plugin::Frame Make() { return {in, out_, pointers_.data(), output, host_, scene}; }

  PF_InData in;
  PF_EffectWorld output{};
  plugin::Scene scene;
  std::vector<PF_ParamDef> parameters = std::vector<PF_ParamDef>(plugin::PARAM_COUNT);

 private:
  PF_OutData out_{};
  std::vector<PF_ParamDef*> pointers_;
  plugin::HostCalls host_;
};

}  // namespace check
