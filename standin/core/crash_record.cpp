#include "standin/core/crash_record.h"

#include <algorithm>
#include <cctype>
#include <cstring>

namespace standin {
namespace {

CrashRecord gOwnRecord;  // of a process that no parent observes
CrashRecord* gRecord = &gOwnRecord;

void CopyName(char* name, std::string_view text) {
  const std::size_t length = std::min(text.size(), CrashRecord::kNameSize - 1);
  std::memcpy(name, text.data(), length);
  name[length] = '\0';
}

/// A crashing plug-in may have overwritten the record: only as far as it can be printed.
std::string NameIn(const char* name) {
  const char* const end = std::find(name, name + CrashRecord::kNameSize, '\0');
  const bool isText = std::all_of(
      name, end, [](char letter) { return std::isprint(static_cast<unsigned char>(letter)) != 0; });
  return isText ? std::string(name, end) : "(overwritten)";
}

/// "in the frame setup command" of "PF_Cmd_FRAME_SETUP".
std::string CommandText(const std::string& command) {
  constexpr std::string_view kPrefix = "PF_Cmd_";
  if (command == kLoadCommand) {
    return "while it was loaded";
  }
  if (command == kUnloadCommand) {
    return "while it was unloaded";
  }
  if (command == kIdleCommand) {
    return "in the idle hook";
  }
  if (!command.starts_with(kPrefix)) {
    return "in " + command;
  }
  std::string words = command.substr(kPrefix.size());
  std::ranges::transform(words, words.begin(), [](unsigned char letter) {
    return letter == '_' ? ' ' : static_cast<char>(std::tolower(letter));
  });
  return "in the " + words + " command";
}

}  // namespace

void UseCrashRecord(CrashRecord& record) { gRecord = &record; }

void NoteHostCall(std::string_view operation) { CopyName(gRecord->hostCall, operation); }

void NoteFrame(int frame) { gRecord->frame = frame; }

void NoteOutOfMemory() { gRecord->ranOutOfMemory = true; }

CommandNote::CommandNote(std::string_view command) {
  std::memcpy(outer_, gRecord->command, sizeof outer_);
  CopyName(gRecord->command, command);
  if (gRecord->depth == 0) {
    CopyName(gRecord->hostCall, "");
  }
  ++gRecord->depth;
  ++gRecord->changes;
}

CommandNote::~CommandNote() {
  ++gRecord->changes;
  --gRecord->depth;
  std::memcpy(gRecord->command, outer_, sizeof outer_);
}

std::string PlaceText(const CrashRecord& record) {
  std::string text =
      record.depth > 0 ? CommandText(NameIn(record.command)) : "between two commands";
  if (const int frame = record.frame; frame >= 0) {
    text += ", frame " + std::to_string(frame);
  }
  return text;
}

std::string HostCallText(const CrashRecord& record) {
  const std::string name = NameIn(record.hostCall);
  return "last host call: " + (name.empty() ? "none" : name);
}

}  // namespace standin
