#include "cli/frames/progress.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iomanip>
#include <ostream>
#include <sstream>

#include <nlohmann/json.hpp>

namespace tarvo {
namespace {

constexpr std::chrono::seconds kBetweenLines(5);

double Rounded(double number) { return std::round(number * 100.0) / 100.0; }

}  // namespace

Progress::Progress(std::ostream& stream, ProgressForm form, int total)
    : stream_(stream), form_(form), total_(total) {}

void Progress::End() {
  const std::lock_guard lock(mutex_);
  if (form_ == ProgressForm::kBar && made_ > 0) {
    stream_ << std::endl;
  }
  form_ = ProgressForm::kNone;
}

void Progress::Made(int frame) {
  const std::lock_guard lock(mutex_);
  ++made_;
  switch (form_) {
    case ProgressForm::kNone:
      return;
    case ProgressForm::kBar:
      // The spaces wipe out what a longer text left.
      stream_ << '\r' << Bar() << ' ' << Words() << "    " << std::flush;
      return;
    case ProgressForm::kLines:
      if (Clock::now() - lastLine_ >= kBetweenLines) {
        lastLine_ = Clock::now();
        stream_ << Words() << std::endl;
      }
      return;
    case ProgressForm::kJson:
      stream_ << Json(frame) << std::endl;
      return;
  }
}

double Progress::Seconds() const {
  return std::chrono::duration<double>(Clock::now() - start_).count();
}

double Progress::Rate() const { return made_ / std::max(Seconds(), 1e-6); }

double Progress::SecondsLeft() const { return (total_ - made_) / Rate(); }

std::string Progress::Words() const {
  std::ostringstream words;
  words << made_ << '/' << total_ << " frames, " << std::fixed << std::setprecision(1) << Rate()
        << " a second, " << std::setprecision(0) << SecondsLeft() << " s left";
  return words.str();
}

std::string Progress::Bar() const {
  constexpr int kWidth = 30;
  const auto filled = static_cast<std::size_t>(kWidth * made_ / total_);
  return "[" + std::string(filled, '#') + std::string(kWidth - filled, '-') + "]";
}

std::string Progress::Json(int frame) const {
  return nlohmann::ordered_json{{"frame", frame},
                                {"done", made_},
                                {"of", total_},
                                {"seconds", Rounded(Seconds())},
                                {"rate", Rounded(Rate())},
                                {"left", Rounded(SecondsLeft())}}
      .dump();
}

}  // namespace tarvo
