#include "cli/manual/man_page.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <iterator>
#include <map>
#include <sstream>
#include <string_view>
#include <vector>

namespace tarvo {
namespace {

const std::map<char, std::string_view> kRoffCharacters = {
    {'\\', "\\e"},  {'-', "\\-"},   {'\'', "\\(aq"}, {'"', "\\(dq"},
    {'`', "\\(ga"}, {'^', "\\(ha"}, {'~', "\\(ti"}};

std::string Bold(const std::string& text) { return "\\fB" + RoffText(text) + "\\fR"; }
std::string Italic(const std::string& text) { return "\\fI" + RoffText(text) + "\\fR"; }

std::string Upper(std::string text) {
  std::ranges::transform(text, text.begin(), [](unsigned char letter) {
    return static_cast<char>(std::toupper(letter));
  });
  return text;
}

std::string WithCapital(const std::string& text) {
  return Upper(text.substr(0, 1)) + text.substr(std::min<std::size_t>(1, text.size()));
}

std::string WithFullStop(const std::string& text) {
  return text.ends_with('.') ? text : text + '.';
}

std::string Section(const std::string& title) { return ".SH " + title + '\n'; }

std::string Quoted(const std::string& text) { return '"' + text + '"'; }

std::string PageTitle(const std::string& page, const std::string& version) {
  // No date: the same source gives the same bytes on every day.
  return ".TH " + Quoted(RoffText(Upper(page))) + " 1 " + Quoted("") + ' ' +
         Quoted(RoffText(version)) + ' ' + Quoted("User Commands") + "\n.ad l\n.nh\n";
}

/// A section's title where a paragraph of the notes begins one; none for the description.
std::string_view SectionOf(std::string_view line) {
  if (line.starts_with("Example")) {
    return "EXAMPLES";
  }
  return line.starts_with("Exit codes:") ? "EXIT STATUS" : "DESCRIPTION";
}

std::string Example(const std::string& paragraph) {
  std::istringstream lines(paragraph);
  std::string line;
  std::getline(lines, line);  // "Examples:"
  std::string text = ".nf\n";
  while (std::getline(lines, line)) {
    text += RoffText(line.substr(std::min(line.find_first_not_of(' '), line.size()))) + '\n';
  }
  return text + ".fi\n";
}

std::string Paragraph(std::string paragraph) {
  std::ranges::replace(paragraph, '\n', ' ');
  return RoffText(paragraph) + '\n';
}

/// "0 made; 1 two pictures differ" as a list: a code and what it means.
std::string ExitCodes(std::string paragraph) {
  std::ranges::replace(paragraph, '\n', ' ');
  std::istringstream codes(paragraph.substr(std::string_view("Exit codes:").size()));
  std::string text;
  for (std::string item; std::getline(codes >> std::ws, item, ';');) {
    const std::size_t space = std::min(item.find(' '), item.size());
    text += ".TP\n" + Bold(item.substr(0, space)) + '\n' +
            RoffText(WithFullStop(WithCapital(item.substr(std::min(space + 1, item.size()))))) +
            '\n';
  }
  return text;
}

std::vector<std::string> ParagraphsOf(const std::string& notes) {
  std::vector<std::string> paragraphs;
  std::size_t begin = 0;
  while (begin < notes.size()) {
    const std::size_t end = std::min(notes.find("\n\n", begin), notes.size());
    paragraphs.push_back(notes.substr(begin, end - begin));
    begin = end + 2;
  }
  return paragraphs;
}

/// Those paragraphs of the notes that belong to a section, set as it needs.
std::string NotesOf(const CommandEntry& command, std::string_view section) {
  std::string text;
  for (const std::string& paragraph : ParagraphsOf(command.notes)) {
    if (SectionOf(paragraph) != section) {
      continue;
    }
    text += section == "EXAMPLES"      ? Example(paragraph)
            : section == "EXIT STATUS" ? ExitCodes(paragraph)
                                       : ".PP\n" + Paragraph(paragraph);
  }
  return text;
}

std::string NamesWithValue(const OptionEntry& option) {
  std::vector<std::string> names;
  std::ranges::transform(option.names, std::back_inserter(names), Bold);
  return Join(names, ", ") + (option.value.empty() ? "" : ' ' + Italic(option.value));
}

/// "INT in [1 - 64]", as CLI11 describes a range, in words.
std::string LimitSentence(const std::string& limits) {
  const std::size_t from = limits.find(" in [");
  const std::size_t to = limits.find(" - ");
  if (from == std::string::npos || to == std::string::npos) {
    return "The value must be " + limits + '.';
  }
  constexpr std::size_t kBefore = 5;
  constexpr std::size_t kBetween = 3;
  const std::string low = limits.substr(from + kBefore, to - from - kBefore);
  const std::string high = limits.substr(to + kBetween, limits.find(']') - to - kBetween);
  return "From " + low + " to " + high + '.';
}

/// What --help says of an option, in sentences.
std::string Sentences(const OptionEntry& option) {
  std::vector<std::string> sentences = {WithFullStop(option.description)};
  if (option.isRequired && !option.isOperand) {
    sentences.emplace_back("Required.");
  }
  if (!option.limits.empty()) {
    sentences.push_back(LimitSentence(option.limits));
  }
  if (!option.standardValue.empty()) {
    sentences.push_back("Default: " + option.standardValue + '.');
  }
  if (!option.excludes.empty()) {
    sentences.push_back("Not together with " + Join(option.excludes, " or ") + '.');
  }
  return RoffText(Join(sentences, " ")) + '\n';
}

std::string Item(const std::string& tag, const std::string& text) {
  return ".TP\n" + tag + '\n' + text;
}

std::string OperandTag(const OptionEntry& operand) {
  return operand.isRequired ? Italic(operand.value) : '[' + Italic(operand.value) + ']';
}

std::string OperandsSection(const CommandEntry& command) {
  std::string text;
  for (const OptionEntry& operand : Operands(command)) {
    text += Item(Italic(operand.value), Sentences(operand));
  }
  return text.empty() ? "" : Section("ARGUMENTS") + text;
}

std::string OptionsSection(const CommandEntry& command) {
  std::string text = Section("OPTIONS");
  for (const OptionEntry& option : NamedOptions(command)) {
    text += Item(NamesWithValue(option), Sentences(option));
  }
  return text;
}

std::string Synopsis(const std::string& name, const CommandEntry& command) {
  std::string text = Section("SYNOPSIS") + Bold(name) + " [" + Italic("options") + ']';
  for (const OptionEntry& option : NamedOptions(command)) {
    if (option.isRequired) {
      text += ' ' + Bold(option.names.front()) + ' ' + Italic(option.value);
    }
  }
  for (const OptionEntry& operand : Operands(command)) {
    text += ' ' + OperandTag(operand);
  }
  return text + '\n';
}

std::string NameSection(const std::string& page, const std::string& description) {
  std::string line = description.substr(0, description.find_last_not_of('.') + 1);
  if (!line.empty()) {  // in lists of pages the line follows the page's name
    line[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(line[0])));
  }
  return Section("NAME") + RoffText(page) + " \\- " + RoffText(line) + '\n';
}

std::string PageReference(const std::string& page) { return Bold(page) + "(1)"; }

std::string NotesSection(const CommandEntry& command, const std::string& section) {
  const std::string text = NotesOf(command, section);
  return text.empty() ? "" : Section(section) + text;
}

std::string CommandsSection(const CommandEntry& program) {
  std::string text = Section("COMMANDS");
  for (const CommandEntry& command : program.commands) {
    text += Item(PageReference(program.name + '-' + command.name),
                 RoffText(WithFullStop(command.description)) + '\n');
  }
  return text;
}

/// The pages of the program and of all its commands but one.
std::string SeeAlso(const CommandEntry& program, const std::string& own) {
  std::vector<std::string> pages;
  if (!own.empty()) {
    pages.push_back(PageReference(program.name));
  }
  for (const CommandEntry& command : program.commands) {
    if (command.name != own) {
      pages.push_back(PageReference(program.name + '-' + command.name));
    }
  }
  return Section("SEE ALSO") + Join(pages, ",\n") + '\n';
}

}  // namespace

