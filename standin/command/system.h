#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace standin {

/// The words of this program's command line, its own name first, in UTF-8. What `main` gets is that
/// on Linux; on Windows it is in the system's code page, which lacks most letters.
std::vector<std::string> CommandLineWords(int argc, const char* const* argv);

/// This program's own file.
std::filesystem::path ThisProgram();

/// What the plug-in's file is called on this system.
extern const char* const kPluginFile;

/// True iff standard error is a terminal, where a line can be drawn anew.
bool ErrorIsTerminal();

/// A crash of this program ends it, without a window that waits for somebody to close it.
void EndAtOnceOnCrash();

/// Standard output passes every byte on as it is from now on.
void MakeOutputBinary();

/// A word of a command line as it is typed into this system's shell.
std::string Quoted(const std::string& word);

}  // namespace standin
