#pragma once

#include "sdk/aegp.h"

/// \file
/// The host's suites for its own project. The version with which a suite is registered differs from
/// the number in its record's name; both are given above each table.

/// "AEGP Utility Suite" 7
struct AEGP_UtilitySuite3 {
  A_Err (*AEGP_ReportInfo)(AEGP_PluginID aegp_plugin_id, const A_char* info_stringZ);
  void* reserved_1_24[24];
};
SDK_SLOTS(AEGP_UtilitySuite3, 25);
SDK_SLOT(AEGP_UtilitySuite3, AEGP_ReportInfo, 0);

/// "AEGP Utility Suite" 11
struct AEGP_UtilitySuite5 {
  void* reserved_0_2[3];
  A_Err (*AEGP_StartQuietErrors)(AEGP_ErrReportState* err_stateP);
  A_Err (*AEGP_EndQuietErrors)(A_Boolean report_quieted_errorsB, AEGP_ErrReportState* err_stateP);
  void* reserved_5_7[3];
  A_Err (*AEGP_RegisterWithAEGP)(AEGP_GlobalRefcon global_refcon, const A_char* plugin_nameZ,
                                 AEGP_PluginID* plugin_id);
  void* reserved_9_30[22];
};
SDK_SLOTS(AEGP_UtilitySuite5, 31);
SDK_SLOT(AEGP_UtilitySuite5, AEGP_StartQuietErrors, 3);
SDK_SLOT(AEGP_UtilitySuite5, AEGP_EndQuietErrors, 4);
SDK_SLOT(AEGP_UtilitySuite5, AEGP_RegisterWithAEGP, 8);

/// "AEGP Utility Suite" 13; an operation that came in at slot 1 moves all later ones by one
struct AEGP_UtilitySuite6 {
  void* reserved_0_6[7];
  A_Err (*AEGP_StartUndoGroup)(const A_char* undo_nameZ);
  A_Err (*AEGP_EndUndoGroup)();
  void* reserved_9_32[24];
};
SDK_SLOTS(AEGP_UtilitySuite6, 33);
SDK_SLOT(AEGP_UtilitySuite6, AEGP_StartUndoGroup, 7);
SDK_SLOT(AEGP_UtilitySuite6, AEGP_EndUndoGroup, 8);

/// "AEGP Register Suite" 6
struct AEGP_RegisterSuite5 {
  void* reserved_0_7[8];
  A_Err (*AEGP_RegisterIdleHook)(AEGP_PluginID aegp_plugin_id, AEGP_IdleHook hook_func,
                                 AEGP_IdleRefcon refconP);
  void* reserved_9_11[3];
};
SDK_SLOTS(AEGP_RegisterSuite5, 12);
SDK_SLOT(AEGP_RegisterSuite5, AEGP_RegisterIdleHook, 8);

/// "AEGP Persistent Data Suite" 3
struct AEGP_PersistentDataSuite3 {
  A_Err (*AEGP_GetApplicationBlob)(AEGP_PersistentBlobH* blobPH);
  void* reserved_1_2[2];
  A_Err (*AEGP_DoesKeyExist)(AEGP_PersistentBlobH blobH, const A_char* section_keyZ,
                             const A_char* value_keyZ, A_Boolean* existsPB);
  void* reserved_4_13[10];
  A_Err (*AEGP_SetLong)(AEGP_PersistentBlobH blobH, const A_char* section_keyZ,
                        const A_char* value_keyZ, A_long valueL);
  void* reserved_15_17[3];
};
SDK_SLOTS(AEGP_PersistentDataSuite3, 18);
SDK_SLOT(AEGP_PersistentDataSuite3, AEGP_GetApplicationBlob, 0);
SDK_SLOT(AEGP_PersistentDataSuite3, AEGP_DoesKeyExist, 3);
SDK_SLOT(AEGP_PersistentDataSuite3, AEGP_SetLong, 14);

/// "AEGP PF Interface Suite" 1
struct AEGP_PFInterfaceSuite1 {
  A_Err (*AEGP_GetEffectLayer)(PF_ProgPtr effect_pp_ref, AEGP_LayerH* layerPH);
  A_Err (*AEGP_GetNewEffectForEffect)(AEGP_PluginID aegp_plugin_id, PF_ProgPtr effect_pp_ref,
                                      AEGP_EffectRefH* effect_refPH);
  void* reserved_2_4[3];
};
SDK_SLOTS(AEGP_PFInterfaceSuite1, 5);
SDK_SLOT(AEGP_PFInterfaceSuite1, AEGP_GetEffectLayer, 0);
SDK_SLOT(AEGP_PFInterfaceSuite1, AEGP_GetNewEffectForEffect, 1);

