#include <array>
#include <cstdio>

#include <fcntl.h>
#include <io.h>
#include <shellapi.h>
#include <windows.h>

#include "cli/process/system.h"

namespace tarvo {

const char* const kPluginFile = "Tarvo_overlaps_manager.aex";

std::vector<std::string> CommandLineWords(int /*argc*/, const char* const* /*argv*/) {
  int count = 0;
  wchar_t** const wide = CommandLineToArgvW(GetCommandLineW(), &count);
  std::vector<std::string> words;
  for (int i = 0; i < count; ++i) {
    words.push_back(std::filesystem::path(wide[i]).string());  // UTF-8, as the C++ library has it
  }
  LocalFree(static_cast<HLOCAL>(wide));
  SetConsoleOutputCP(CP_UTF8);
  return words;
}

std::filesystem::path ThisProgram() {
  std::array<wchar_t, 32'768> program{};
  GetModuleFileNameW(nullptr, program.data(), static_cast<DWORD>(program.size()));
  return program.data();
}

bool ErrorIsTerminal() { return _isatty(_fileno(stderr)) != 0; }

void PrepareProcess() {}  // none of it happens here

void EndAtOnceOnCrash() {
  SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX);
  SetUnhandledExceptionFilter([](EXCEPTION_POINTERS* fault) -> LONG {
    TerminateProcess(GetCurrentProcess(), fault->ExceptionRecord->ExceptionCode);
    return EXCEPTION_EXECUTE_HANDLER;
  });
}

void EndBySignal(int /*signal*/) {
  constexpr UINT kControlC =
      0xC000'013A;  // STATUS_CONTROL_C_EXIT: what the usual handler ends with
  TerminateProcess(GetCurrentProcess(), kControlC);
}

void MakeOutputBinary() { _setmode(_fileno(stdout), _O_BINARY); }

std::string Quoted(const std::string& word) {
  if (!word.empty() && word.find_first_of(" \t\"&|<>^()") == std::string::npos) {
    return word;
  }
  // The rules by which programs split their command line: backslashes count only before a quote.
  std::string quoted = "\"";
  std::size_t backslashes = 0;
  for (const char letter : word) {
    if (letter == '"') {
      quoted.append(backslashes + 1, '\\');
    }
    backslashes = letter == '\\' ? backslashes + 1 : 0;
    quoted += letter;
  }
  return quoted.append(backslashes, '\\') + "\"";
}

}  // namespace tarvo
