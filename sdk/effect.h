#pragma once

#include "sdk/basic_suite.h"
#include "sdk/basic_types.h"

/// \file
/// The host's effect interface: commands, the records that pass with them, and their constants.
/// Only what is used is declared; the rest of each record is reserved padding that is the host's.

/// Commands of the host's PF_Cmd enumeration.
enum PF_Cmd : A_long {
  PF_Cmd_ABOUT = 0,
  PF_Cmd_GLOBAL_SETUP = 1,
  PF_Cmd_GLOBAL_SETDOWN = 3,
  PF_Cmd_PARAMS_SETUP = 4,
  PF_Cmd_SEQUENCE_SETUP = 5,
  PF_Cmd_SEQUENCE_RESETUP = 6,
  PF_Cmd_SEQUENCE_FLATTEN = 7,
  PF_Cmd_SEQUENCE_SETDOWN = 8,
  PF_Cmd_FRAME_SETUP = 10,
  PF_Cmd_RENDER = 11,
  PF_Cmd_FRAME_SETDOWN = 12,
  PF_Cmd_USER_CHANGED_PARAM = 13,
  PF_Cmd_UPDATE_PARAMS_UI = 14,
  PF_Cmd_COMPLETELY_GENERAL = 17,
};

using PF_ParamIndex = A_long;
using PF_ParamValue = A_long;
using PF_PlatDataID = A_long;
using PF_NewWorldFlags = A_long;
using PF_OutFlags = A_long;
using PF_OutFlags2 = A_long;

enum PF_ParamType : A_long {
  PF_Param_LAYER = 0,
  PF_Param_CHECKBOX = 4,
  PF_Param_POPUP = 7,
  PF_Param_FLOAT_SLIDER = 10,
};

using PF_ParamFlags = A_long;
inline constexpr PF_ParamFlags PF_ParamFlag_CANNOT_TIME_VARY = 1 << 1;
inline constexpr PF_ParamFlags PF_ParamFlag_SUPERVISE = 1 << 6;

using PF_ParamUIFlags = A_long;
inline constexpr PF_ParamUIFlags PF_PUI_ECW_SEPARATOR = 0x10;
inline constexpr PF_ParamUIFlags PF_PUI_DISABLED = 0x20;
inline constexpr PF_ParamUIFlags PF_PUI_INVISIBLE = 0x200;

inline constexpr PF_OutFlags PF_OutFlag_DISPLAY_ERROR_MESSAGE = 1 << 8;
inline constexpr PF_OutFlags PF_OutFlag_I_EXPAND_BUFFER = 1 << 9;
inline constexpr PF_OutFlags PF_OutFlag_I_SHRINK_BUFFER = 1 << 12;
inline constexpr PF_OutFlags PF_OutFlag_SEND_UPDATE_PARAMS_UI = 1 << 26;

inline constexpr PF_NewWorldFlags PF_NewWorldFlag_NONE = 0;
inline constexpr PF_NewWorldFlags PF_NewWorldFlag_CLEAR_PIXELS = 1;
inline constexpr PF_NewWorldFlags PF_NewWorldFlag_DEEP_PIXELS = 2;

inline constexpr A_long PF_WorldFlag_WRITEABLE = 2;

/// The file of the plug-in itself, for get_platform_data. The host writes a zero-terminated path of
/// 16-bit text (older ones 8-bit text); the longest takes 520 bytes.
inline constexpr PF_PlatDataID PF_PlatData_EXE_FILE_PATH_W = 7;

inline constexpr A_short PF_Precision_HUNDREDTHS = 2;
inline constexpr A_u_long PF_Stage_DEVELOP = 0;

/// Packs a version as the host's PF_VERSION does: build in bits 0 to 8, stage from 9, bug fix from
/// 11, sub-version from 15, the version's low three bits from 19 and its high bits from 26.
constexpr A_u_long PF_VERSION(A_u_long version, A_u_long subVersion, A_u_long bugFix,
                              A_u_long stage, A_u_long build) {
  return (((version >> 3U) & 15U) << 26U) | ((version & 7U) << 19U) | ((subVersion & 15U) << 15U) |
         ((bugFix & 15U) << 11U) | ((stage & 3U) << 9U) | (build & 511U);
}

