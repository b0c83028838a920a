#include "base/files/watched_files.h"

#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "base/files/whole_file.h"

namespace {

using Files = std::vector<std::filesystem::path>;

TEST(WatchedFiles, ReadTheirFileOnlyWhenItWasSavedOrReplaced) {
  const std::filesystem::path folder =
      std::filesystem::path(testing::TempDir()) / std::to_string(std::random_device{}());
  std::filesystem::create_directories(folder);
  const std::filesystem::path scene = folder / "scene.json";
  const std::filesystem::path image = folder / "a.png";
  tarvo::WriteWholeFile(scene, "one");
  int readings = 0;
  tarvo::WatchedFiles files(scene, [&](const std::filesystem::path& file) {
    ++readings;
    return Files{file, image};
  });
  for (int look = 0; look < 5; ++look) {
    EXPECT_FALSE(files.Look());
  }
  EXPECT_EQ(readings, 1);
  tarvo::WriteWholeFile(image, "pixels");  // came
  EXPECT_TRUE(files.Look());
  EXPECT_EQ(readings, 1);
  // Another file of the same size and the same time takes the scene's place.
  const auto saved = std::filesystem::last_write_time(scene);
  tarvo::WriteWholeFile(folder / "other.json", "two");
  std::filesystem::last_write_time(folder / "other.json", saved);
  std::filesystem::rename(folder / "other.json", scene);
  EXPECT_EQ(std::filesystem::last_write_time(scene), saved);
  EXPECT_TRUE(files.Look());
  EXPECT_EQ(readings, 2);
  EXPECT_FALSE(files.Look());
  std::filesystem::remove_all(folder);
  EXPECT_TRUE(files.Look());
}

}  // namespace
