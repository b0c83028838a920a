#include <array>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>
#include <window_system.h>
// It needs what the one above declares.
#include <tlhelp32.h>

#include "check/support/rig.h"
#include "standin/host/host.h"

/// \file
/// What hosts and the Explorer read from the plug-in's file without calling it.

namespace {

struct Property {
  std::string vendor;
  std::string key;
  std::uint32_t id;
  std::string data;  ///< with its padding

  bool operator==(const Property&) const = default;
};

void PrintTo(const Property& property, std::ostream* out) {
  *out << property.vendor << " " << property.key << " " << property.id << " "
       << ::testing::PrintToString(property.data);
}

struct Table {
  std::uint16_t head;
  std::uint32_t version;
  std::uint32_t count;
  std::vector<Property> properties;  ///< to the end of the resource, whatever the count says
};

class TableReader {
 public:
  explicit TableReader(std::string_view bytes) : rest_(bytes) {}

  Table Read() {
    Table table{Number<std::uint16_t>(), Number<std::uint32_t>(), Number<std::uint32_t>(), {}};
    while (!rest_.empty()) {
      table.properties.push_back(ReadProperty());
    }
    return table;
  }

 private:
  Property ReadProperty() {
    Property property{Code(), Code(), Number<std::uint32_t>(), ""};
    property.data = Take(Number<std::uint32_t>());
    return property;
  }
  std::string Take(std::size_t size) {
    if (size > rest_.size()) {
      throw std::out_of_range("a property reaches beyond the resource");
    }
    const std::string taken(rest_.substr(0, size));
    rest_.remove_prefix(size);
    return taken;
  }
  std::string Code() {
    const std::string stored = Take(4);
    return {stored.rbegin(), stored.rend()};
  }
  template <typename Value>
  Value Number() {
    Value value{};
    std::memcpy(&value, Take(sizeof value).data(), sizeof value);
    return value;
  }

  std::string_view rest_;
};

std::string FourBytes(std::uint32_t value) {
  std::string bytes(sizeof value, '\0');
  std::memcpy(bytes.data(), &value, sizeof value);
  return bytes;
}

std::string TwoHalves(std::uint16_t first, std::uint16_t second) {
  return FourBytes(first | static_cast<std::uint32_t>(second) << 16U);
}

std::string Padded(std::string text) {
  text.resize((text.size() + 3) / 4 * 4);
  return text;
}

std::string Pascal(const std::string& text) {
  return Padded(static_cast<char>(text.size()) + text);
}

HMODULE Module() {
  check::PluginUnderCheck();  // loaded from now on
  return GetModuleHandleA("Tarvo_overlaps_manager.aex");
}

std::filesystem::path FileOf(HMODULE module) {
  std::array<wchar_t, MAX_PATH> path{};
  GetModuleFileNameW(module, path.data(), path.size());
  return path.data();
}

std::string_view Registration() {
  const HRSRC found =
      FindResourceExA(Module(), "PIPL", MAKEINTRESOURCEA(16000), MAKELANGID(LANG_ENGLISH, 1));
  if (found == nullptr) {
    throw std::runtime_error("no resource PIPL 16000 in language 1033");
  }
  const auto* bytes = static_cast<const char*>(LockResource(LoadResource(Module(), found)));
  return {bytes, SizeofResource(Module(), found)};
}

TEST(RegistrationTest, AgreesWithWhatThePluginReports) {
  const Table table = TableReader(Registration()).Read();
  check::TestRig rig(check::PluginUnderCheck());
  const auto reported = [](auto value) { return FourBytes(static_cast<std::uint32_t>(value)); };
  const auto property = [](const char* key, const std::string& data) {
    return Property{"8BIM", key, 0, data};
  };

  EXPECT_EQ(table.head, 1U);
  EXPECT_EQ(table.version, 0U);
  EXPECT_EQ(table.count, table.properties.size());
  EXPECT_EQ(table.properties, (std::vector{
                                  property("kind", "TKFe"),
                                  property("name", Pascal("Tarvo_overlaps_manager")),
                                  property("catg", Pascal("QEZ")),
                                  property("8664", Padded("EntryPointFunc")),
                                  property("ePVR", TwoHalves(2, 0)),
                                  property("eSVR", TwoHalves(13, 7)),
                                  property("eVER", reported(rig.host.PluginVersion())),
                                  property("eINF", FourBytes(0)),
                                  property("eGLO", reported(rig.host.OutFlags())),
                                  property("eGL2", reported(rig.host.OutFlags2())),
                                  property("aeFL", FourBytes(8)),
                                  property("eMNA", Pascal("QEZ_Tarvo_renderer")),
                              }));
  check::EndHostInOrder(rig.host);
}

/// Threads of this process.
int CountThreads() {
  const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
  THREADENTRY32 thread{};
  thread.dwSize = sizeof thread;
  int count = 0;
  for (BOOL more = Thread32First(snapshot, &thread); more; more = Thread32Next(snapshot, &thread)) {
    if (thread.th32OwnerProcessID == GetCurrentProcessId()) {
      ++count;
    }
  }
  CloseHandle(snapshot);
  return count;
}

/// A library that starts threads while it is loaded may lock up its host.
TEST(RegistrationTest, LoadingTheFileStartsNoThread) {
  const auto copy = std::filesystem::temp_directory_path() / "loaded_once_more.aex";
  std::filesystem::copy_file(FileOf(Module()), copy,
                             std::filesystem::copy_options::overwrite_existing);
  const int before = CountThreads();
  EXPECT_GT(before, 0);
  const HMODULE loaded = LoadLibraryW(copy.c_str());
  EXPECT_NE(loaded, nullptr);
  EXPECT_EQ(CountThreads(), before);
  FreeLibrary(loaded);
  std::filesystem::remove(copy);
}

TEST(RegistrationTest, TheFileCarriesTheVersionOfTheRelease) {
  const std::filesystem::path path = FileOf(Module());
  std::vector<char> block(GetFileVersionInfoSizeW(path.c_str(), nullptr));
  ASSERT_TRUE(GetFileVersionInfoW(path.c_str(), 0, static_cast<DWORD>(block.size()), block.data()));
  const auto query = [&](const wchar_t* what) {
    void* found = nullptr;
    UINT size = 0;
    VerQueryValueW(block.data(), what, &found, &size);
    return found;
  };
  const auto* text = static_cast<const wchar_t*>(query(L"\\StringFileInfo\\040904B0\\FileVersion"));
  ASSERT_NE(text, nullptr);
  EXPECT_EQ(std::filesystem::path(text).string(), TARVO_VERSION);
  const auto* fixed = static_cast<const VS_FIXEDFILEINFO*>(query(L"\\"));
  ASSERT_NE(fixed, nullptr);
  const std::string numbers = std::to_string(HIWORD(fixed->dwFileVersionMS)) + "." +
                              std::to_string(LOWORD(fixed->dwFileVersionMS)) + "." +
                              std::to_string(HIWORD(fixed->dwFileVersionLS));
  EXPECT_EQ(numbers, TARVO_VERSION);
}

}  // namespace