/// Names one instance of an effect to the host.
struct PF_ProgressInfo;
using PF_ProgPtr = PF_ProgressInfo*;

/// Host memory: the first word is the master pointer, which stays valid while the handle is locked.
using PF_Handle = void**;

using PF_Rect = A_LRect;

struct PF_Point {
  A_long h;
  A_long v;
};
SDK_SIZE(PF_Point, 8);

struct PF_RationalScale {
  A_long num;
  A_u_long den;
};
SDK_SIZE(PF_RationalScale, 8);

struct PF_SpecVersion {
  A_short major;
  A_short minor;
};
SDK_SIZE(PF_SpecVersion, 4);

struct PF_Pixel {
  A_u_char alpha;
  A_u_char red;
  A_u_char green;
  A_u_char blue;
};
SDK_SIZE(PF_Pixel, 4);
using PF_PixelPtr = PF_Pixel*;

struct PF_SoundWorld {
  A_FpLong rateF;
  A_short num_channels;
  A_short format;
  A_short sample_size;
  A_long num_samples;
  void* dataP;
};
SDK_SIZE(PF_SoundWorld, 32);
SDK_OFFSET(PF_SoundWorld, num_samples, 16);
SDK_OFFSET(PF_SoundWorld, dataP, 24);

/// An image. `rowbytes` is the distance from row to row in bytes and may exceed the row itself.
struct PF_EffectWorld {
  void* reserved0;
  void* reserved1;
  A_long world_flags;
  PF_PixelPtr data;
  A_long rowbytes;
  A_long width;
  A_long height;
  PF_Rect extent_hint;
  void* platform_ref;
  A_long reserved_long1;
  void* reserved_long4;
  PF_RationalScale pix_aspect_ratio;
  void* reserved_long2;
  A_long origin_x;
  A_long origin_y;
  A_long reserved_long3;
  A_long dephault;
};
using PF_LayerDef = PF_EffectWorld;
SDK_SIZE(PF_EffectWorld, 120);
SDK_OFFSET(PF_EffectWorld, world_flags, 16);
SDK_OFFSET(PF_EffectWorld, data, 24);
SDK_OFFSET(PF_EffectWorld, rowbytes, 32);
SDK_OFFSET(PF_EffectWorld, width, 36);
SDK_OFFSET(PF_EffectWorld, height, 40);
SDK_OFFSET(PF_EffectWorld, extent_hint, 44);
SDK_OFFSET(PF_EffectWorld, platform_ref, 64);
SDK_OFFSET(PF_EffectWorld, reserved_long1, 72);
SDK_OFFSET(PF_EffectWorld, reserved_long4, 80);
SDK_OFFSET(PF_EffectWorld, pix_aspect_ratio, 88);
SDK_OFFSET(PF_EffectWorld, reserved_long2, 96);
SDK_OFFSET(PF_EffectWorld, origin_x, 104);
SDK_OFFSET(PF_EffectWorld, origin_y, 108);
SDK_OFFSET(PF_EffectWorld, reserved_long3, 112);
SDK_OFFSET(PF_EffectWorld, dephault, 116);

