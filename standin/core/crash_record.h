#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace standin {

/// The command that the plug-in executes and its last host call. `tarvo` places the record in
/// memory that another process can read, so that it is still readable after a crash. The layout is
/// fixed and holds no pointers, because each process maps the memory at its own address.
struct CrashRecord {
  static constexpr std::size_t kNameSize = 64;  ///< bytes of a name, with its terminating zero

  /// Counts the begins and ends of commands: unchanged while one command executes.
  std::atomic<std::uint64_t> changes{0};
  std::atomic<std::int32_t> depth{0};   ///< commands under way, one inside the other
  std::atomic<std::int32_t> frame{-1};  ///< of the animation; below 0 before the first
  std::atomic<bool> ranOutOfMemory{false};
  char command[kNameSize]{};   ///< the innermost one
  char hostCall[kNameSize]{};  ///< the last one of the outermost command; may be empty
};

/// What executes the plug-in's code beside the host's commands.
inline constexpr std::string_view kLoadCommand = "load";
inline constexpr std::string_view kUnloadCommand = "unload";
inline constexpr std::string_view kIdleCommand = "idle";

/// Directs all notes of this process into this record. REQUIRES: it remains valid until the process
/// ends, and no command is under way.
void UseCrashRecord(CrashRecord& record);

/// Notes that a host operation was called. Cheap: it copies the name.
void NoteHostCall(std::string_view operation);
/// Notes the frame of the animation to which the following commands belong.
void NoteFrame(int frame);
/// Notes that this process ends because memory ran out. Takes none.
void NoteOutOfMemory();

/// Notes a command for the time of a scope.
class CommandNote {
 public:
  /// "PF_Cmd_RENDER", "idle", or what else runs the plug-in's code.
  explicit CommandNote(std::string_view command);
  CommandNote(const CommandNote&) = delete;
  CommandNote& operator=(const CommandNote&) = delete;
  ~CommandNote();

 private:
  char outer_[CrashRecord::kNameSize]{};  ///< the command that this one was called from
};

/// Where the plug-in was, for a message: "in the render command, frame 12"; "between two commands".
std::string PlaceText(const CrashRecord& record);
/// "last host call: new_world", or that there was none.
std::string HostCallText(const CrashRecord& record);

}  // namespace standin
