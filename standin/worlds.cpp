#include "standin/worlds.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <new>
#include <utility>

#include "standin/pixels.h"

namespace standin {
namespace {

constexpr std::uint8_t kGuard = 0x5A;
constexpr PF_Pixel kUnwritten{0xC3, 0x81, 0x3C, 0x7E};
constexpr std::size_t kPadding = 24;  // bytes after each row, not a multiple of 16 on purpose

bool Same(PF_Pixel a, PF_Pixel b) {
  return a.alpha == b.alpha && a.red == b.red && a.green == b.green && a.blue == b.blue;
}

bool AllGuard(const std::uint8_t* bytes, std::size_t count) {
  return std::all_of(bytes, bytes + count, [](std::uint8_t byte) { return byte == kGuard; });
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

  std::string label;
  std::unique_ptr<std::uint8_t[]> memory;
  PF_EffectWorld record{};
};

Worlds::Worlds(Books& books) : books_(books) {}

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
    return PF_Err_OUT_OF_MEMORY;
  }
  std::memset(world->memory.get(), kGuard, bytes);
  world->label = label;
  world->record.world_flags = PF_WorldFlag_WRITEABLE;
  world->record.rowbytes = static_cast<A_long>(rowBytes);
  world->record.width = width;
  world->record.height = height;
  world->record.extent_hint = {0, 0, width, height};
  world->record.pix_aspect_ratio = {1, 1};
  world->record.data = reinterpret_cast<PF_Pixel*>(world->Row(0));
  const std::string described = label + " " + std::to_string(width) + "x" + std::to_string(height);
  const void* name = books_.Issue(Kind::kWorld, described, world.get());
  world->record.reserved0 = const_cast<void*>(name);
  const bool clear = (flags & PF_NewWorldFlag_CLEAR_PIXELS) != 0;
  FillPixels(world->record, nullptr, clear ? PF_Pixel{} : kUnwritten);
  *record = world->record;
  worlds_[name] = std::move(world);
  return PF_Err_NONE;
}

PF_Err Worlds::Dispose(const PF_EffectWorld* record, std::string_view who) {
  const auto found = Check(record, who) ? worlds_.find(record->reserved0) : worlds_.end();
  if (found == worlds_.end()) {
    return PF_Err_BAD_CALLBACK_PARAM;
  }
  CheckGuards(*found->second, who);
  books_.Remove(Kind::kWorld, record->reserved0, who);
  worlds_.erase(found);
  return PF_Err_NONE;
}

PF_EffectWorld Worlds::From(const Picture& picture, const std::string& label) {
  PF_EffectWorld record{};
  if (New(picture.width, picture.height, PF_NewWorldFlag_NONE, label, &record) != PF_Err_NONE) {
    throw std::bad_alloc();
  }
  for (A_long y = 0; y < record.height; ++y) {
    for (A_long x = 0; x < record.width; ++x) {
      const Rgba pixel = picture.At(x, y);
      RowOf(record, y)[x] = {pixel.alpha, pixel.red, pixel.green, pixel.blue};
    }
  }
  return record;
}

Picture Worlds::ToPicture(const PF_EffectWorld& record) {
  Picture picture(record.width, record.height);
  for (A_long y = 0; y < record.height; ++y) {
    for (A_long x = 0; x < record.width; ++x) {
      const PF_Pixel pixel = RowOf(record, y)[x];
      picture.At(x, y) = {pixel.red, pixel.green, pixel.blue, pixel.alpha};
    }
  }
  return picture;
}

bool Worlds::Check(const PF_EffectWorld* record, std::string_view who) {
  if (record == nullptr) {
    books_.Misuse(std::string(who) + " was given no world");
    return false;
  }
  const auto* world = books_.Find<World>(Kind::kWorld, record->reserved0, who);
  if (world == nullptr) {
    return false;
  }
  const PF_EffectWorld& made = world->record;
  if (record->data != made.data || record->rowbytes != made.rowbytes ||
      record->width != made.width || record->height != made.height) {
    books_.Misuse(std::string(who) + " was given a changed record of " +
                  books_.Describe(record->reserved0) +
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
  const std::string where = std::string(who) + ": " + books_.Describe(world.record.reserved0);
  const std::size_t padding = world.RowBytes() - world.PixelBytes();
  const auto mend = [&](std::uint8_t* bytes, std::size_t count, const std::string& place) {
    if (!AllGuard(bytes, count)) {
      books_.Misuse(where + " was written " + place);
      std::memset(bytes, kGuard, count);
    }
  };
  mend(world.memory.get(), world.RowBytes(), "above its first row");
  mend(world.Row(world.Rows()), world.RowBytes(), "below its last row");
  for (std::size_t row = 0; row < world.Rows(); ++row) {
    if (!AllGuard(world.Row(row) + world.PixelBytes(), padding)) {
      mend(world.Row(row) + world.PixelBytes(), padding,
           "past the end of row " + std::to_string(row));
    }
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
