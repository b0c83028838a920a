#include "standin/core/object_tracker.h"

#include <algorithm>
#include <cstdio>

namespace standin {
namespace {

constexpr std::array<std::string_view, kKinds> kKindNames = {
    "effect instance", "handle",       "world",       "item",
    "composition",     "layer",        "preferences", "effect reference",
    "stream",          "stream value", "suite",       "undo group",
    "quiet section",   "lock"};

constexpr std::array<Kind, 7> kTemporary = {Kind::kEffectRef, Kind::kStream,    Kind::kStreamValue,
                                            Kind::kSuite,     Kind::kUndoGroup, Kind::kQuietSection,
                                            Kind::kLock};

// Issued names are no addresses: bit 47 set makes every use of one as a pointer fault at once.
constexpr std::uintptr_t kNameBase = 0xDEAD'0000'0000;

std::size_t Index(Kind kind) { return static_cast<std::size_t>(kind); }

std::string Hex(const void* value) {
  std::array<char, 24> text{};
  std::snprintf(text.data(), text.size(), "%p", value);
  return text.data();
}

bool IsTemporary(Kind kind) {
  return std::find(kTemporary.begin(), kTemporary.end(), kind) != kTemporary.end();
}

}  // namespace

std::string_view Name(Kind kind) { return kKindNames[Index(kind)]; }

const void* ObjectTracker::Issue(Kind kind, std::string label, void* subject) {
  // NOLINTNEXTLINE(performance-no-int-to-ptr): an opaque name in the shape of a pointer.
  const auto* name = reinterpret_cast<const void*>(kNameBase + next_ * 16);
  Open(kind, name, std::move(label), subject);
  return name;
}

void ObjectTracker::Enter(Kind kind, const void* name, std::string label, void* subject) {
  const auto found = entries_.find(name);
  if (found != entries_.end() && found->second.alive) {
    ReportViolation("a new " + std::string(Name(kind)) + " was stored over " +
                    Describe(found->second) + ", which had not been released");
    Retire(name, found->second);
  }
  Open(kind, name, std::move(label), subject);
}

void ObjectTracker::Open(Kind kind, const void* name, std::string label, void* subject) {
  entries_[name] = Entry{kind, true, next_++, std::move(label), subject};
  ++liveCounts_[Index(kind)];
}

bool ObjectTracker::Remove(Kind kind, const void* name, std::string_view who) {
  Entry* entry = Check(kind, name, who);
  if (entry == nullptr) {
    return false;
  }
  Retire(name, *entry);
  return true;
}

void* ObjectTracker::Find(Kind kind, const void* name, std::string_view who) {
  const Entry* entry = Check(kind, name, who);
  return entry == nullptr ? nullptr : entry->subject;
}

ObjectTracker::Entry* ObjectTracker::Check(Kind kind, const void* name, std::string_view who) {
  const auto found = entries_.find(name);
  const bool ours = found != entries_.end();
  if (ours && found->second.kind == kind && found->second.alive) {
    return &found->second;
  }
  std::string given = "null";
  if (ours) {
    given = Describe(found->second);
    given += found->second.kind == kind ? ", which was released before" : "";
  } else if (name != nullptr) {
    given = Hex(name) + ", which this host never handed out";
  }
  ReportViolation(std::string(who) + " was given " + given + "; a valid " +
                  std::string(Name(kind)) + " was expected");
  return nullptr;
}

void ObjectTracker::Retire(const void* name, Entry& entry) {
  entry.alive = false;
  entry.subject = nullptr;
  --liveCounts_[Index(entry.kind)];
  retired_.emplace_back(name, entry.number);
  if (retired_.size() > retiredLimit_) {
    const auto oldest = entries_.find(retired_.front().first);
    if (oldest != entries_.end() && oldest->second.number == retired_.front().second) {
      entries_.erase(oldest);
    }
    retired_.pop_front();
  }
}

bool ObjectTracker::IsLive(Kind kind, const void* name) const {
  const auto found = entries_.find(name);
  return found != entries_.end() && found->second.alive && found->second.kind == kind;
}

std::string ObjectTracker::Describe(const void* name) const {
  if (name == nullptr) {
    return "null";
  }
  const auto found = entries_.find(name);
  return found == entries_.end() ? Hex(name) : Describe(found->second);
}

std::string ObjectTracker::Describe(const Entry& entry) {
  std::string text(Name(entry.kind));
  if (!entry.label.empty()) {
    text += " '" + entry.label + "'";
  }
  return text + " #" + std::to_string(entry.number);
}

std::size_t ObjectTracker::Count(Kind kind) const { return liveCounts_[Index(kind)]; }

std::vector<const ObjectTracker::Entry*> ObjectTracker::Living() const {
  std::vector<const Entry*> living;
  for (const auto& [name, entry] : entries_) {
    if (entry.alive) {
      living.push_back(&entry);
    }
  }
  std::sort(living.begin(), living.end(),
            [](const Entry* a, const Entry* b) { return a->number < b->number; });
  return living;
}

std::vector<std::string> ObjectTracker::Outstanding(Kind kind) const {
  std::vector<std::string> described;
  for (const Entry* entry : Living()) {
    if (entry->kind == kind) {
      described.push_back(Describe(*entry));
    }
  }
  return described;
}

bool ObjectTracker::Balanced() const {
  return std::all_of(kTemporary.begin(), kTemporary.end(),
                     [this](Kind kind) { return Count(kind) == 0; });
}

std::vector<std::string> ObjectTracker::OutstandingAfterCall() const {
  std::vector<std::string> described;
  if (Balanced()) {
    return described;
  }
  for (const Entry* entry : Living()) {
    if (IsTemporary(entry->kind)) {
      described.push_back(Describe(*entry));
    }
  }
  return described;
}

void ObjectTracker::ReportLeaksOfCall(std::string_view command, std::uint64_t since) {
  if (!Balanced()) {
    WriteOff(command, since, IsTemporary);
  }
}

void ObjectTracker::ReportLeaksOfPlugin(std::string_view command) {
  WriteOff(command, 0, [](Kind kind) { return kind == Kind::kHandle || kind == Kind::kWorld; });
}

void ObjectTracker::WriteOff(std::string_view command, std::uint64_t since,
                             bool (*concerns)(Kind)) {
  const auto isDue = [&](const Entry& entry) {
    return entry.alive && entry.number >= since && concerns(entry.kind);
  };
  for (const Entry* entry : Living()) {
    if (isDue(*entry)) {
      ReportViolation(std::string(command) + " left " + Describe(*entry) +
                      " outstanding; it should have been released");
    }
  }
  for (auto& [name, entry] : entries_) {
    if (isDue(entry)) {
      Retire(name, entry);
    }
  }
}

void ObjectTracker::ReportViolation(std::string message) {
  if (violations_.size() < kViolationLimit) {
    violations_.push_back(std::move(message));
  }
}

std::string ObjectTracker::FirstViolation() const {
  return violations_.empty() ? "" : violations_.front();
}

}  // namespace standin
