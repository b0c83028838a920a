#include "bench/cairo_painter.h"

#include <cstdint>
#include <cstring>
#include <stdexcept>

namespace bench {
namespace {

/// A pixel as Cairo wants it: premultiplied, alpha in the highest byte.
std::uint32_t Premultiplied(tarvo::Rgba pixel) {
  const auto scaled = [&](std::uint32_t value) { return (value * pixel.alpha + 127U) / 255U; };
  return std::uint32_t{pixel.alpha} << 24U | scaled(pixel.red) << 16U | scaled(pixel.green) << 8U |
         scaled(pixel.blue);
}

/// What takes a place in the frame to the texture coordinate that lies there.
cairo_matrix_t FrameToImage(const Vertex* corners) {
  const auto vectorsOf = [&](auto member) {
    const auto& from = corners[0].*member;
    const auto& along = corners[1].*member;
    const auto& across = corners[3].*member;
    cairo_matrix_t matrix;
    cairo_matrix_init(&matrix, along[0] - from[0], along[1] - from[1], across[0] - from[0],
                      across[1] - from[1], from[0], from[1]);
    return matrix;
  };
  cairo_matrix_t frame = vectorsOf(&Vertex::place);
  const cairo_matrix_t image = vectorsOf(&Vertex::texCoord);
  cairo_matrix_invert(&frame);
  cairo_matrix_t result;
  cairo_matrix_multiply(&result, &frame, &image);
  return result;
}

void PaintPiece(cairo_t* painter, cairo_surface_t* image, const Vertex* corners) {
  const cairo_matrix_t matrix = FrameToImage(corners);
  cairo_set_source_surface(painter, image, 0, 0);
  cairo_pattern_t* const pattern = cairo_get_source(painter);
  cairo_pattern_set_matrix(pattern, &matrix);
  cairo_pattern_set_filter(pattern, CAIRO_FILTER_BILINEAR);
  for (int corner = 0; corner < 4; ++corner) {
    cairo_line_to(painter, corners[corner].place[0], corners[corner].place[1]);
  }
  cairo_close_path(painter);
  cairo_fill(painter);
}

}  // namespace

CairoPainter::CairoPainter(const Rig& rig) : size_(rig.size), frame_(NewSurface(rig.size)) {
  for (const Bone& bone : rig.bones) {
    images_.push_back(SurfaceOf(bone.image));
  }
}

CairoPainter::Surface CairoPainter::NewSurface(FrameSize size) {
  Surface surface(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, size.width, size.height));
  if (cairo_surface_status(surface.get()) != CAIRO_STATUS_SUCCESS) {
    throw std::runtime_error("no memory for a surface");
  }
  return surface;
}

CairoPainter::Surface CairoPainter::SurfaceOf(const tarvo::Picture& picture) {
  Surface surface = NewSurface({picture.width, picture.height});
  unsigned char* row = cairo_image_surface_get_data(surface.get());
  for (int y = 0; y < picture.height; ++y) {
    for (int x = 0; x < picture.width; ++x) {
      const std::uint32_t pixel = Premultiplied(picture.At(x, y));
      std::memcpy(row + sizeof pixel * static_cast<std::size_t>(x), &pixel, sizeof pixel);
    }
    row += cairo_image_surface_get_stride(surface.get());
  }
  cairo_surface_mark_dirty(surface.get());
  return surface;
}

void CairoPainter::Paint(const Drawing& drawing) {
  cairo_t* const painter = cairo_create(frame_.get());
  cairo_set_operator(painter, CAIRO_OPERATOR_CLEAR);
  cairo_paint(painter);
  cairo_set_operator(painter, CAIRO_OPERATOR_OVER);
  cairo_set_antialias(painter, CAIRO_ANTIALIAS_NONE);
  for (const Run& run : drawing.runs) {
    for (GLsizei vertex = 0; vertex < run.count; vertex += 4) {
      PaintPiece(
          painter, images_[run.image].get(),
          &drawing
               .vertices[static_cast<std::size_t>(run.first) + static_cast<std::size_t>(vertex)]);
    }
  }
  cairo_destroy(painter);
  cairo_surface_flush(frame_.get());
}

std::size_t CairoPainter::Covered() const {
  const unsigned char* row = cairo_image_surface_get_data(frame_.get());
  std::size_t covered = 0;
  for (int y = 0; y < size_.height; ++y) {
    for (int x = 0; x < size_.width; ++x) {
      std::uint32_t pixel = 0;
      std::memcpy(&pixel, row + sizeof pixel * static_cast<std::size_t>(x), sizeof pixel);
      covered += pixel >> 24U != 0 ? 1U : 0U;
    }
    row += cairo_image_surface_get_stride(frame_.get());
  }
  return covered;
}

}  // namespace bench
