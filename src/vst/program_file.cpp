// SPDX-License-Identifier: GPL-3.0-or-later
#include "vst/program_file.h"

#include <array>
#include <cmath>
#include <limits>

#include "platform/replace_file.h"
#include "vst/byte_fields.h"
#include "vst/chain_file.h"

namespace plumetta {
namespace {

constexpr std::string_view kMagic = "CcnK";
constexpr std::string_view kProgramOfParameters = "FxCk";
constexpr std::string_view kProgramOfState = "FPCh";
constexpr std::string_view kBankOfPrograms = "FxBk";
constexpr std::string_view kBankOfState = "FBCh";
constexpr int32_t kVersion = 1;
constexpr size_t kLengthBytes = 8;  // the magic and the byte count, which it does not count
constexpr size_t kNameBytes = 28;
constexpr size_t kProgramHeadBytes = 56;
constexpr size_t kBankReservedBytes = 128;
constexpr size_t kBankHeadBytes = 156;
// More than any plug-in writes where it should keep to 24.
constexpr size_t kNameRoom = 1024;

// What both kinds of file begin with.
struct Head {
  std::string_view form;
  int32_t uniqueId = 0;
  int32_t count = 0;  // of parameters, or of programs
};

// Up to the unique ID, which decides whether the rest is read.
bool readHead(FieldReader& in, Head& head) {
  int32_t ignored = 0;
  if (in.magic() != kMagic || !in.big(ignored)) return false;
  head.form = in.magic();
  return in.big(ignored) && in.big(head.uniqueId);
}

bool readCount(FieldReader& in, Head& head) {
  int32_t vendorVersion = 0;
  return in.big(vendorVersion) && in.big(head.count);
}

void writeHead(FieldWriter& out, const VstPlugin& plugin, size_t fileBytes, std::string_view form,
               int32_t count) {
  out.text(kMagic);
  out.big(static_cast<int32_t>(fileBytes - kLengthBytes));
  out.text(form);
  out.big(kVersion);
  out.big(plugin.uniqueId());
  out.big(plugin.vendorVersion());
  out.big(count);
}

// Hands over a block of state behind its size. False when the file ends before the block does.
bool readState(FieldReader& in, VstPlugin& plugin, bool ofProgram) {
  int32_t bytes = 0;
  std::span<const uint8_t> state;
  if (!in.big(bytes) || bytes < 0 || !in.take(static_cast<size_t>(bytes), state)) return false;
  plugin.setChunk(state, ofProgram);
  return true;
}

void readParameters(FieldReader& in, VstPlugin& plugin) {
  float value = 0;
  for (int i = 0; i < plugin.parameterCount() && in.big(value); ++i) {
    if (std::isfinite(value)) plugin.setParameter(i, value);
  }
}

// One program from where the reader stands. False when it is none of this plug-in's, or damaged; the reader
// then stands where that showed.
bool readProgram(FieldReader& in, VstPlugin& plugin) {
  Head head;
  std::string name;
  if (!readHead(in, head) || head.uniqueId != plugin.uniqueId() || !readCount(in, head)) return false;
  if (!in.text(kNameBytes, name)) return false;
  const size_t content = in.position();
  if (head.form == kProgramOfState) {
    // Looked at before anything of the plug-in changes.
    int32_t bytes = 0;
    if (!in.big(bytes) || bytes < 0 || static_cast<size_t>(bytes) > in.remaining()) return false;
    in.seek(content);
  }
  plugin.dispatch(effSetProgramName, 0, 0, name.data());
  if (head.form == kProgramOfState) return readState(in, plugin, true);
  if (head.form == kProgramOfParameters) readParameters(in, plugin);
  return true;
}

size_t programFileBytes(const VstPlugin& plugin) {
  return kProgramHeadBytes + sizeof(float) * static_cast<size_t>(plugin.parameterCount());
}

void writeProgram(FieldWriter& out, const VstPlugin& plugin) {
  writeHead(out, plugin, programFileBytes(plugin), kProgramOfParameters, plugin.parameterCount());
  std::array<char, kNameRoom> name{};
  plugin.dispatch(effGetProgramName, 0, 0, name.data());
  std::fill(std::find(name.begin(), name.end(), '\0'), name.end(), '\0');
  out.text({name.data(), kNameBytes});
  for (int i = 0; i < plugin.parameterCount(); ++i) out.big(plugin.parameter(i));
}

template <class Load>
ProgramLoad loadFile(FileSystem& files, const std::string& path, Load load) {
  std::error_code error;
  const std::string content = readWholeFile(files, path, kLargestPluginFile, error);
  if (error) return ProgramLoad::unreadable;
  return load(std::span(reinterpret_cast<const uint8_t*>(content.data()), content.size()));
}

}  // namespace

ProgramLoad loadProgram(VstPlugin& plugin, std::span<const uint8_t> content) {
  FieldReader in(content);
  return readProgram(in, plugin) ? ProgramLoad::loaded : ProgramLoad::foreign;
}

ProgramLoad loadProgram(FileSystem& files, VstPlugin& plugin, const std::string& path) {
  return loadFile(files, path,
                  [&](std::span<const uint8_t> content) { return loadProgram(plugin, content); });
}

std::vector<uint8_t> programBytes(const VstPlugin& plugin) {
  FieldWriter out;
  writeProgram(out, plugin);
  return out.content();
}

std::error_code saveProgram(FileSystem& files, const VstPlugin& plugin, const std::string& path) {
  return replaceFile(files, path, SyncToDisk::yes, programBytes(plugin));
}

ProgramLoad loadBank(VstPlugin& plugin, std::span<const uint8_t> content) {
  FieldReader in(content);
  Head head;
  if (!readHead(in, head)) return ProgramLoad::foreign;
  if (head.uniqueId != plugin.uniqueId()) return ProgramLoad::wrongIdentifier;
  if (!readCount(in, head)) return ProgramLoad::foreign;
  if (head.count != plugin.programCount()) return ProgramLoad::wrongProgramNumber;
  in.seek(kBankHeadBytes);
  if (head.form == kBankOfState) {
    return readState(in, plugin, false) ? ProgramLoad::loaded : ProgramLoad::foreign;
  }
  if (head.form != kBankOfPrograms) return ProgramLoad::loaded;
  for (int program = 0; program < head.count; ++program) {
    plugin.selectProgram(program);
    readProgram(in, plugin);  // whatever comes of it, the others are tried
  }
  return ProgramLoad::loaded;
}

ProgramLoad loadBank(FileSystem& files, VstPlugin& plugin, const std::string& path) {
  return loadFile(files, path, [&](std::span<const uint8_t> content) { return loadBank(plugin, content); });
}

std::vector<uint8_t> bankBytes(const VstPlugin& plugin) {
  FieldWriter out;
  const int count = plugin.programCount();
  const size_t bytes = kBankHeadBytes + static_cast<size_t>(count) * programFileBytes(plugin);
  if (bytes > static_cast<size_t>(std::numeric_limits<int32_t>::max())) return {};
  writeHead(out, plugin, bytes, kBankOfPrograms, count);
  out.zeros(kBankReservedBytes);
  for (int program = 0; program < count; ++program) {
    plugin.selectProgram(program);
    writeProgram(out, plugin);
  }
  return out.content();
}

std::error_code saveBank(FileSystem& files, const VstPlugin& plugin, const std::string& path) {
  const std::vector<uint8_t> bytes = bankBytes(plugin);
  if (bytes.empty()) return std::make_error_code(std::errc::file_too_large);
  return replaceFile(files, path, SyncToDisk::yes, bytes);
}

}  // namespace plumetta
