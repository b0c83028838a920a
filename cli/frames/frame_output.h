#pragma once

#include <filesystem>
#include <iosfwd>
#include <string>
#include <vector>

#include "base/files/file_system.h"
#include "base/image/picture.h"

namespace tarvo {

/// What is made, as the name of the output says: one picture; a file for each frame; a movie;
/// bytes on standard output.
enum class OutputKind { kPicture, kFrames, kMovie, kStream };

/// "f.%04d.png" and "f%d.png" are the names of frames, "-" is standard output, .gif, .webm and .mp4
/// are movies.
OutputKind OutputKindOf(const std::string& output);

/// True for a name that other programs take for one with a frame's number, such as "f%0300d.png",
/// "f%x.png" and "f.####.png".
bool IsUnsupportedPattern(const std::string& output);

/// The file of a frame: its number, with zeros before it up to the width, in the place of %d or
/// %04d. REQUIRES: the pattern is one of kFrames.
std::string FrameFile(const std::string& pattern, int frame);

/// Where finished pictures of one size go.
class FrameOutput {
 public:
  FrameOutput() = default;
  FrameOutput(const FrameOutput&) = delete;
  FrameOutput& operator=(const FrameOutput&) = delete;
  virtual ~FrameOutput() = default;

  /// Throws InputError when it cannot be written, and CommandExit where that is standard output.
  virtual void Take(int frame, const Picture& picture) = 0;
  /// Called once after the last picture; completes the output. Without it a movie is discarded.
  virtual void Commit() {}
  /// Unblocks a Take that another thread is in; that Take may throw.
  virtual void Abort() {}
};

/// PNG files, written as WritePng does. Takes pictures in any order and from several threads.
class FrameFiles : public FrameOutput {
 public:
  FrameFiles(std::string pattern, Sync sync) : pattern_(std::move(pattern)), sync_(sync) {}
  void Take(int frame, const Picture& picture) override;

 private:
  std::string pattern_;
  Sync sync_;
};

/// PNG files one after the other, or raw pixels without any header: red, green, blue and straight
/// alpha, 8 bits each, rows from the top without padding.
class FrameStream : public FrameOutput {
 public:
  /// REQUIRES: the stream, standard output, outlives this object.
  FrameStream(std::ostream& stream, bool isRaw);
  void Take(int frame, const Picture& picture) override;

 private:
  std::ostream& stream_;
  bool isRaw_;
};

}  // namespace tarvo
