#include <cstddef>
#include <cstring>
#include <optional>
#include <string>
#include <utility>

#include "standin/core/core.h"
#include "standin/core/snapshot.h"
#include "standin/host/host.h"
#include "standin/host/plugin_state.h"
#include "standin/host/send_command.h"

namespace standin {
namespace {

/// The hand-over of one image: the sender makes a world for it, and the flag in the record says
/// afterwards whose it is.
class HandOver {
 public:
  HandOver(Core& core, CompanionImage& image, std::string label)
      : core_(core), image_(image), label_(std::move(label)) {}

  /// Puts the image into the record, if there is a new one.
  void Pack(std::uint8_t* worldBytes, std::uint8_t& flag) {
    if (image_.isNew) {
      world_ = core_.worlds.From(image_.picture, label_);
      std::memcpy(worldBytes, &*world_, sizeof *world_);
      flag = 1;
    }
  }

  /// Looks at the flag after the call; true iff the receiver took the image.
  bool Settle(std::uint8_t flag, const CommandResult& result) {
    if (!world_) {
      Expect(flag == 0, "the flag was set although no image was sent");
      return false;
    }
    const bool alive = core_.worlds.IsLive(*world_);
    if (flag != 0) {
      Expect(alive, "the flag still says that the world is the sender's, but it was disposed of");
    } else if (alive && result.Ok()) {
      Expect(false, "the flag says that the image was taken, but its world was not disposed of");
    } else if (alive) {
      ++core_.abandonedWorlds;  // after a transfer that failed halfway it has no owner
    }
    if (alive) {
      core_.worlds.Dispose(&*world_, "the companion");
    }
    image_.isNew = flag != 0;
    return flag == 0;
  }

 private:
  void Expect(bool holds, const std::string& otherwise) {
    if (!holds) {
      core_.tracker.ReportViolation("PF_Cmd_COMPLETELY_GENERAL: " + label_ + ": " + otherwise);
    }
  }

  Core& core_;
  CompanionImage& image_;
  std::string label_;
  std::optional<PF_EffectWorld> world_;
};

CompanionSlot RecordOf(const Companion& companion) {
  CompanionSlot record{};
  const PieceQuad* first = companion.pieces.data();
  const PieceQuad* last = first + companion.pieces.size();
  record.quads.first = first;
  record.quads.last = last;
  record.quads.reservedEnd = last;
  record.opacityA = companion.imageA.opacity;
  record.opacityB = companion.imageB.opacity;
  record.effectIndex = companion.Position();
  return record;
}

}  // namespace

SendResult Host::Send(Companion& companion, RendererInstance& renderer) {
  ExpectInstance(*core_, "Send", renderer);
  CompanionSlot record = RecordOf(companion);
  HandOver imageA(*core_, companion.imageA, "image A of " + companion.groupName);
  HandOver imageB(*core_, companion.imageB, "image B of " + companion.groupName);
  imageA.Pack(record.imageA, record.newImageA);
  imageB.Pack(record.imageB, record.newImageB);
  const Snapshot before(&record, sizeof record);
  const Snapshot pieces(companion.pieces.data(), companion.pieces.size() * sizeof(PieceQuad));

  SendResult result;
  result.command = SendRecord(renderer, &record);
  if (const auto offset = before.FirstChange(&record, {{offsetof(CompanionSlot, newImageA), 2}})) {
    tracker.ReportViolation("PF_Cmd_COMPLETELY_GENERAL: the sender's record was changed at byte " +
                            std::to_string(*offset) + "; only its two flags may be");
  }
  if (pieces.FirstChange(companion.pieces.data())) {
    tracker.ReportViolation("PF_Cmd_COMPLETELY_GENERAL: the sender's pieces were changed");
  }
  result.tookA = imageA.Settle(record.newImageA, result.command);
  result.tookB = imageB.Settle(record.newImageB, result.command);
  return result;
}

CommandResult Host::SendRecord(RendererInstance& renderer, void* record) {
  ExpectInstance(*core_, "SendRecord", renderer);
  Records records = MakeRecords(*core_, &renderer);
  records.extra = record;
  return SendCommand(*core_, PF_Cmd_COMPLETELY_GENERAL, records);
}

}  // namespace standin
