// SPDX-License-Identifier: GPL-3.0-or-later
#include "vst/program_file.h"

#include <gtest/gtest.h>

#include "support/test_plugins.h"
#include "vst/byte_fields.h"
#include "vst/vst_host.h"

namespace plumetta {
namespace {

constexpr int32_t kBankId = 0x5074426B;  // "PtBk", four programs of three parameters
constexpr int32_t kDelayId = 0x5074446C;

struct ProgramFields {
  std::string form = "FxCk";
  int32_t id = kBankId;
  int32_t count = 3;
  std::string name = "Loaded";
  std::vector<float> values{0.5f, 0.25f, 0.75f};
};

void write(FieldWriter& out, const ProgramFields& fields) {
  out.text("CcnK");
  out.big(static_cast<int32_t>(48 + 4 * fields.values.size()));
  out.text(fields.form);
  out.big(1);
  out.big(fields.id);
  out.big(7);
  out.big(fields.count);
  out.text(fields.name);
  out.zeros(28 - fields.name.size());
  for (const float value : fields.values) out.big(value);
}

std::vector<uint8_t> programFile(const ProgramFields& fields) {
  FieldWriter out;
  write(out, fields);
  return out.content();
}

std::vector<uint8_t> bankHead(const std::string& form, int32_t id, int32_t programs) {
  FieldWriter out;
  out.text("CcnK");
  out.big(0);
  out.text(form);
  out.big(1);
  out.big(id);
  out.big(7);
  out.big(programs);
  out.zeros(128);
  return out.content();
}

// The delay's state of one integer behind a head.
std::vector<uint8_t> withState(std::vector<uint8_t> head, int32_t claimedBytes, int32_t frames) {
  FieldWriter out;
  out.bytes(head);
  out.big(claimedBytes);
  out.little(frames);
  return out.content();
}

int32_t framesOf(const VstPlugin& delay) {
  int32_t frames = 0;
  std::memcpy(&frames, delay.chunk(true).data(), sizeof frames);
  return frames;
}

std::vector<float> valuesOf(const VstPlugin& plugin) {
  return {plugin.parameter(0), plugin.parameter(1), plugin.parameter(2)};
}

class ProgramFile : public testing::Test {
 protected:
  VstHost host;
  VstPlugin& bank = *host.plugin(host.open(testPlugin("bank")));
  VstPlugin& delay = *host.plugin(host.open(testPlugin("delay")));
};

TEST_F(ProgramFile, WritesThePublishedLayout) {
  bank.selectProgram(1);
  EXPECT_EQ(programBytes(bank), programFile({.name = "Preset B", .values = {0.125f, 0.375f, 0.625f}}));
  EXPECT_EQ(programBytes(bank).size(), 68U);
  // Also for one that keeps its state in chunks.
  EXPECT_EQ(programBytes(delay),
            programFile({.id = kDelayId, .count = 0, .name = "Program 0", .values = {}}));
  const auto bytes = bankBytes(bank);
  ASSERT_EQ(bytes.size(), 156U + 4 * 68);
  FieldWriter expected;
  auto head = bankHead("FxBk", kBankId, 4);
  head[6] = (bytes.size() - 8) >> 8;
  head[7] = (bytes.size() - 8) & 255;
  expected.bytes(head);
  for (int p = 0; p < 4; ++p) {
    bank.selectProgram(p);
    expected.bytes(programBytes(bank));
  }
  EXPECT_EQ(bytes, expected.content());
  EXPECT_EQ(bank.dispatch(effGetProgram), 3);
}

TEST_F(ProgramFile, LoadsPrograms) {
  EXPECT_EQ(loadProgram(bank, programFile({.values = {0.5f, 0.25f, 0.75f, 0.9f}})), ProgramLoad::loaded);
  EXPECT_EQ(valuesOf(bank), (std::vector{0.5f, 0.25f, 0.75f}));
  EXPECT_EQ(bank.programName(), "Loaded");
  // What the file has not got stays as it was.
  EXPECT_EQ(loadProgram(bank, programFile({.count = 3, .values = {0.125f}})), ProgramLoad::loaded);
  EXPECT_EQ(valuesOf(bank), (std::vector{0.125f, 0.25f, 0.75f}));
  EXPECT_EQ(loadProgram(bank, programFile({.form = "FxXx", .name = "Other"})), ProgramLoad::loaded);
  EXPECT_EQ(bank.programName(), "Other");
  EXPECT_EQ(loadProgram(bank, programFile({.id = kDelayId, .name = "No"})), ProgramLoad::foreign);
  auto cut = programFile({.name = "No"});
  cut.resize(55);
  EXPECT_EQ(loadProgram(bank, cut), ProgramLoad::foreign);
  EXPECT_EQ(bank.programName(), "Other");
  const auto head = programFile({.form = "FPCh", .id = kDelayId, .values = {}});
  EXPECT_EQ(loadProgram(delay, withState(head, 4, 321)), ProgramLoad::loaded);
  for (const int32_t claimed : {5, -1, 0x7FFFFFFF}) {
    EXPECT_EQ(loadProgram(delay, withState(head, claimed, 99)), ProgramLoad::foreign);
  }
  EXPECT_EQ(framesOf(delay), 321);
}

TEST_F(ProgramFile, LoadsBanks) {
  FieldWriter file;
  file.bytes(bankHead("FxBk", kBankId, 4));
  write(file, {.name = "One", .values = {0, 0, 0}});
  // A record that is too long puts those behind it off: they are not found, and stay as they were.
  write(file, {.name = "Two", .values = {1, 1, 1, 1}});
  write(file, {.name = "Three", .values = {0, 0, 0}});
  EXPECT_EQ(loadBank(bank, file.content()), ProgramLoad::loaded);
  std::vector<std::string> names;
  for (int p = 0; p < 4; ++p) names.push_back(bank.programName(p));
  EXPECT_EQ(names, (std::vector<std::string>{"One", "Two", "Preset C", "Three"}));
  EXPECT_EQ(loadBank(bank, bankHead("FxBk", kDelayId, 4)), ProgramLoad::wrongIdentifier);
  EXPECT_EQ(loadBank(bank, bankHead("FxBk", kBankId, 3)), ProgramLoad::wrongProgramNumber);
  EXPECT_EQ(loadBank(bank, programFile({})), ProgramLoad::wrongProgramNumber);
  const std::vector<uint8_t> nothing;
  EXPECT_EQ(loadBank(bank, nothing), ProgramLoad::foreign);
  const auto head = bankHead("FBCh", kDelayId, 1);
  EXPECT_EQ(loadBank(delay, withState(head, 4, 55)), ProgramLoad::loaded);
  EXPECT_EQ(loadBank(delay, withState(head, 8, 66)), ProgramLoad::foreign);
  EXPECT_EQ(framesOf(delay), 55);
}

}  // namespace
}  // namespace plumetta
