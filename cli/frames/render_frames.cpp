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

#include "base/image/image_file.h"
#include "cli/frames/frame_list.h"
#include "cli/frames/frame_queue.h"
#include "cli/frames/frame_workers.h"
#include "cli/frames/movie.h"
#include "cli/process/interrupt.h"
#include "cli/process/system.h"
#include "cli/process/threads.h"

namespace standin {
namespace {

class FrameRender {
 public:
  FrameRender(const RenderOptions& options, const RenderWishes& wishes, const Animation& animation,
              const std::vector<int>& frames, const Console& console)
      : options_(options),
        wishes_(wishes),
        animation_(animation),
        frames_(frames),
        console_(console),
        width_(wishes.Scaled(animation.scene.width)),
        height_(wishes.Scaled(animation.scene.height)) {}

  void Run() {
    try {
      Make(options_.missing ? Missing() : frames_);
    } catch (...) {
      ListMissing();
      throw;
    }
    if (const std::vector<int> missing = Missing(); !missing.empty()) {
      List(missing);
      throw Unfinished(kIncomplete, {options_.output + ": not all frames are there"});
    }
  }

 private:
  [[nodiscard]] bool MakesFiles() const { return wishes_.kind == OutputKind::kFrames; }

  /// The frames whose file is absent, does not decode or has another size; none where no files are
  /// made.
  [[nodiscard]] std::vector<int> Missing() const {
    if (!MakesFiles()) return {};
    const std::vector<char> whole = AreWhole();
    std::vector<int> missing;
    for (std::size_t place = 0; place < frames_.size(); ++place) {
      if (whole[place] == 0) missing.push_back(frames_[place]);
    }
    return missing;
  }

  /// For each frame, whether its file is there and whole. Decoding takes a third as long as
  /// rendering: every core takes its share.
  [[nodiscard]] std::vector<char> AreWhole() const {
    std::vector<char> whole(frames_.size());
    const std::size_t shares = CountThreads();
    std::vector<std::future<void>> looks;
    for (std::size_t share = 0; share < shares; ++share) {
      looks.push_back(StartTask([this, &whole, share, shares] {
        for (std::size_t place = share; place < frames_.size(); place += shares) {
          const std::string file = FrameFile(options_.output, frames_[place]);
          whole[place] = IsWholePng(file, width_, height_) ? 1 : 0;
        }
      }));
    }
    for (std::future<void>& look : looks) look.get();
    return whole;
  }

  /// After a failure, which is the thing to be told: not what this one fails with.
  void ListMissing() const {
    try {
      List(Missing());
    } catch (const std::exception& error) {
      console_.err << options_.output << ": which frames are missing is not known: " << error.what()
                   << '\n';
    }
  }

  void List(std::vector<int> missing) const {
    std::ranges::sort(missing);
    if (!missing.empty()) {
      console_.err << options_.output << ": missing " << FrameListText(missing) << '\n';
    }
  }

  /// Whatever has the names of these frames can be replaced by a file.
  void ExpectReplaceableFiles(const std::vector<int>& frames) const {
    OptionFaults faults;
    if (MakesFiles()) {
      for (const int frame : frames) {
        faults.Expect(ExpectReplaceable, FrameFile(options_.output, frame));
      }
    }
    faults.ThrowIfAny();
  }

  void Make(const std::vector<int>& frames) {
    ExpectReplaceableFiles(frames);
    const Interrupt interrupt;
    const std::unique_ptr<FrameOutput> output = MakeOutput();
    const bool isWatched = frames.size() > 1 || wishes_.progress == ProgressForm::kJson;
    Progress progress(console_.err, isWatched ? wishes_.progress : ProgressForm::kNone,
                      static_cast<int>(frames.size()));
    std::optional<RunStatistics> statistics;
    try {
      statistics = Pass(frames, *output, progress, interrupt);
      if (!interrupt.Came()) output->Commit();
    } catch (...) {
      if (!interrupt.Came()) throw;
    }
    if (interrupt.Came()) {
      throw Unfinished(kInterrupted, ResumeHint("interrupted", progress.Count(), frames.size()));
    }
    progress.End();
    SayMade(progress, statistics);
  }