/// Sends the general command to an effect; version 2 has no argument for another one.
using AEGP_EffectCallGeneric2 = A_Err (*)(AEGP_PluginID aegp_plugin_id, AEGP_EffectRefH effect_refH,
                                          const A_Time* timePT, void* effect_extraPV);
/// Sends a command to an effect.
using AEGP_EffectCallGeneric3 = A_Err (*)(AEGP_PluginID aegp_plugin_id, AEGP_EffectRefH effect_refH,
                                          const A_Time* timePT, PF_Cmd effect_cmd,
                                          void* effect_extraPV);

/// "AEGP Effect Suite", registered as 2 and as 3. The slots are the same in both, but for the
/// arguments of one; the two are acquired, kept and released separately.
template <class EffectCallGeneric>
struct AEGP_EffectSuite {
  A_Err (*AEGP_GetLayerNumEffects)(AEGP_LayerH layerH, A_long* num_effectsPL);
  A_Err (*AEGP_GetLayerEffectByIndex)(AEGP_PluginID aegp_plugin_id, AEGP_LayerH layerH,
                                      AEGP_EffectIndex effect_index, AEGP_EffectRefH* effectPH);
  A_Err (*AEGP_GetInstalledKeyFromLayerEffect)(AEGP_EffectRefH effect_refH,
                                               AEGP_InstalledEffectKey* installed_keyP);
  void* reserved_3;
  A_Err (*AEGP_GetEffectFlags)(AEGP_EffectRefH effect_refH, AEGP_EffectFlags* effect_flagsP);
  void* reserved_5_6[2];
  EffectCallGeneric AEGP_EffectCallGeneric;
  A_Err (*AEGP_DisposeEffect)(AEGP_EffectRefH effect_refH);
  void* reserved_9_13[5];
  A_Err (*AEGP_GetEffectMatchName)(AEGP_InstalledEffectKey installed_key, A_char* utf_match_nameZ);
  void* reserved_15_16[2];
};
using AEGP_EffectSuite2 = AEGP_EffectSuite<AEGP_EffectCallGeneric2>;
using AEGP_EffectSuite3 = AEGP_EffectSuite<AEGP_EffectCallGeneric3>;
SDK_SLOTS(AEGP_EffectSuite2, 17);
SDK_SLOTS(AEGP_EffectSuite3, 17);
SDK_SLOT(AEGP_EffectSuite2, AEGP_GetLayerNumEffects, 0);
SDK_SLOT(AEGP_EffectSuite2, AEGP_GetLayerEffectByIndex, 1);
SDK_SLOT(AEGP_EffectSuite2, AEGP_GetInstalledKeyFromLayerEffect, 2);
SDK_SLOT(AEGP_EffectSuite2, AEGP_GetEffectFlags, 4);
SDK_SLOT(AEGP_EffectSuite3, AEGP_EffectCallGeneric, 7);
SDK_SLOT(AEGP_EffectSuite2, AEGP_DisposeEffect, 8);
SDK_SLOT(AEGP_EffectSuite2, AEGP_GetEffectMatchName, 14);

/// "AEGP Stream Suite" 4
struct AEGP_StreamSuite1 {
  void* reserved_0_6[7];
  /// Writes into kStreamNameBytes bytes. In later versions this is slot 8, which is
  /// AEGP_GetStreamUnitsText here.
  A_Err (*AEGP_GetStreamName)(AEGP_StreamRefH streamH, A_Boolean force_englishB, A_char* nameZ);
  void* reserved_8_19[12];
};
SDK_SLOTS(AEGP_StreamSuite1, 20);
SDK_SLOT(AEGP_StreamSuite1, AEGP_GetStreamName, 7);

