#pragma once

#include <string>

#include "base/files/whole_file.h"
#include "cli/frames/frame_output.h"
#include "cli/process/process.h"

namespace tarvo {

/// True iff the name ends as a movie's: .gif, .webm, .mp4.
bool IsMovie(const std::string& file);

/// True iff movies of this name's format can be transparent.
bool MovieHasAlpha(const std::string& file);

/// A movie, made by the program ffmpeg; its file takes its name once it was read back and found
/// complete. Takes the pictures in their order.
class Movie : public FrameOutput {
 public:
  /// Pictures of this size, in pixels, and so many a second. Throws InputError when the file cannot
  /// be made or the format does not hold so many pictures a second, and std::runtime_error when
  /// ffmpeg, or ffprobe, which comes with it, is not installed.
  Movie(std::string file, int width, int height, double rate, Sync sync);
  void Take(int frame, const Picture& picture) override;
  void Commit() override;
  void Abort() override { encoder_.Kill(); }

 private:
  void ExpectComplete() const;

  std::string file_;
  double rate_;
  Sync sync_;
  PartFile part_;
  Process encoder_;
  int frames_ = 0;
};

}  // namespace tarvo
