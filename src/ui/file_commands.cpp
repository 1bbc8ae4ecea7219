// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/file_commands.h"

#include <wx/filedlg.h>
#include <wx/filename.h>

#include <algorithm>
#include <optional>

#include "core/regions.h"
#include "platform/paths.h"
#include "ui/address_dialog.h"
#include "ui/edit_dialogs.h"
#include "ui/file_filters.h"
#include "ui/mp3_rate_dialog.h"
#include "ui/raw_dialog.h"
#include "ui/save_question.h"
#include "ui/text.h"

namespace plumetta {
namespace {

constexpr const char* kLastOpened = "Last Opened";
constexpr const char* kNoSelection = "Create selection first";

std::string withoutExtension(const std::string& name) {
  const std::string extension = extensionOf(name);
  return extension.empty() ? name : name.substr(0, name.size() - extension.size() - 1);
}

// Whether nothing in the file tells how it is to be read. A file that can't be read at all is none of these.
bool hasNoHeader(FileSystem& files, const std::string& path) {
  if (const Format* format = formatOfContent(files, path)) return format == &rawFormat();
  std::error_code error;
  return files.openForReading(path, error) != nullptr;
}

std::string wavFilter() { return "WAV audio (*.wav)|*.wav"; }

// By another program, or by hand.
constexpr const char* kChangedByOthers =
    "\nThis file has changed on the disk since it was opened or saved here. Do you want to replace it?";

}  // namespace

FileCommands::FileCommands(wxWindow& parent, Application& app, DocumentTabs& tabs, WindowProfile& profile,
                           RecentFiles& recent)
    : parent_(parent), app_(app), tabs_(tabs), profile_(profile), recent_(recent) {}

// ---- Coming ---------------------------------------------------------------------------------------------

void FileCommands::createNew() {
  const auto choice = askNewFile(&parent_, profile_);
  if (!choice) return;
  CPlumettaDoc* doc =
      app_.newDocument(choice->sampleRate, choice->channels, choice->bits, choice->frames, choice->formatTag);
  if (doc == nullptr) {
    app_.prompter().message("There is not enough memory for a file of this length.");
    return;
  }
  if (++untitledCount_ > 1) doc->setTitle(kUntitled + std::string(" ") + std::to_string(untitledCount_));
  tabs_.add(*doc);
}

void FileCommands::pasteAsNew() {
  if (CPlumettaDoc* doc = app_.pasteAsNewDocument()) tabs_.add(*doc);
}

void FileCommands::pasteFromSystem() {
  if (CPlumettaDoc* doc = app_.pasteFromSystemClipboard()) tabs_.add(*doc);
}

std::vector<std::string> FileCommands::askSources(const wxString& title, const std::string& filter) {
  const std::string folder = dialogFolder(app_.files(), app_.settings().files.sampleFolder);
  wxFileDialog dialog(&parent_, title, toWx(folder), wxString(), toWx(filter),
                      wxFD_OPEN | wxFD_FILE_MUST_EXIST | wxFD_MULTIPLE);
  if (dialog.ShowModal() != wxID_OK) return {};
  wxArrayString chosen;
  dialog.GetPaths(chosen);
  std::vector<std::string> paths;
  for (const wxString& path : chosen) paths.push_back(fromWx(path));
  if (!paths.empty()) rememberFolder(folderOf(paths.front()));
  return paths;
}

void FileCommands::open() { openPaths(askSources("Open", openFilter(formatTable()))); }

void FileCommands::openRaw() {
  for (const std::string& path : askSources("Open as raw", "All files|*")) {
    OpenOptions options;
    if (askLayout(absolutePath(path), fileNameOf(path), options)) openOne(absolutePath(path), options);
  }
}

bool FileCommands::askLayout(const std::string& path, const std::string& name, OpenOptions& options) {
  options.raw = askRawLayout(&parent_, app_, path, name, profile_);
  return options.raw.has_value();
}

bool FileCommands::openOne(const std::string& path, const OpenOptions& options) {
  FileOutcome outcome{};
  CPlumettaDoc* doc = app_.openDocument(path, outcome, options);
  if (doc == nullptr) return outcome != FileOutcome::cancelled;  // the document has said why
  stamps_.take(*doc);
  tabs_.add(*doc);
  recent_.add(path);
  return true;
}

void FileCommands::openAddress() {
  const auto address = askAddress(&parent_, profile_);
  FetchedFile fetched;
  if (!address || app_.urlReader().fetch(*address, fetched) != FetchOutcome::done) return;
  OpenOptions options;
  const std::string& path = fetched.file->path();
  if (hasNoHeader(app_.files(), path) && !askLayout(path, fetched.address, options)) return;
  FileOutcome outcome{};
  if (CPlumettaDoc* doc = app_.openFetched(fetched, outcome, options)) tabs_.add(*doc);
}

void FileCommands::openPaths(const std::vector<std::string>& paths) {
  // One progress for all of them.
  const int count = static_cast<int>(paths.size());
  std::optional<ProgressScope> several;
  if (count > 1) several.emplace(app_.prompter(), "Opening " + std::to_string(count) + " files");
  for (int i = 0; i < count; ++i) {
    if (several && !app_.prompter().progressPart(i, count)) return;
    const std::string path = absolutePath(paths[static_cast<size_t>(i)]);
    if (CPlumettaDoc* present = documentOf(path)) {
      tabs_.activate(*present);
      continue;
    }
    OpenOptions options;
    if (hasNoHeader(app_.files(), path) && !askLayout(path, fileNameOf(path), options)) continue;
    if (!openOne(path, options)) return;  // the person has had enough
  }
}

void FileCommands::openRecent(const std::string& path) {
  if (app_.files().kind(path) == FileKind::missing) {
    app_.prompter().message(path + "\nThis file is no longer there.");
    recent_.remove(path);
    return;
  }
  openPaths({path});
}

void FileCommands::storeOpenFiles() {
  std::vector<std::pair<std::string, std::string>> values;
  for (const CPlumettaDoc* doc : tabs_.documents()) {
    if (!isNamed(*doc) || values.size() == static_cast<size_t>(app_.settings().files.reopenedFiles)) continue;
    values.emplace_back("File" + std::to_string(values.size() + 1), doc->wave().fileName());
  }
  values.emplace_back("Count", std::to_string(values.size()));
  const CPlumettaDoc* front = tabs_.active();
  values.emplace_back("Front", front != nullptr ? front->wave().fileName() : "");
  profile_.setTexts(kLastOpened, values);
}

void FileCommands::reopenFiles() {
  const FileSettings& settings = app_.settings().files;
  if (!settings.reopenFiles) return;
  const int count = std::min(profile_.integer(kLastOpened, "Count", 0), settings.reopenedFiles);
  std::vector<std::string> paths;
  for (int i = 1; i <= count; ++i) {
    const std::string path = profile_.text(kLastOpened, "File" + std::to_string(i), "");
    if (app_.files().kind(path) == FileKind::regular) paths.push_back(path);
  }
  openPaths(paths);
  if (CPlumettaDoc* front = documentOf(profile_.text(kLastOpened, "Front", ""))) tabs_.activate(*front);
}

CPlumettaDoc* FileCommands::documentOf(const std::string& path) const {
  const wxFileName wanted(toWx(app_.files().resolveLinks(path)));
  for (const auto& doc : app_.documents()) {
    if (!isNamed(*doc)) continue;
    if (wxFileName(toWx(app_.files().resolveLinks(doc->wave().fileName()))).SameAs(wanted)) return doc.get();
  }
  return nullptr;
}

// ---- Being written --------------------------------------------------------------------------------------

std::string FileCommands::folderFor(const CPlumettaDoc* doc) const {
  if (doc != nullptr && isNamed(*doc)) return folderOf(doc->wave().fileName());
  return dialogFolder(app_.files(), app_.settings().files.sampleFolder);
}

void FileCommands::rememberFolder(const std::string& folder) {
  if (folder == app_.settings().files.sampleFolder || !isStorablePath(folder)) return;
  app_.settings().files.sampleFolder = folder;
  app_.saveSettings();
}

std::string FileCommands::askTarget(const wxString& title, const std::string& name, const std::string& filter,
                                    int filterIndex, const std::vector<std::string>& extensions) {
  // The dialog would ask about the name that it shows, which is not always the one that is written.
  wxFileDialog dialog(&parent_, title, toWx(folderFor(tabs_.active())), toWx(name), toWx(filter), wxFD_SAVE);
  dialog.SetFilterIndex(filterIndex);
  while (dialog.ShowModal() == wxID_OK) {
    std::string path = absolutePath(fromWx(dialog.GetPath()));
    const std::string extension = extensionOf(path);
    // Not every toolkit's dialog changes the proposed name when another kind of file is chosen.
    const bool otherKind = dialog.GetFilterIndex() != filterIndex && extension == extensionOf(name);
    const auto chosen = static_cast<size_t>(std::max(dialog.GetFilterIndex(), 0));
    if ((extension.empty() || otherKind) && chosen < extensions.size()) {
      path = withoutExtension(path) + "." + extensions[chosen];
    }
    if (app_.files().kind(path) == FileKind::missing ||
        app_.prompter().question(path + "\nThis file exists already. Do you want to replace it?")) {
      rememberFolder(folderOf(path));
      return path;
    }
  }
  return {};
}

std::optional<SaveOptions> FileCommands::saveOptionsFor(const std::string& path, bool ask) {
  SaveOptions options;
  const Format* format = writableFormatOfName(path);
  if (format == nullptr || !format->hasBitRate) return options;
  const std::optional<int> bitRate = ask ? askMp3BitRate(&parent_, profile_) : rememberedMp3BitRate(profile_);
  if (!bitRate) return std::nullopt;
  options.bitRateKbits = *bitRate;
  return options;
}

bool FileCommands::save(CPlumettaDoc& doc) {
  const std::string path = doc.wave().fileName();
  if (!isNamed(doc) || writableFormatOfName(path) == nullptr) return saveAs(doc);
  if (stamps_.changed(doc) && !app_.prompter().question(path + kChangedByOthers)) return false;
  return write(doc, path, *saveOptionsFor(path, false));
}

bool FileCommands::saveAs(CPlumettaDoc& doc) {
  const auto writable = writableFormats(formatTable());
  std::vector<std::string> extensions;
  for (const Format* format : writable) extensions.push_back(format->extensions.front());
  std::string name = doc.title();
  if (writableFormatOfName(name) == nullptr) name = withoutExtension(name) + "." + extensions.front();
  const std::string path =
      askTarget("Save as", name, saveFilter(writable), filterIndexOf(writable, name), extensions);
  if (path.empty()) return false;
  if (const CPlumettaDoc* other = documentOf(path); other != nullptr && other != &doc) {
    app_.prompter().message(path + "\nThis file is open in another window.");
    return false;
  }
  const auto options = saveOptionsFor(path, true);
  return options && write(doc, path, *options);
}

bool FileCommands::write(CPlumettaDoc& doc, const std::string& path, const SaveOptions& options) {
  if (doc.save(path, options) != FileOutcome::done) return false;
  stamps_.take(doc);
  recent_.add(path);
  return true;
}

bool FileCommands::saveSelection(CPlumettaDoc& doc) {
  if (!doc.view().hasSelection()) {
    app_.prompter().message(kNoSelection);
    return false;
  }
  const std::string name = withoutExtension(doc.title()) + " selection.wav";
  const std::string path = askTarget("Save selection as", name, wavFilter(), 0, {"wav"});
  if (path.empty()) return false;
  const auto [first, last] = doc.selectionOrPoint();
  return doc.saveRange(first, last, path) == FileOutcome::done;
}

bool FileCommands::split(CPlumettaDoc& doc) {
  const std::string name = withoutExtension(doc.title()) + ".wav";
  const std::string path =
      askTarget(toWx("Split at markers: name of the files, to which _M000, _M001… is added"), name,
                wavFilter(), 0, {"wav"});
  if (path.empty()) return false;
  const std::string prefix = withoutExtension(path);
  const std::string first = prefix + "_M000.wav";
  if (app_.files().kind(first) != FileKind::missing &&
      !app_.prompter().question(
          first + "\nThis file exists already. Do you want to replace the files of this name?")) {
    return false;
  }
  if (doc.split(prefix) != FileOutcome::done) return false;
  const size_t count = regionBoundaries(doc.wave()).size() - 1;
  app_.prompter().status(std::to_string(count) + " files written beside " + fileNameOf(first));
  return true;
}

bool FileCommands::exportText(CPlumettaDoc& doc) {
  const std::string name = withoutExtension(doc.title()) + ".txt";
  const std::string path = askTarget("Export as text", name, "Text (*.txt)|*.txt|All files|*", 0, {"txt"});
  return !path.empty() && doc.exportText(path) == FileOutcome::done;
}

// ---- Going ----------------------------------------------------------------------------------------------

void FileCommands::drop(CPlumettaDoc& doc) {
  stamps_.forget(doc);
  tabs_.remove(doc);
  app_.closeDocument(doc);
}

bool FileCommands::close(CPlumettaDoc& doc) {
  if (doc.modified() && app_.settings().files.askToSave) {
    const auto answer = askToSave(&parent_, doc.title(), false);
    if (answer == SaveAnswer::cancel) return false;
    if (answer == SaveAnswer::save && !save(doc)) return false;
  }
  drop(doc);
  return true;
}

bool FileCommands::closeAll() {
  const auto documents = tabs_.documents();
  auto unsaved = std::ranges::count_if(documents, [](const CPlumettaDoc* doc) { return doc->modified(); });
  bool saveTheRest = false;
  for (CPlumettaDoc* doc : documents) {
    if (!doc->modified() || !app_.settings().files.askToSave) continue;
    tabs_.activate(*doc);
    auto answer = saveTheRest ? SaveAnswer::save : askToSave(&parent_, doc->title(), unsaved-- > 1);
    if (answer == SaveAnswer::cancel) return false;
    saveTheRest = saveTheRest || answer == SaveAnswer::saveAll;
    if (answer != SaveAnswer::discard && !save(*doc)) return false;
  }
  for (CPlumettaDoc* doc : documents) drop(*doc);
  return true;
}

}  // namespace plumetta
