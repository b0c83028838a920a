#include "cli/check_worker/check_worker.h"

#include <algorithm>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include "base/files/escaped_text.h"
#include "check/run.h"
#include "check/support/plugin_under_check.h"
#include "check/support/settings.h"
#include "cli/check/check_job.h"
#include "cli/check/check_options.h"
#include "cli/check/check_run.h"
#include "cli/options/scene_options.h"
#include "cli/process/messages.h"
#include "cli/process/worker.h"
#include "cli/program/program.h"
#include "standin/core/fault_injector.h"
#include "standin/host/host.h"

namespace tarvo {
namespace {

void TakeOverSettings(const CheckJob& job, const Console& console) {
  check::TheSettings().isLong = job.isLong;
  check::TheSettings().failsEveryCall = job.isLong;
  check::TheSettings().seed = job.seed;
  if (job.trace) {
    standin::FaultInjector::TraceAll(
        [&err = console.err](std::string_view line) { err << ForTerminal(line) << '\n'; });
  }
}

std::string Bytes(const nlohmann::ordered_json& value) {
  // Messages may hold any bytes.
  return value.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

/// Loads the plug-in, and finds out whether this machine can play the host. Throws PluginLoadError,
/// and std::runtime_error without OpenGL.
void Load(const std::string& plugin) {
  check::UsePlugin(plugin);
  const standin::Host host(check::PluginUnderCheck());
}

/// Those of all checks that have these names.
std::vector<check::Check> Named(const std::vector<std::string>& names) {
  std::vector<check::Check> checks = check::AllChecks();
  std::erase_if(checks, [&](const check::Check& check) {
    return std::ranges::find(names, check.name) == names.end();
  });
  return checks;
}

/// As a worker; the plug-in is the one word of its command line.
void CarryOutJob(const CheckJob& job, const Console& console) {
  MessageWriter& channel = *console.channel;
  if (job.lists) {
    return channel.Send(MessageKind::kChecks, Bytes(check::ToJson(check::AllChecks())));
  }
  TakeOverSettings(job, console);
  try {
    Load(console.words.at(0));
  } catch (const std::exception& error) {
    return channel.Send(MessageKind::kNotLoaded, error.what());
  }
  channel.Send(MessageKind::kLoaded, "");
  check::RunHere(Named(job.checks), [&](const check::Result& result) {
    channel.Send(MessageKind::kResult, Bytes(check::ToJson(result)));
  });
}

void RunForUser(CheckOptions options, const Console& console) {
  if (options.plugin.empty()) {
    options.plugin = DefaultPlugin();
  }
  CarryOut(options,
           {.list = [] { return check::AllChecks(); },
            .run =
                [&](const std::vector<check::Check>& checks, const TakeResult& take) {
                  TakeOverSettings(JobFor(options, {}), console);
                  Load(options.plugin);
                  check::RunHere(checks, take);
                }},
           console);
}

}  // namespace

int RunCheckWorker(const Console& console) {
  if (console.channel != nullptr) {
    return Try([&] { CarryOutJob(CheckJobFrom(ReadJob()), console); }, console);
  }
  CLI::App program(
      "Runs the checks of `tarvo check` in its own process, for a debugger: in their order, "
      "without "
      "a time limit, until one crashes.",
      "tarvo-check-worker");
  program.allow_windows_style_options(false);  // a file's name may begin with a slash
  program.set_help_flag("-h,--help", "Print this help and exit");
  CheckOptions options;
  AddCheckOptions(program, options);
  std::vector<std::string> words = console.words;
  std::ranges::reverse(words);  // as CLI11 takes them
  try {
    program.parse(std::move(words));
  } catch (const CLI::Success& request) {
    return program.exit(request, console.out, console.err);
  } catch (const CLI::ParseError& error) {
    return Fail(console, kWrongInput, {"tarvo-check-worker: " + std::string(error.what())});
  }
  return Try([&] { RunForUser(options, console); }, console);
}

}  // namespace tarvo
