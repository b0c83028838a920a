#include "plugin/gl/shader_sources.h"

namespace AESDK_OpenGL {

// Each source is one line, but for the definitions at the head of the fragment shader.

const char* const kVertexSource =
    "uniform vec4 dataFromAE; "
    "varying vec3 normal; "
    "void main() { "
    "normal = gl_Normal; "
    "gl_Position = gl_ModelViewProjectionMatrix * gl_Vertex; "
    "gl_FrontColor = gl_Color; "
    "gl_TexCoord[0] = gl_MultiTexCoord0; "
    "}";

const char* const kGeneralHead =
    "#define FXAA_REDUCE_MIN (1.0/128.0)\n"
    "#define FXAA_REDUCE_MUL (1.0/8.0)\n"
    "#define FXAA_SPAN_MAX 8.0\n"
    "#define COORDINATE normal.z\n"
    "uniform vec4 dataFromAE; ";

// In the order of AESDK_OpenGL_Job.
const std::array<const char*, kAESDK_OpenGL_JobCount> kJobHeads = {
    "#define dataFromAE vec4(1.0, 0.0, 0.0, 0.0)\n#define COORDINATE 0.0\n",
    "#define dataFromAE vec4(1.0, 1.0, 1.0, 0.0)\n#define COORDINATE 0.0\n",
    "#define dataFromAE vec4(1.0, 1.0, 0.0, 0.0)\n#define COORDINATE 0.0\n",
    "#define dataFromAE vec4(0.0, 0.0, 0.0, 0.0)\n#define COORDINATE 0.0\n",
    "#define dataFromAE vec4(0.0, 0.0, 0.0, 0.0)\n#define COORDINATE 1.0\n",
};

// `dataFromAE`: x 1 for the colour pass, else the coordinate pass; y 1 to drop transparent texels
// and, while z is 0, fragments that do not own their pixel. `COORDINATE`: which coordinate the
// coordinate pass writes. `normal` is, for each piece: x, y the size of its image in texels; z what
// `COORDINATE` is in the general program. The tolerance of the ownership test is 1/524288 of an
// image's side. `mapOrigin`: the pixel of the target that the first pixel of the maps is.
const char* const kFragmentSource =
    "uniform sampler2DRect videoTexture; "
    "uniform sampler2DRect coordTextureW; "
    "uniform sampler2DRect coordTextureH; "
    "uniform vec4 mapOrigin; "
    "varying vec3 normal; "

    // Three digits to the base 255, the first in blue.
    "vec4 packFloat(float value) { "
    "vec4 res = fract(value * vec4(255.0 * 255.0 * 255.0, 255.0 * 255.0, 255.0, 1.0)); "
    "res -= res.xxyz * vec4(0.0, 1.0 / 255.0, 1.0 / 255.0, 1.0 / 255.0); "
    "return vec4(res.yzw, 1.0); "
    "} "

    "float unpackFloat(vec4 colour) { "
    "return dot(colour, vec4(1.0 / (255.0 * 255.0), 1.0 / 255.0, 1.0, 0.0)); "
    "} "

    "void main() { "
    "vec2 tc = gl_TexCoord[0].st; "

    // Colour pass.
    "if (dataFromAE.x == 1.0) { "
    "vec4 col = texture2DRect(videoTexture, tc); "
    "if (dataFromAE.y == 1.0 && dataFromAE.z == 0.0) { "
    "vec4 W = texture2DRect(coordTextureW, gl_FragCoord.xy - mapOrigin.xy); "
    "vec4 H = texture2DRect(coordTextureH, gl_FragCoord.xy - mapOrigin.xy); "
    "if (W.a * H.a > 0.0 && "
    "(abs(tc.x / normal.x - unpackFloat(W)) > 1.0 / (256.0 * 2048.0) || "
    "abs(tc.y / normal.y - unpackFloat(H)) > 1.0 / (256.0 * 2048.0))) discard; "
    "} "
    "if (dataFromAE.y == 1.0 && col.a == 0.0) discard; "
    "col *= gl_Color; "
    "col.rgb *= col.a; "
    "gl_FragColor = col; "

    // Coordinate pass.
    "} else { "
    "vec4 g = texture2DRect(videoTexture, tc); "
    "if (g.a >= 0.5) { "
    "if (COORDINATE == 0.0) gl_FragColor = packFloat(tc.x / normal.x); "
    "else gl_FragColor = packFloat(tc.y / normal.y); "
    "} else discard; "
    "} "
    "}";

}  // namespace AESDK_OpenGL
