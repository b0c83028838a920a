#include "bench/bare_gl.h"

#include <cmath>
#include <stdexcept>
#include <string>

namespace bench {
namespace {

constexpr GLint kFourComponents = 4;
// One unit of the plane of the pieces is one pixel, seen from this far.
constexpr double kEyeDistance = 3000.0;
constexpr double kNearPlane = 10.0;
constexpr double kFarPlane = 30000.0;

const char* const kVertexSource =
    "void main() {"
    "  gl_Position = gl_ModelViewProjectionMatrix * gl_Vertex;"
    "  gl_FrontColor = gl_Color;"
    "  gl_TexCoord[0] = gl_MultiTexCoord0;"
    "}";

const char* const kFragmentSource =
    "#extension GL_ARB_texture_rectangle : enable\n"
    "uniform sampler2DRect videoTexture;"
    "void main() {"
    "  vec4 colour = texture2DRect(videoTexture, gl_TexCoord[0].st);"
    "  colour *= gl_Color;"
    "  colour.rgb *= colour.a;"
    "  gl_FragColor = colour;"
    "}";

template <class Pointer>
void Load(Pointer& entryPoint, const char* name) {
  entryPoint = reinterpret_cast<Pointer>(reinterpret_cast<void (*)()>(wglGetProcAddress(name)));
  if (entryPoint == nullptr) {
    throw std::runtime_error(std::string("OpenGL has no ") + name);
  }
}

/// A picture's red and blue change places on the way in, so that the way out gives the host's order
/// without touching a byte.
void Define(GLuint texture, int width, int height, const void* pixels) {
  glBindTexture(GL_TEXTURE_RECTANGLE_ARB, texture);
  glTexImage2D(GL_TEXTURE_RECTANGLE_ARB, 0, kFourComponents, width, height, 0, GL_BGRA,
               GL_UNSIGNED_BYTE, pixels);
  glTexParameteri(GL_TEXTURE_RECTANGLE_ARB, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
  glTexParameteri(GL_TEXTURE_RECTANGLE_ARB, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
}

GLuint NewTexture() {
  GLuint texture = 0;
  glGenTextures(1, &texture);
  return texture;
}

void UseVertices(const Drawing& drawing) {
  const Vertex& first = drawing.vertices.front();
  glEnableClientState(GL_VERTEX_ARRAY);
  glEnableClientState(GL_TEXTURE_COORD_ARRAY);
  glEnableClientState(GL_COLOR_ARRAY);
  glVertexPointer(2, GL_FLOAT, sizeof(Vertex), first.place.data());
  glTexCoordPointer(2, GL_FLOAT, sizeof(Vertex), first.texCoord.data());
  glColorPointer(4, GL_FLOAT, sizeof(Vertex), first.colour.data());
}

}  // namespace

BareGl::EntryPoints::EntryPoints() {
  Load(createShader, "glCreateShader");
  Load(shaderSource, "glShaderSource");
  Load(compileShader, "glCompileShader");
  Load(createProgram, "glCreateProgram");
  Load(attachShader, "glAttachShader");
  Load(linkProgram, "glLinkProgram");
  Load(getProgram, "glGetProgramiv");
  Load(useProgram, "glUseProgram");
  Load(blendEquation, "glBlendEquation");
  Load(genFramebuffers, "glGenFramebuffers");
  Load(bindFramebuffer, "glBindFramebuffer");
  Load(framebufferTexture2D, "glFramebufferTexture2D");
  Load(checkFramebufferStatus, "glCheckFramebufferStatus");
}

BareGl::BareGl(FrameSize size)
    : size_(size),
      pixels_(static_cast<std::size_t>(size.width) * static_cast<std::size_t>(size.height) * 4) {
  const Scope current(context_);
  const EntryPoints gl;
  blendEquation_ = gl.blendEquation;
  MakeProgram(gl);
  MakeTarget(gl);
  AimCamera();
  glEnable(GL_BLEND);
}

void BareGl::MakeProgram(const EntryPoints& gl) {
  const GLuint program = gl.createProgram();
  const auto attach = [&](GLenum type, const char* source) {
    const GLuint shader = gl.createShader(type);
    gl.shaderSource(shader, 1, &source, nullptr);
    gl.compileShader(shader);
    gl.attachShader(program, shader);
  };
  attach(GL_VERTEX_SHADER, kVertexSource);
  attach(GL_FRAGMENT_SHADER, kFragmentSource);
  gl.linkProgram(program);
  GLint linked = GL_FALSE;
  gl.getProgram(program, GL_LINK_STATUS, &linked);
  if (linked == GL_FALSE) {
    throw std::runtime_error("the bare program's shaders do not link");
  }
  gl.useProgram(program);
}

void BareGl::MakeTarget(const EntryPoints& gl) {
  GLuint framebuffer = 0;
  gl.genFramebuffers(1, &framebuffer);
  gl.bindFramebuffer(GL_FRAMEBUFFER, framebuffer);
  const GLuint target = NewTexture();
  Define(target, size_.width, size_.height, nullptr);
  gl.framebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_RECTANGLE_ARB, target,
                          0);
  if (gl.checkFramebufferStatus(GL_FRAMEBUFFER) != GL_FRAMEBUFFER_COMPLETE) {
    throw std::runtime_error("the bare program's target is not complete");
  }
}

/// The camera of the real thing, so that every fragment falls on the same pixel.
void BareGl::AimCamera() const {
  const double width = size_.width;
  const double height = size_.height;
  constexpr double kDegreesPerRadian = 57.295779513082;
  glMatrixMode(GL_PROJECTION);
  gluPerspective(2.0 * kDegreesPerRadian * std::atan(height / (2.0 * kEyeDistance)), width / height,
                 kNearPlane, kFarPlane);
  glMatrixMode(GL_MODELVIEW);
  gluLookAt(0.5 * width, 0.5 * height, kEyeDistance, 0.5 * width, 0.5 * height, 0.0, 0.0, 1.0, 0.0);
}

void BareGl::AddImage(const tarvo::Picture& picture) {
  const Scope current(context_);
  textures_.push_back(NewTexture());
  Define(textures_.back(), picture.width, picture.height, picture.Bytes());
}

void BareGl::UploadAgain(const Rig& rig) {
  const Scope current(context_);
  for (std::size_t number = 0; number < rig.bones.size(); ++number) {
    const tarvo::Picture& image = rig.bones[number].image;
    glBindTexture(GL_TEXTURE_RECTANGLE_ARB, textures_[number]);
    glTexImage2D(GL_TEXTURE_RECTANGLE_ARB, 0, kFourComponents, image.width, image.height, 0,
                 GL_RGBA, GL_UNSIGNED_INT_8_8_8_8, image.Bytes());
  }
  glFinish();
}

const std::vector<std::uint8_t>& BareGl::Draw(const Drawing& drawing) {
  const Scope current(context_);
  glViewport(0, 0, size_.width, size_.height);
  glClearColor(0.0F, 0.0F, 0.0F, 0.0F);
  glClear(GL_COLOR_BUFFER_BIT);
  if (!drawing.vertices.empty()) {
    UseVertices(drawing);
    DrawPass(drawing, GL_MAX, GL_ONE);
    DrawPass(drawing, GL_FUNC_ADD, GL_ONE_MINUS_SRC_ALPHA);
  }
  // Alpha, blue, green, red in memory; the host's order, as blue and red have changed places.
  glReadPixels(0, 0, size_.width, size_.height, GL_RGBA, GL_UNSIGNED_INT_8_8_8_8, pixels_.data());
  return pixels_;
}

void BareGl::DrawPass(const Drawing& drawing, GLenum equation, GLenum factor) const {
  blendEquation_(equation);
  glBlendFunc(GL_ONE, factor);
  for (const Run& run : drawing.runs) {
    glBindTexture(GL_TEXTURE_RECTANGLE_ARB, textures_[run.image]);
    glDrawArrays(GL_QUADS, run.first, run.count);
  }
}

}  // namespace bench
