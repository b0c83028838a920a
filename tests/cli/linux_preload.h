#pragma once

#include <string>

/// What is written before a command so that functions of the system fail in it as
/// linux_fault_preload.cpp says.
std::string Preload(const std::string& variable, const std::string& value);
