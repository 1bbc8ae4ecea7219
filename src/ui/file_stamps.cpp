// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/file_stamps.h"

#include <wx/filename.h>

#include "ui/text.h"

namespace plumetta {

std::optional<FileStamps::Stamp> FileStamps::stampOf(const std::string& path) {
  const wxFileName file(toWx(path));
  wxDateTime time;
  if (!file.FileExists() || !file.GetTimes(nullptr, &time, nullptr)) return std::nullopt;
  return Stamp{time.GetTicks(), file.GetSize().GetValue()};
}

void FileStamps::take(const CPlumettaDoc& doc) {
  const std::optional<Stamp> stamp = stampOf(doc.wave().fileName());
  stamp ? static_cast<void>(stamps_.insert_or_assign(&doc, *stamp)) : forget(doc);
}

bool FileStamps::changed(const CPlumettaDoc& doc) const {
  const auto before = stamps_.find(&doc);
  if (before == stamps_.end()) return false;
  const std::optional<Stamp> now = stampOf(doc.wave().fileName());
  return now && *now != before->second;
}

}  // namespace plumetta