struct PF_FloatSliderDef {
  A_FpLong value;
  A_FpLong phase;
  A_char value_desc[32];
  A_FpShort valid_min;
  A_FpShort valid_max;
  A_FpShort slider_min;
  A_FpShort slider_max;
  A_FpShort dephault;
  A_short precision;
  A_short display_flags;
  A_long fs_flags;
  A_FpShort curve_tolerance;
  A_Boolean useExponent;
  A_FpShort exponent;
};
SDK_SIZE(PF_FloatSliderDef, 88);
SDK_OFFSET(PF_FloatSliderDef, value_desc, 16);
SDK_OFFSET(PF_FloatSliderDef, valid_min, 48);
SDK_OFFSET(PF_FloatSliderDef, valid_max, 52);
SDK_OFFSET(PF_FloatSliderDef, slider_min, 56);
SDK_OFFSET(PF_FloatSliderDef, slider_max, 60);
SDK_OFFSET(PF_FloatSliderDef, dephault, 64);
SDK_OFFSET(PF_FloatSliderDef, precision, 68);
SDK_OFFSET(PF_FloatSliderDef, display_flags, 70);
SDK_OFFSET(PF_FloatSliderDef, fs_flags, 72);
SDK_OFFSET(PF_FloatSliderDef, curve_tolerance, 76);
SDK_OFFSET(PF_FloatSliderDef, useExponent, 80);
SDK_OFFSET(PF_FloatSliderDef, exponent, 84);

struct PF_CheckBoxDef {
  PF_ParamValue value;
  A_Boolean dephault;
  A_char reserved;
  A_short reserved1;
  union {
    const A_char* nameptr;
  } u;
};
SDK_SIZE(PF_CheckBoxDef, 16);
SDK_OFFSET(PF_CheckBoxDef, dephault, 4);
SDK_OFFSET(PF_CheckBoxDef, u, 8);

struct PF_PopupDef {
  PF_ParamValue value;
  A_short num_choices;
  A_short dephault;
  union {
    const A_char* namesptr;  ///< the choices, separated by "|" and numbered from 1
  } u;
};
SDK_SIZE(PF_PopupDef, 16);
SDK_OFFSET(PF_PopupDef, num_choices, 4);
SDK_OFFSET(PF_PopupDef, dephault, 6);
SDK_OFFSET(PF_PopupDef, u, 8);

union PF_ParamDefUnion {
  PF_LayerDef ld;
  PF_CheckBoxDef bd;
  PF_PopupDef pd;
  PF_FloatSliderDef fs_d;
};
SDK_SIZE(PF_ParamDefUnion, 120);

struct PF_ParamDef {
  union {
    A_long id;
    A_long change_flags;
  } uu;
  PF_ParamUIFlags ui_flags;
  A_short ui_width;
  A_short ui_height;
  PF_ParamType param_type;
  A_char name[32];  ///< 31 characters and the terminating zero
  PF_ParamFlags flags;
  A_long unused;
  PF_ParamDefUnion u;
};
SDK_SIZE(PF_ParamDef, 176);
SDK_OFFSET(PF_ParamDef, ui_flags, 4);
SDK_OFFSET(PF_ParamDef, ui_width, 8);
SDK_OFFSET(PF_ParamDef, ui_height, 10);
SDK_OFFSET(PF_ParamDef, param_type, 12);
SDK_OFFSET(PF_ParamDef, name, 16);
SDK_OFFSET(PF_ParamDef, flags, 48);
SDK_OFFSET(PF_ParamDef, unused, 52);
SDK_OFFSET(PF_ParamDef, u, 56);

struct PF_UserChangedParamExtra {
  PF_ParamIndex param_index;
};
SDK_SIZE(PF_UserChangedParamExtra, 4);

struct PF_InteractCallbacks {
  void* reserved_0_1[2];
  /// Appends a copy of `def` to the effect's parameters; `index` is -1.
  PF_Err (*add_param)(PF_ProgPtr effect_ref, PF_ParamIndex index, PF_ParamDef* def);
  void* reserved_3_21[19];
};
SDK_SIZE(PF_InteractCallbacks, 176);
SDK_SLOT(PF_InteractCallbacks, add_param, 2);

struct PF_ANSICallbacks {
  void* reserved_0_14[15];
  int (*sprintf)(A_char* buffer, const A_char* format, ...);
  A_char* (*strcpy)(A_char* to, const A_char* from);
  void* reserved_17_18[2];
  A_long ansi_procs[1];
};
SDK_SIZE(PF_ANSICallbacks, 160);
SDK_SLOT(PF_ANSICallbacks, sprintf, 15);
SDK_SLOT(PF_ANSICallbacks, strcpy, 16);

