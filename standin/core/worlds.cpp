#include "standin/core/worlds.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <new>
#include <utility>

#include "standin/core/pixels.h"

namespace standin {
namespace {

constexpr std::uint8_t kGuard = 0x5A;
constexpr PF_Pixel kUnwritten{0xC3, 0x81, 0x3C, 0x7E};
constexpr std::size_t kPadding = 24;  // bytes after each row, not a multiple of 16 on purpose

bool Same(PF_Pixel a, PF_Pixel b) {
  return a.alpha == b.alpha && a.red == b.red && a.green == b.green && a.blue == b.blue;
}

bool AllGuard(const std::uint8_t* bytes, std::size_t count) {
  // Each byte is compared with its neighbour: after every command all rows of all worlds are looked
  // at.
  return count == 0 || (bytes[0] == kGuard && std::memcmp(bytes, bytes + 1, count - 1) == 0);
}

}  // namespace

// In memory: a guard row, `height` rows with their padding, a guard row.
struct Worlds::World {
  [[nodiscard]] std::size_t RowBytes() const { return static_cast<std::size_t>(record.rowbytes); }
  [[nodiscard]] std::size_t PixelBytes() const {
    return static_cast<std::size_t>(record.width) * sizeof(PF_Pixel);
  }
  [[nodiscard]] std::size_t Rows() const { return static_cast<std::size_t>(record.height); }
  [[nodiscard]] std::uint8_t* Row(std::size_t row) const {
    return memory.get() + RowBytes() * (row + 1);
  }

  [[nodiscard]] std::uint8_t* Padding(std::size_t row) const { return Row(row) + PixelBytes(); }
  [[nodiscard]] std::size_t PaddingBytes() const { return RowBytes() - PixelBytes(); }

  void SetGuards() const {
    std::memset(memory.get(), kGuard, RowBytes());
    std::memset(Row(Rows()), kGuard, RowBytes());
    for (std::size_t row = 0; row < Rows(); ++row) {
      std::memset(Padding(row), kGuard, PaddingBytes());
    }
  }

