#include "bench/benchmarks.h"

#include "bench/rigs.h"

namespace bench {
namespace {

std::vector<Benchmark> MakeBenchmarks() {
  const std::string limbs = InWords(kBones, kLimbPieces);
  const std::string bareGl = "the same quads by bare OpenGL, host calls";
  return {
      {"fast_1080", "fast frame, " + limbs, bareGl, 1.12, 7, Fast1080},
      {"fast_2000", "fast frame, " + InWords(kBones, 2000), bareGl, 1.15, 7, Fast2000},
      {"small_270", "fast frame of 480 × 270", bareGl, 1.20, 15, Small270},
      {"exact_1", "exact frame, " + InWords(1, kCarpetPieces), "fast frame", 2.2, 5, Exact1},
      {"exact_25", "exact frame, " + limbs, "fast frame", 2.4, 5, Exact25},
      {"exact_rig", "exact frame, " + limbs + " side by side", "fast frame", 1.10, 7, ExactRig},
      {"exact_wave", "exact frame of the sample wave", "fast frame", 1.10, 7, ExactWave},
      {"exact_knot", "exact frame of the sample knot", "fast frame", 1.10, 7, ExactKnot},
      {"exact_fold", "exact frame, " + limbs + ", each limb folded once", "fast frame", 1.45, 7,
       ExactFold},
      {"exact_scattered", "exact frame, " + InWords(kBones, 2000) + " all over", "fast frame", 2.5,
       3, ExactScattered, "ms",
       "What exact frames do for an image is limited to the box of its pieces. Where each image's "
       "pieces lie all over the frame, every box is nearly the frame, and this is the price."},
      {"contested", "finding the contested ones of 10,000 pieces", "their draw list", 1.5, 15,
       Contested},
      {"grow_pieces", "10,000 pieces", "10 times 1,000 pieces", 1.10, 5, GrowPieces, "ms",
       "A frame's cost has a part for its pixels, the same for 1,000 pieces and for 10,000. Ten "
       "frames "
       "have that part ten times, which keeps the ratio far below its goal. The plot by pieces "
       "shows "
       "the other part: its slope is what one piece costs, and it must not rise."},
      {"grow_size", "7680 × 4320", "4 times 3840 × 2160", 1.10, 2, GrowSize},
      {"second_frame", "frame without new images", "its passes, read back and host calls", 1.10, 7,
       SecondFrame},
      {"upload", "first frame with 25 images, less the second", "the same glTexImage2D", 1.5, 7,
       Upload},
      {"intake", "message of 100 pieces, 25 effects", "the same host calls, one copy", 1.30, 9,
       Intake},
      {"sort", "draw list of 10,000 pieces", "their depths, and std::sort of the records", 1.0, 15,
       Sort},
      {"memory", "most host memory held in an exact frame", "an output-sized buffer", 2.0, 1,
       Memory, "buffers"},
      {"memory_exact", "all textures of an exact frame, " + limbs, "an output-sized buffer",
       std::nullopt, 1, MemoryExact, "buffers"},
      {"cairo", "fast frame, " + limbs, "Cairo painting the pieces once", 1.3, 5, Cairo},
      {"sequence", "100 frames to PNG files", "their render commands", 1.25, 1, Sequence,
       "ms passed", "Both sides draw with the threads that the renderer starts by itself."},
  };
}

}  // namespace

const std::vector<Benchmark>& Benchmarks() {
  static const std::vector<Benchmark> benchmarks = MakeBenchmarks();
  return benchmarks;
}

}  // namespace bench
