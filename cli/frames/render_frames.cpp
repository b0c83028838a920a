#include "cli/frames/render_frames.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <exception>
#include <future>
#include <iomanip>
#include <memory>
#include <optional>
#include <ostream>
#include <sstream>
#include <string>
#include <thread>
#include <utility>

#include "base/files/file_path.h"
#include "base/files/file_system.h"
#include "base/image/image_file.h"
#include "cli/frames/frame_list.h"
#include "cli/frames/frame_queue.h"
#include "cli/frames/movie.h"
#include "cli/process/interrupt.h"
#include "cli/process/system.h"
#include "cli/process/threads.h"

namespace tarvo {
namespace {

class FrameRender {
 public:
  FrameRender(const RenderSettings& settings, const PictureComposer& composer, double rate,
              const std::vector<int>& frames, FrameWorkers& workers, const Console& console)
      : settings_(settings),
        composer_(composer),
        rate_(rate),
        frames_(frames),
        workers_(workers),
        console_(console) {}

  void Run() {
    try {
      Make(settings_.missing ? Missing() : frames_);
    } catch (...) {
      ListMissing();
      throw;
    }
    if (const std::vector<int> missing = Missing(); !missing.empty()) {
      List(missing);
      throw CommandExit(kIncomplete, {settings_.output + ": not all frames are there"});
    }
  }

 private:
  [[nodiscard]] bool MakesFiles() const { return settings_.kind == OutputKind::kFrames; }

  /// The frames whose file is absent, does not decode or has another size; none where no files are
  /// made.
  [[nodiscard]] std::vector<int> Missing() const {
    if (!MakesFiles()) {
      return {};
    }
    const std::vector<char> isComplete = AreComplete();
    std::vector<int> missing;
    for (std::size_t place = 0; place < frames_.size(); ++place) {
      if (isComplete[place] == 0) {
        missing.push_back(frames_[place]);
      }
    }
    return missing;
  }

  /// For each frame, whether its file is there and complete. Decoding takes a third as long as
  /// rendering, so the files are divided among all cores. A file that was removed or replaced while
  /// others were decoded differs in its stamp at the end; comparing stamps takes a few microseconds
  /// a file.
  [[nodiscard]] std::vector<char> AreComplete() const {
    std::vector<char> isComplete(frames_.size());
    std::vector<FileStamp> stamps(frames_.size());
    const std::size_t threadCount = CountThreads();
    std::vector<std::future<void>> tasks;
    for (std::size_t thread = 0; thread < threadCount; ++thread) {
      tasks.push_back(StartTask([this, &isComplete, &stamps, thread, threadCount] {
        for (std::size_t place = thread; place < frames_.size(); place += threadCount) {
          const std::string file = FrameFile(settings_.output, frames_[place]);
          stamps[place] = StampOf(FilePath(file).Get());
          isComplete[place] = IsWholePng(file, composer_.Width(), composer_.Height()) ? 1 : 0;
        }
      }));
    }
    for (std::future<void>& task : tasks) {
      task.get();
    }
    for (std::size_t place = 0; place < frames_.size(); ++place) {
      const FilePath file(FrameFile(settings_.output, frames_[place]));
      if (StampOf(file.Get()) != stamps[place]) {
        isComplete[place] = 0;
      }
    }
    return isComplete;
  }

  /// After a failure, which is what gets reported, not what this one fails with.
  void ListMissing() const {
    try {
      List(Missing());
    } catch (const std::exception& error) {
      console_.err << settings_.output
                   << ": which frames are missing is not known: " << error.what() << '\n';
    }
  }

  void List(std::vector<int> missing) const {
    std::ranges::sort(missing);
    if (!missing.empty()) {
      console_.err << settings_.output << ": missing " << FrameListText(missing) << '\n';
    }
  }

  /// Whatever has the names of these frames can be replaced by a file.
  void ExpectReplaceableFiles(const std::vector<int>& frames) const {
    OptionFaults faults;
    if (MakesFiles()) {
      for (const int frame : frames) {
        faults.Expect(ExpectReplaceable, FrameFile(settings_.output, frame));
      }
    }
    faults.ThrowIfAny();
  }

  void Make(const std::vector<int>& frames) {
    ExpectReplaceableFiles(frames);
    const Interrupt interrupt;
    const bool isWatched = frames.size() > 1 || settings_.progress == ProgressForm::kJson;
    Progress progress(console_.err, isWatched ? settings_.progress : ProgressForm::kNone,
                      static_cast<int>(frames.size()));
    std::optional<RunStatistics> statistics;
    try {
      const std::unique_ptr<FrameOutput> output = MakeOutput();
      statistics = Pass(frames, *output, progress, interrupt);
      if (!interrupt.Came()) {
        output->Commit();
      }
    } catch (...) {
      if (!interrupt.Came()) {
        throw;
      }
    }
    if (interrupt.Came()) {
      throw CommandExit(kInterrupted, ResumeHint("interrupted", progress.Count(), frames.size()));
    }
    progress.End();
    SayMade(progress, statistics);
  }

