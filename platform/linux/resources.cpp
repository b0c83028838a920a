#include <bit>
#include <chrono>

#include <window_system.h>

// A number in place of a name, as for every resource of the system's own.
const LPCSTR IDC_ARROW = std::bit_cast<LPCSTR>(std::uintptr_t{32512});

namespace {

constexpr std::uintptr_t kArrowCursor = 0x10000;
constexpr std::uintptr_t kFirstStockObject = 0x10100;
constexpr int kLastStockObject = 19;
constexpr int kStockObjectGap = 9;

}  // namespace

void GetSystemTime(SYSTEMTIME* time) {
  using std::chrono::days, std::chrono::milliseconds;
  const auto now = std::chrono::floor<milliseconds>(std::chrono::system_clock::now());
  const auto today = std::chrono::floor<days>(now);
  const std::chrono::year_month_day date(today);
  const std::chrono::hh_mm_ss clock(now - today);
  const auto word = [](auto number) { return static_cast<WORD>(number); };

  time->wYear = word(static_cast<int>(date.year()));
  time->wMonth = word(static_cast<unsigned>(date.month()));
  time->wDayOfWeek = word(std::chrono::weekday(today).c_encoding());
  time->wDay = word(static_cast<unsigned>(date.day()));
  time->wHour = word(clock.hours().count());
  time->wMinute = word(clock.minutes().count());
  time->wSecond = word(clock.seconds().count());
  time->wMilliseconds = word(clock.subseconds().count());
}

HCURSOR LoadCursorA(HINSTANCE module, LPCSTR name) {
  if (module != nullptr || name != IDC_ARROW) {
    return nullptr;
  }
  return std::bit_cast<HCURSOR>(kArrowCursor);
}

HGDIOBJ GetStockObject(int number) {
  if (number < 0 || number > kLastStockObject || number == kStockObjectGap) {
    return nullptr;
  }
  return std::bit_cast<HGDIOBJ>(kFirstStockObject + static_cast<std::uintptr_t>(number));
}

LRESULT CALLBACK DefWindowProcA(HWND /*window*/, UINT /*message*/, WPARAM /*wParam*/,
                                LPARAM /*lParam*/) {
  return 0;
}
