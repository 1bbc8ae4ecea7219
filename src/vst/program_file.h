// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <system_error>
#include <vector>

#include "platform/file_system.h"
#include "vst/vst_plugin.h"

namespace plumetta {

// The published files of a plug-in's programs: one (".fxp"), or the whole bank (".fxb"). Both are big-endian
// and written in the form of parameters; the form of opaque state is read as well.

inline constexpr const char* kUnableToSaveProgram = "Unable to save fxp file";
inline constexpr const char* kUnableToSaveBank = "Unable to save fxb file";
inline constexpr const char* kWrongIdentifier = "Wrong identifier";
inline constexpr const char* kWrongProgramNumber = "Wrong program number";

enum class ProgramLoad {
  loaded,
  unreadable,       // the disk's fault, or no memory
  foreign,          // no such file, damaged, or (of a program) another plug-in's: refused without a message
  wrongIdentifier,  // a bank of another plug-in
  wrongProgramNumber,  // a bank with more or fewer programs
};

// Sets the plug-in's selected program. Parameters that the file has not got stay as they are.
ProgramLoad loadProgram(VstPlugin& plugin, std::span<const uint8_t> content);
ProgramLoad loadProgram(FileSystem& files, VstPlugin& plugin, const std::string& path);
std::vector<uint8_t> programBytes(const VstPlugin& plugin);
std::error_code saveProgram(FileSystem& files, const VstPlugin& plugin, const std::string& path);

// Loading from parameters, and saving, leave the last program selected.
ProgramLoad loadBank(VstPlugin& plugin, std::span<const uint8_t> content);
ProgramLoad loadBank(FileSystem& files, VstPlugin& plugin, const std::string& path);
std::vector<uint8_t> bankBytes(const VstPlugin& plugin);
std::error_code saveBank(FileSystem& files, const VstPlugin& plugin, const std::string& path);

}  // namespace plumetta
