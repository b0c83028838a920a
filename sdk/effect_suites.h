#pragma once

#include "sdk/effect.h"

/// \file
/// The host's suites for effects: tables of plain function pointers. Slots that are not used are
/// reserved padding. The registered name and version are given above each table.

/// "PF Handle Suite" 2
struct PF_HandleSuite1 {
  PF_Handle (*host_new_handle)(A_HandleSize size);
  void* (*host_lock_handle)(PF_Handle handle);
  void (*host_unlock_handle)(PF_Handle handle);
  void (*host_dispose_handle)(PF_Handle handle);
  A_HandleSize (*host_get_handle_size)(PF_Handle handle);
  PF_Err (*host_resize_handle)(A_HandleSize new_size, PF_Handle* handle);
};
SDK_SIZE(PF_HandleSuite1, 48);
SDK_SLOT(PF_HandleSuite1, host_new_handle, 0);
SDK_SLOT(PF_HandleSuite1, host_dispose_handle, 3);

/// "PF ANSI Suite" 1
struct PF_ANSICallbacksSuite1 {
  void* reserved_0_14[15];
  int (*sprintf)(A_char* buffer, const A_char* format, ...);
  A_char* (*strcpy)(A_char* to, const A_char* from);
  void* reserved_17_18[2];
};
SDK_SIZE(PF_ANSICallbacksSuite1, 152);
SDK_SLOT(PF_ANSICallbacksSuite1, sprintf, 15);
SDK_SLOT(PF_ANSICallbacksSuite1, strcpy, 16);

/// "PF World Suite" 1
struct PF_WorldSuite1 {
  /// Makes a world of 8 bits a channel, its pixels not cleared unless `flags` ask for it.
  PF_Err (*new_world)(PF_ProgPtr effect_ref, A_long width, A_long height, PF_NewWorldFlags flags,
                      PF_EffectWorld* world);
  PF_Err (*dispose_world)(PF_ProgPtr effect_ref, PF_EffectWorld* world);
};
SDK_SIZE(PF_WorldSuite1, 16);
SDK_SLOT(PF_WorldSuite1, new_world, 0);
SDK_SLOT(PF_WorldSuite1, dispose_world, 1);

/// "PF Fill Matte Suite" 2
struct PF_FillMatteSuite2 {
  void* reserved_0_2[3];
  /// Forward 0 turns premultiplied colour into straight colour, in place.
  PF_Err (*premultiply)(PF_ProgPtr effect_ref, A_long forward, PF_EffectWorld* dst);
  void* reserved_4_6[3];
};
SDK_SIZE(PF_FillMatteSuite2, 56);
SDK_SLOT(PF_FillMatteSuite2, premultiply, 3);

/// "PF Param Utils Suite" 3
struct PF_ParamUtilsSuite3 {
  /// Takes over the name in `defP` for the parameter as the user sees it, and of the user-interface
  /// flags PF_PUI_ECW_SEPARATOR and PF_PUI_DISABLED alone.
  PF_Err (*PF_UpdateParamUI)(PF_ProgPtr effect_ref, PF_ParamIndex param_index,
                             const PF_ParamDef* defP);
  void* reserved_1_8[8];
};
SDK_SIZE(PF_ParamUtilsSuite3, 72);
SDK_SLOT(PF_ParamUtilsSuite3, PF_UpdateParamUI, 0);
