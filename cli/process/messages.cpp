#include "cli/process/messages.h"

#include <algorithm>
#include <cstring>
#include <type_traits>

#include "base/files/file_path.h"

namespace tarvo {
namespace {

constexpr std::uint32_t kMark = 0x5456'4D31;  // a change of the format changes it
constexpr std::uint64_t kMostText = 1ULL << 26U;
constexpr std::uint64_t kMostSentPixels = 1ULL << 30U;  // outputs and sheets are smaller

struct Header {
  std::uint32_t mark = kMark;
  std::uint32_t kind = 0;
  std::uint64_t number = 0;
  std::uint64_t length = 0;
};
static_assert(sizeof(Header) == 24);

/// The names of the files follow, each with a zero at its end.
struct SceneHead {
  std::int32_t frames = 0;
  std::int32_t width = 0;
  std::int32_t height = 0;
  std::uint32_t unused = 0;
  double rate = 0;
  std::uint64_t fingerprint = 0;
};

struct PictureHead {
  std::int32_t number = 0;
  std::int32_t width = 0;
  std::int32_t height = 0;
  std::int32_t originX = 0;
  std::int32_t originY = 0;
  std::uint32_t unused = 0;
  std::uint64_t pieces = 0;
  double milliseconds = 0;
};

/// Bytes that something else wrote into the middle of a message push this word out of its place.
std::uint64_t CheckWord(const Header& header) { return ~(header.number << 32U) ^ header.length; }

std::uint64_t MostBytes(MessageKind kind) {
  return kind == MessageKind::kPicture ? kMostSentPixels * sizeof(Rgba) + sizeof(PictureHead)
                                       : kMostText;
}

template <typename Record>
std::string_view BytesOf(const Record& record) {
  static_assert(std::is_trivially_copyable_v<Record>);
  return {reinterpret_cast<const char*>(&record), sizeof record};
}

template <typename Record>
Record RecordFrom(const Message& message, MessageKind kind, bool mayBeLonger = false) {
  if (message.kind != kind) {
    throw MessageError("a message of another kind than expected");
  }
  if (message.bytes.size() < sizeof(Record) ||
      (!mayBeLonger && message.bytes.size() != sizeof(Record))) {
    throw MessageError("a message of " + std::to_string(message.bytes.size()) + " bytes where " +
                       std::to_string(sizeof(Record)) + " are expected");
  }
  Record record{};
  std::memcpy(&record, message.bytes.data(), sizeof record);
  return record;
}

}  // namespace

void MessageWriter::Send(MessageKind kind, std::string_view first, std::string_view second) {
  const Header header{.kind = static_cast<std::uint32_t>(kind),
                      .number = number_++,
                      .length = first.size() + second.size()};
  const std::uint64_t check = CheckWord(header);
  std::string small(BytesOf(header));
  small += first;
  if (second.empty()) {
    small += BytesOf(check);
    return write_(small.data(), small.size());
  }
  write_(small.data(), small.size());
  write_(second.data(), second.size());
  write_(&check, sizeof check);
}

std::optional<Message> MessageReader::Next(const Read& read) {
  if (!isHeaderRead_) {
    if (!Fill(read, head_.data(), head_.size())) {
      return std::nullopt;
    }
    ReadHeader();
  }
  if (!FillMessage(read)) {
    return std::nullopt;
  }
  filled_ = 0;
  isHeaderRead_ = false;
  return std::move(message_);
}

void MessageReader::ReadHeader() {
  Header header;
  std::memcpy(&header, head_.data(), head_.size());
  if (header.mark != kMark || header.number != number_ ||
      header.kind > static_cast<std::uint32_t>(MessageKind::kEnd)) {
    throw MessageError("bytes that are no message");
  }
  message_ = {static_cast<MessageKind>(header.kind), {}};
  if (header.length > MostBytes(message_.kind)) {
    throw MessageError("a message of " + std::to_string(header.length) + " bytes");
  }
  length_ = header.length;
  const std::uint64_t check = CheckWord(header);
  std::memcpy(tail_.data(), &check, tail_.size());
  ++number_;
  filled_ = 0;
  isHeaderRead_ = true;
}

bool MessageReader::Fill(const Read& read, char* bytes, std::size_t size) {
  while (filled_ < size) {
    const std::size_t count = read(bytes + filled_, size - filled_);
    if (count == 0) {
      return false;
    }
    filled_ += count;
  }
  return true;
}

/// The memory grows with what comes: a wrong length takes no more of it than there are bytes.
bool MessageReader::FillMessage(const Read& read) {
  std::string& bytes = message_.bytes;
  const std::size_t whole = length_ + tail_.size();
  do {
    if (filled_ == bytes.size()) {
      bytes.resize(std::min<std::size_t>(whole, std::max<std::size_t>(2 * filled_, kMostText)));
    }
    if (!Fill(read, bytes.data(), bytes.size())) {
      return false;
    }
  } while (filled_ < whole);
  if (!std::equal(tail_.begin(), tail_.end(), bytes.end() - static_cast<long>(tail_.size()))) {
    throw MessageError("a message with other bytes in it");
  }
  bytes.resize(length_);
  return true;
}

void Send(MessageWriter& writer, const SceneSummary& summary) {
  const SceneHead head{.frames = summary.frames,
                       .width = summary.width,
                       .height = summary.height,
                       .rate = summary.rate,
                       .fingerprint = summary.fingerprint};
  std::string names;
  for (const std::filesystem::path& file : summary.files) {
    names += file.string() + '\0';
  }
  writer.Send(MessageKind::kScene, BytesOf(head), names);
}

void Send(MessageWriter& writer, const RenderedFrame& frame) {
  const Picture& picture = frame.picture;
  const PictureHead head{.number = frame.number,
                         .width = picture.width,
                         .height = picture.height,
                         .originX = picture.originX,
                         .originY = picture.originY,
                         .pieces = frame.pieces,
                         .milliseconds = frame.milliseconds};
  writer.Send(
      MessageKind::kPicture, BytesOf(head),
      {reinterpret_cast<const char*>(picture.Bytes()), picture.pixels.size() * sizeof(Rgba)});
}

void Send(MessageWriter& writer, const RunStatistics& statistics) {
  writer.Send(MessageKind::kStatistics, BytesOf(statistics));
}

void SendEnd(MessageWriter& writer, int exitCode) {
  writer.Send(MessageKind::kEnd, BytesOf(std::int32_t{exitCode}));
}

SceneSummary SummaryFrom(const Message& message) {
  const auto head = RecordFrom<SceneHead>(message, MessageKind::kScene, true);
  SceneSummary summary{.frames = head.frames,
                       .width = head.width,
                       .height = head.height,
                       .rate = head.rate,
                       .fingerprint = head.fingerprint};
  std::string_view names = std::string_view(message.bytes).substr(sizeof head);
  for (std::size_t end = names.find('\0'); end != std::string_view::npos; end = names.find('\0')) {
    summary.files.push_back(FilePath(std::string(names.substr(0, end))).Get());
    names.remove_prefix(end + 1);
  }
  return summary;
}

RenderedFrame FrameFrom(const Message& message) {
  const auto head = RecordFrom<PictureHead>(message, MessageKind::kPicture, true);
  const std::size_t bytes = message.bytes.size() - sizeof head;
  if (head.width < 0 || head.height < 0 ||
      bytes != 1ULL * static_cast<unsigned>(head.width) * static_cast<unsigned>(head.height) *
                   sizeof(Rgba)) {
    throw MessageError("a picture of " + std::to_string(head.width) + "x" +
                       std::to_string(head.height) + " in " + std::to_string(bytes) + " bytes");
  }
  const auto* const first = reinterpret_cast<const Rgba*>(message.bytes.data() +
                                                          sizeof head);  // bytes: any place is good
  RenderedFrame frame{
      .number = head.number, .pieces = head.pieces, .milliseconds = head.milliseconds};
  frame.picture.width = head.width;
  frame.picture.height = head.height;
  frame.picture.originX = head.originX;
  frame.picture.originY = head.originY;
  frame.picture.pixels.assign(first, first + bytes / sizeof(Rgba));
  return frame;
}

RunStatistics StatisticsFrom(const Message& message) {
  return RecordFrom<RunStatistics>(message, MessageKind::kStatistics);
}

int ExitCodeFrom(const Message& message) {
  return RecordFrom<std::int32_t>(message, MessageKind::kEnd);
}

MessageStream::MessageStream(MessageWriter& writer, MessageKind kind)
    : std::ostream(nullptr), buffer_(writer, kind) {
  rdbuf(&buffer_);
}

MessageStream::Buffer::int_type MessageStream::Buffer::overflow(int_type letter) {
  if (!traits_type::eq_int_type(letter, traits_type::eof())) {
    const char text = traits_type::to_char_type(letter);
    xsputn(&text, 1);
  }
  return traits_type::not_eof(letter);
}

std::streamsize MessageStream::Buffer::xsputn(const char* text, std::streamsize count) {
  const std::string_view added(text, static_cast<std::size_t>(count));
  pending_ += added;
  if (added.find('\n') != std::string_view::npos) {
    sync();
  }
  return count;
}

int MessageStream::Buffer::sync() {
  constexpr std::size_t kPart = 1U << 20U;
  for (std::size_t at = 0; at < pending_.size(); at += kPart) {
    writer_.Send(kind_, std::string_view(pending_).substr(at, kPart));
  }
  pending_.clear();
  return 0;
}

}  // namespace tarvo
