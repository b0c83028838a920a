#pragma once

#include "sdk/effect.h"

/// The plug-in's one exported function: the host calls it with every command. Only the records that
/// a command's handler needs are read; PF_Err_BAD_CALLBACK_PARAM if one of them is null. Returns 0
/// or the host's error code; nothing is ever thrown.
///
/// For the commands that touch OpenGL, the context that is current on the calling thread is put
/// aside, the framework's own is current while the handler runs, and the first one is current again
/// at the return, whatever happened.
extern "C" PF_Err EntryPointFunc(PF_Cmd cmd, PF_InData* in_data, PF_OutData* out_data,
                                 PF_ParamDef* params[], PF_LayerDef* output, void* extra);
