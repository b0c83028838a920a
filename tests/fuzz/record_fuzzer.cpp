// Bytes become what companions send to an instance of the plug-in, and what a host asks of it
// between their messages.
//
// What a record may hold: the plug-in and its companions share one process, and no one can ask
// whether an address may be read. So the addresses of a quad list that makes sense (whole pieces,
// not too many, end not before start) are those of memory that is there, and a list that makes none
// may hold any. All else may be anything: places, flags, numbers, and images. An image is the
// host's own record of a world; one that the host never made, has disposed of, or made in another
// size is for the host to refuse, and what it notes of that here is the sender's fault.

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include <fuzzer/FuzzedDataProvider.h>
#include <sanitizer/lsan_interface.h>

#include "plugin/entry/entry_point.h"
#include "standin/host/host.h"
#include "tests/fuzz/finding.h"
#include "tests/support/render_target.h"

namespace {

using fuzz::Finding;
using standin::CommandResult;
using standin::Companion;
using standin::Kind;
using standin::RendererInstance;

constexpr int kLayerWidth = 32;
constexpr int kLayerHeight = 24;
/// Outputs are larger, so that many frames are drawn in tiles.
constexpr std::uint16_t kTargetSide = 32;
constexpr A_long kLargestOutputSide = 48;
constexpr int kMostActions = 24;
constexpr std::size_t kMostEffects = 30;  // more than there are bones with sliders
constexpr int kFastTransparency = 53;     // the last of the parameters
constexpr A_long kLargestPlace = 65'535;  // a record that claims to come from beyond is refused
/// After so many inputs the plug-in is set down, and starts again on a new host.
constexpr int kInputsPerHost = 2'000;

/// Plain numbers in most cases, and those at which arithmetic turns over.
double AnyNumber(FuzzedDataProvider& bytes) {
  constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
  constexpr double kEndless = std::numeric_limits<double>::infinity();
  constexpr std::array kEdges{-0.0,          1.0,   1e-310, 1e9,   -1e12,  3.5e38,   2147483647.0,
                              -2147483648.0, 1e300, -1e300, kNone, -kNone, kEndless, -kEndless};
  const auto choice = bytes.ConsumeIntegral<std::uint8_t>();
  if (choice < 200) {
    return choice / 4.0 - 8.0;
  }
  if (choice < 240) {
    return bytes.PickValueInArray(kEdges);
  }
  return std::bit_cast<double>(bytes.ConsumeIntegral<std::uint64_t>());
}

PieceQuad AnyPiece(FuzzedDataProvider& bytes) {
  std::array<double, 18> numbers{};  // corners, texture coordinates, place on the bone, opacity
  for (double& number : numbers) {
    number = AnyNumber(bytes);
  }
  PieceQuad piece{};
  std::memcpy(&piece, numbers.data(), sizeof numbers);
  piece.imageSelect = bytes.PickValueInArray({TARVO_IMAGE_A, TARVO_IMAGE_B, TARVO_IMAGE_A, 7U});
  return piece;
}

std::vector<PieceQuad> AnyPieces(FuzzedDataProvider& bytes) {
  std::vector<PieceQuad> pieces(bytes.ConsumeIntegralInRange<std::size_t>(0, 4));
  for (PieceQuad& piece : pieces) {
    piece = AnyPiece(bytes);
  }
  return pieces;
}

tarvo::Picture AnyPicture(FuzzedDataProvider& bytes) {
  const int width = bytes.ConsumeIntegralInRange(1, 9);
  const int height = bytes.ConsumeIntegralInRange(1, 9);
  const auto shade = bytes.ConsumeIntegral<std::uint8_t>();
  return {width,
          height,
          {.red = shade,
           .green = 90,
           .blue = 200,
           .alpha = bytes.ConsumeBool() ? shade : std::uint8_t{255}}};
}

/// Another size: small, nothing, or far beyond what the host makes. Much memory is not what is
/// tested.
void Resize(PF_EffectWorld& world, FuzzedDataProvider& bytes) {
  using Limits = std::numeric_limits<A_long>;
  constexpr std::array<std::pair<A_long, A_long>, 8> kSizes{{{0, 5},
                                                             {5, 0},
                                                             {-1, 5},
                                                             {5, Limits::min()},
                                                             {Limits::max(), Limits::max()},
                                                             {Limits::max(), 1},
                                                             {1 << 20, 1 << 20},
                                                             {2'000, 1}}};
  const auto choice = bytes.ConsumeIntegralInRange<std::size_t>(0, 2 * kSizes.size());
  if (choice < kSizes.size()) {
    std::tie(world.width, world.height) = kSizes[choice];
  } else {
    world.width = bytes.ConsumeIntegralInRange<A_long>(1, 9);
    world.height = bytes.ConsumeIntegralInRange<A_long>(1, 9);
  }
}

/// A record put together byte by byte, behind which memory ends, with what it refers to.
class AnyRecord {
 public:
  AnyRecord(FuzzedDataProvider& bytes, standin::Host& host, int layerEffects)
      : host_(host), pieces_(AnyPieces(bytes)) {
    record_.effectIndex =
        bytes.ConsumeBool() ? bytes.ConsumeIntegralInRange(0, layerEffects) : AnyPlace(bytes);
    PutPieces(bytes);
    record_.opacityA = AnyNumber(bytes);
    record_.opacityB = AnyNumber(bytes);
    PutImage(bytes, record_.imageA, record_.newImageA);
    PutImage(bytes, record_.imageB, record_.newImageB);
    if (bytes.ConsumeIntegralInRange(0, 15) == 0) {  // one world given twice
      std::memcpy(record_.imageB, record_.imageA, sizeof record_.imageA);
      worldsMayBeRefused_ = true;
    }
    const auto shift = bytes.ConsumeIntegralInRange<std::size_t>(0, 7);
    memory_.resize(shift + sizeof record_);
    memory_.shrink_to_fit();
    std::memcpy(Address(), &record_, sizeof record_);
  }
  AnyRecord(const AnyRecord&) = delete;
  AnyRecord& operator=(const AnyRecord&) = delete;
  /// What was not taken is the sender's.
  ~AnyRecord() {
    for (const PF_EffectWorld& world : worlds_) {
      if (host_.worlds.IsLive(world)) {
        host_.worlds.Dispose(&world, "the companion");
      }
    }
  }

  void* Address() { return memory_.data() + memory_.size() - sizeof record_; }
  [[nodiscard]] bool IsPlausible() const { return isPlausible_; }
  [[nodiscard]] bool WorldsMayBeRefused() const { return worldsMayBeRefused_; }

  /// Whatever the result was, only the flags may differ, and only by being cleared; in an
  /// implausible record nothing may. A cleared flag says that the world was disposed of.
  void ExpectOnlyFlagsCleared(bool failed) {
    CompanionSlot now{};
    std::memcpy(&now, Address(), sizeof now);
    ExpectCleared(record_.newImageA, now.newImageA);
    ExpectCleared(record_.newImageB, now.newImageB);
    if (!worldsMayBeRefused_ && !failed) {
      ExpectHandedOver(record_.imageA, record_.newImageA != now.newImageA);
      ExpectHandedOver(record_.imageB, record_.newImageB != now.newImageB);
    }
    now.newImageA = record_.newImageA;
    now.newImageB = record_.newImageB;
    if (std::memcmp(&now, &record_, sizeof now) != 0) {
      Finding("the sender's record was changed");
    }
  }

 private:
  A_long AnyPlace(FuzzedDataProvider& bytes) {
    constexpr std::array<A_long, 6> kPlaces{-1,
                                            100,
                                            kLargestPlace + 1,
                                            std::numeric_limits<A_long>::min(),
                                            std::numeric_limits<A_long>::max(),
                                            300};
    const A_long place = bytes.PickValueInArray(kPlaces);
    if (place < 0 || place > kLargestPlace) {
      isPlausible_ = false;
    }
    return place;
  }

  void PutPieces(FuzzedDataProvider& bytes) {
    const auto start = std::bit_cast<std::uintptr_t>(pieces_.data());
    const std::uintptr_t end = start + pieces_.size() * sizeof(PieceQuad);
    record_.quads.first = Piece(start);
    record_.quads.last = Piece(end);
    if (bytes.ConsumeIntegralInRange(0, 3) != 0) {
      return;
    }
    const auto noise = bytes.ConsumeIntegral<std::uintptr_t>();
    switch (bytes.ConsumeIntegralInRange(0, 5)) {
      case 0:  // a part of the list
        record_.quads.last = Piece(start + noise % (end - start + 1));
        break;
      case 1:
        record_.quads.last = Piece(start | noise);
        break;
      case 2:
        record_.quads.last = Piece(start & noise);
        break;
      case 3:
        record_.quads.first = nullptr;
        break;
      case 4:
        record_.quads.last = nullptr;
        break;
      default:
        record_.quads.reservedEnd = Piece(noise);  // not read by the plug-in
    }
    JudgePieces();
  }

  /// Lists that are refused for their addresses; every other one lies in memory that is there.
  void JudgePieces() {
    const auto start = std::bit_cast<std::uintptr_t>(record_.quads.first);
    const auto end = std::bit_cast<std::uintptr_t>(record_.quads.last);
    const auto held =
        std::bit_cast<std::uintptr_t>(pieces_.data()) + pieces_.size() * sizeof(PieceQuad);
    const bool whole = end >= start && (end - start) % sizeof(PieceQuad) == 0;
    if (whole && end > held && (end - start) / sizeof(PieceQuad) <= 1'000'000 && start != 0) {
      record_.quads.last = Piece(end + 1);
    }
    if (!whole || end > held || (start == 0 && end != 0)) {
      isPlausible_ = false;
    }
  }

  static const PieceQuad* Piece(std::uintptr_t address) {
    return std::bit_cast<const PieceQuad*>(address);
  }

  void PutImage(FuzzedDataProvider& bytes, std::uint8_t* field, std::uint8_t& flag) {
    flag = bytes.PickValueInArray<std::uint8_t>({0, 1, 1, 255});
    const int kind = bytes.ConsumeIntegralInRange(0, 5);
    PF_EffectWorld world{};
    if (kind != 0) {  // else no image at all
      world = host_.worlds.From(AnyPicture(bytes), "an image");
      worlds_.push_back(world);
    }
    if (kind >= 3) {
      worldsMayBeRefused_ = worldsMayBeRefused_ || flag != 0;
    }
    if (kind == 3) {
      host_.worlds.Dispose(&world, "the companion");
    }
    if (kind == 5) {
      bytes.ConsumeData(&world, sizeof world);
    }
    if (kind >= 4) {
      Resize(world, bytes);
    }
    std::memcpy(field, &world, sizeof world);
  }

  void ExpectCleared(std::uint8_t before, std::uint8_t now) const {
    const bool right = now == before || (now == 0 && isPlausible_);
    if (!right) {
      Finding("a flag was " + std::to_string(before) + " and is " + std::to_string(now));
    }
  }

  void ExpectHandedOver(const std::uint8_t* field, bool taken) const {
    PF_EffectWorld world{};
    std::memcpy(&world, field, sizeof world);
    if (taken && host_.worlds.IsLive(world)) {
      Finding("an image was taken, and its world kept");
    }
  }

  standin::Host& host_;
  std::vector<PieceQuad> pieces_;
  std::vector<PF_EffectWorld> worlds_;
  CompanionSlot record_{};
  std::vector<std::uint8_t> memory_;
  bool isPlausible_ = true;
  bool worldsMayBeRefused_ = false;
};

/// A host with the plug-in set up, for many inputs.
class FuzzedHost {
 public:
  FuzzedHost()
      : host(EntryPointFunc), layer_(MakeLayer()), handles_(host.tracker.Count(Kind::kHandle)) {}

  /// Runs one input on a new instance and expects it to leave nothing behind.
  void RunInput(FuzzedDataProvider& bytes) {
    renderer_ = &host.AddRenderer(layer_);
    ExpectOk(renderer_->setup, "sequence setup");
    for (int action = 0; action < kMostActions && bytes.remaining_bytes() > 0; ++action) {
      ActWithFailures(bytes);
      ExpectNoViolation();
    }
    Clear();
  }

  /// Sets the plug-in down.
  void Close() {
    host.Close();
    ExpectNoViolation();
    ExpectCount(Kind::kHandle, 0);
    ExpectCount(Kind::kWorld, 0);
  }

  standin::Host host;

 private:
  standin::Layer& MakeLayer() {
    host.injector.KeepLog(false);
    ExpectOk(host.StartUp(), "start");
    check::ResizeRenderTarget(kTargetSide, kTargetSide);
    standin::Composition& composition = host.project.AddComposition("Composition");
    host.project.Activate(composition);
    return composition.AddLayer("Puppet", kLayerWidth, kLayerHeight);
  }

  /// One action, in which a call to the host may fail.
  void ActWithFailures(FuzzedDataProvider& bytes) {
    constexpr auto kOftenest = std::uint64_t{60};
    const auto call = bytes.ConsumeIntegralInRange<std::uint64_t>(0, 4 * kOftenest);
    const int action = bytes.ConsumeIntegralInRange(0, 12);
    if (call > 0 && call < kOftenest && action < 7) {
      host.injector.FailNth(call, {.code = 55, .throws = bytes.ConsumeBool()});
    }
    const std::uint64_t before = host.injector.Injected();
    const auto failed = [&] { return host.injector.Injected() != before; };
    Act(action, bytes, failed);
    host.injector.FailNothing();
  }

  template <typename Failed>
  void Act(int action, FuzzedDataProvider& bytes, Failed failed) {
    const auto expectOk = [&](const CommandResult& result, const std::string& what) {
      if (!failed()) {
        ExpectOk(result, what);
      }
    };
    switch (action) {
      case 0:
      case 1:
        return SendValidRecord(bytes, failed);
      case 2:
      case 3:
        return SendAnything(bytes, failed);
      case 4:
        return Render(bytes, failed);
      case 5:
        return expectOk(host.UpdateParamsUi(*renderer_), "labels");
      case 6:
        if (bytes.ConsumeBool()) {
          return expectOk(SwitchFast(bytes.ConsumeBool()), "fast");
        }
        return expectOk(ChangeParameter(bytes), "a parameter");
      case 7:
        AskForExtent(bytes);
        return;
      case 8:
        if (host.Idle() != 0) {
          Finding("idle failed");
        }
        return;
      case 9:
        return AddEffect(bytes);
      case 10:
        return ChangeEffect(bytes);
      case 11: {
        RendererInstance& original = *renderer_;
        renderer_ = &host.Duplicate(original);
        ExpectOk(renderer_->setup, "duplicate");
        return ExpectOk(host.Remove(original), "remove the original");
      }
      default:
        host.SaveAndReopen();
        return ExpectOk(renderer_->setup, "reopen");
    }
  }

  CommandResult SwitchFast(bool fast) {
    return host.SetParameter(*renderer_, kFastTransparency, fast ? 1 : 0);
  }

  CommandResult ChangeParameter(FuzzedDataProvider& bytes) {
    const int index = bytes.ConsumeIntegralInRange(1, kFastTransparency);
    return host.SetParameter(*renderer_, index, AnyNumber(bytes));
  }

  void AddEffect(FuzzedDataProvider& bytes) {
    if (layer_.effects.size() >= kMostEffects) {
      return;
    }
    const auto place = bytes.ConsumeIntegralInRange(0, static_cast<int>(layer_.effects.size()));
    if (bytes.ConsumeIntegralInRange(0, 3) == 0) {
      host.AddEffect(layer_, bytes.PickValueInArray({"X Glow", "qez_tarvo", "QEZ_Tarvo "}), place);
    } else {
      host.AddCompanion(layer_, bytes.ConsumeRandomLengthString(40), place);
    }
  }

  void ChangeEffect(FuzzedDataProvider& bytes) {
    standin::Effect& effect = AnyEffect(bytes);
    switch (bytes.ConsumeIntegralInRange(0, 3)) {
      case 0:
        if (&effect != renderer_) {
          ExpectOk(host.Remove(effect), "remove");
        }
        return;
      case 1:
        effect.withoutReference = !effect.withoutReference;
        return;
      case 2:
        effect.layerIsKnown = !effect.layerIsKnown;
        return;
      default:
        effect.active = !effect.active;
    }
  }

  standin::Effect& AnyEffect(FuzzedDataProvider& bytes) const {
    return *layer_.effects[bytes.ConsumeIntegralInRange<std::size_t>(0, layer_.effects.size() - 1)];
  }

  /// A valid record of a companion, with any pieces, images and opacities.
  template <typename Failed>
  void SendValidRecord(FuzzedDataProvider& bytes, Failed failed) {
    auto* companion = dynamic_cast<Companion*>(&AnyEffect(bytes));
    if (companion == nullptr) {
      companion = &host.AddCompanion(layer_, "Bone");
    }
    companion->pieces = AnyPieces(bytes);
    if (bytes.ConsumeBool()) {
      companion->imageA.Set(AnyPicture(bytes));
    }
    if (bytes.ConsumeBool()) {
      companion->imageB.Set(AnyPicture(bytes));
    }
    companion->imageA.opacity = AnyNumber(bytes);
    companion->imageB.opacity = AnyNumber(bytes);
    const CommandResult result = host.Send(*companion, *renderer_).command;
    if (!failed()) {
      ExpectOk(result, "a companion's message");
    }
  }

  template <typename Failed>
  void SendAnything(FuzzedDataProvider& bytes, Failed failed) {
    AnyRecord record(bytes, host, static_cast<int>(layer_.effects.size()));
    const CommandResult result = host.SendRecord(*renderer_, record.Address());
    record.ExpectOnlyFlagsCleared(failed());
    const bool refused = result.code == PF_Err_BAD_CALLBACK_PARAM;
    if (!record.IsPlausible() && !refused) {
      Finding("an implausible record was accepted");
    }
    if (record.WorldsMayBeRefused()) {
      return IgnoreViolationsOfTheSender();
    }
    if (record.IsPlausible() && !failed()) {
      ExpectOk(result, "a record");
    }
  }

  /// Ignores violations by worlds that the host refused: the sender put them into the record.
  void IgnoreViolationsOfTheSender() {
    for (const std::string& violation : host.tracker.Violations()) {
      const bool sendersFault = violation.starts_with("copy was given") ||
                                violation.starts_with("dispose_world was given");
      if (!sendersFault) {
        Finding(violation);
      }
    }
    host.tracker.ClearViolations();
  }

  static standin::FrameRequest AnyRequest(FuzzedDataProvider& bytes) {
    standin::FrameRequest request;
    request.downsampleX = bytes.PickValueInArray<A_u_long>({1, 1, 2, 3, 99, 1'000'000});
    request.downsampleY = bytes.PickValueInArray<A_u_long>({1, 1, 2, 3, 99, 1'000'000});
    if (bytes.ConsumeIntegralInRange(0, 3) == 0) {
      request.preEffectOriginX = bytes.ConsumeIntegral<A_long>();
      request.preEffectOriginY = bytes.ConsumeIntegral<A_long>();
    }
    return request;
  }

  standin::FrameExtent AskForExtent(FuzzedDataProvider& bytes) {
    standin::FrameExtent extent = host.FrameSetup(*renderer_, AnyRequest(bytes));
    ExpectOk(extent.command, "frame setup");
    const auto isSide = [](A_long side) { return side >= 0 && side <= 30'000; };
    if (!isSide(extent.width) || !isSide(extent.height)) {
      Finding("an output of " + std::to_string(extent.width) + " x " +
              std::to_string(extent.height));
    }
    return extent;
  }

  /// A frame of the extent asked for, or a small one somewhere in it.
  template <typename Failed>
  void Render(FuzzedDataProvider& bytes, Failed failed) {
    standin::FrameExtent extent = host.FrameSetup(*renderer_, {});
    const standin::FrameRequest request = AnyRequest(bytes);
    if (extent.width > kLargestOutputSide || extent.height > kLargestOutputSide) {
      extent.width = bytes.ConsumeIntegralInRange<A_long>(0, kLargestOutputSide);
      extent.height = bytes.ConsumeIntegralInRange<A_long>(0, kLargestOutputSide);
      if (bytes.ConsumeBool()) {
        extent.originX = extent.originY = 0;
      }
    }
    const standin::RenderResult result = host.RenderInto(*renderer_, extent, request);
    if (failed()) {
      return;
    }
    ExpectOk(result.command, "render");
    if (result.unwritten != 0) {
      Finding("a frame with pixels that were not written");
    }
  }

  static void ExpectOk(const CommandResult& result, const std::string& what) {
    if (!result.Ok()) {
      Finding(what + ": " + std::to_string(result.code) + " " + result.message);
    }
  }

  void ExpectNoViolation() const {
    if (!host.tracker.Violations().empty()) {
      Finding(host.tracker.FirstViolation());
    }
  }

  void ExpectCount(Kind kind, std::size_t most) const {
    if (host.tracker.Count(kind) > most) {
      Finding("left behind: " + host.tracker.Outstanding(kind).back());
    }
  }

  /// Takes everything off the layer; what then is left of the plug-in's is a leak.
  void Clear() {
    while (!layer_.effects.empty()) {
      ExpectOk(host.Remove(*layer_.effects.back()), "remove");
    }
    host.ClearChanges();
    ExpectNoViolation();
    if (!host.tracker.Balanced()) {
      Finding("left behind: " + host.tracker.OutstandingAfterCall().front());
    }
    ExpectCount(Kind::kHandle, handles_);
    ExpectCount(Kind::kWorld, 1);  // the host's own input layer, after the first frame
    if (!host.ContextIsCurrent()) {
      Finding("the host's context is not current");
    }
  }

  standin::Layer& layer_;
  RendererInstance* renderer_ = nullptr;
  std::size_t handles_;  ///< of the plug-in as a whole
};

}  // namespace

extern "C" int LLVMFuzzerInitialize(int* /*count*/, char*** /*arguments*/) {
  setenv("LP_NUM_THREADS", "0", 0);  // tiny pictures: threads would only block one another
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static auto host = std::make_unique<FuzzedHost>();
  static int inputs = 0;
  FuzzedDataProvider bytes(data, size);
  host->RunInput(bytes);
  if (++inputs % kInputsPerHost == 0) {
    host->Close();
    host.reset();  // before the next one begins: the plug-in is the same
    if (__lsan_do_recoverable_leak_check() != 0) {
      Finding("memory was lost");
    }
    host = std::make_unique<FuzzedHost>();
  }
  return 0;
}
