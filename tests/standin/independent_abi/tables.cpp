#include "tables.h"

#include <sstream>

#include "bytes.h"

namespace independent_abi {
namespace {

// Names are in slot order, without the prefix of their suite's kind.

struct NamedSuite {
  const char* name;
  std::int32_t version;
  std::size_t slots;
  const char* operations;
};

constexpr const char* kUtility =
    "GetDriverPluginInitFuncVersion GetDriverImplementationVersion StartQuietErrors EndQuietErrors "
    "GetLastErrorMessage StartUndoGroup EndUndoGroup RegisterWithAEGP GetMainHWND "
    "ShowHideAllFloaters PaintPalGetForeColor PaintPalGetBackColor PaintPalSetForeColor "
    "PaintPalSetBackColor CharPalGetFillColor CharPalGetStrokeColor CharPalSetFillColor "
    "CharPalSetStrokeColor CharPalIsFillColorUIFrontmost ConvertFpLongToHSFRatio "
    "ConvertHSFRatioToFpLong CauseIdleRoutinesToBeCalled GetSuppressInteractiveUI WriteToOSConsole "
    "WriteToDebugLog IsScriptingAvailable ExecuteScript HostIsActivated GetPluginPlatformRef "
    "UpdateFontList";
constexpr const char* kEffect =
    "GetLayerNumEffects GetLayerEffectByIndex GetInstalledKeyFromLayerEffect "
    "GetEffectParamUnionByIndex GetEffectFlags SetEffectFlags ReorderEffect EffectCallGeneric "
    "DisposeEffect ApplyEffect DeleteLayerEffect GetNumInstalledEffects GetNextInstalledEffect "
    "GetEffectName GetEffectMatchName GetEffectCategory DuplicateEffect";
constexpr const char* kAnsi =
    "atan atan2 ceil cos exp fabs floor fmod hypot log log10 pow sin sqrt tan sprintf strcpy asin "
    "acos";

const NamedSuite kSuites[] = {
    {"AEGP Utility Suite", 7, 25, "ReportInfo"},
    {"AEGP Utility Suite", 11, 31, "ReportInfo +"},
    {"AEGP Utility Suite", 13, 33, "ReportInfo ReportInfoUnicode + GetPluginPaths"},
    {"AEGP Register Suite", 6, 12,
     "RegisterCommandHook RegisterUpdateMenuHook RegisterDeathHook RegisterVersionHook "
     "RegisterAboutStringHook RegisterAboutHook RegisterArtisan RegisterIO RegisterIdleHook "
     "RegisterTracker RegisterInteractiveArtisan RegisterPresetLocalizationString"},
    {"AEGP Persistent Data Suite", 3, 18,
     "GetApplicationBlob GetNumSections GetSectionKeyByIndex DoesKeyExist GetNumKeys "
     "GetValueKeyByIndex GetDataHandle GetData GetString GetLong GetFpLong SetDataHandle SetData "
     "SetString SetLong SetFpLong DeleteEntry GetPrefsDirectory"},
    {"PF Handle Suite", 2, 6,
     "host_new_handle host_lock_handle host_unlock_handle host_dispose_handle host_get_handle_size "
     "host_resize_handle"},
    {"PF ANSI Suite", 1, 19, kAnsi},
    {"AEGP PF Interface Suite", 1, 5, "GetEffectLayer GetNewEffectForEffect"},
    {"AEGP Effect Suite", 2, 17, kEffect},
    {"AEGP Effect Suite", 3, 17, kEffect},
    {"AEGP Stream Suite", 4, 20,
     "IsStreamLegal CanVaryOverTime GetNewLayerStream GetEffectNumParamStreams "
     "GetNewEffectStreamByIndex GetNewMaskStream DisposeStream GetStreamName GetStreamUnitsText"},
    {"AEGP Stream Suite", 9, 22,
     "IsStreamLegal CanVaryOverTime GetValidInterpolations GetNewLayerStream "
     "GetEffectNumParamStreams GetNewEffectStreamByIndex GetNewMaskStream DisposeStream "
     "GetStreamName GetStreamUnitsText GetStreamProperties IsStreamTimevarying GetStreamType "
     "GetNewStreamValue DisposeStreamValue SetStreamValue GetLayerStreamValue GetExpressionState "
     "SetExpressionState GetExpression SetExpression DuplicateStreamRef"},
    {"AEGP Dynamic Stream Suite", 5, 26,
     "GetNewStreamRefForLayer GetNewStreamRefForMask GetStreamDepth GetStreamGroupingType "
     "GetNumStreamsInGroup GetDynamicStreamFlags SetDynamicStreamFlag GetNewStreamRefByIndex "
     "GetNewStreamRefByMatchname DeleteStream ReorderStream DuplicateStream SetStreamName "
     "CanAddStream AddStream GetMatchName GetNewParentStreamRef GetStreamIsModified "
     "GetStreamIndexInParent IsSeparationLeader AreDimensionsSeparated"},
    {"PF Param Utils Suite", 3, 9,
     "UpdateParamUI GetCurrentState AreStatesIdentical IsIdenticalCheckout FindKeyframeTime "
     "GetKeyframeCount CheckoutKeyframe CheckinKeyframe KeyIndexToTime"},
    {"AEGP Proj Suite", 8, 14, "GetNumProjects"},
    {"AEGP Item Suite", 10, 26,
     "GetFirstProjItem GetNextProjItem GetActiveItem IsItemSelected SelectItem GetItemType "
     "GetTypeName"},
    {"AEGP Comp Suite", 9, 28, "GetCompFromItem"},
    {"AEGP Layer Suite", 11, 46, "GetCompNumLayers GetCompLayerByIndex"},
    {"PF World Suite", 1, 2, "new_world dispose_world"},
    {"PF Fill Matte Suite", 2, 7,
     "fill fill16 fill_float premultiply premultiply_color premultiply_color16 "
     "premultiply_color_float"},
};

// Callbacks.

constexpr const char* kBasic =
    "AcquireSuite ReleaseSuite IsEqual AllocateBlock FreeBlock ReallocateBlock Undefined";
constexpr const char* kInteraction =
    "checkout_param checkin_param add_param abort progress register_ui checkout_layer_audio "
    "checkin_layer_audio get_audio_data reserved_str[0] reserved_str[1] reserved_str[2] "
    "reserved[0] reserved[1] reserved[2] reserved[3] reserved[4] reserved[5] reserved[6] "
    "reserved[7] reserved[8] reserved[9]";

struct Field {
  std::size_t slot;
  std::size_t byte;
  const char* name;
};

// Without ansi (slot 26, at kAnsiByte), colorCB (slot 27, at kColourByte) and a reserved number
// (slot 42, byte 544).
constexpr std::size_t kAnsiByte = 208;
constexpr std::size_t kColourByte = 368;
constexpr std::size_t kColours = 8;
constexpr Field kUtilities[] = {
    {0, 0, "begin_sampling"},
    {1, 8, "subpixel_sample"},
    {2, 16, "area_sample"},
    {3, 24, "get_batch_func_is_deprecated"},
    {4, 32, "end_sampling"},
    {5, 40, "composite_rect"},
    {6, 48, "blend"},
    {7, 56, "convolve"},
    {8, 64, "copy"},
    {9, 72, "fill"},
    {10, 80, "gaussian_kernel"},
    {11, 88, "iterate"},
    {12, 96, "premultiply"},
    {13, 104, "premultiply_color"},
    {14, 112, "new_world"},
    {15, 120, "dispose_world"},
    {16, 128, "iterate_origin"},
    {17, 136, "iterate_lut"},
    {18, 144, "transfer_rect"},
    {19, 152, "transform_world"},
    {20, 160, "host_new_handle"},
    {21, 168, "host_lock_handle"},
    {22, 176, "host_unlock_handle"},
    {23, 184, "host_dispose_handle"},
    {24, 192, "get_callback_addr"},
    {25, 200, "app"},
    {28, 432, "get_platform_data"},
    {29, 440, "host_get_handle_size"},
    {30, 448, "iterate_origin_non_clip_src"},
    {31, 456, "iterate_generic"},
    {32, 464, "host_resize_handle"},
    {33, 472, "subpixel_sample16"},
    {34, 480, "area_sample16"},
    {35, 488, "fill16"},
    {36, 496, "premultiply_color16"},
    {37, 504, "iterate16"},
    {38, 512, "iterate_origin16"},
    {39, 520, "iterate_origin_non_clip_src16"},
    {40, 528, "get_pixel_data8"},
    {41, 536, "get_pixel_data16"},
};

/// "+" is for the operations that two versions of the utility suite share.
std::vector<std::string> Split(const std::string& names, const std::string& prefix = "") {
  std::istringstream stream(names);
  std::vector<std::string> split;
  for (std::string name; stream >> name;) {
    if (name != "+") {
      split.push_back(prefix + name);
      continue;
    }
    for (const std::string& shared : Split(kUtility, prefix)) {
      split.push_back(shared);
    }
  }
  return split;
}

std::string PrefixOf(const std::string& suite) {
  return suite.starts_with("AEGP") ? "AEGP_" : suite == "PF Param Utils Suite" ? "PF_" : "";
}

/// Adds a table that begins at this byte, of the utility callbacks if it is inline.
void Append(std::vector<Callback>& callbacks, std::size_t byte, const std::string& table,
            const std::vector<std::string>& names, bool isInline = false) {
  for (std::size_t slot = 0; slot < names.size(); ++slot, byte += kPointer) {
    const std::string where =
        isInline ? " (byte " + std::to_string(byte) + " of the utility callbacks)" : "";
    callbacks.push_back({byte, std::to_string(slot) + " of " + table + where, names[slot]});
  }
}

}  // namespace

std::vector<Suite> Suites() {
  std::vector<Suite> suites;
  for (const NamedSuite& suite : kSuites) {
    std::vector<std::string> names = Split(suite.operations, PrefixOf(suite.name));
    names.resize(suite.slots);
    Suite& added = suites.emplace_back(Suite{suite.name, suite.version, {}});
    Append(added.slots, 0, added.name + " " + std::to_string(suite.version), names);
  }
  return suites;
}

std::vector<Callback> BasicCallbacks() {
  std::vector<Callback> callbacks;
  Append(callbacks, 0, "the basic suite", Split(kBasic));
  return callbacks;
}

std::vector<Callback> InteractionCallbacks() {
  std::vector<Callback> callbacks;
  Append(callbacks, 0, "the interaction callbacks", Split(kInteraction));
  return callbacks;
}

std::vector<Callback> UtilityCallbacks() {
  std::vector<Callback> callbacks;
  for (const Field& field : kUtilities) {
    callbacks.push_back({field.byte,
                         std::to_string(field.slot) + " of the utility callbacks (byte " +
                             std::to_string(field.byte) + ")",
                         field.name});
  }
  Append(callbacks, kAnsiByte, "the ANSI callbacks", Split(kAnsi), true);
  Append(callbacks, kColourByte, "the colour callbacks", std::vector<std::string>(kColours), true);
  return callbacks;
}

}  // namespace independent_abi