struct PF_UtilCallbacks {
  void* reserved_0_7[8];
  /// Copies `src_r` of `src` (null: all) to `dst_r` of `dst` (null: all).
  PF_Err (*copy)(PF_ProgPtr effect_ref, PF_EffectWorld* src, PF_EffectWorld* dst, PF_Rect* src_r,
                 PF_Rect* dst_r);
  /// Fills `dst_rect` of `world` (null: all) with `color` (null: transparent black).
  PF_Err (*fill)(PF_ProgPtr effect_ref, const PF_Pixel* color, const PF_Rect* dst_rect,
                 PF_EffectWorld* world);
  void* reserved_10_25[16];
  PF_ANSICallbacks ansi;
  void* colorCB[8];
  PF_Err (*get_platform_data)(PF_ProgPtr effect_ref, PF_PlatDataID which, void* data);
  void* reserved_29_39[11];
  /// Stores the first pixel of an 8-bit world (null for any other) in `pixPP`; `pixelsP0` is null
  /// or a pointer into the world's own pixels.
  PF_Err (*get_pixel_data8)(PF_EffectWorld* worldP, PF_PixelPtr pixelsP0, PF_Pixel** pixPP);
  void* reserved_41;
  A_long reserved[1];
};
SDK_SIZE(PF_UtilCallbacks, 552);
SDK_OFFSET(PF_UtilCallbacks, copy, 64);
SDK_OFFSET(PF_UtilCallbacks, fill, 72);
SDK_OFFSET(PF_UtilCallbacks, ansi, 208);
SDK_OFFSET(PF_UtilCallbacks, ansi.sprintf, 328);
SDK_OFFSET(PF_UtilCallbacks, ansi.strcpy, 336);
SDK_OFFSET(PF_UtilCallbacks, get_platform_data, 432);
SDK_OFFSET(PF_UtilCallbacks, get_pixel_data8, 528);

