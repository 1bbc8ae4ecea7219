// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "app/application.h"
#include "ui/document_tabs.h"
#include "ui/file_stamps.h"
#include "ui/recent_files.h"
#include "ui/window_profile.h"

namespace plumetta {

// The File menu's work: documents come, are written, and go, and nothing unsaved goes without a question.
class FileCommands {
 public:
  FileCommands(wxWindow& parent, Application& app, DocumentTabs& tabs, WindowProfile& profile,
               RecentFiles& recent);

  void createNew();
  // The clipboard buffer, or what another program has copied, as a document of its own.
  void pasteAsNew();
  void pasteFromSystem();
  void open();
  // The same for files without a header, whatever is in them: asks how the samples stand in each.
  void openRaw();
  // From an address that the person gives.
  void openAddress();
  // Opens each, asking about those that have no header; a file that is open already comes to the front, and
  // one that fails doesn't stop the others.
  void openPaths(const std::vector<std::string>& paths);
  // Keeps which files are open for the next start, and opens those of the last one that are still there.
  void storeOpenFiles();
  void reopenFiles();
  // Opens a file of the list of recent ones, or takes it off the list when it is gone.
  void openRecent(const std::string& path);

  // Each of these gives true when the file was written.
  bool save(CPlumettaDoc& doc);
  bool saveAs(CPlumettaDoc& doc);
  bool saveSelection(CPlumettaDoc& doc);
  bool split(CPlumettaDoc& doc);
  bool exportText(CPlumettaDoc& doc);

  // False when the document stays: the person cancelled or the save failed.
  bool close(CPlumettaDoc& doc);
  // Asks for all that is unsaved, then closes all or nothing.
  bool closeAll();

 private:
  // Empty when the person cancelled. A name without extension, or with the proposed
  // one where another filter was chosen, gets that of the filter.
  std::string askTarget(const wxString& title, const std::string& name, const std::string& filter,
                        int filterIndex, const std::vector<std::string>& extensions);
  // How a file of this name is written: as it was chosen last or, with `ask`, as the person chooses now.
  // Nothing when the person cancelled.
  std::optional<SaveOptions> saveOptionsFor(const std::string& path, bool ask);
  std::vector<std::string> askSources(const wxString& title, const std::string& filter);
  // `name` is shown. False when the person cancelled.
  bool askLayout(const std::string& path, const std::string& name, OpenOptions& options);
  // False when the person cancelled.
  bool openOne(const std::string& path, const OpenOptions& options);
  CPlumettaDoc* documentOf(const std::string& path) const;
  // Where a dialog that writes begins.
  std::string folderFor(const CPlumettaDoc* doc) const;
  void rememberFolder(const std::string& folder);
  bool write(CPlumettaDoc& doc, const std::string& path, const SaveOptions& options);
  void drop(CPlumettaDoc& doc);

  wxWindow& parent_;
  Application& app_;
  DocumentTabs& tabs_;
  WindowProfile& profile_;
  RecentFiles& recent_;
  FileStamps stamps_;
  int untitledCount_ = 0;
};

}  // namespace plumetta
