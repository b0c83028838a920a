#pragma once

#include "sdk/basic_types.h"
#include "sdk/effect.h"

/// \file
/// Types and constants of the host's interface for its own project: items, compositions, layers,
/// effects and parameter streams. A reference that the host hands out ("new" in the operation's
/// name, and every effect reference) is disposed of by the caller that obtained it.

using AEGP_PluginID = A_long;
using AEGP_InstalledEffectKey = A_long;
using AEGP_EffectIndex = A_long;

struct AEGP_Layer;
struct AEGP_Comp;
struct AEGP_Item;
struct AEGP_EffectRef;
struct AEGP_StreamRef;
struct AEGP_PersistentBlob;
struct AEGP_GlobalRefconRecord;
struct AEGP_IdleRefconRecord;
using AEGP_LayerH = AEGP_Layer*;
using AEGP_CompH = AEGP_Comp*;
using AEGP_ItemH = AEGP_Item*;
using AEGP_EffectRefH = AEGP_EffectRef*;
using AEGP_StreamRefH = AEGP_StreamRef*;
using AEGP_PersistentBlobH = AEGP_PersistentBlob*;
using AEGP_GlobalRefcon = AEGP_GlobalRefconRecord*;
using AEGP_IdleRefcon = AEGP_IdleRefconRecord*;

using AEGP_EffectFlags = A_long;
inline constexpr AEGP_EffectFlags AEGP_EffectFlags_NONE = 0;
inline constexpr AEGP_EffectFlags AEGP_EffectFlags_ACTIVE = 1;

using AEGP_DynStreamFlags = A_u_long;
inline constexpr AEGP_DynStreamFlags AEGP_DynStreamFlag_ACTIVE_EYEBALL = 1;
inline constexpr AEGP_DynStreamFlags AEGP_DynStreamFlag_HIDDEN = 2;
inline constexpr AEGP_DynStreamFlags AEGP_DynStreamFlag_DISABLED = 16;
inline constexpr AEGP_DynStreamFlags AEGP_DynStreamFlag_ELIDED = 32;

using AEGP_ItemType = A_short;
inline constexpr AEGP_ItemType AEGP_ItemType_NONE = 0;
inline constexpr AEGP_ItemType AEGP_ItemType_COMP = 2;
inline constexpr AEGP_ItemType AEGP_ItemType_FOOTAGE = 4;

using AEGP_LTimeMode = A_short;
inline constexpr AEGP_LTimeMode AEGP_LTimeMode_LayerTime = 0;

/// The longest match name (AEGP_MAX_EFFECT_MATCH_NAME_SIZE), in characters.
inline constexpr int kLongestMatchName = 48;
/// Bytes of a buffer for a match name: room for the longest and its terminating zero, and to spare.
inline constexpr int kMatchNameBytes = 64;
/// The longest stream name that is read, in characters. The interface's limit is 32 bytes, and it
/// does not say whether they include the terminating zero.
inline constexpr int kLongestStreamName = 31;
/// Bytes of a buffer for a stream name: room for the limit under either reading, and to spare.
inline constexpr int kStreamNameBytes = 64;

/// Where the host keeps its error state during a quiet section; the caller gives it the room.
struct AEGP_ErrReportState {
  alignas(8) A_char opaque[48];
};
SDK_SIZE(AEGP_ErrReportState, 48);

union AEGP_StreamVal2 {
  A_FpLong four_d[4];
  A_FpLong one_d;
};
SDK_SIZE(AEGP_StreamVal2, 32);

/// A value of a stream; sliders, checkboxes and popups all use `one_d`.
struct AEGP_StreamValue2 {
  AEGP_StreamRefH streamH;
  AEGP_StreamVal2 val;
};
SDK_SIZE(AEGP_StreamValue2, 40);
SDK_OFFSET(AEGP_StreamValue2, val, 8);

/// Called by the host in its idle time; may lower `max_sleepPL`, the longest the host will sleep.
using AEGP_IdleHook = A_Err (*)(AEGP_GlobalRefcon plugin_refconP, AEGP_IdleRefcon refconP,
                                A_long* max_sleepPL);