/// What the host passes to an effect with every command.
struct PF_InData {
  PF_InteractCallbacks inter;
  PF_UtilCallbacks* utils;
  PF_ProgPtr effect_ref;
  A_long quality;
  PF_SpecVersion version;
  A_long serial_num;
  A_long appl_id;
  A_long num_params;
  A_long reserved;
  A_long what_cpu;
  A_long what_fpu;
  A_long current_time;
  A_long time_step;
  A_long total_time;
  A_long local_time_step;
  A_u_long time_scale;
  A_long field;
  A_Fixed shutter_angle;
  A_long width;  ///< of the layer in its own pixels, at every resolution
  A_long height;
  PF_Rect extent_hint;     ///< in pixels at the current resolution, as are origins and the output
  A_long output_origin_x;  ///< where the layer's corner lies in the output, in pixels
  A_long output_origin_y;
  PF_RationalScale downsample_x;
  PF_RationalScale downsample_y;
  PF_RationalScale pixel_aspect_ratio;
  A_long in_flags;
  PF_Handle global_data;
  PF_Handle sequence_data;
  PF_Handle frame_data;
  A_long start_sampL;
  A_long dur_sampL;
  A_long total_sampL;
  PF_SoundWorld src_snd;
  SPBasicSuite* pica_basicP;
  A_long pre_effect_source_origin_x;
  A_long pre_effect_source_origin_y;
  A_Fixed shutter_phase;
};
SDK_SIZE(PF_InData, 408);
SDK_OFFSET(PF_InData, utils, 176);
SDK_OFFSET(PF_InData, effect_ref, 184);
SDK_OFFSET(PF_InData, quality, 192);
SDK_OFFSET(PF_InData, version, 196);
SDK_OFFSET(PF_InData, serial_num, 200);
SDK_OFFSET(PF_InData, appl_id, 204);
SDK_OFFSET(PF_InData, num_params, 208);
SDK_OFFSET(PF_InData, reserved, 212);
SDK_OFFSET(PF_InData, what_cpu, 216);
SDK_OFFSET(PF_InData, what_fpu, 220);
SDK_OFFSET(PF_InData, current_time, 224);
SDK_OFFSET(PF_InData, time_step, 228);
SDK_OFFSET(PF_InData, total_time, 232);
SDK_OFFSET(PF_InData, local_time_step, 236);
SDK_OFFSET(PF_InData, time_scale, 240);
SDK_OFFSET(PF_InData, field, 244);
SDK_OFFSET(PF_InData, shutter_angle, 248);
SDK_OFFSET(PF_InData, width, 252);
SDK_OFFSET(PF_InData, height, 256);
SDK_OFFSET(PF_InData, extent_hint, 260);
SDK_OFFSET(PF_InData, output_origin_x, 276);
SDK_OFFSET(PF_InData, output_origin_y, 280);
SDK_OFFSET(PF_InData, downsample_x, 284);
SDK_OFFSET(PF_InData, downsample_y, 292);
SDK_OFFSET(PF_InData, pixel_aspect_ratio, 300);
SDK_OFFSET(PF_InData, in_flags, 308);
SDK_OFFSET(PF_InData, global_data, 312);
SDK_OFFSET(PF_InData, sequence_data, 320);
SDK_OFFSET(PF_InData, frame_data, 328);
SDK_OFFSET(PF_InData, start_sampL, 336);
SDK_OFFSET(PF_InData, dur_sampL, 340);
SDK_OFFSET(PF_InData, total_sampL, 344);
SDK_OFFSET(PF_InData, src_snd, 352);
SDK_OFFSET(PF_InData, pica_basicP, 384);
SDK_OFFSET(PF_InData, pre_effect_source_origin_x, 392);
SDK_OFFSET(PF_InData, pre_effect_source_origin_y, 396);
SDK_OFFSET(PF_InData, shutter_phase, 400);

/// What an effect answers.
struct PF_OutData {
  A_u_long my_version;
  A_char name[32];
  PF_Handle global_data;
  A_long num_params;
  PF_Handle sequence_data;
  A_long flat_sdata_size;
  PF_Handle frame_data;
  A_long width;  ///< of the output, in pixels at the current resolution
  A_long height;
  PF_Point origin;  ///< where the layer's corner lies in the output, in pixels
  PF_OutFlags out_flags;
  A_char return_msg[256];
  A_long start_sampL;
  A_long dur_sampL;
  PF_SoundWorld dest_snd;
  PF_OutFlags2 out_flags2;
};
SDK_SIZE(PF_OutData, 408);
SDK_OFFSET(PF_OutData, name, 4);
SDK_OFFSET(PF_OutData, global_data, 40);
SDK_OFFSET(PF_OutData, num_params, 48);
SDK_OFFSET(PF_OutData, sequence_data, 56);
SDK_OFFSET(PF_OutData, flat_sdata_size, 64);
SDK_OFFSET(PF_OutData, frame_data, 72);
SDK_OFFSET(PF_OutData, width, 80);
SDK_OFFSET(PF_OutData, height, 84);
SDK_OFFSET(PF_OutData, origin, 88);
SDK_OFFSET(PF_OutData, out_flags, 96);
SDK_OFFSET(PF_OutData, return_msg, 100);
SDK_OFFSET(PF_OutData, start_sampL, 356);
SDK_OFFSET(PF_OutData, dur_sampL, 360);
SDK_OFFSET(PF_OutData, dest_snd, 368);
SDK_OFFSET(PF_OutData, out_flags2, 400);

/// The form of an effect's entry point.
using PF_EntryPoint = PF_Err (*)(PF_Cmd cmd, PF_InData* in_data, PF_OutData* out_data,
                                 PF_ParamDef* params[], PF_LayerDef* output, void* extra);
