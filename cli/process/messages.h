#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <ostream>
#include <stdexcept>
#include <streambuf>
#include <string>
#include <string_view>
#include <vector>

#include "base/image/picture.h"

namespace tarvo {

/// Messages from a worker to the process that started it.
enum class MessageKind : std::uint32_t {
  kOutput,      ///< text for standard output
  kError,       ///< text for standard error, as the command writes it
  kScene,       ///< a SceneSummary, before its pictures
  kPicture,     ///< a RenderedFrame
  kStatistics,  ///< a RunStatistics, after the last picture
  kChecks,      ///< what checks there are, as JSON
  kLoaded,      ///< the plug-in is loaded and a host runs
  kNotLoaded,   ///< why the plug-in cannot be loaded
  kResult,      ///< the result of a check, as JSON
  kEnd,         ///< the exit code, an int32: nothing follows
};

struct Message {
  MessageKind kind = MessageKind::kEnd;
  std::string bytes;
};

/// Bytes on the channel that are no message; the text says what is wrong with them.
class MessageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Frames messages: a header with a mark, the kind, the number of the message and its length, then
/// the bytes, then a check word. Both ends are the same program, so that numbers need no byte
/// order.
class MessageWriter {
 public:
  using Write = std::function<void(const void* bytes, std::size_t size)>;

  /// `write` throws when it cannot write everything.
  explicit MessageWriter(Write write) : write_(std::move(write)) {}

  void Send(MessageKind kind, std::string_view bytes) { Send(kind, bytes, {}); }
  /// The two parts one after the other.
  void Send(MessageKind kind, std::string_view first, std::string_view second);

 private:
  Write write_;
  std::uint64_t number_ = 0;
};

/// Puts messages together again from bytes that come in pieces.
class MessageReader {
 public:
  /// Gives bytes that have come, at most `size`; 0 if there are none now.
  using Read = std::function<std::size_t(void* bytes, std::size_t size)>;

  /// The next message, once all of it has come. Throws MessageError for anything else.
  std::optional<Message> Next(const Read& read);

 private:
  void ReadHeader();
  bool Fill(const Read& read, char* bytes, std::size_t size);
  bool FillMessage(const Read& read);

  std::array<char, 24> head_{};
  std::array<char, 8> tail_{};
  bool isHeaderRead_ = false;
  std::size_t filled_ = 0;  ///< of head_, or of the message's bytes and tail_
  std::uint64_t length_ = 0;
  std::uint64_t number_ = 0;
  Message message_;
};

/// What the process that started a worker needs from the scene that the worker has read.
struct SceneSummary {
  int frames = 1;
  int width = 0;  ///< of the layer, in pixels
  int height = 0;
  double rate = 0.0;                         ///< frames a second
  std::uint64_t fingerprint = 0;             ///< of the bytes of its files
  std::vector<std::filesystem::path> files;  ///< that were read: the scene's, its images'
};

/// A frame as a worker sends it.
struct RenderedFrame {
  int number = 0;
  Picture picture;
  std::size_t pieces = 0;
  double milliseconds = 0.0;  ///< in the plug-in
};

/// What is worth saying about frames of one worker.
struct RunStatistics {
  std::uint64_t messages = 0;
  std::uint64_t images = 0;
  double pluginMilliseconds = 0.0;
};

void Send(MessageWriter& writer, const SceneSummary& summary);
void Send(MessageWriter& writer, const RenderedFrame& frame);
void Send(MessageWriter& writer, const RunStatistics& statistics);
void SendEnd(MessageWriter& writer, int exitCode);

/// Throw MessageError when the message is not one of theirs.
SceneSummary SummaryFrom(const Message& message);
RenderedFrame FrameFrom(const Message& message);
RunStatistics StatisticsFrom(const Message& message);
int ExitCodeFrom(const Message& message);

/// A stream whose lines are sent as messages; what has no line end is sent by flush.
class MessageStream : public std::ostream {
 public:
  /// REQUIRES: the writer outlives this object.
  MessageStream(MessageWriter& writer, MessageKind kind);

 private:
  class Buffer : public std::streambuf {
   public:
    Buffer(MessageWriter& writer, MessageKind kind) : writer_(writer), kind_(kind) {}

   protected:
    int_type overflow(int_type letter) override;
    std::streamsize xsputn(const char* text, std::streamsize count) override;
    int sync() override;

   private:
    MessageWriter& writer_;
    MessageKind kind_;
    std::string pending_;
  };

  Buffer buffer_;
};

}  // namespace tarvo
