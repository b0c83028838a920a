#pragma once

namespace plugin {

/// The stages of a frame, in their order. In a frame of several tiles, those from the maps to the
/// read back alternate.
enum class FrameStage {
  kWorlds,    ///< the output's fill and the scratch world
  kUpload,    ///< new images
  kDrawList,  ///< depths and their order, and which pieces are contested
  kMaps,      ///< which piece owns each pixel; nothing in a fast frame
  kPasses,    ///< the two colour passes
  kReadBack,  ///< into the scratch world
  kTransfer,  ///< straight colour, the copy into the output, and disposing of what was held
};

/// Told of the end of every stage, for those who measure; null otherwise. [framework's context
/// current]
inline void (*gStageWatch)(FrameStage) = nullptr;

}  // namespace plugin
