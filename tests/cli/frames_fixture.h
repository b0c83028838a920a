#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

#include "base/image/image_file.h"
#include "tests/cli/command_fixture.h"

/// \file
/// Small animations of two opaque cards, and the command to render them with.

inline const std::string kHead =
    R"({"size": [60, 40], "images": {"a": "a.png", "b": "b.png", "c": "c.png", "d": "d.png"}, "bones": [)";
inline const std::string kCard =
    R"("pieces": [{"corners": [[10, 10], [50, 10], [50, 30], [10, 30]], "uv": [[1, 1], [31, 1], [31, 31], [1, 31]], "t": 0}])";

/// One bone at rest and one above it with these keys.
inline std::string Moving(int count, const std::string& keys, const std::string& more = "") {
  return kHead + R"({"name": "Up", "image": "a", )" + kCard + "}, " +
         R"({"name": "Down", "image": "b", "z": 3, )" + kCard + R"(}], "frames": {"count": )" +
         std::to_string(count) + R"(, "bones": {"Up": {)" + keys + "}}" + more + "}}";
}

/// Twelve frames of nothing, for what has to do with processes and files alone.
inline const std::string kEmptyScene =
    R"({"size": [60, 40], "bones": [], "frames": {"count": 12}})";

// Everything that can change, changes; numbers move up while the first bone is off.
inline const std::string kRich =
    Moving(12,
           R"("corners": [{"frame": 0, "value": [[[10, 10], [50, 10], [50, 30], [10, 30]]]},
                   {"frame": 11, "value": [[[20, 5], [55, 15], [45, 35], [12, 30]]]}],
       "image": [{"frame": 0, "value": "a"}, {"frame": 3, "value": "c"}, {"frame": 9, "value": "a"}],
       "opacity": [{"frame": 0, "value": 1, "ease": "hold"}, {"frame": 2, "value": 0.5, "ease": "hold"}, {"frame": 7, "value": 0.8}],
       "z": [{"frame": 0, "value": 0}, {"frame": 10, "value": [2, 6]}],
       "active": [{"frame": 0, "value": true}, {"frame": 5, "value": false}, {"frame": 7, "value": true}])",
           R"(, "set": {"Down end Z": [{"frame": 0, "value": 1}, {"frame": 11, "value": 9}]},
        "fast": [{"frame": 0, "value": true}, {"frame": 8, "value": false}])");

class Frames : public CommandTest {
 protected:
  Frames() {
    const std::vector<tarvo::Rgba> colours = {
        {200, 30, 30, 255}, {30, 160, 30, 255}, {30, 30, 200, 255}, {240, 240, 20, 255}};
    for (std::size_t i = 0; i < colours.size(); ++i) {
      tarvo::WritePng(folder_ / (std::string(1, static_cast<char>('a' + i)) + ".png"),
                      tarvo::Picture(32, 32, colours[i]));
    }
  }

  /// Renders a scene with these options; the output's name is the folder's.
  [[nodiscard]] Outcome Render(const std::string& scene, const std::string& output,
                               const std::string& options = "",
                               const std::string& before = "") const {
    tarvo::WriteWholeFile(folder_ / "scene.json", scene);
    return Run(Arguments(output, options), before);
  }

  [[nodiscard]] std::string Arguments(const std::string& output, const std::string& options) const {
    return "render " + Quoted(File("scene.json")) + " -o " +
           (output == "-" ? output : Quoted(File(output))) + " " + options;
  }

  /// A program of this name in the folder, for a PATH that begins with it.
  void Install(const std::string& name, const std::string& script) const {
    tarvo::WriteWholeFile(folder_ / name, "#!/bin/sh\n" + script);
    std::filesystem::permissions(folder_ / name, std::filesystem::perms::owner_all);
  }

  /// An ffmpeg in the folder that stores what it is given and then does `after`, and an ffprobe
  /// that calls everything a movie of 12 frames at the usual rate.
  void InstallStoringEncoder(const std::string& after = "") const {
    Install("ffmpeg", "for last; do :; done\n/bin/cat > \"${last#file:}\"\n" + after);
    Install("ffprobe", "echo nb_read_frames=12\necho duration=0.48\n");
  }

  void ExpectSame(const std::string& a, const std::string& b, int first, int last) const {
    for (int frame = first; frame <= last; ++frame) {
      const std::string ending = std::to_string(frame) + ".png";
      EXPECT_EQ(tarvo::ReadWholeFile(folder_ / (a + ending)),
                tarvo::ReadWholeFile(folder_ / (b + ending)))
          << b << ending;
    }
  }
};
