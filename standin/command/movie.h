#pragma once

#include <string>

#include "standin/command/frame_output.h"
#include "standin/command/process.h"
#include "standin/whole_file.h"

namespace standin {

/// True iff the name ends as a movie's: .gif, .webm, .mp4.
bool IsMovie(const std::string& file);

/// True iff movies of this name's format can be transparent.
bool MovieHasAlpha(const std::string& file);

/// A movie, made by the program ffmpeg; its file is there once it is whole. Takes the pictures in
/// their order.
class Movie : public FrameOutput {
 public:
  /// Pictures of this size, in pixels, and so many a second. Throws std::runtime_error when ffmpeg
  /// is not installed.
  Movie(std::string file, int width, int height, double rate);
  void Take(int frame, const Picture& picture) override;
  void Commit() override;

 private:
  std::string file_;
  PartFile part_;
  Process encoder_;
};

}  // namespace standin
