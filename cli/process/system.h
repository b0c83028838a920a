#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace tarvo {

/// The arguments of this program, its own name first, in UTF-8. What `main` gets is that
/// on Linux; on Windows it is in the system's code page, which lacks most letters.
std::vector<std::string> CommandLineWords(int argc, const char* const* argv);

/// This program's own file.
std::filesystem::path ThisProgram();

/// What the plug-in's file is called on this system.
extern const char* const kPluginFile;

/// True iff standard error is a terminal, where a line can be drawn anew.
bool ErrorIsTerminal();

/// To be called before any file is opened: a standard stream that was closed stays without an
/// output instead of becoming whatever is opened next, a file beyond the size that the user may
/// write is a failure to write, and the ends of started programs are reported.
void PrepareProcess();

/// A crash of this program ends it, without a dialog that must be closed.
void EndAtOnceOnCrash();

/// Ends this program as this signal would have ended it without a handler. For a signal's handler,
/// which returns after it.
void EndBySignal(int signal);

/// Standard output passes every byte on as it is from now on.
void MakeOutputBinary();

/// A word of a command line as it is typed into this system's shell.
std::string Quoted(const std::string& word);

}  // namespace tarvo
