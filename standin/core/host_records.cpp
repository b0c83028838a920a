#include "standin/core/host_records.h"

namespace standin {

std::string CommandName(A_long command) {
  switch (command) {
    case PF_Cmd_ABOUT:
      return "PF_Cmd_ABOUT";
    case PF_Cmd_GLOBAL_SETUP:
      return "PF_Cmd_GLOBAL_SETUP";
    case PF_Cmd_GLOBAL_SETDOWN:
      return "PF_Cmd_GLOBAL_SETDOWN";
    case PF_Cmd_PARAMS_SETUP:
      return "PF_Cmd_PARAMS_SETUP";
    case PF_Cmd_SEQUENCE_SETUP:
      return "PF_Cmd_SEQUENCE_SETUP";
    case PF_Cmd_SEQUENCE_RESETUP:
      return "PF_Cmd_SEQUENCE_RESETUP";
    case PF_Cmd_SEQUENCE_FLATTEN:
      return "PF_Cmd_SEQUENCE_FLATTEN";
    case PF_Cmd_SEQUENCE_SETDOWN:
      return "PF_Cmd_SEQUENCE_SETDOWN";
    case PF_Cmd_FRAME_SETUP:
      return "PF_Cmd_FRAME_SETUP";
    case PF_Cmd_RENDER:
      return "PF_Cmd_RENDER";
    case PF_Cmd_FRAME_SETDOWN:
      return "PF_Cmd_FRAME_SETDOWN";
    case PF_Cmd_USER_CHANGED_PARAM:
      return "PF_Cmd_USER_CHANGED_PARAM";
    case PF_Cmd_UPDATE_PARAMS_UI:
      return "PF_Cmd_UPDATE_PARAMS_UI";
    case PF_Cmd_COMPLETELY_GENERAL:
      return "PF_Cmd_COMPLETELY_GENERAL";
    default:
      return "command " + std::to_string(command);
  }
}

}  // namespace standin
