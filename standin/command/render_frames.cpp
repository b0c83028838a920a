#include "standin/command/render_frames.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <future>
#include <iomanip>
#include <memory>
#include <optional>
#include <ostream>
#include <sstream>
#include <string>
#include <thread>
#include <utility>

#include "standin/command/frame_list.h"
#include "standin/command/frame_queue.h"
#include "standin/command/interrupt.h"
#include "standin/command/movie.h"
#include "standin/command/process.h"
#include "standin/command/system.h"
#include "standin/image_file.h"

namespace standin {
namespace {

/// What is worth saying about frames that were made in this process.
struct Account {
  Traffic traffic;
  double pluginMilliseconds = 0.0;
};

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
      List(Missing());
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
    const std::size_t shares = Threads();
    std::vector<std::future<void>> looks;
    for (std::size_t share = 0; share < shares; ++share) {
      looks.push_back(std::async(std::launch::async, [this, &whole, share, shares] {
        for (std::size_t place = share; place < frames_.size(); place += shares) {
          const std::string file = FrameFile(options_.output, frames_[place]);
          whole[place] = IsWholePng(file, width_, height_) ? 1 : 0;
        }
      }));
    }
    for (std::future<void>& look : looks) look.get();
    return whole;
  }

  void List(std::vector<int> missing) const {
    std::ranges::sort(missing);
    if (!missing.empty()) {
      console_.err << options_.output << ": missing " << FrameListText(missing) << '\n';
    }
  }

  void Make(const std::vector<int>& frames) {
    const Interrupt interrupt;
    const std::unique_ptr<FrameOutput> output = MakeOutput();
    const bool isWatched = frames.size() > 1 || wishes_.progress == ProgressForm::kJson;
    Progress progress(console_.err, isWatched ? wishes_.progress : ProgressForm::kNone,
                      static_cast<int>(frames.size()));
    const bool isShared = options_.jobs > 1 && frames.size() > 1;
    FrameQueue queue(Threads(), [&](int frame, Picture picture) {
      output->Take(frame, isShared ? std::move(picture)
                                   : wishes_.Finish(std::move(picture), animation_.scene, true));
      progress.Made(frame);
    });
    std::optional<Account> account;
    if (isShared) {
      ShareOut(frames, queue, interrupt);
    } else if (!frames.empty()) {
      account = PlayHere(frames, queue, interrupt);
    }
    queue.Finish();
    if (progress.Count() < static_cast<int>(frames.size())) {
      throw Unfinished(kInterrupted, Farewell(progress.Count(), frames.size()));
    }
    output->Commit();
    progress.End();
    SayMade(progress, account);
  }

  [[nodiscard]] std::unique_ptr<FrameOutput> MakeOutput() const {
    switch (wishes_.kind) {
      case OutputKind::kMovie:
        return std::make_unique<Movie>(options_.output, width_, height_, animation_.rate);
      case OutputKind::kStream:
        return std::make_unique<FrameStream>(console_.out, options_.raw);
      default:
        return std::make_unique<FrameFiles>(options_.output);
    }
  }

  /// Encoders beside the renderer, decoders after it. Only files may be made out of their order.
  [[nodiscard]] std::size_t Threads() const {
    const std::size_t cores = std::max(std::thread::hardware_concurrency(), 1U);
    return MakesFiles() ? cores : 1;
  }

  [[nodiscard]] Account PlayHere(const std::vector<int>& frames, FrameQueue& queue,
                                 const Interrupt& interrupt) const {
    Account account;
    HostedPlugin plugin(options_.scene, console_);
    account.traffic = PlayFrames(
        plugin.TheHost(), animation_, frames, wishes_.play, [&](int frame, PlayedFrame played) {
          account.pluginMilliseconds += played.milliseconds;
          queue.Put(frame,
                    wishes_.Shown(std::move(played.picture), plugin.TheHost(), animation_.scene));
          return !interrupt.Came();
        });
    return account;
  }

  /// Renders in several processes, which send their finished frames here in turn.
  void ShareOut(const std::vector<int>& frames, FrameQueue& queue,
                const Interrupt& interrupt) const {
    const std::size_t count = std::min(static_cast<std::size_t>(options_.jobs), frames.size());
    std::vector<Process> jobs;
    for (std::size_t job = 0; job < count; ++job) {
      jobs.emplace_back(JobCommand(frames, job, count), Process::Pipe::kFromOutput);
    }
    for (std::size_t i = 0; i < frames.size(); ++i) {
      if (interrupt.Came()) {
        return;  // the jobs own no files; they end with this function
      }
      Picture picture(width_, height_);
      if (!jobs[i % count].Read(picture.Bytes(), picture.pixels.size() * sizeof(Rgba))) {
        ExpectGoodEnd(jobs[i % count]);
        throw ProcessError("a job ended before its last frame");
      }
      queue.Put(frames[i], std::move(picture));
    }
    std::ranges::for_each(jobs, ExpectGoodEnd);
  }

  /// This very command for every `count`-th frame, its pixels to standard output.
  [[nodiscard]] std::vector<std::string> JobCommand(const std::vector<int>& frames, std::size_t job,
                                                    std::size_t count) const {
    RenderOptions options = options_;
    std::vector<int> own;
    for (std::size_t i = job; i < frames.size(); i += count) {
      own.push_back(frames[i]);
    }
    options.frames = FrameListText(own);  // short: systems bound the length of an argument
    options.output = "-";
    options.background = wishes_.BackgroundWord();  // the name of a movie is not known to the job
    options.raw = true;
    options.quiet = true;
    options.missing = false;
    options.jobs = 1;
    std::vector<std::string> words = CommandLine(options);
    words.insert(words.begin(), ThisProgram().string());
    return words;
  }

  /// A job that fails has said why itself, unless it was ended from outside or crashed.
  static void ExpectGoodEnd(Process& job) {
    const int code = job.Wait();
    if (code == kWrongInput || code == kPluginFault || code == kNotLoaded) {
      throw Unfinished(code, {});
    }
    if (code != kMade) {
      throw Unfinished(kIncomplete, {"a job of --jobs came to an end of its own (" +
                                     std::to_string(code) + "), before its last frame"});
    }
  }

  [[nodiscard]] std::vector<std::string> Farewell(int made, std::size_t total) const {
    if (!MakesFiles()) {
      return {"interrupted; " + options_.output + " is not complete"};
    }
    RenderOptions rest = options_;
    rest.missing = true;
    std::string command = Quoted(ThisProgram().string());
    for (const std::string& word : CommandLine(rest)) {
      command += " " + Quoted(word);
    }
    return {"interrupted after " + std::to_string(made) + " of " + std::to_string(total) +
                " frames; this goes on:",
            command};
  }

  void SayMade(const Progress& progress, const std::optional<Account>& account) const {
    if (options_.quiet || wishes_.kind == OutputKind::kStream) {
      return;
    }
    if (progress.Count() == 0) {
      console_.out << options_.output << ": no frame is missing\n";
      return;
    }
    std::ostringstream line;
    line << std::fixed << std::setprecision(1) << options_.output << ": " << progress.Count()
         << " frames of " << width_ << "x" << height_ << " in " << progress.Seconds() << " s ("
         << progress.Count() / progress.Seconds() << " a second";
    if (account) {
      line << "; the plug-in alone " << 1000.0 * progress.Count() / account->pluginMilliseconds
           << "), " << account->traffic.messages << " messages, " << account->traffic.images
           << " images";
    } else {
      line << ")";
    }
    console_.out << line.str() << '\n';
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