  /// Renders the frames and passes them to the output. Throws when one of them does not come.
  std::optional<RunStatistics> Pass(const std::vector<int>& frames, FrameOutput& output,
                                    Progress& progress, const Interrupt& interrupt) const {
    if (frames.empty()) return std::nullopt;
    FrameWorkers workers(options_, animation_, frames, true, !MakesFiles(), interrupt, console_);
    workers.ExpectSize(width_, height_);
    FrameQueue queue(
        CountThreads(), interrupt,
        [&](int frame, Picture picture) {
          output.Take(frame, wishes_.OverBackground(std::move(picture)));
          progress.Made(frame);
        },
        [&] { output.Abort(); });
    while (auto frame = workers.Next()) {
      queue.Put(frame->number, std::move(frame->picture));
    }
    queue.Finish();
    if (const auto& failure = workers.Failure()) {
      throw WithHint(*failure, ResumeHint("stopped", progress.Count(), frames.size()));
    }
    return workers.Statistics();
  }

  [[nodiscard]] std::unique_ptr<FrameOutput> MakeOutput() const {
    switch (wishes_.kind) {
      case OutputKind::kMovie:
        return std::make_unique<Movie>(options_.output, width_, height_, animation_.rate,
                                       options_.sync);
      case OutputKind::kStream:
        return std::make_unique<FrameStream>(console_.out, options_.raw);
      default:
        return std::make_unique<FrameFiles>(options_.output, options_.sync);
    }
  }

  /// Encoders beside the renderer, decoders after it. Only files may be made out of their order.
  [[nodiscard]] std::size_t CountThreads() const {
    const std::size_t cores = std::max(std::thread::hardware_concurrency(), 1U);
    return MakesFiles() ? cores : 1;
  }

  /// Not where the plug-in answered with an error: it would do so again. Nor where the scene
  /// changed: frames of the new one do not go with those of the old one.
  static Unfinished WithHint(const Unfinished& failure, const std::vector<std::string>& hint) {
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
      return {end + "; " + options_.output + " is not complete"};
    }
    RenderOptions rest = options_;
    rest.missing = true;
    std::string command = Quoted(ThisProgram().string());
    for (const std::string& word : CommandLine(rest)) {
      command += " " + Quoted(word);
    }
    return {end + " after " + std::to_string(made) + " of " + std::to_string(total) +
                " frames; this goes on:",
            command};
  }

  void SayMade(const Progress& progress, const std::optional<RunStatistics>& statistics) const {
    if (options_.quiet || wishes_.kind == OutputKind::kStream) {
      return;
    }
    if (progress.Count() == 0) {
      Tell(console_, options_.output + ": no frame is missing\n");
      return;
    }
    std::ostringstream line;
    line << std::fixed << std::setprecision(1) << options_.output << ": " << progress.Count()
         << " frames of " << width_ << "x" << height_ << " in " << progress.Seconds() << " s ("
         << progress.Count() / progress.Seconds() << " a second";
    if (statistics) {
      line << "; the plug-in alone " << 1000.0 * progress.Count() / statistics->pluginMilliseconds
           << "), " << statistics->messages << " messages, " << statistics->images << " images";
    } else {
      line << ")";
    }
    Tell(console_, line.str() + "\n");
  }

  const RenderOptions& options_;
  const RenderWishes& wishes_;
  const Animation& animation_;
  const std::vector<int>& frames_;
  const Console& console_;
  int width_;  // of every picture, in pixels
  int height_;
};

}  // namespace

void RenderFrames(const RenderOptions& options, const RenderWishes& wishes,
                  const Animation& animation, const std::vector<int>& frames,
                  const Console& console) {
  FrameRender(options, wishes, animation, frames, console).Run();
}

}  // namespace standin