  /// Renders the frames and passes them to the output. Throws when one of them does not come.
  std::optional<RunStatistics> Pass(const std::vector<int>& frames, FrameOutput& output,
                                    Progress& progress, const Interrupt& interrupt) {
    if (frames.empty()) {
      return std::nullopt;
    }
    workers_.Start(frames, composer_.CropsToLayer(true), !MakesFiles());
    workers_.ExpectSize(composer_.Width(), composer_.Height());
    FrameQueue queue(
        CountThreads(), interrupt,
        [&](int frame, Picture picture) {
          output.Take(frame, composer_.OverBackground(std::move(picture)));
          progress.Made(frame);
        },
        [&] { output.Abort(); });
    while (auto frame = workers_.Next()) {
      queue.Put(frame->number, std::move(frame->picture));
    }
    queue.Finish();
    if (const auto& failure = workers_.Failure()) {
      throw WithHint(*failure, ResumeHint("stopped", progress.Count(), frames.size()));
    }
    return workers_.Statistics();
  }

  [[nodiscard]] std::unique_ptr<FrameOutput> MakeOutput() const {
    switch (settings_.kind) {
      case OutputKind::kMovie:
        return std::make_unique<Movie>(settings_.output, composer_.Width(), composer_.Height(),
                                       rate_, settings_.sync);
      case OutputKind::kStream:
        return std::make_unique<FrameStream>(console_.out, settings_.raw);
      default:
        return std::make_unique<FrameFiles>(settings_.output, settings_.sync);
    }
  }

  /// Encoders beside the renderer, decoders after it. Only files may be made out of their order.
  [[nodiscard]] std::size_t CountThreads() const {
    const std::size_t cores = std::max(std::thread::hardware_concurrency(), 1U);
    return MakesFiles() ? cores : 1;
  }

  /// The failure with the resume hint, which is left out after a failure that the worker reported,
  /// such as an error of the plug-in, because it would occur again, and after a change of the
  /// scene, because the remaining frames would be those of another version.
  static CommandExit WithHint(const CommandExit& failure, const std::vector<std::string>& hint) {
    std::vector<std::string> lines = failure.Lines();
    if (!lines.empty() && failure.Code() != kWrongInput) {
      lines.insert(lines.end(), hint.begin(), hint.end());
    }
    return {failure.Code(), lines};
  }

  /// What was made before the end, and the command that makes the rest.
  [[nodiscard]] std::vector<std::string> ResumeHint(const std::string& end, int made,
                                                    std::size_t total) const {
    if (!MakesFiles()) {
      return {end + "; " + settings_.output + " is not complete"};
    }
    std::string command = Quoted(ThisProgram().string());
    for (const std::string& word : console_.words) {
      command += " " + Quoted(word);
    }
    command += settings_.missing ? "" : " --missing";
    return {end + " after " + std::to_string(made) + " of " + std::to_string(total) +
                " frames; to continue:",
            command};
  }

  void SayMade(const Progress& progress, const std::optional<RunStatistics>& statistics) const {
    if (settings_.quiet || settings_.kind == OutputKind::kStream) {
      return;
    }
    if (progress.Count() == 0) {
      PrintResult(console_, settings_.output + ": no frame is missing\n");
      return;
    }
    std::ostringstream line;
    line << std::fixed << std::setprecision(1) << settings_.output << ": " << progress.Count()
         << " frames of " << composer_.Width() << "x" << composer_.Height() << " in "
         << progress.Seconds() << " s (" << progress.Count() / progress.Seconds() << " a second";
    if (statistics) {
      line << "; the plug-in alone " << 1000.0 * progress.Count() / statistics->pluginMilliseconds
           << "), " << statistics->messages << " messages, " << statistics->images << " images";
    } else {
      line << ")";
    }
    PrintResult(console_, line.str() + "\n");
  }

  const RenderSettings& settings_;
  const PictureComposer& composer_;
  double rate_;
  const std::vector<int>& frames_;
  FrameWorkers& workers_;
  const Console& console_;
};

}  // namespace

void RenderFrames(const RenderSettings& settings, const PictureComposer& composer, double rate,
                  const std::vector<int>& frames, FrameWorkers& workers, const Console& console) {
  FrameRender(settings, composer, rate, frames, workers, console).Run();
}

}  // namespace tarvo