  std::unique_ptr<std::uint8_t[]> memory;
  PF_EffectWorld record{};
};

Worlds::Worlds(ObjectTracker& tracker) : tracker_(tracker) {}

Worlds::~Worlds() = default;

PF_Err Worlds::New(A_long width, A_long height, PF_NewWorldFlags flags, const std::string& label,
                   PF_EffectWorld* record) {
  if (record == nullptr || width < 0 || height < 0 || (flags & PF_NewWorldFlag_DEEP_PIXELS) != 0) {
    return PF_Err_BAD_CALLBACK_PARAM;
  }
  const std::size_t rowBytes = static_cast<std::size_t>(width) * sizeof(PF_Pixel) + kPadding;
  const std::size_t bytes = rowBytes * (static_cast<std::size_t>(height) + 2);
  auto world = std::make_unique<World>();
  if (bytes <= kWorldLimit) {
    world->memory.reset(new (std::nothrow) std::uint8_t[bytes]);
  }
  if (!world->memory) {
    tracker_.NoteOutOfMemory();
    return PF_Err_OUT_OF_MEMORY;
  }
  world->record.world_flags = PF_WorldFlag_WRITEABLE;
  world->record.rowbytes = static_cast<A_long>(rowBytes);
  world->record.width = width;
  world->record.height = height;
  world->record.extent_hint = {.left = 0, .top = 0, .right = width, .bottom = height};
  world->record.pix_aspect_ratio = {.num = 1, .den = 1};
  world->record.data = reinterpret_cast<PF_Pixel*>(world->Row(0));
  const std::string described = label + " " + std::to_string(width) + "x" + std::to_string(height);
  const void* name = tracker_.Issue(Kind::kWorld, described, world.get());
  world->record.reserved0 = const_cast<void*>(name);
  if ((flags & PF_NewWorldFlag_CLEAR_PIXELS) != 0) {
    FillPixels(world->record, nullptr, {});
  } else if (fillsNew_) {
    FillPixels(world->record, nullptr, kUnwritten);
  }
  world->SetGuards();
  *record = world->record;
  tracker_.AddBytes(world->PixelBytes() * world->Rows());
  worlds_[name] = std::move(world);
  return PF_Err_NONE;
}

PF_Err Worlds::Dispose(const PF_EffectWorld* record, std::string_view who) {
  const auto found = Check(record, who) ? worlds_.find(record->reserved0) : worlds_.end();
  if (found == worlds_.end()) {
    return PF_Err_BAD_CALLBACK_PARAM;
  }
  CheckGuards(*found->second, who);
  tracker_.Remove(Kind::kWorld, record->reserved0, who);
  tracker_.SubtractBytes(found->second->PixelBytes() * found->second->Rows());
  worlds_.erase(found);
  return PF_Err_NONE;
}

PF_EffectWorld Worlds::From(const tarvo::Picture& picture, const std::string& label) {
  PF_EffectWorld record{};
  if (New(picture.width, picture.height, PF_NewWorldFlag_NONE, label, &record) != PF_Err_NONE) {
    throw std::bad_alloc();
  }
  auto pixels = picture.pixels.begin();
  for (A_long y = 0; y < record.height; ++y, pixels += picture.width) {
    std::transform(pixels, pixels + picture.width, RowOf(record, y), [](tarvo::Rgba pixel) {
      return PF_Pixel{pixel.alpha, pixel.red, pixel.green, pixel.blue};
    });
  }
  return record;
}

tarvo::Picture Worlds::ToPicture(const PF_EffectWorld& record) {
  tarvo::Picture picture(record.width, record.height);
  auto pixels = picture.pixels.begin();
  for (A_long y = 0; y < record.height; ++y, pixels += record.width) {
    const PF_Pixel* row = RowOf(record, y);
    std::transform(row, row + record.width, pixels, [](PF_Pixel pixel) {
      return tarvo::Rgba{pixel.red, pixel.green, pixel.blue, pixel.alpha};
    });
  }
  return picture;
}

bool Worlds::Check(const PF_EffectWorld* record, std::string_view who) {
  if (record == nullptr) {
    tracker_.ReportViolation(std::string(who) + " was given no world");
    return false;
  }
  const auto* world = tracker_.Find<World>(Kind::kWorld, record->reserved0, who);
  if (world == nullptr) {
    return false;
  }
  const PF_EffectWorld& made = world->record;
  if (record->data != made.data || record->rowbytes != made.rowbytes ||
      record->width != made.width || record->height != made.height) {
    tracker_.ReportViolation(
        std::string(who) + " was given a changed record of " +
        tracker_.Describe(record->reserved0) +
        "; its pixels, rowbytes, width and height were expected as they were made");
    return false;
  }
  return true;
}

void Worlds::CheckGuards(std::string_view command) {
  for (auto& [name, world] : worlds_) {
    CheckGuards(*world, command);
  }
}

void Worlds::CheckGuards(World& world, std::string_view who) {
  const auto report = [&](const std::string& place) {
    tracker_.ReportViolation(std::string(who) + ": " + tracker_.Describe(world.record.reserved0) +
                             " was written " + place);
  };
  const std::size_t violations = tracker_.Violations().size();
  if (!AllGuard(world.memory.get(), world.RowBytes())) {
    report("above its first row");
  }
  if (!AllGuard(world.Row(world.Rows()), world.RowBytes())) {
    report("below its last row");
  }
  for (std::size_t row = 0; row < world.Rows(); ++row) {
    if (!AllGuard(world.Padding(row), world.PaddingBytes())) {
      report("past the end of row " + std::to_string(row));
    }
  }
  if (tracker_.Violations().size() != violations) {
    world.SetGuards();
  }
}

std::size_t Worlds::Unwritten(const PF_EffectWorld& record) {
  std::size_t count = 0;
  for (A_long y = 0; y < record.height; ++y) {
    const PF_Pixel* row = RowOf(record, y);
    count += static_cast<std::size_t>(std::count_if(
        row, row + record.width, [](PF_Pixel pixel) { return Same(pixel, kUnwritten); }));
  }
  return count;
}

}  // namespace standin