/// "AEGP Stream Suite" 9
struct AEGP_StreamSuite4 {
  void* reserved_0_4[5];
  A_Err (*AEGP_GetNewEffectStreamByIndex)(AEGP_PluginID aegp_plugin_id, AEGP_EffectRefH effect_refH,
                                          PF_ParamIndex param_index, AEGP_StreamRefH* streamPH);
  void* reserved_6;
  A_Err (*AEGP_DisposeStream)(AEGP_StreamRefH streamH);
  void* reserved_8_12[5];
  A_Err (*AEGP_GetNewStreamValue)(AEGP_PluginID aegp_plugin_id, AEGP_StreamRefH streamH,
                                  AEGP_LTimeMode time_mode, const A_Time* timePT,
                                  A_Boolean pre_expressionB, AEGP_StreamValue2* valueP);
  A_Err (*AEGP_DisposeStreamValue)(AEGP_StreamValue2* valueP);
  A_Err (*AEGP_SetStreamValue)(AEGP_PluginID aegp_plugin_id, AEGP_StreamRefH streamH,
                               AEGP_StreamValue2* valueP);
  void* reserved_16_21[6];
};
SDK_SLOTS(AEGP_StreamSuite4, 22);
SDK_SLOT(AEGP_StreamSuite4, AEGP_GetNewEffectStreamByIndex, 5);
SDK_SLOT(AEGP_StreamSuite4, AEGP_DisposeStream, 7);
SDK_SLOT(AEGP_StreamSuite4, AEGP_GetNewStreamValue, 13);
SDK_SLOT(AEGP_StreamSuite4, AEGP_DisposeStreamValue, 14);
SDK_SLOT(AEGP_StreamSuite4, AEGP_SetStreamValue, 15);

/// "AEGP Dynamic Stream Suite" 5
struct AEGP_DynamicStreamSuite4 {
  void* reserved_0_4[5];
  A_Err (*AEGP_GetDynamicStreamFlags)(AEGP_StreamRefH streamH, AEGP_DynStreamFlags* stream_flagsP);
  A_Err (*AEGP_SetDynamicStreamFlag)(AEGP_StreamRefH streamH, AEGP_DynStreamFlags one_flag,
                                     A_Boolean undoableB, A_Boolean setB);
  void* reserved_7_15[9];
  A_Err (*AEGP_GetNewParentStreamRef)(AEGP_PluginID aegp_plugin_id, AEGP_StreamRefH streamH,
                                      AEGP_StreamRefH* parent_streamPH);
  void* reserved_17_25[9];
};
SDK_SLOTS(AEGP_DynamicStreamSuite4, 26);
SDK_SLOT(AEGP_DynamicStreamSuite4, AEGP_GetDynamicStreamFlags, 5);
SDK_SLOT(AEGP_DynamicStreamSuite4, AEGP_SetDynamicStreamFlag, 6);
SDK_SLOT(AEGP_DynamicStreamSuite4, AEGP_GetNewParentStreamRef, 16);

/// "AEGP Proj Suite" 8
struct AEGP_ProjSuite5 {
  A_Err (*AEGP_GetNumProjects)(A_long* num_projPL);
  void* reserved_1_13[13];
};
SDK_SLOTS(AEGP_ProjSuite5, 14);
SDK_SLOT(AEGP_ProjSuite5, AEGP_GetNumProjects, 0);

/// "AEGP Item Suite" 10
struct AEGP_ItemSuite6 {
  void* reserved_0_1[2];
  A_Err (*AEGP_GetActiveItem)(AEGP_ItemH* itemPH);
  void* reserved_3_4[2];
  /// Hosts write 16 or 32 bits; the caller passes a zeroed word of 32.
  A_Err (*AEGP_GetItemType)(AEGP_ItemH itemH, AEGP_ItemType* item_typeP);
  void* reserved_6_25[20];
};
SDK_SLOTS(AEGP_ItemSuite6, 26);
SDK_SLOT(AEGP_ItemSuite6, AEGP_GetActiveItem, 2);
SDK_SLOT(AEGP_ItemSuite6, AEGP_GetItemType, 5);

/// "AEGP Comp Suite" 9
struct AEGP_CompSuite4 {
  A_Err (*AEGP_GetCompFromItem)(AEGP_ItemH itemH, AEGP_CompH* compPH);
  void* reserved_1_27[27];
};
SDK_SLOTS(AEGP_CompSuite4, 28);
SDK_SLOT(AEGP_CompSuite4, AEGP_GetCompFromItem, 0);

/// "AEGP Layer Suite" 11
struct AEGP_LayerSuite5 {
  A_Err (*AEGP_GetCompNumLayers)(AEGP_CompH compH, A_long* num_layersPL);
  A_Err (*AEGP_GetCompLayerByIndex)(AEGP_CompH compH, A_long layer_indexL, AEGP_LayerH* layerPH);
  void* reserved_2_45[44];
};
SDK_SLOTS(AEGP_LayerSuite5, 46);
SDK_SLOT(AEGP_LayerSuite5, AEGP_GetCompNumLayers, 0);
SDK_SLOT(AEGP_LayerSuite5, AEGP_GetCompLayerByIndex, 1);
