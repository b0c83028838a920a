#pragma once

#include <initializer_list>
#include <string>

#include "standin/core/core.h"

namespace standin {

/// Throws PluginStateError unless the plug-in is in one of these states.
void Expect(const Core& core, const std::string& command,
            std::initializer_list<PluginState> wanted);
/// Throws PluginStateError unless the plug-in is ready and the instance is in this state.
void ExpectInstance(const Core& core, const std::string& command, const RendererInstance& instance,
                    InstanceState wanted = InstanceState::kSetUp);

/// Takes over what the answer to a command says is the sequence data of the instance.
void TakeOverData(Core& core, RendererInstance& instance, A_long command, const PF_OutData& out);
/// Notes a violation if a set-down that went well left one of its records with the handle.
void ExpectForgotten(Core& core, const CommandResult& result, const std::string& what,
                     PF_Handle inInput, PF_Handle inOutput);
/// Sends a sequence command and takes the sequence data of the answer over.
CommandResult SendSequence(Core& core, PF_Cmd command, RendererInstance& instance);
/// Sequence setup or resetup; the result stays in the instance too.
void SetUp(Core& core, PF_Cmd command, RendererInstance& instance);
/// Sequence setdown.
CommandResult SetDown(Core& core, RendererInstance& instance);

}  // namespace standin
