#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace standin {

/// What the host hands out.
enum class Kind {
  kProgramRef,  ///< PF_ProgPtr, one effect instance (or the plug-in as a whole)
  kHandle,      ///< PF_Handle
  kWorld,       ///< PF_EffectWorld, by its identity in `reserved0`
  kItem,
  kComposition,
  kLayer,
  kPreferences,
  kEffectRef,    ///< AEGP_EffectRefH
  kStream,       ///< AEGP_StreamRefH
  kStreamValue,  ///< AEGP_StreamValue2, by its address
  kSuite,        ///< one acquisition of a suite
  kUndoGroup,
  kQuietSection,
  kLock,  ///< one lock of a handle
};

inline constexpr std::size_t kKinds = 14;

/// "handle", "effect reference", …: as messages say it.
std::string_view Name(Kind kind);

/// Tracks every object that the host hands out, from its issue to its release, by kind. Released
/// objects are remembered for a while (retired), so that a double release and a use after release
/// are distinguished from a value that the host never issued. API violations are kept in their
/// order, up to a limit that a plug-in in a loop would reach.
class ObjectTracker {
 public:
  /// Enters an object and returns its name, an opaque value that is never used twice.
  const void* Issue(Kind kind, std::string label, void* subject);
  /// Enters an object under a name of its own: an address.
  void Enter(Kind kind, const void* name, std::string label, void* subject);
  /// Takes an object out. Null, unknown, of another kind, or taken out before: a violation by
  /// `who`, each with its own message, and false.
  bool Remove(Kind kind, const void* name, std::string_view who);
  /// The subject of a live object; null after noting the violation as Remove does.
  void* Find(Kind kind, const void* name, std::string_view who);
  template <typename Subject>
  Subject* Find(Kind kind, const void* name, std::string_view who) {
    return static_cast<Subject*>(Find(kind, name, who));
  }
  /// True iff the object was issued and is not released yet.
  [[nodiscard]] bool IsLive(Kind kind, const void* name) const;
  /// "effect reference 'QEZ_Tarvo' #12", or the value itself when it is none of ours.
  [[nodiscard]] std::string Describe(const void* name) const;

  /// Live objects of this kind.
  [[nodiscard]] std::size_t Count(Kind kind) const;
  /// Live objects, described, in the order in which they were issued.
  [[nodiscard]] std::vector<std::string> Outstanding(Kind kind) const;
  /// Live objects that must not outlast a command or an idle call: suites, effect
  /// references, streams, stream values, undo groups, quiet sections, locks.
  [[nodiscard]] std::vector<std::string> OutstandingAfterCall() const;
  [[nodiscard]] bool Balanced() const;
  /// The number that the next entry will have; later entries have higher ones.
  [[nodiscard]] std::uint64_t NextNumber() const { return next_; }
  /// Notes each of OutstandingAfterCall that was entered since as a violation and drops it, so that
  /// it is reported once.
  void ReportLeaksOfCall(std::string_view command, std::uint64_t since);

  /// Notes every live handle and world as a violation and drops it: the plug-in was set down.
  void ReportLeaksOfPlugin(std::string_view command);

  /// Memory behind a handle or a world was allocated, or freed.
  void AddBytes(std::size_t bytes) {
    bytes_ += bytes;
    peakBytes_ = std::max(peakBytes_, bytes_);
  }
  void SubtractBytes(std::size_t bytes) { bytes_ -= bytes; }
  /// Bytes behind all handles and worlds at the moment, and the peak since it was last reset. Rows
  /// count without their padding.
  [[nodiscard]] std::size_t Bytes() const { return bytes_; }
  [[nodiscard]] std::size_t PeakBytes() const { return peakBytes_; }
  void ResetPeakBytes() { peakBytes_ = bytes_; }

  /// Memory ran out in the host itself, which it reported to the plug-in.
  void NoteOutOfMemory() { ranOutOfMemory_ = true; }
  [[nodiscard]] bool RanOutOfMemory() const { return ranOutOfMemory_; }

  /// Notes that the plug-in did what it must not.
  void ReportViolation(std::string message);
  [[nodiscard]] const std::vector<std::string>& Violations() const { return violations_; }
  /// Empty when there was none.
  [[nodiscard]] std::string FirstViolation() const;
  /// Clears the violations, for a test that has caused one on purpose.
  void ClearViolations() { violations_.clear(); }

  static constexpr std::size_t kRetiredLimit = 100'000;
  /// Remembers fewer released objects, so that memory does not grow in a long run.
  void LimitRetired(std::size_t most) { retiredLimit_ = most; }

  static constexpr std::size_t kViolationLimit = 1'000;

 private:
  struct Entry {
    Kind kind = Kind::kHandle;
    bool alive = true;
    std::uint64_t number = 0;
    std::string label;
    void* subject = nullptr;
  };

  Entry* Check(Kind kind, const void* name, std::string_view who);
  void Open(Kind kind, const void* name, std::string label, void* subject);
  void WriteOff(std::string_view command, std::uint64_t since, bool (*concerns)(Kind));
  void Retire(const void* name, Entry& entry);
  [[nodiscard]] std::vector<const Entry*> Living() const;
  [[nodiscard]] static std::string Describe(const Entry& entry);

  std::unordered_map<const void*, Entry> entries_;
  std::deque<std::pair<const void*, std::uint64_t>> retired_;
  std::array<std::size_t, kKinds> liveCounts_{};
  std::size_t retiredLimit_ = kRetiredLimit;
  std::uint64_t next_ = 1;
  std::size_t bytes_ = 0;
  std::size_t peakBytes_ = 0;
  bool ranOutOfMemory_ = false;
  std::vector<std::string> violations_;
};

}  // namespace standin
