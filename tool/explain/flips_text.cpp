#include <cstddef>

#include "base/files/escaped_text.h"
#include "base/files/json.h"
#include "base/files/text_table.h"
#include "tool/explain/flips.h"

namespace tarvo {
namespace {

const char* NameOf(Flip::Cause cause) {
  switch (cause) {
    case Flip::Cause::kKey:
      return "key";
    case Flip::Cause::kInterpolation:
      return "interpolation";
    case Flip::Cause::kOther:
      return "other";
  }
  return "";
}

std::string Reason(const FlipTrack& track) {
  if (track.keyIsHere) {
    return "  a key of " + ForTerminal(track.what) + " stands at frame " + Shortest(track.from) +
           "\n";
  }
  return "  " + ForTerminal(track.what) + " is on its way from its key at " + Shortest(track.from) +
         " to that at " + Shortest(track.to) + "\n";
}

std::string Advice(const Flip& flip) {
  if (flip.cause != Flip::Cause::kInterpolation) {
    return "";
  }
  std::string text =
      R"(  No key asked for it. To choose the frame, hold the key ("ease": "hold"):)";
  for (const FlipTrack& track : flip.tracks) {
    text += " " + ForTerminal(track.what) + " at " + Shortest(track.from) +
            ", then it changes at " + Shortest(track.to) + ";";
  }
  text.back() = '.';
  return text + "\n";
}

}  // namespace

std::string FlipsText(const Animation& animation, const std::vector<Flip>& flips) {
  const auto nameOf = [&](std::size_t bone) {
    return ForTerminal(animation.scene.bones[bone].name);
  };
  std::string text;
  for (const Flip& flip : flips) {
    text += "frame " + std::to_string(flip.frame) + ": " + nameOf(flip.front) +
            " moves in front of " + nameOf(flip.behind) + ", " + std::to_string(flip.pairs) +
            (flip.pairs == 1 ? " pair" : " pairs") + " of pieces, " + std::to_string(flip.pixels) +
            " pixels\n";
    for (const FlipTrack& track : flip.tracks) {
      text += Reason(track);
    }
    if (flip.cause == Flip::Cause::kOther) {
      text +=
          "  no key moves their depth here: bones were activated or deactivated and changed "
          "numbers\n";
    }
    text += Advice(flip);
  }
  return text + std::to_string(flips.size()) + (flips.size() == 1 ? " flip" : " flips") + " in " +
         std::to_string(animation.count) + (animation.count == 1 ? " frame\n" : " frames\n");
}

std::string FlipsJson(const Animation& animation, const std::vector<Flip>& flips) {
  const auto& bones = animation.scene.bones;
  Json list = Json::array();
  for (const Flip& flip : flips) {
    Json tracks = Json::array();
    for (const FlipTrack& track : flip.tracks) {
      tracks.push_back({{"what", track.what},
                        {"from", track.from},
                        {"to", track.to},
                        {"keyIsHere", track.keyIsHere}});
    }
    list.push_back({{"frame", flip.frame},
                    {"front", bones[flip.front].name},
                    {"behind", bones[flip.behind].name},
                    {"pairs", flip.pairs},
                    {"pixels", flip.pixels},
                    {"cause", NameOf(flip.cause)},
                    {"tracks", tracks}});
  }
  const Json json = {{"frames", animation.count}, {"flips", list}};
  return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace tarvo
