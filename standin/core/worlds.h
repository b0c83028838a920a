#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

#include "base/image/picture.h"
#include "sdk/effect.h"
#include "standin/core/object_tracker.h"

namespace standin {

/// The host's images: 8 bits a channel, pixels as alpha, red, green, blue. Rows are longer than the
/// picture, and guard rows lie above and below it; both hold a pattern that must stay. Pixels start
/// with a pattern too, so that "never written" differs from "written as black".
class Worlds {
 public:
  explicit Worlds(ObjectTracker& tracker);
  Worlds(const Worlds&) = delete;
  Worlds& operator=(const Worlds&) = delete;
  ~Worlds();

  /// Whether the pixels of a new world start with the pattern (they do), or as the system gives
  /// them.
  void FillNew(bool fill) { fillsNew_ = fill; }
  /// Makes a world and fills `record` in. A negative size gives PF_Err_BAD_CALLBACK_PARAM, deep
  /// pixels too; more than kWorldLimit bytes give PF_Err_OUT_OF_MEMORY. `label` is for messages.
  PF_Err New(A_long width, A_long height, PF_NewWorldFlags flags, const std::string& label,
             PF_EffectWorld* record);
  /// Frees a world. The record itself stays as it is, so that a copy of it elsewhere is no better.
  PF_Err Dispose(const PF_EffectWorld* record, std::string_view who);
  /// A new world with the picture's pixels.
  PF_EffectWorld From(const tarvo::Picture& picture, const std::string& label);
  /// The pixels of a live world.
  [[nodiscard]] static tarvo::Picture ToPicture(const PF_EffectWorld& record);

  /// True iff the record names a live world and describes it as it was made; otherwise notes the
  /// violation.
  bool Check(const PF_EffectWorld* record, std::string_view who);
  [[nodiscard]] bool IsLive(const PF_EffectWorld& record) const {
    return tracker_.IsLive(Kind::kWorld, record.reserved0);
  }
  /// Notes a violation for every live world whose padding or guard rows have changed, and restores
  /// them.
  void CheckGuards(std::string_view command);
  /// Pixels of a live world that still hold the pattern they were made with.
  [[nodiscard]] static std::size_t Unwritten(const PF_EffectWorld& record);

  static constexpr std::size_t kWorldLimit = std::size_t{1} << 32U;

 private:
  struct World;

  void CheckGuards(World& world, std::string_view who);

  ObjectTracker& tracker_;
  bool fillsNew_ = true;
  std::unordered_map<const void*, std::unique_ptr<World>> worlds_;
};

}  // namespace standin
