#include "bench/contests.h"

namespace bench {

const std::vector<Contest>& Contests() {
  static const std::vector<Contest> contests{
      {"fast_1080", "fast frame, 25 images, 200 pieces",
       "the same quads by bare OpenGL, host calls", 1.10, 7, Fast1080},
      {"lean_1080", "fast frame, 25 images, 200 pieces",
       "the same, and a program that can do no other pass", std::nullopt, 5, Lean1080},
      {"fast_2000", "fast frame, 25 images, 2,000 pieces",
       "the same quads by bare OpenGL, host calls", 1.15, 7, Fast2000},
      {"small_270", "fast frame of 480 × 270", "the same quads by bare OpenGL, host calls", 1.15,
       15, Small270},
      {"exact_1", "exact frame, 1 image, 200 pieces", "fast frame", 1.9, 5, Exact1},
      {"exact_25", "exact frame, 25 images, 200 pieces", "fast frame", 1.9, 5, Exact25},
      {"grow_pieces", "10,000 pieces", "10 times 1,000 pieces", 1.10, 5, GrowPieces},
      {"grow_size", "7680 × 4320", "4 times 3840 × 2160", 1.10, 2, GrowSize},
      {"second_frame", "frame without new images", "its passes, read back and host calls", 1.10, 7,
       SecondFrame},
      {"upload", "first frame with 25 images, less the second", "the same glTexImage2D", 1.25, 7,
       Upload},
      {"intake", "message of 100 pieces, 25 effects", "the same host calls, one copy", 1.30, 9,
       Intake},
      {"sort", "draw list of 10,000 pieces", "std::sort of its records", 1.0, 15, Sort},
      {"memory", "most host memory held in an exact frame", "an output-sized buffer", 2.0, 1,
       Memory},
      {"cairo", "fast frame, 25 images, 200 pieces", "Cairo painting the pieces once", 1.0, 5,
       Cairo},
      {"sequence", "100 frames to PNG files", "their render commands", 1.25, 1, Sequence},
  };
  return contests;
}

}  // namespace bench
