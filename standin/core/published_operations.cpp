#include "standin/core/published_operations.h"

#include <span>
#include <utility>

namespace standin {
namespace {

using Names = std::span<const char* const>;

// Published names in slot order; the comment before a row is the slot of its first name. Where a
// list is shorter than its table, the names of the slots after it are not known here.
// clang-format off

constexpr const char* kBasic[] = {
    /*  0 */ "AcquireSuite", "ReleaseSuite", "IsEqual", "AllocateBlock", "FreeBlock",
    /*  5 */ "ReallocateBlock", "Undefined",
};

constexpr const char* kInteraction[] = {
    /*  0 */ "checkout_param", "checkin_param", "add_param", "abort", "progress",
    /*  5 */ "register_ui", "checkout_layer_audio", "checkin_layer_audio", "get_audio_data",
    /*  9 */ "reserved_str[0]", "reserved_str[1]", "reserved_str[2]", "reserved[0]", "reserved[1]",
    /* 14 */ "reserved[2]", "reserved[3]", "reserved[4]", "reserved[5]", "reserved[6]",
    /* 19 */ "reserved[7]", "reserved[8]", "reserved[9]",
};

// Of the callbacks and of the suite, which ends before ansi_procs.
constexpr const char* kAnsi[] = {
    /*  0 */ "atan", "atan2", "ceil", "cos", "exp",
    /*  5 */ "fabs", "floor", "fmod", "hypot", "log",
    /* 10 */ "log10", "pow", "sin", "sqrt", "tan",
    /* 15 */ "sprintf", "strcpy", "asin", "acos", "ansi_procs",
};

constexpr const char* kUtilityBeforeAnsi[] = {
    /*  0 */ "begin_sampling", "subpixel_sample", "area_sample", "get_batch_func_is_deprecated",
    /*  4 */ "end_sampling", "composite_rect", "blend", "convolve", "copy",
    /*  9 */ "fill", "gaussian_kernel", "iterate", "premultiply", "premultiply_color",
    /* 14 */ "new_world", "dispose_world", "iterate_origin", "iterate_lut", "transfer_rect",
    /* 19 */ "transform_world", "host_new_handle", "host_lock_handle", "host_unlock_handle",
    /* 23 */ "host_dispose_handle", "get_callback_addr", "app",
};

constexpr const char* kUtilityAfterColour[] = {
    /* 28 */ "get_platform_data", "host_get_handle_size", "iterate_origin_non_clip_src",
    /* 31 */ "iterate_generic", "host_resize_handle", "subpixel_sample16", "area_sample16",
    /* 35 */ "fill16", "premultiply_color16", "iterate16", "iterate_origin16",
    /* 39 */ "iterate_origin_non_clip_src16", "get_pixel_data8", "get_pixel_data16", "reserved[0]",
};

constexpr const char* kUtility7[] = {
    /*  0 */ "AEGP_ReportInfo",
};

constexpr const char* kUtility11[] = {
    /*  0 */ "AEGP_ReportInfo", "AEGP_GetDriverPluginInitFuncVersion",
    /*  2 */ "AEGP_GetDriverImplementationVersion", "AEGP_StartQuietErrors", "AEGP_EndQuietErrors",
    /*  5 */ "AEGP_GetLastErrorMessage", "AEGP_StartUndoGroup", "AEGP_EndUndoGroup",
    /*  8 */ "AEGP_RegisterWithAEGP", "AEGP_GetMainHWND", "AEGP_ShowHideAllFloaters",
    /* 11 */ "AEGP_PaintPalGetForeColor", "AEGP_PaintPalGetBackColor", "AEGP_PaintPalSetForeColor",
    /* 14 */ "AEGP_PaintPalSetBackColor", "AEGP_CharPalGetFillColor", "AEGP_CharPalGetStrokeColor",
    /* 17 */ "AEGP_CharPalSetFillColor", "AEGP_CharPalSetStrokeColor",
    /* 19 */ "AEGP_CharPalIsFillColorUIFrontmost", "AEGP_ConvertFpLongToHSFRatio",
    /* 21 */ "AEGP_ConvertHSFRatioToFpLong", "AEGP_CauseIdleRoutinesToBeCalled",
    /* 23 */ "AEGP_GetSuppressInteractiveUI", "AEGP_WriteToOSConsole", "AEGP_WriteToDebugLog",
    /* 26 */ "AEGP_IsScriptingAvailable", "AEGP_ExecuteScript", "AEGP_HostIsActivated",
    /* 29 */ "AEGP_GetPluginPlatformRef", "AEGP_UpdateFontList",
};

constexpr const char* kUtility13[] = {
    /*  0 */ "AEGP_ReportInfo", "AEGP_ReportInfoUnicode", "AEGP_GetDriverPluginInitFuncVersion",
    /*  3 */ "AEGP_GetDriverImplementationVersion", "AEGP_StartQuietErrors", "AEGP_EndQuietErrors",
    /*  6 */ "AEGP_GetLastErrorMessage", "AEGP_StartUndoGroup", "AEGP_EndUndoGroup",
    /*  9 */ "AEGP_RegisterWithAEGP", "AEGP_GetMainHWND", "AEGP_ShowHideAllFloaters",
    /* 12 */ "AEGP_PaintPalGetForeColor", "AEGP_PaintPalGetBackColor", "AEGP_PaintPalSetForeColor",
    /* 15 */ "AEGP_PaintPalSetBackColor", "AEGP_CharPalGetFillColor", "AEGP_CharPalGetStrokeColor",
    /* 18 */ "AEGP_CharPalSetFillColor", "AEGP_CharPalSetStrokeColor",
    /* 20 */ "AEGP_CharPalIsFillColorUIFrontmost", "AEGP_ConvertFpLongToHSFRatio",
    /* 22 */ "AEGP_ConvertHSFRatioToFpLong", "AEGP_CauseIdleRoutinesToBeCalled",
    /* 24 */ "AEGP_GetSuppressInteractiveUI", "AEGP_WriteToOSConsole", "AEGP_WriteToDebugLog",
    /* 27 */ "AEGP_IsScriptingAvailable", "AEGP_ExecuteScript", "AEGP_HostIsActivated",
    /* 30 */ "AEGP_GetPluginPlatformRef", "AEGP_UpdateFontList", "AEGP_GetPluginPaths",
};

constexpr const char* kRegister6[] = {
    /*  0 */ "AEGP_RegisterCommandHook", "AEGP_RegisterUpdateMenuHook", "AEGP_RegisterDeathHook",
    /*  3 */ "AEGP_RegisterVersionHook", "AEGP_RegisterAboutStringHook", "AEGP_RegisterAboutHook",
    /*  6 */ "AEGP_RegisterArtisan", "AEGP_RegisterIO", "AEGP_RegisterIdleHook",
    /*  9 */ "AEGP_RegisterTracker", "AEGP_RegisterInteractiveArtisan",
    /* 11 */ "AEGP_RegisterPresetLocalizationString",
};

constexpr const char* kPersistentData3[] = {
    /*  0 */ "AEGP_GetApplicationBlob", "AEGP_GetNumSections", "AEGP_GetSectionKeyByIndex",
    /*  3 */ "AEGP_DoesKeyExist", "AEGP_GetNumKeys", "AEGP_GetValueKeyByIndex",
    /*  6 */ "AEGP_GetDataHandle", "AEGP_GetData", "AEGP_GetString", "AEGP_GetLong",
    /* 10 */ "AEGP_GetFpLong", "AEGP_SetDataHandle", "AEGP_SetData", "AEGP_SetString",
    /* 14 */ "AEGP_SetLong", "AEGP_SetFpLong", "AEGP_DeleteEntry", "AEGP_GetPrefsDirectory",
};

constexpr const char* kHandle2[] = {
    /*  0 */ "host_new_handle", "host_lock_handle", "host_unlock_handle", "host_dispose_handle",
    /*  4 */ "host_get_handle_size", "host_resize_handle",
};

constexpr const char* kWorld1[] = {
    /*  0 */ "new_world", "dispose_world",
};

constexpr const char* kFillMatte2[] = {
    /*  0 */ "fill", "fill16", "fill_float", "premultiply", "premultiply_color",
    /*  5 */ "premultiply_color16", "premultiply_color_float",
};

constexpr const char* kParamUtils3[] = {
    /*  0 */ "PF_UpdateParamUI", "PF_GetCurrentState", "PF_AreStatesIdentical",
    /*  3 */ "PF_IsIdenticalCheckout", "PF_FindKeyframeTime", "PF_GetKeyframeCount",
    /*  6 */ "PF_CheckoutKeyframe", "PF_CheckinKeyframe", "PF_KeyIndexToTime",
};

constexpr const char* kPfInterface1[] = {
    /*  0 */ "AEGP_GetEffectLayer", "AEGP_GetNewEffectForEffect",
};

constexpr const char* kEffect2And3[] = {
    /*  0 */ "AEGP_GetLayerNumEffects", "AEGP_GetLayerEffectByIndex",
    /*  2 */ "AEGP_GetInstalledKeyFromLayerEffect", "AEGP_GetEffectParamUnionByIndex",
    /*  4 */ "AEGP_GetEffectFlags", "AEGP_SetEffectFlags", "AEGP_ReorderEffect",
    /*  7 */ "AEGP_EffectCallGeneric", "AEGP_DisposeEffect", "AEGP_ApplyEffect",
    /* 10 */ "AEGP_DeleteLayerEffect", "AEGP_GetNumInstalledEffects", "AEGP_GetNextInstalledEffect",
    /* 13 */ "AEGP_GetEffectName", "AEGP_GetEffectMatchName", "AEGP_GetEffectCategory",
    /* 16 */ "AEGP_DuplicateEffect",
};

constexpr const char* kStream4[] = {
    /*  0 */ "AEGP_IsStreamLegal", "AEGP_CanVaryOverTime", "AEGP_GetNewLayerStream",
    /*  3 */ "AEGP_GetEffectNumParamStreams", "AEGP_GetNewEffectStreamByIndex",
    /*  5 */ "AEGP_GetNewMaskStream", "AEGP_DisposeStream", "AEGP_GetStreamName",
    /*  8 */ "AEGP_GetStreamUnitsText",
};

constexpr const char* kStream9[] = {
    /*  0 */ "AEGP_IsStreamLegal", "AEGP_CanVaryOverTime", "AEGP_GetValidInterpolations",
    /*  3 */ "AEGP_GetNewLayerStream", "AEGP_GetEffectNumParamStreams",
    /*  5 */ "AEGP_GetNewEffectStreamByIndex", "AEGP_GetNewMaskStream", "AEGP_DisposeStream",
    /*  8 */ "AEGP_GetStreamName", "AEGP_GetStreamUnitsText", "AEGP_GetStreamProperties",
    /* 11 */ "AEGP_IsStreamTimevarying", "AEGP_GetStreamType", "AEGP_GetNewStreamValue",
    /* 14 */ "AEGP_DisposeStreamValue", "AEGP_SetStreamValue", "AEGP_GetLayerStreamValue",
    /* 17 */ "AEGP_GetExpressionState", "AEGP_SetExpressionState", "AEGP_GetExpression",
    /* 20 */ "AEGP_SetExpression", "AEGP_DuplicateStreamRef",
};

constexpr const char* kDynamicStream5[] = {
    /*  0 */ "AEGP_GetNewStreamRefForLayer", "AEGP_GetNewStreamRefForMask", "AEGP_GetStreamDepth",
    /*  3 */ "AEGP_GetStreamGroupingType", "AEGP_GetNumStreamsInGroup",
    /*  5 */ "AEGP_GetDynamicStreamFlags", "AEGP_SetDynamicStreamFlag",
    /*  7 */ "AEGP_GetNewStreamRefByIndex", "AEGP_GetNewStreamRefByMatchname", "AEGP_DeleteStream",
    /* 10 */ "AEGP_ReorderStream", "AEGP_DuplicateStream", "AEGP_SetStreamName",
    /* 13 */ "AEGP_CanAddStream", "AEGP_AddStream", "AEGP_GetMatchName",
    /* 16 */ "AEGP_GetNewParentStreamRef", "AEGP_GetStreamIsModified",
    /* 18 */ "AEGP_GetStreamIndexInParent", "AEGP_IsSeparationLeader",
    /* 20 */ "AEGP_AreDimensionsSeparated",
};

constexpr const char* kProj8[] = {
    /*  0 */ "AEGP_GetNumProjects",
};

constexpr const char* kItem10[] = {
    /*  0 */ "AEGP_GetFirstProjItem", "AEGP_GetNextProjItem", "AEGP_GetActiveItem",
    /*  3 */ "AEGP_IsItemSelected", "AEGP_SelectItem", "AEGP_GetItemType", "AEGP_GetTypeName",
};

constexpr const char* kComp9[] = {
    /*  0 */ "AEGP_GetCompFromItem",
};

constexpr const char* kLayer11[] = {
    /*  0 */ "AEGP_GetCompNumLayers", "AEGP_GetCompLayerByIndex",
};

// clang-format on

struct Suite {
  std::string_view name;
  std::int32_t version;  // as registered
  Names operations;
};

constexpr Suite kSuites[] = {
    {"AEGP Utility Suite", 7, kUtility7},
    {"AEGP Utility Suite", 11, kUtility11},
    {"AEGP Utility Suite", 13, kUtility13},
    {"AEGP Register Suite", 6, kRegister6},
    {"AEGP Persistent Data Suite", 3, kPersistentData3},
    {"PF Handle Suite", 2, kHandle2},
    {"PF ANSI Suite", 1, kAnsi},
    {"AEGP PF Interface Suite", 1, kPfInterface1},
    {"AEGP Effect Suite", 2, kEffect2And3},
    {"AEGP Effect Suite", 3, kEffect2And3},
    {"AEGP Stream Suite", 4, kStream4},
    {"AEGP Stream Suite", 9, kStream9},
    {"AEGP Dynamic Stream Suite", 5, kDynamicStream5},
    {"PF Param Utils Suite", 3, kParamUtils3},
    {"AEGP Proj Suite", 8, kProj8},
    {"AEGP Item Suite", 10, kItem10},
    {"AEGP Comp Suite", 9, kComp9},
    {"AEGP Layer Suite", 11, kLayer11},
    {"PF World Suite", 1, kWorld1},
    {"PF Fill Matte Suite", 2, kFillMatte2},
};

Names OperationsOf(std::string_view suite, std::int32_t version) {
  for (const Suite& entry : kSuites) {
    if (entry.name == suite && entry.version == version) {
      return entry.operations;
    }
  }
  return {};
}

std::string DescribeSlot(std::size_t slot, const std::string& table, Names names,
                         std::size_t firstNamed = 0) {
  const std::size_t index = slot - firstNamed;
  return "slot " + std::to_string(slot) + " of " + table + ", " +
         (index < names.size() ? names[index] : "whose published name is not known here") + ",";
}

std::vector<std::string> DescribeSlots(const std::string& table, Names names, std::size_t slots) {
  std::vector<std::string> described;
  for (std::size_t slot = 0; slot < slots; ++slot) {
    described.push_back(DescribeSlot(slot, table, names));
  }
  return described;
}

/// Describes the utility callbacks word by word: one word for each field of their own, and one for
/// each slot of the tables that lie inside them.
class UtilityWords {
 public:
  void AddFields(std::size_t firstSlot, Names names) {
    for (std::size_t i = 0; i < names.size(); ++i) {
      const std::string table = "the utility callbacks (byte " + NextByte() + ")";
      words_.push_back(DescribeSlot(firstSlot + i, table, names, firstSlot));
    }
  }
  void AddTable(const std::string& title, Names names, std::size_t slots) {
    for (std::size_t slot = 0; slot < slots; ++slot) {
      const std::string table = title + " (byte " + NextByte() + " of the utility callbacks)";
      words_.push_back(DescribeSlot(slot, table, names));
    }
  }
  [[nodiscard]] std::vector<std::string> Take() { return std::move(words_); }

 private:
  [[nodiscard]] std::string NextByte() const {
    return std::to_string(words_.size() * sizeof(void*));
  }

  std::vector<std::string> words_;
};

}  // namespace

std::vector<std::string> DescribeSuiteSlots(std::string_view suite, std::int32_t version,
                                            std::size_t slots) {
  return DescribeSlots(std::string(suite) + " " + std::to_string(version),
                       OperationsOf(suite, version), slots);
}

std::vector<std::string> DescribeBasicSuiteSlots() {
  return DescribeSlots("the basic suite", kBasic, std::size(kBasic));
}

std::vector<std::string> DescribeInteractionSlots() {
  return DescribeSlots("the interaction callbacks", kInteraction, std::size(kInteraction));
}

std::vector<std::string> DescribeUtilitySlots() {
  constexpr std::size_t kColours = 8;
  UtilityWords words;
  words.AddFields(0, kUtilityBeforeAnsi);
  words.AddTable("the ANSI callbacks", kAnsi, std::size(kAnsi));
  words.AddTable("the colour callbacks", {}, kColours);
  words.AddFields(28, kUtilityAfterColour);
  return words.Take();
}

}  // namespace standin
