#include "cli/options/output_guard.h"

#include <cstdio>
#include <map>
#include <optional>
#include <tuple>

#include "base/files/input_error.h"
#include "cli/process/system.h"

namespace tarvo {
namespace {

/// A name in a folder, whatever the folder is called.
struct Place {
  FileId folder;
  std::string name;

  bool operator<(const Place& other) const {
    return std::tie(folder, name) < std::tie(other.folder, other.name);
  }
};

/// Where a name leads to. Links that lead nowhere are left as they are: what is read through them
/// is not there, and what is written through them is refused elsewhere.
Place PlaceOf(const std::filesystem::path& name) {
  std::filesystem::path file = name;
  try {
    file = FollowLinks(name);
  } catch (const FileError&) {
    file = name;
  }
  const auto folder = IdOf(file.has_parent_path() ? file.parent_path() : ".");
  return {folder.value_or(FileId{}), ComparableName(file)};
}

/// Files that must stay, each with what it is to the command. A file that is there is known by its
/// identity, which all of its names share; one that is absent by the place where it would be.
class Reserved {
 public:
  void Add(const std::filesystem::path& file, const std::string& what) {
    AddId(IdOf(file), what);
    places_.try_emplace(PlaceOf(file), what);
  }

  void AddId(const std::optional<FileId>& id, const std::string& what) {
    if (id) {
      ids_.try_emplace(*id, what);
    }
  }

  /// What a file to be made would replace; none when it replaces nothing that must stay.
  [[nodiscard]] std::optional<std::string> Find(const std::filesystem::path& file) const {
    if (const auto id = IdOf(file)) {
      const auto found = ids_.find(*id);
      return found == ids_.end() ? std::nullopt : std::optional(found->second);
    }
    const auto found = places_.find(PlaceOf(file));
    return found == places_.end() ? std::nullopt : std::optional(found->second);
  }

 private:
  std::map<FileId, std::string> ids_;
  std::map<Place, std::string> places_;
};

InputError Refusal(const std::string& option, const std::string& name, const std::string& why) {
  const std::vector<std::string> lines = {option + ": " + name + why};
  InputError refusal(lines);
  return refusal;
}

}  // namespace

std::vector<std::filesystem::path> FilesRead(const SceneOptions& options,
                                             std::vector<std::filesystem::path> sceneFiles) {
  sceneFiles.push_back(FilePath(PluginOf(options)).Get());
  return sceneFiles;
}

void ExpectOutputsAreNotInputs(const std::string& option, const std::vector<std::string>& made,
                               const std::vector<std::filesystem::path>& read) {
  Reserved reserved;
  for (const std::filesystem::path& file : read) {
    reserved.Add(file, "a file that was read (" + file.string() + ")");
  }
  reserved.Add(ThisProgram(), "this program");
  for (const std::string program : {"tarvo", "tarvo-check-worker"}) {  // which start one another
    const std::filesystem::path own = ThisProgram();
    reserved.Add(own.parent_path() / (program + own.extension().string()),
                 "the program " + program);
  }
  reserved.AddId(IdOf(stdout), "the file that standard output is redirected to");
  reserved.AddId(IdOf(stderr), "the file that standard error is redirected to");
  std::map<Place, std::string> places;
  for (const std::string& name : made) {
    const std::filesystem::path file = FilePath(name).Get();
    if (const auto what = reserved.Find(file)) {
      throw Refusal(option, name, " would take the place of " + *what);
    }
    if (const auto [other, isNew] = places.try_emplace(PlaceOf(file), name); !isNew) {
      throw Refusal(option, name, " is a link to the same file as " + other->second);
    }
  }
}

}  // namespace tarvo