std::string RoffText(const std::string& text) {
  std::string roff;
  if (text.starts_with('.')) {
    roff = "\\&";  // at the beginning of a line it would be a request
  }
  for (const char character : text) {
    const auto found = kRoffCharacters.find(character);
    roff += found == kRoffCharacters.end() ? std::string(1, character) : std::string(found->second);
  }
  return roff;
}

std::string ProgramPage(const CommandEntry& program, const std::string& version) {
  return PageTitle(program.name, version) + NameSection(program.name, program.description) +
         Section("SYNOPSIS") + Bold(program.name) + ' ' + Italic("command") + " [" +
         Italic("options") + "]\n" + NotesSection(program, "DESCRIPTION") +
         CommandsSection(program) + OptionsSection(program) + NotesSection(program, "EXIT STATUS") +
         NotesSection(program, "EXAMPLES") + SeeAlso(program, "");
}

std::string CommandPage(const CommandEntry& program, const CommandEntry& command,
                        const std::string& version) {
  const std::string page = program.name + '-' + command.name;
  const std::string exitStatus = NotesSection(command, "EXIT STATUS");
  return PageTitle(page, version) + NameSection(page, command.description) +
         Synopsis(program.name + ' ' + command.name, command) +
         NotesSection(command, "DESCRIPTION") + OperandsSection(command) + OptionsSection(command) +
         (exitStatus.empty()
              ? Section("EXIT STATUS") + "The exit codes of all commands are listed in\n" +
                    PageReference(program.name) + ".\n"
              : exitStatus) +
         NotesSection(command, "EXAMPLES") + SeeAlso(program, command.name);
}

}  // namespace tarvo
