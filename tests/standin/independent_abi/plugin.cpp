#include "plugin.h"

#include <cstring>
#include <utility>

#include "calls.h"

namespace independent_abi {
namespace {

using A_long = std::int32_t;

/// A command's records.
struct Call {
  void* in;
  void* out;
  void* const* parameters;
  void* output;
  void* extra;
};

/// What the host says in every command to an instance.
void CheckInput(const void* in) {
  Expect(in, "in_data",
         {{192, 1, "quality"},
          {200, 0, "serial_num"},
          {208, 4, "num_params"},
          {212, 0, "reserved"},
          {228, 1, "time_step"},
          {232, 250, "total_time"},
          {236, 1, "local_time_step"},
          {240, 25, "time_scale"},
          {244, 0, "field"},
          {252, 40, "width"},
          {256, 20, "height"},
          {260, 0, "extent_hint.left"},
          {264, 0, "extent_hint.top"},
          {300, 1, "pixel_aspect_ratio.num"},
          {304, 1, "pixel_aspect_ratio.den"},
          {308, 0, "in_flags"}});
  HOLDS(Read<void*>(in, 312) == session.globalData);
  HOLDS(Read<void*>(in, 320) == session.sequenceData);
}

/// Of commands that are not for a frame, which are at full resolution.
void CheckWholeLayer(const void* in) {
  CheckInput(in);
  Expect(in, "in_data",
         {{268, 40, "extent_hint.right"},
          {272, 20, "extent_hint.bottom"},
          {284, 1, "downsample_x.num"},
          {288, 1, "downsample_x.den"},
          {292, 1, "downsample_y.num"},
          {296, 1, "downsample_y.den"}});
}

void CheckFrame(const void* in) {
  CheckInput(in);
  Expect(in, "in_data",
         {{224, 9, "current_time"},
          {268, 20, "extent_hint.right"},
          {272, 5, "extent_hint.bottom"},
          {284, 3, "downsample_x.num"},
          {288, 2, "downsample_x.den"},
          {292, 3, "downsample_y.num"},
          {296, 4, "downsample_y.den"},
          {392, 6, "pre_effect_source_origin_x"},
          {396, 7, "pre_effect_source_origin_y"}});
}

/// The values as the users left them.
void CheckParameters(const Call& call, double slider, A_long popup) {
  const auto at = [&](std::size_t index) { return Read<void*>(call.parameters, index * kPointer); };
  Expect(at(0), "parameter 0", {{12, 0, "param_type"}});
  Expect(at(1), "parameter 1", {{12, 10, "param_type"}, {0, 11, "id"}, {48, 64, "flags"}});
  Expect(at(2), "parameter 2", {{12, 4, "param_type"}, {0, 12, "id"}, {56, 1, "value"}});
  Expect(at(3), "parameter 3", {{12, 7, "param_type"}, {0, 13, "id"}, {56, popup, "value"}});
  HOLDS(Read<double>(at(1), 56) == slider);
  // This host keeps the records one behind another, so that their distance is their size.
  HOLDS(Read<std::intptr_t>(call.parameters, 16) - Read<std::intptr_t>(call.parameters, 8) == 176);
}

// The commands.

A_long SetUpGlobal(const Call& call) {
  session.globalData = NewHandle(8);
  Expect(call.in, "in_data", {{196, 13 | 7 << 16, "version"}, {208, 0, "num_params"}});
  HOLDS(Read<void*>(call.in, 312) == nullptr);
  Write(call.out, 0, std::uint32_t{0x0012'3456});
  Write(call.out, 40, session.globalData);
  Write(call.out, 96, A_long{1 << 26});
  Write(call.out, 400, A_long{0x1234});
  return 0;
}

struct Bytes {
  Bytes(A_long type, A_long id, const char* name) {
    Write(record.bytes, 0, id);
    Write(record.bytes, 4, A_long{8});
    Write(record.bytes, 8, std::int16_t{21});
    Write(record.bytes, 10, std::int16_t{22});
    Write(record.bytes, 12, type);
    WriteText(record.bytes, 16, name);
    Write(record.bytes, 48, A_long{64});
    Write(record.bytes, 52, A_long{23});
  }

  /// Sets a field of the type's own part.
  template <typename Value>
  Bytes& With(std::size_t byte, Value value) {
    Write(record.bytes, 56 + byte, value);
    return *this;
  }

  Record<176> record;
};

A_long DeclareParameters(const Call& call) {
  Bytes slider(10, 11, "Slider");
  slider.With(0, 1.5).With(8, 0.25);
  WriteText(slider.record.bytes, 56 + 16, "described");
  slider.With(48, -8.0F).With(52, 9.0F).With(56, -4.0F).With(60, 5.0F).With(64, 1.25F);
  slider.With(68, std::int16_t{2}).With(70, std::int16_t{3}).With(72, A_long{4});
  slider.With(76, 0.5F).With(80, std::uint8_t{1}).With(84, 2.0F);
  Bytes checkbox(4, 12, "Checkbox");
  checkbox.With(0, A_long{1}).With(4, std::uint8_t{1}).With(5, std::uint8_t{2});
  checkbox.With(6, std::int16_t{3}).With(8, "checked");
  Bytes popup(7, 13, "Popup");
  popup.With(0, A_long{2}).With(4, std::int16_t{3}).With(6, std::int16_t{2}).With(8, "A|B|C");
  for (Bytes* parameter : {&slider, &checkbox, &popup}) {
    const Slot add{call.in, 16};
    HOLDS(add.Call<A_long>(session.effect, A_long{-1}, parameter->record.Text()) == 0);
    ExpectOperation("add_param");
  }
  Write(call.out, 48, A_long{4});
  return 0;
}

A_long SetUpSequence(const Call& call) {
  session.sequenceData = NewHandle(8);
  Write(call.out, 56, session.sequenceData);
  return 0;
}

/// The copy's data is the host's copy of the original's.
A_long SetUpSequenceAgain(const Call& call) {
  session.sequenceData = Read<void*>(call.in, 320);
  CheckWholeLayer(call.in);
  return 0;
}

A_long SetDownSequence(const Call& call) {
  DisposeOfHandle(Read<void*>(call.in, 320));
  for (const auto& [record, byte] : {std::pair(call.in, 320), std::pair(call.out, 56)}) {
    Write(record, static_cast<std::size_t>(byte), static_cast<void*>(nullptr));
  }
  return 0;
}

A_long SetDownGlobal(const Call& call) {
  DisposeOfHandle(session.globalData);
  Write(call.in, 312, static_cast<void*>(nullptr));
  Write(call.out, 40, static_cast<void*>(nullptr));
  return 0;
}

A_long AnswerGeneral(const Call& call) {
  CheckWholeLayer(call.in);
  if (call.extra == &session.nested) {
    ++session.nested;
    return 0;
  }
  CheckParameters(call, 1.5, 2);
  CallEverything(call.in);
  return 0;
}

A_long FollowUser(const Call& call) {
  CheckWholeLayer(call.in);
  Expect(call.extra, "PF_UserChangedParamExtra", {{0, 3, "param_index"}});
  CheckParameters(call, 2.5, 3);
  return 0;
}

A_long SetUpFrame(const Call& call) {
  CheckFrame(call.in);
  Expect(call.in, "in_data", {{276, 0, "output_origin_x"}, {280, 0, "output_origin_y"}});
  Expect(call.out, "out_data", {{80, 20, "width"}, {84, 5, "height"}});
  const A_long answer[] = {4, 3, -2, 5};  // width, height, origin
  std::memcpy(static_cast<std::uint8_t*>(call.out) + 80, answer, sizeof answer);
  return 0;
}

A_long Render(const Call& call) {
  CheckFrame(call.in);
  Expect(call.in, "in_data", {{276, -2, "output_origin_x"}, {280, 5, "output_origin_y"}});
  Expect(call.output, "output",
         {{16, 2, "world_flags"},
          {36, 4, "width"},
          {40, 3, "height"},
          {52, 4, "extent_hint.right"},
          {56, 3, "extent_hint.bottom"}});
  const std::uint8_t* layer = Read<const std::uint8_t*>(call.parameters, 0) + 56;
  Expect(layer, "the input layer", {{36, 20, "width"}, {40, 5, "height"}});
  HOLDS(Read<void*>(layer, 24) != nullptr);
  auto* pixels = Read<std::uint8_t*>(call.output, 24);
  const auto row = static_cast<std::size_t>(Read<A_long>(call.output, 32));
  const std::uint8_t pixel[] = {255, 2, 3, 4};  // alpha, red, green, blue
  std::memcpy(pixels + 2 * row + 4, pixel, sizeof pixel);
  return 0;
}

A_long TellAbout(const Call& call) {
  WriteText(call.out, 100, "about");
  Write(call.out, 96, A_long{1 << 8});
  return 0;
}

A_long Answer(A_long command, const Call& call) {
  switch (command) {
    case 0:
      return TellAbout(call);
    case 1:
      return SetUpGlobal(call);
    case 3:
      return SetDownGlobal(call);
    case 4:
      return DeclareParameters(call);
    case 5:
      return SetUpSequence(call);
    case 6:
      return SetUpSequenceAgain(call);
    case 8:
      return SetDownSequence(call);
    case 10:
      return SetUpFrame(call);
    case 11:
      return Render(call);
    case 12:
      CheckFrame(call.in);
      return 0;
    case 13:
      return FollowUser(call);
    case 14:
      CheckWholeLayer(call.in);
      return 0;
    case 17:
      return AnswerGeneral(call);
    default:
      return 0;
  }
}

}  // namespace

void Begin(Observer observer) {
  session = {};
  session.observer = std::move(observer);
}

const std::vector<std::string>& Findings() { return session.findings; }

const std::vector<std::int32_t>& Commands() { return session.commands; }

std::int32_t EntryPoint(std::int32_t command, void* in, void* out, void* const* parameters,
                        void* output, void* extra) {
  session.commands.push_back(command);
  session.effect = Read<void*>(in, 184);
  session.utilities = Read<void*>(in, 176);
  session.basic = Read<void*>(in, 384);
  session.parameters = parameters;
  session.observer.operations();
  HOLDS(session.effect != nullptr && session.utilities != nullptr && session.basic != nullptr);
  if (!session.findings.empty()) {
    return 0;
  }
  return Answer(command, {in, out, parameters, output, extra});
}

}  // namespace independent_abi
