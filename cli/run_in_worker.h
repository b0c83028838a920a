#pragma once

#include <functional>
#include <optional>

#include "base/image/picture.h"
#include "cli/command.h"
#include "cli/options/scene_options.h"

namespace tarvo {

/// Runs the work of a command that loads the plug-in in a worker, which gets the same command line
/// and whose texts come to this console. In the worker, where it is called too, it does the work.
/// Throws CommandExit when the worker fails or the user interrupts.
void RunInWorker(const SceneOptions& options, const Console& console,
                 const std::function<void()>& work);

/// The same of work that renders a picture, which the worker sends back. Returns none in the worker
/// itself, which has no more to do.
std::optional<Picture> RenderInWorker(const SceneOptions& options, const Console& console,
                                      const std::function<Picture()>& make);

}  // namespace tarvo
