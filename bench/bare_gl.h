#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include <window_system.h>

#include "base/image/picture.h"
#include "bench/rigs.h"
#include "standin/core/gl_context.h"

namespace bench {

/// One corner of a piece, as it lies in the vertex array.
struct Vertex {
  std::array<GLfloat, 2> place;     ///< pixels of the layer
  std::array<GLfloat, 2> texCoord;  ///< pixels of the image
  std::array<GLfloat, 4> colour;    ///< white, and the opacity
};

/// Neighbouring pieces, in the order of drawing, that sample one image.
struct Run {
  std::size_t image;  ///< index of the image
  GLint first;        ///< index of the first vertex, four for each piece
  GLsizei count;      ///< vertices
};

/// A frame's pieces from the deepest to the nearest.
struct Drawing {
  std::vector<Vertex> vertices;
  std::vector<Run> runs;
};

/// The least that an OpenGL program must do for a frame: the pieces drawn from a vertex array in
/// two passes, the greatest of each channel and then over it, and read back once. It has a context
/// and a target of its own, the target no larger than the frame, and shaders that can do nothing
/// else.
///
///   (AddImage* Draw*)*; between calls the context that was current before is current again
class BareGl {
 public:
  /// Throws std::runtime_error when there is no context, or the program or target cannot be made.
  explicit BareGl(FrameSize size);
  BareGl(const BareGl&) = delete;
  BareGl& operator=(const BareGl&) = delete;
  ~BareGl() = default;

  /// Uploads an image; images are counted from 0.
  void AddImage(const tarvo::Picture& picture);
  /// Uploads the rig's images, which were added in this order, as pixels of the host's order.
  void UploadAgain(const Rig& rig);
  /// Draws the frame and reads it back. The bytes are premultiplied pixels of the host's order,
  /// alpha first, `width` * 4 bytes a row, valid until the next call.
  const std::vector<std::uint8_t>& Draw(const Drawing& drawing);

 private:
  /// The entry points that lie beyond OpenGL 1.1.
  struct EntryPoints {
    EntryPoints();

    PFNGLCREATESHADERPROC createShader;
    PFNGLSHADERSOURCEPROC shaderSource;
    PFNGLCOMPILESHADERPROC compileShader;
    PFNGLCREATEPROGRAMPROC createProgram;
    PFNGLATTACHSHADERPROC attachShader;
    PFNGLLINKPROGRAMPROC linkProgram;
    PFNGLGETPROGRAMIVPROC getProgram;
    PFNGLUSEPROGRAMPROC useProgram;
    PFNGLBLENDEQUATIONPROC blendEquation;
    PFNGLGENFRAMEBUFFERSPROC genFramebuffers;
    PFNGLBINDFRAMEBUFFERPROC bindFramebuffer;
    PFNGLFRAMEBUFFERTEXTURE2DPROC framebufferTexture2D;
    PFNGLCHECKFRAMEBUFFERSTATUSPROC checkFramebufferStatus;
  };

  /// The context of its own, current for the length of a scope.
  class Scope {
   public:
    explicit Scope(const standin::GlContext& context) { context.MakeCurrent(); }
    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;
    ~Scope() { wglMakeCurrent(deviceContext_, renderContext_); }

   private:
    HDC deviceContext_ = wglGetCurrentDC();
    HGLRC renderContext_ = wglGetCurrentContext();
  };

  static void MakeProgram(const EntryPoints& gl);
  void MakeTarget(const EntryPoints& gl);
  void AimCamera() const;
  void DrawPass(const Drawing& drawing, GLenum equation, GLenum factor) const;

  FrameSize size_;
  standin::GlContext context_;
  PFNGLBLENDEQUATIONPROC blendEquation_ = nullptr;
  std::vector<GLuint> textures_;
  std::vector<std::uint8_t> pixels_;
};

}  // namespace bench
