#include <gtest/gtest.h>

#include "standin/core/pixels.h"
#include "standin/core/worlds.h"

namespace {

using standin::ObjectTracker;
using standin::Worlds;
using tarvo::Picture;
using tarvo::Rgba;

/// alpha, red, green, blue: as pixels lie in memory.
testing::AssertionResult Is(PF_Pixel pixel, int alpha, int red, int green, int blue) {
  if (pixel.alpha == alpha && pixel.red == red && pixel.green == green && pixel.blue == blue) {
    return testing::AssertionSuccess();
  }
  return testing::AssertionFailure() << int{pixel.alpha} << " " << int{pixel.red} << " "
                                     << int{pixel.green} << " " << int{pixel.blue};
}

TEST(Pixels, StraightenedColourIsDividedByAlphaAndRounded) {
  EXPECT_TRUE(Is(standin::Straightened({255, 7, 128, 255}), 255, 7, 128, 255));
  // 50 * 255 / 100 = 127.5 up to 128; 33 * 2.55 = 84.15; 100 gives the whole 255.
  EXPECT_TRUE(Is(standin::Straightened({100, 50, 33, 100}), 100, 128, 84, 255));
  EXPECT_TRUE(Is(standin::Straightened({100, 101, 200, 0}), 100, 255, 255, 0)) << "limited";
  EXPECT_TRUE(Is(standin::Straightened({0, 9, 8, 7}), 0, 9, 8, 7)) << "no alpha to divide by";
}

TEST(Pixels, PremultipliedColourIsMultipliedByAlphaAndRounded) {
  // 200 * 100 / 255 = 78.43; 255 gives alpha itself; 1 * 100 / 255 = 0.39.
  EXPECT_TRUE(Is(standin::Premultiplied({100, 200, 255, 1}), 100, 78, 100, 0));
  EXPECT_TRUE(Is(standin::Premultiplied({0, 200, 255, 1}), 0, 0, 0, 0));
}

class WorldPixels : public testing::Test {
 protected:
  PF_EffectWorld New(int width, int height, PF_NewWorldFlags flags = PF_NewWorldFlag_NONE) {
    PF_EffectWorld world{};
    EXPECT_EQ(worlds.New(width, height, flags, "test", &world), PF_Err_NONE);
    return world;
  }

  ObjectTracker tracker;
  Worlds worlds{tracker};
};

TEST_F(WorldPixels, CopyPutsCornersOnEachOtherAndStaysInside) {
  Picture numbered(4, 3);
  for (int i = 0; i < 12; ++i) {
    numbered.At(i % 4, i / 4) = {static_cast<std::uint8_t>(i), 0, 0, 255};
  }
  const PF_EffectWorld source = worlds.From(numbered, "source");
  PF_EffectWorld destination = New(3, 3, PF_NewWorldFlag_CLEAR_PIXELS);
  const PF_Rect from{1, 1, 4, 3};
  const PF_Rect to{2, 0, 5, 2};  // two of its three columns lie outside
  standin::CopyPixels(source, &from, destination, &to);
  const Picture copied = Worlds::ToPicture(destination);
  EXPECT_EQ(copied.At(2, 0), (Rgba{5, 0, 0, 255}));
  EXPECT_EQ(copied.At(2, 1), (Rgba{9, 0, 0, 255}));
  EXPECT_EQ(copied.At(1, 0), Rgba{});
  EXPECT_EQ(copied.At(2, 2), Rgba{});
  worlds.CheckGuards("copy");
  EXPECT_EQ(tracker.FirstViolation(), "");
}

}  // namespace
