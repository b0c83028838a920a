#include "calls.h"

#include <algorithm>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <utility>

#include "tables.h"

namespace independent_abi {
namespace {

using A_long = std::int32_t;

/// One call of a slot that the host fills. Without a suite it is one of the utility callbacks, and
/// the slot is a byte offset.
struct Step {
  const char* suite;
  A_long version;
  std::size_t slot;
  std::function<void(const Slot&)> call;
  const char* argument = "";  ///< what the host must understand, as its log tells it
};

// What earlier steps get from the host for later ones.
struct Obtained {
  A_long id = 0;
  void* handle = nullptr;
  void* layer = nullptr;
  void* item = nullptr;
  void* composition = nullptr;
  void* preferences = nullptr;
  void* self = nullptr;  ///< effect references
  void* other = nullptr;
  void* stream = nullptr;
  void* group = nullptr;
  A_long key = 0;
  Record<120> worlds[2];
  Record<40> value;
  Record<48> quiet;
};

Obtained g;

struct Time {
  Time() {
    Write(record.bytes, 0, A_long{7});
    Write(record.bytes, 4, std::uint32_t{25});
  }
  Record<8> record;
};

/// Compares a pixel as it lies in memory.
bool Is(const void* world, A_long x, A_long y, const std::vector<std::uint8_t>& alphaRedGreenBlue) {
  const auto* pixels = Read<const std::uint8_t*>(world, 24);
  const std::ptrdiff_t at = std::ptrdiff_t{y} * Read<A_long>(world, 32) + std::ptrdiff_t{4} * x;
  return std::equal(alphaRedGreenBlue.begin(), alphaRedGreenBlue.end(), pixels + at);
}

A_long Idle(void* plugin, void* hook, A_long* longestSleep) {
  HOLDS(plugin == &session && hook == &session.nested && *longestSleep == 60);
  return 77;
}

void NewWorld(const Slot& slot, Record<120>& world) {
  HOLDS(slot.Call<A_long>(session.effect, A_long{5}, A_long{4}, A_long{1}, world.Text()) == 0);
  Expect(world.bytes, "new_world",
         {{16, 2, "world_flags"},
          {36, 5, "width"},
          {40, 4, "height"},
          {44, 0, "extent_hint.left"},
          {48, 0, "extent_hint.top"},
          {52, 5, "extent_hint.right"},
          {56, 4, "extent_hint.bottom"},
          {88, 1, "pix_aspect_ratio.num"},
          {92, 1, "pix_aspect_ratio.den"},
          {104, 0, "origin_x"},
          {108, 0, "origin_y"}});
  HOLDS(Read<A_long>(world.bytes, 32) >= 5 * 4);
  HOLDS(Read<void*>(world.bytes, 24) != nullptr);
  HOLDS(world.IsIntactBehind());
  HOLDS(Is(world.bytes, 4, 3, {0, 0, 0, 0}));
}

void DisposeOfWorld(const Slot& slot, Record<120>& world) {
  HOLDS(slot.Call<A_long>(session.effect, world.Text()) == 0);
}

void Sprintf(const Slot& slot) {
  Record<16> text;
  const auto print =
      reinterpret_cast<int (*)(char*, const char*, ...)>(Read<void*>(slot.table, slot.byte));
  HOLDS(print(text.Text(), "%d %s", 7, "x") == 3);
  HOLDS(std::strcmp(text.Text(), "7 x") == 0);
}

void Strcpy(const Slot& slot) {
  Record<16> text;
  const char* from = "copied";
  HOLDS(slot.Call<char*>(text.Text(), from) == text.Text());
  HOLDS(std::strcmp(text.Text(), "copied") == 0);
}

void GetPath(const Slot& slot) {
  Record<520> path;  // 260 characters of 16 bits
  HOLDS(slot.Call<A_long>(session.effect, A_long{7}, path.Text()) == 0);
  HOLDS(std::u16string(reinterpret_cast<const char16_t*>(path.bytes)) == u"D:\\independent.aex");
  HOLDS(path.IsIntactBehind());
}

void GetFirstPixel(const Slot& slot) {
  void* pixels = nullptr;
  HOLDS(slot.Call<A_long>(g.worlds[0].Text(), static_cast<void*>(nullptr), &pixels) == 0);
  HOLDS(pixels == Read<void*>(g.worlds[0].bytes, 24));
}

void Fill(const Slot& slot) {
  const std::uint8_t colour[] = {128, 200, 30, 40};
  const A_long area[] = {1, 2, 3, 4};  // left, top, right, bottom
  HOLDS(slot.Call<A_long>(session.effect, colour, area, g.worlds[0].Text()) == 0);
  HOLDS(Is(g.worlds[0].bytes, 1, 2, {128, 200, 30, 40}) && Is(g.worlds[0].bytes, 2, 3, {128, 200}));
  HOLDS(Is(g.worlds[0].bytes, 0, 2, {0}) && Is(g.worlds[0].bytes, 1, 1, {0}));
  HOLDS(Is(g.worlds[0].bytes, 3, 2, {0}));
}

void Copy(const Slot& slot) {
  A_long from[] = {1, 2, 3, 4};
  A_long to[] = {0, 0, 2, 2};
  HOLDS(slot.Call<A_long>(session.effect, g.worlds[0].Text(), g.worlds[1].Text(), from, to) == 0);
  HOLDS(Is(g.worlds[1].bytes, 1, 1, {128, 200, 30, 40}) && Is(g.worlds[1].bytes, 2, 2, {0}));
}

void Premultiply(const Slot& slot) {
  HOLDS(slot.Call<A_long>(session.effect, A_long{1}, g.worlds[1].Text()) == 0);
  HOLDS(Is(g.worlds[1].bytes, 1, 1, {128, 100, 15, 20}));  // halved
}

void UpdateUi(const Slot& slot) {
  Record<176> definition;
  std::memcpy(definition.bytes, session.parameters[1], 176);
  Write(definition.bytes, 4, A_long{0x230});  // invisible and disabled, and a separator below 0x10
  WriteText(definition.bytes, 16, "Renamed");
  HOLDS(slot.Call<A_long>(session.effect, A_long{1}, definition.Text()) == 0);
}

/// Only the first byte of a word is written.
void KeyExists(const Slot& slot) {
  std::uint32_t exists = 0xFFFF'FFFF;
  HOLDS(slot.Call<A_long>(g.preferences, "section", "key", &exists) == 0);
  HOLDS(exists == 0xFFFF'FF01);
}

/// Only the low half of a word is written; 2 is a composition.
void GetItemType(const Slot& slot) {
  std::uint32_t type = 0xFFFF'FFFF;
  HOLDS(slot.Call<A_long>(g.item, &type) == 0);
  HOLDS(type == 0xFFFF'0002);
}

void StartQuiet(const Slot& slot) {
  std::memset(g.quiet.bytes, kCanary, 48);
  HOLDS(slot.Call<A_long>(g.quiet.Text()) == 0);
  HOLDS(std::count(g.quiet.bytes, g.quiet.bytes + 48, kCanary) == 0);
  HOLDS(g.quiet.IsIntactBehind());
}

/// 32 characters and the terminating zero, in a buffer of 64 bytes.
void GetGroupName(const Slot& slot) {
  char name[64];
  std::memset(name, kCanary, sizeof name);
  HOLDS(slot.Call<A_long>(g.group, std::uint8_t{0}, name) == 0);
  HOLDS(std::string(name, sizeof name) ==
        std::string(32, 'c') + '\0' + std::string(31, static_cast<char>(kCanary)));
}

/// 48 characters and the terminating zero.
void GetMatchName(const Slot& slot) {
  Record<49> name;
  HOLDS(slot.Call<A_long>(g.key, name.Text()) == 0);
  HOLDS(std::string(name.Text()) == std::string(48, 'm'));
  HOLDS(name.IsIntactBehind());
}

void CheckStreamFlags(const Slot& slot, std::uint32_t expected) {
  std::uint32_t flags = 0;
  HOLDS(slot.Call<A_long>(g.stream, &flags) == 0);
  HOLDS(flags == expected);
}

void GetValue(const Slot& slot, double expected) {
  const Time time;
  g.value = {};
  HOLDS(slot.Call<A_long>(g.id, g.stream, std::int16_t{0}, time.record.bytes, std::uint8_t{0},
                          g.value.Text()) == 0);
  HOLDS(Read<void*>(g.value.bytes, 0) == g.stream && Read<double>(g.value.bytes, 8) == expected);
  HOLDS(g.value.IsIntactBehind());
}

void SetValue(const Slot& slot) {
  g.value = {};
  Write(g.value.bytes, 0, g.stream);
  Write(g.value.bytes, 8, 2.5);
  HOLDS(slot.Call<A_long>(g.id, g.stream, g.value.Text()) == 0);
}

void NewStream(const Slot& slot, void* effect) {
  HOLDS(slot.Call<A_long>(g.id, effect, A_long{1}, &g.stream) == 0);
}

void GetEffect(const Slot& slot, A_long index) {
  HOLDS(slot.Call<A_long>(g.id, g.layer, index, &g.other) == 0);
}

void CheckActive(const Slot& slot, void* effect, bool active) {
  A_long flags = 0;
  HOLDS(slot.Call<A_long>(effect, &flags) == 0);
  HOLDS(((flags & 1) != 0) == active);
}

void Dispose(const Slot& slot, void* object) { HOLDS(slot.Call<A_long>(object) == 0); }

/// An operation that stores a number.
template <typename Handle>
void CheckNumber(const Slot& slot, Handle of, A_long expected) {
  A_long number = -1;
  HOLDS(slot.Call<A_long>(of, &number) == 0);
  HOLDS(number == expected);
}

/// Version 2 of the effect suite cannot say which command it sends.
void SendGeneral(const Slot& slot, bool saysCommand) {
  const Time time;
  const A_long code =
      saysCommand
          ? slot.Call<A_long>(g.id, g.self, time.record.bytes, A_long{17}, &session.nested)
          : slot.Call<A_long>(g.id, g.self, time.record.bytes, static_cast<void*>(&session.nested));
  HOLDS(code == 0);
  HOLDS(session.nested == (saysCommand ? 2 : 1));
}

void Append(std::vector<Step>& steps, std::vector<Step> more) {
  steps.insert(steps.end(), more.begin(), more.end());
}

std::vector<Step> GeneralSteps() {
  constexpr const char* kHandles = "PF Handle Suite";
  constexpr const char* kUtility = "AEGP Utility Suite";
  constexpr const char* kData = "AEGP Persistent Data Suite";
  return {
      {kUtility, 11, 8,
       [](const Slot& slot) {
         HOLDS(slot.Call<A_long>(&session, "independent", &g.id) == 0);
         HOLDS(g.id > 0);
       }},
      {kUtility, 7, 0, [](const Slot& slot) { HOLDS(slot.Call<A_long>(g.id, "reported") == 0); }},
      {kUtility, 11, 3, StartQuiet},
      {kUtility, 11, 4,
       [](const Slot& slot) { HOLDS(slot.Call<A_long>(std::uint8_t{0}, g.quiet.Text()) == 0); }},
      {kUtility, 13, 7, [](const Slot& slot) { HOLDS(slot.Call<A_long>("undone") == 0); }},
      {kUtility, 13, 8, [](const Slot& slot) { HOLDS(slot.Call<A_long>() == 0); }},
      {"AEGP Register Suite", 6, 8,
       [](const Slot& slot) { HOLDS(slot.Call<A_long>(g.id, Idle, &session.nested) == 0); }},
      {kData, 3, 0, [](const Slot& slot) { HOLDS(slot.Call<A_long>(&g.preferences) == 0); }},
      {kData, 3, 3, KeyExists},
      {kData, 3, 14,
       [](const Slot& slot) {
         HOLDS(slot.Call<A_long>(g.preferences, "section", "key", A_long{-7}) == 0);
       }},
      {kHandles, 2, 0, [](const Slot& slot) { g.handle = slot.Call<void*>(std::uint64_t{24}); }},
      {kHandles, 2, 1,
       [](const Slot& slot) { HOLDS(slot.Call<void*>(g.handle) == Read<void*>(g.handle, 0)); }},
      {kHandles, 2, 2, [](const Slot& slot) { slot.Call<void>(g.handle); }},
      {kHandles, 2, 5,
       [](const Slot& slot) { HOLDS(slot.Call<A_long>(std::uint64_t{32}, &g.handle) == 0); }},
      {kHandles, 2, 4, [](const Slot& slot) { HOLDS(slot.Call<std::uint64_t>(g.handle) == 32); }},
      {kHandles, 2, 3, [](const Slot& slot) { slot.Call<void>(g.handle); }},
      {"PF Param Utils Suite", 3, 0, UpdateUi},
      {"AEGP Proj Suite", 8, 0,
       [](const Slot& slot) {
         A_long count = 0;
         HOLDS(slot.Call<A_long>(&count) == 0);
         HOLDS(count == 1);
       }},
      {"AEGP Item Suite", 10, 2, [](const Slot& slot) { HOLDS(slot.Call<A_long>(&g.item) == 0); }},
      {"AEGP Item Suite", 10, 5, GetItemType},
      {"AEGP Comp Suite", 9, 0,
       [](const Slot& slot) { HOLDS(slot.Call<A_long>(g.item, &g.composition) == 0); }},
      {"AEGP Layer Suite", 11, 0, [](const Slot& slot) { CheckNumber(slot, g.composition, 1); }},
      {"AEGP Layer Suite", 11, 1,
       [](const Slot& slot) { HOLDS(slot.Call<A_long>(g.composition, A_long{0}, &g.layer) == 0); }},
  };
}

std::vector<Step> PictureSteps() {
  constexpr const char* kWorlds = "PF World Suite";
  return {
      {"PF ANSI Suite", 1, 15, Sprintf},
      {"PF ANSI Suite", 1, 16, Strcpy},
      {"", 0, 328, Sprintf},
      {"", 0, 336, Strcpy},
      {"", 0, 432, GetPath},
      {kWorlds, 1, 0, [](const Slot& slot) { NewWorld(slot, g.worlds[0]); }},
      {kWorlds, 1, 0, [](const Slot& slot) { NewWorld(slot, g.worlds[1]); }},
      {"", 0, 528, GetFirstPixel},
      {"", 0, 72, Fill},
      {"", 0, 64, Copy},
      {"PF Fill Matte Suite", 2, 3, Premultiply},
      {kWorlds, 1, 1, [](const Slot& slot) { DisposeOfWorld(slot, g.worlds[0]); }},
      {kWorlds, 1, 1, [](const Slot& slot) { DisposeOfWorld(slot, g.worlds[1]); }},
  };
}

/// The layer holds a companion (0), this plug-in (1) and an effect that is not active (2).
std::vector<Step> EffectSteps(A_long version) {
  constexpr const char* kEffects = "AEGP Effect Suite";
  return {
      {kEffects, version, 0, [](const Slot& slot) { CheckNumber(slot, g.layer, 3); }},
      {kEffects, version, 1, [](const Slot& slot) { GetEffect(slot, 2); }},
      {kEffects, version, 2,
       [](const Slot& slot) { HOLDS(slot.Call<A_long>(g.other, &g.key) == 0); }},
      {kEffects, version, 14, GetMatchName},
      {kEffects, version, 4, [](const Slot& slot) { CheckActive(slot, g.other, false); }},
      {kEffects, version, 4, [](const Slot& slot) { CheckActive(slot, g.self, true); }},
      {kEffects, version, 8, [](const Slot& slot) { Dispose(slot, g.other); }},
      {kEffects, version, 7, [version](const Slot& slot) { SendGeneral(slot, version == 3); },
       "7/25 s"},
  };
}

std::vector<Step> StreamSteps() {
  constexpr const char* kStreams = "AEGP Stream Suite";
  constexpr const char* kDynamic = "AEGP Dynamic Stream Suite";
  return {
      {"AEGP Effect Suite", 3, 1, [](const Slot& slot) { GetEffect(slot, 0); }},
      {kStreams, 9, 5, [](const Slot& slot) { NewStream(slot, g.other); }},
      {kDynamic, 5, 16,
       [](const Slot& slot) { HOLDS(slot.Call<A_long>(g.id, g.stream, &g.group) == 0); }},
      {kStreams, 4, 7, GetGroupName},
      {kStreams, 9, 7, [](const Slot& slot) { Dispose(slot, g.group); }},
      {kStreams, 9, 7, [](const Slot& slot) { Dispose(slot, g.stream); }},
      {"AEGP Effect Suite", 3, 8, [](const Slot& slot) { Dispose(slot, g.other); }},
      {kStreams, 9, 5, [](const Slot& slot) { NewStream(slot, g.self); }},
      {kDynamic, 5, 5, [](const Slot& slot) { CheckStreamFlags(slot, 1); }},
      {kDynamic, 5, 6,
       [](const Slot& slot) {
         HOLDS(slot.Call<A_long>(g.stream, std::uint32_t{2}, std::uint8_t{0}, std::uint8_t{1}) ==
               0);
       }},
      {kDynamic, 5, 5, [](const Slot& slot) { CheckStreamFlags(slot, 3); }},
      {kStreams, 9, 13, [](const Slot& slot) { GetValue(slot, 1.5); }, "7/25 s"},
      {kStreams, 9, 14, [](const Slot& slot) { HOLDS(slot.Call<A_long>(g.value.Text()) == 0); }},
      {kStreams, 9, 15, SetValue},
      {kStreams, 9, 13, [](const Slot& slot) { GetValue(slot, 2.5); }},
      {kStreams, 9, 14, [](const Slot& slot) { HOLDS(slot.Call<A_long>(g.value.Text()) == 0); }},
      {kStreams, 9, 7, [](const Slot& slot) { Dispose(slot, g.stream); }},
      {"AEGP Effect Suite", 2, 8, [](const Slot& slot) { Dispose(slot, g.self); }},
  };
}

std::vector<Step> AllSteps() {
  constexpr const char* kInterface = "AEGP PF Interface Suite";
  std::vector<Step> steps = GeneralSteps();
  Append(steps, PictureSteps());
  Append(steps,
         {{kInterface, 1, 0,
           [](const Slot& slot) { HOLDS(slot.Call<A_long>(session.effect, &g.layer) == 0); }},
          {kInterface, 1, 1, [](const Slot& slot) {
             HOLDS(slot.Call<A_long>(g.id, session.effect, &g.self) == 0);
           }}});
  Append(steps, EffectSteps(2));
  Append(steps, EffectSteps(3));
  Append(steps, StreamSteps());
  return steps;
}

/// A slot that the host does not fill says which one it is.
void ExpectUnused(const Slot& slot, const Callback& callback) {
  const std::string expected =
      "slot " + callback.place + ", " +
      (callback.operation.empty() ? "whose published name is not known here" : callback.operation) +
      ", was called; this host has nothing there";
  const auto code = slot.Call<A_long>();
  const std::vector<std::string> violations = session.observer.violations();
  const bool ran = !session.observer.operations().empty();
  if (code == 515 && !ran && violations == std::vector<std::string>{expected}) {
    return;
  }
  const std::string found = ran ? "an operation" : violations.empty() ? "nothing" : violations[0];
  session.findings.push_back("expected: " + expected + "; found: " + found);
}

void CallUnused(const void* table, const std::vector<Callback>& callbacks,
                const std::set<std::size_t>& used) {
  for (const Callback& callback : callbacks) {
    if (used.count(callback.byte) == 0) {
      ExpectUnused({table, callback.byte}, callback);
    }
  }
}

/// Byte offsets of the slots that the host fills, by suite and version.
using Used = std::map<std::pair<std::string, A_long>, std::set<std::size_t>>;

void Run(const Step& step, std::size_t byte, const void* table,
         const std::vector<Callback>& callbacks) {
  HOLDS(table != nullptr);
  if (table == nullptr) {
    return;
  }
  step.call({table, byte});
  const auto callback = std::find_if(callbacks.begin(), callbacks.end(),
                                     [&](const Callback& each) { return each.byte == byte; });
  HOLDS(callback != callbacks.end());
  if (callback != callbacks.end()) {
    ExpectOperation(callback->operation, step.argument);
  }
}

Used RunSteps(const std::vector<Suite>& suites) {
  Used used;
  for (const Step& step : AllSteps()) {
    const bool isSuite = *step.suite != '\0';
    const std::size_t byte = isSuite ? step.slot * kPointer : step.slot;
    used[{step.suite, step.version}].insert(byte);
    if (!isSuite) {
      Run(step, byte, session.utilities, UtilityCallbacks());
    } else {
      const auto suite = std::find_if(suites.begin(), suites.end(), [&](const Suite& each) {
        return each.name == step.suite && each.version == step.version;
      });
      HOLDS(suite != suites.end());
      if (suite == suites.end()) {
        break;
      }
      Run(step, byte, Acquire(step.suite, step.version), suite->slots);
      Release(step.suite, step.version);
    }
    if (!session.findings.empty()) {
      break;
    }
  }
  return used;
}

}  // namespace

Session session;

void Note(bool holds, const char* what, const char* file, int line) {
  if (!holds) {
    session.findings.push_back(std::string(file) + ":" + std::to_string(line) + ": " + what);
  }
}

void Expect(const void* record, const std::string& what, std::initializer_list<Number> numbers) {
  HOLDS(record != nullptr);
  if (record == nullptr) {
    return;
  }
  for (const Number& number : numbers) {
    const auto found = Read<A_long>(record, number.byte);
    if (found != number.value) {
      session.findings.push_back(what + ": " + number.name + " at byte " +
                                 std::to_string(number.byte) + " is " + std::to_string(found) +
                                 ", not " + std::to_string(number.value));
    }
  }
}

void ExpectOperation(const std::string& name, const std::string& argument) {
  const std::vector<std::string> operations = session.observer.operations();
  std::vector<std::string> ran = session.observer.violations();
  if (ran.empty() && operations.size() == 1 && operations[0].starts_with(name + "(") &&
      operations[0].find(argument) != std::string::npos) {
    return;
  }
  ran.insert(ran.end(), operations.begin(), operations.end());
  std::string finding = name + " was to run; what ran:";
  for (const std::string& text : ran) {
    finding += " " + text + ";";
  }
  session.findings.push_back(finding);
}

const void* Acquire(const std::string& suite, A_long version) {
  const void* table = nullptr;
  HOLDS(Slot{session.basic, 0}.Call<A_long>(suite.c_str(), version, &table) == 0);
  ExpectOperation("AcquireSuite");
  return table;
}

void Release(const std::string& suite, A_long version) {
  HOLDS(Slot{session.basic, 8}.Call<A_long>(suite.c_str(), version) == 0);
  ExpectOperation("ReleaseSuite");
}

void* NewHandle(std::uint64_t size) {
  void* handle = Slot{Acquire("PF Handle Suite", 2), 0}.Call<void*>(size);
  ExpectOperation("host_new_handle");
  Release("PF Handle Suite", 2);
  HOLDS(handle != nullptr);
  return handle;
}

void DisposeOfHandle(void* handle) {
  Slot{Acquire("PF Handle Suite", 2), 3 * kPointer}.Call<void>(handle);
  ExpectOperation("host_dispose_handle");
  Release("PF Handle Suite", 2);
}

void CallEverything(const void* interaction) {
  g = {};
  const std::vector<Suite> suites = Suites();
  Used used = RunSteps(suites);
  // A filled slot without a step would now be called as if it were unused, without arguments.
  if (!session.findings.empty()) {
    return;
  }
  for (const Suite& suite : suites) {
    CallUnused(Acquire(suite.name, suite.version), suite.slots, used[{suite.name, suite.version}]);
    Release(suite.name, suite.version);
  }
  CallUnused(session.utilities, UtilityCallbacks(), used[{"", 0}]);
  CallUnused(session.basic, BasicCallbacks(), {0, 8});
  CallUnused(interaction, InteractionCallbacks(), {16});
}

}  // namespace independent_abi
