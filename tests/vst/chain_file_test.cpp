// SPDX-License-Identifier: GPL-3.0-or-later
#include "vst/chain_file.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>

#include "platform/current_folder.h"
#include "support/failing_file_system.h"
#include "support/temporary_folder.h"
#include "support/test_plugins.h"
#include "vst/byte_fields.h"

namespace plumetta {
namespace {

struct StoredPlugin {
  int32_t position, program, muted;
  std::string path;
  std::vector<float> parameters;
  std::string state;
};

// A file of the current form, written field by field.
std::vector<uint8_t> currentFile(const std::vector<StoredPlugin>& plugins) {
  FieldWriter out;
  out.text("SORF");
  out.little(0x7FFFFFFF);  // nobody reads it
  out.little(1);
  out.little(static_cast<int32_t>(plugins.size()));
  for (const StoredPlugin& plugin : plugins) {
    out.text("VSTx");
    out.little(-1);
    out.little(plugin.position);
    out.little(plugin.program);
    out.little(plugin.muted);
    out.little(static_cast<int32_t>(plugin.parameters.size()));
    out.little(static_cast<int32_t>(plugin.path.size() + 1));
    out.little(static_cast<int32_t>(plugin.state.size()));
    out.text(plugin.path);
    out.zeros(1);
    for (const float value : plugin.parameters) out.little(value);
    out.text(plugin.state);
  }
  return out.content();
}

std::string delayState(int32_t frames) {
  FieldWriter out;
  out.little(frames);
  return {out.content().begin(), out.content().end()};
}

// The old form with one plug-in, "gain" in slot 5 at position 2.
std::vector<uint8_t> oldFile(int32_t strayPosition = -1, uint8_t strayMark = 0, int32_t tableSize = 256) {
  FieldWriter out;
  for (int i = 0; i < 256; ++i) out.little(i == 2 ? 5 : i == 9 ? strayPosition : -1);
  for (int i = 0; i < 256; ++i) out.little(i);  // programs
  out.zeros(256);
  out.little(tableSize);
  for (int i = 0; i < 256; ++i) {
    const uint8_t mark = i == 5 ? 255 : i == 7 ? strayMark : 0;
    out.bytes({&mark, 1});
  }
  out.little(1024);
  out.little(256);
  const std::string folder = folderOf(testPlugin("gain")) + "/";
  const std::string name = fileNameOf(testPlugin("gain"));
  out.text(folder);
  out.zeros(1024 - folder.size());
  out.text(name);
  out.zeros(256 - name.size());
  out.little(77);
  out.little(0);
  out.little(2);  // one parameter more than the plug-in has
  out.little(0.75f);
  out.little(0.5f);
  out.little(0);
  return out.content();
}

TEST(ChainFile, KeepsARackByteForByte) {
  VstHost host;
  Rack rack(host);
  const std::string empty("SORF\x08\0\0\0\x01\0\0\0\0\0\0\0", 16);
  const auto emptyBytes = chainBytes(rack);
  EXPECT_EQ(std::string(emptyBytes.begin(), emptyBytes.end()), empty);
  rack.addAt(1, testPlugin("delay"));
  rack.addAt(4, testPlugin("bank"));
  rack.selectProgram(4, 2);
  rack.setParameter(4, 1, 0.875f);
  rack.setMuted(1, true);
  const auto bytes = chainBytes(rack);
  FieldReader in(bytes);
  int32_t total = 0, record = 0;
  in.seek(4);
  in.little(total);
  EXPECT_EQ(total, static_cast<int32_t>(bytes.size()) - 8);
  in.seek(20);
  in.little(record);
  EXPECT_EQ(record, static_cast<int32_t>(24 + testPlugin("delay").size() + 1 + 4));
  const TemporaryFolder folder;
  ASSERT_FALSE(saveChain(nativeFileSystem(), rack, folder.file("a.sor")));
  Chain chain;
  ASSERT_TRUE(parseChain(bytes, chainFormOf(bytes), chain));
  restoreChain(rack, chain);
  EXPECT_EQ(chainBytes(rack), bytes);
  EXPECT_TRUE(rack.isMuted(1));
  EXPECT_EQ(rack.pluginAt(4)->programName(), "Preset C");
  // Wherever the disk fails, the old file stays.
  const std::string before = bytesOf(folder.file("a.sor"));
  EXPECT_EQ(before, std::string(bytes.begin(), bytes.end()));
  rack.clear();
  FailingFileSystem counting(-1);
  saveChain(counting, rack, folder.file("b.sor"));
  for (int i = 0; i < counting.operations(); ++i) {
    FailingFileSystem failing(i);
    EXPECT_TRUE(saveChain(failing, rack, folder.file("a.sor")));
    EXPECT_EQ(bytesOf(folder.file("a.sor")), before);
  }
  EXPECT_EQ(folder.entries(), 2U);
}

TEST(ChainFile, RestoresWhatCanBeLoaded) {
  VstHost host;
  Rack rack(host);
  const std::string missing = testPlugin("no_such_plugin");
  const std::string server = "//server/share/gain.so";
  const std::string relative =
      std::filesystem::path(testPlugin("gain")).lexically_relative(startFolder()).string();
  const float nothing = std::nanf("");
  const auto bytes = currentFile({{0, 0, 0, missing, {1, 2, 3}, "state"},
                                  {3, 0, 0, testPlugin("delay"), {}, delayState(7)},
                                  {9, 0, 7, testPlugin("gain"), {0.5f, nothing}, ""},
                                  {255, 3, 0, testPlugin("bank"), {0.5f, nothing}, ""},
                                  {4, 0, 0, server, {}, ""},
                                  {5, 0, 0, relative, {}, ""},
                                  {3, 0, 0, testPlugin("gain"), {0.125f}, ""}});
  Chain chain;
  ASSERT_TRUE(parseChain(bytes, chainFormOf(bytes), chain));
  const ChainRestoration restoration = restoreChain(rack, chain);
  EXPECT_EQ(restoration.notLoaded, std::vector{missing});
  EXPECT_EQ(restoration.onNetwork, std::vector{server});
  EXPECT_EQ(rack.pluginAt(3)->parameter(0), 0.125f) << "the later of two for one position counts";
  EXPECT_NE(rack.pluginAt(5), nullptr) << "from where the person is";
  EXPECT_TRUE(rack.isMuted(9));
  EXPECT_EQ(rack.pluginAt(255)->programName(), "Preset D");
  EXPECT_EQ(rack.pluginAt(255)->parameter(1), 0.625f) << "no number leaves what the program has";
  EXPECT_EQ(host.plugin(0), nullptr) << "the earlier one is closed";
}

TEST(ChainFile, ReadsTheOldForm) {
  VstHost host;
  Rack rack(host);
  Chain chain;
  const auto bytes = oldFile();
  ASSERT_EQ(chainFormOf(bytes), ChainForm::old);
  ASSERT_TRUE(parseChain(bytes, ChainForm::old, chain));
  restoreChain(rack, chain);
  EXPECT_EQ(rack.slotAt(2), 5);
  EXPECT_EQ(rack.programOf(5), 5);
  EXPECT_EQ(rack.pluginAt(2)->parameter(0), 0.75f);
}

TEST(ChainFile, RefusesWhatIsDamaged) {
  Chain chain;
  const auto fails = [&](const std::vector<uint8_t>& bytes, ChainForm form) {
    return !parseChain(bytes, form, chain) && chain.empty();
  };
  EXPECT_TRUE(fails(oldFile(-2), ChainForm::old));
  EXPECT_TRUE(fails(oldFile(256), ChainForm::old));
  EXPECT_TRUE(fails(oldFile(-1, 1), ChainForm::old));
  EXPECT_TRUE(fails(oldFile(-1, 255), ChainForm::old)) << "a second record is missing";
  EXPECT_TRUE(fails(oldFile(-1, 0, 255), ChainForm::old));
  for (const int32_t position : {-1, 256}) {
    EXPECT_TRUE(fails(currentFile({{position, 0, 0, "x", {}, ""}}), ChainForm::current));
  }
  // Cut anywhere within a record; at its end the record is merely the last.
  const auto whole = currentFile({{0, 0, 0, "path", {1.0f}, "state"}, {1, 0, 0, "path", {1.0f}, "state"}});
  const size_t recordBytes = (whole.size() - 16) / 2;
  for (size_t length = 0; length < whole.size(); ++length) {
    const std::vector<uint8_t> cut(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(length));
    const bool withinMagic = length >= 16 && (length - 16) % recordBytes < 4;
    EXPECT_EQ(parseChain(cut, ChainForm::current, chain), withinMagic) << length;
  }
  // A length far beyond the file: parameters, path, state.
  for (const size_t field : {36, 40, 44}) {
    auto lying = whole;
    lying[field + 3] = 0x7F;
    EXPECT_TRUE(fails(lying, ChainForm::current)) << field;
    lying[field + 3] = 0xFF;
    EXPECT_TRUE(fails(lying, ChainForm::current)) << field;
  }
  auto later = whole;
  later[8] = 2;
  EXPECT_EQ(chainFormOf(later), ChainForm::later);
}

}  // namespace
}  // namespace plumetta
