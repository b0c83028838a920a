#pragma once

#include <array>
#include <vector>

#include "tool/rig/scene.h"

namespace tarvo {

/// A cubic Bézier curve: start, two control points, end.
using Curve = std::array<Point, 4>;

/// The straight curve from `start` to `end`, parametrised at constant speed.
Curve StraightCurve(Point start, Point end);

/// Length of a curve, in the unit of its points.
double CurveLength(const Curve& curve);

/// A band along a curve, from its start to its end; the width changes linearly along its length.
struct Band {
  Curve middle;
  double startWidth = 0.0;
  double endWidth = 0.0;
};

/// An animator's form of pieces: a band at rest in an image, and where it lies on the layer.
struct Strip {
  Band rest;  ///< image pixels
  Band pose;  ///< layer pixels
  int pieces = 1;
  ImageChoice from = ImageChoice::kA;
};

/// Cuts the rest band into pieces of equal length and bends them along the pose.
///
/// Cross-sections lie at equal arc lengths along both bands, and a piece lies between two
/// neighbouring ones. Its corners go around it: left at its start, left at its end, right at its
/// end, right at its start, where left and right are relative to the direction from the band's
/// start to its end with the y axis pointing down; the left side of the rest lies on the left side
/// of the pose. Neighbouring pieces have bit-equal corners at the cross-section they share, so that
/// no gap shows. Piece i of n has t = (i + 0.5) / n. A band without a length gives pieces without
/// an area. REQUIRES: pieces >= 1.
std::vector<Piece> CutStrip(const Strip& strip);

}  // namespace tarvo
