#include <climits>
#include <memory>
#include <optional>
#include <ostream>
#include <string>

#include <CLI/CLI.hpp>

#include "base/files/input_error.h"
#include "base/files/text_table.h"
#include "base/image/compare.h"
#include "base/image/image_file.h"
#include "cli/command.h"
#include "cli/frames/output_picture.h"
#include "cli/options/output_guard.h"
#include "cli/options/scene_options.h"

namespace tarvo {
namespace {

constexpr int kMostTolerance = 255;

struct DiffOptions {
  std::string one;
  std::string other;
  std::string output;
  int tolerance = 0;
  Sync sync = Sync::kYes;
};

Picture Read(const std::string& file, OptionFaults& faults) {
  try {
    return ReadPng(file, INT_MAX);  // frames may be longer than the images of a rig
  } catch (const FileError& error) {
    faults.Add(file + ": " + error.what());
    return {};
  }
}

std::string SizeText(const Picture& picture) {
  return std::to_string(picture.width) + "x" + std::to_string(picture.height);
}

/// None where the pictures differ in size.
std::optional<Comparison> CompareIfSameSize(const Picture& one, const Picture& other,
                                            int tolerance) {
  if (one.width != other.width || one.height != other.height) {
    return std::nullopt;
  }
  return Compare(one, other, tolerance);
}

std::string Finding(const Comparison& comparison, int tolerance) {
  if (comparison.largest == 0) {
    return "the same\n";
  }
  const double percent =
      100.0 * static_cast<double>(comparison.beyond) / static_cast<double>(comparison.compared);
  return std::to_string(comparison.beyond) + " of " + std::to_string(comparison.compared) +
         " pixels (" + Fixed(percent, 3) + " %) differ by more than " + std::to_string(tolerance) +
         "; the largest difference is " + std::to_string(comparison.largest) + ", first at (" +
         std::to_string(comparison.x) + ", " + std::to_string(comparison.y) + ")\n";
}

void Diff(const DiffOptions& options, const Console& console) {
  OptionFaults faults;
  if (!options.output.empty()) {
    faults.ExpectPictureName(options.output);
  }
  if (options.tolerance < 0 || options.tolerance > kMostTolerance) {
    faults.Expected("--tolerance", "number from 0 to 255", std::to_string(options.tolerance));
  }
  const Picture one = Read(options.one, faults);
  const Picture other = Read(options.other, faults);
  faults.ThrowIfAny();
  if (!options.output.empty()) {
    ExpectOutputsAreNotInputs("--output", {options.output},
                              {FilePath(options.one).Get(), FilePath(options.other).Get()});
  }
  const auto comparison = CompareIfSameSize(one, other, options.tolerance);
  if (!options.output.empty()) {
    WritePicture(options.output, SideBySide(one, other, options.tolerance), options.sync);
  }
  PrintResult(console,
              options.one + ": " + SizeText(one) + '\n' + options.other + ": " + SizeText(other) +
                  '\n' +
                  (comparison ? Finding(*comparison, options.tolerance) : "different sizes\n"));
  if (!comparison || comparison->beyond > 0) {
    throw CommandExit(kDifferent, {});
  }
}

}  // namespace

void AddDiff(CLI::App& program, Work& chosen) {
  const auto options = std::make_shared<DiffOptions>();
  CLI::App* command = program.add_subcommand("diff", "Compare two pictures");
  NotEmpty(command->add_option("a", options->one, "A picture"))->required()->type_name("A.png");
  NotEmpty(command->add_option("b", options->other, "Another picture"))
      ->required()
      ->type_name("B.png");
  NotEmpty(command->add_option("-o,--output", options->output,
                               "A picture to make: A, B, and their difference, side by side"))
      ->type_name("DIFF.png");
  command
      ->add_option("--tolerance", options->tolerance,
                   "Steps of 255, in any channel, that count as the same")
      ->type_name("N");
  AddSyncOption(*command, options->sync);
  command->footer(R"(Colours are compared as displayed, multiplied by their alpha.

Exit codes: 0 the same; 1 different; 2 wrong input.

Example:
  tarvo diff before.png after.png -o diff.png --tolerance 2)");
  command->callback([options, &chosen] {
    chosen = [options](const Console& console) { Diff(*options, console); };
  });
}

}  // namespace tarvo
