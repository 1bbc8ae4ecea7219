// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/asio_system.h"

#include <windows.h>

#include <objbase.h>

#include <cstring>

#include "platform/windows/wide.h"

namespace plumetta {
namespace {

// Of the name of a sub-key with its end; a longer one is passed over.
constexpr DWORD kKeyNameCharacters = 128;

class Key {
 public:
  Key(RegistryRoot root, const std::string& path) {
    HKEY top = root == RegistryRoot::machine ? HKEY_LOCAL_MACHINE : HKEY_CLASSES_ROOT;
    if (RegOpenKeyExW(top, wide(path).c_str(), 0, KEY_READ, &handle_) != ERROR_SUCCESS) handle_ = nullptr;
  }
  ~Key() {
    if (handle_ != nullptr) RegCloseKey(handle_);
  }
  Key(const Key&) = delete;
  Key& operator=(const Key&) = delete;
  HKEY get() const { return handle_; }

 private:
  HKEY handle_ = nullptr;
};

// What is told of a crash of the thread that carries it, if it carries one.
DWORD crashListener() {
  static const DWORD index = TlsAlloc();
  return index;
}

LPTOP_LEVEL_EXCEPTION_FILTER filterBefore = nullptr;

// Asked once nobody has handled an exception: the process would end. A thread that was in a driver stays
// here instead, for there is no way back out of the driver's frames that would leave them whole.
LONG WINAPI keepCrashedThread(EXCEPTION_POINTERS* exception) {
  const auto* ended = static_cast<const std::function<void(bool)>*>(TlsGetValue(crashListener()));
  if (ended == nullptr) return filterBefore != nullptr ? filterBefore(exception) : EXCEPTION_CONTINUE_SEARCH;
  TlsSetValue(crashListener(), nullptr);
  (*ended)(false);
  for (;;) Sleep(INFINITE);
}

class ComAsio : public AsioSystem {
 public:
  std::vector<std::string> subKeys(RegistryRoot root, const std::string& path) override {
    std::vector<std::string> names;
    const Key key(root, path);
    if (key.get() == nullptr) return names;
    for (DWORD i = 0;; ++i) {
      wchar_t name[kKeyNameCharacters];
      DWORD length = kKeyNameCharacters;
      const LSTATUS status = RegEnumKeyExW(key.get(), i, name, &length, nullptr, nullptr, nullptr, nullptr);
      if (status == ERROR_SUCCESS) names.push_back(narrow({name, length}));
      if (status != ERROR_SUCCESS && status != ERROR_MORE_DATA) return names;
    }
  }

  std::optional<std::string> value(RegistryRoot root, const std::string& path,
                                   const std::string& name) override {
    const Key key(root, path);
    if (key.get() == nullptr) return std::nullopt;
    wchar_t text[1024];
    DWORD bytes = sizeof text;
    // Variables of the environment that a text of the expanding kind names are put in.
    const LSTATUS status =
        RegGetValueW(key.get(), nullptr, wide(name).c_str(), RRF_RT_REG_SZ, nullptr, text, &bytes);
    if (status != ERROR_SUCCESS) return std::nullopt;
    return narrow(text);
  }

  bool fileExists(const std::string& path) override {
    wchar_t found[MAX_PATH];
    return SearchPathW(nullptr, wide(path).c_str(), nullptr, MAX_PATH, found, nullptr) != 0;
  }

  // Drivers are made for the thread that creates them.
  void enterThread() noexcept override {
    // Left in place for good: a driver's crash has no other time than its own.
    static const bool once = [] {
      crashListener();
      filterBefore = SetUnhandledExceptionFilter(keepCrashedThread);
      return true;
    }();
    static_cast<void>(once);
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  }
  void leaveThread() noexcept override { CoUninitialize(); }

  void dispatchMessages() override {
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
      TranslateMessage(&message);
      DispatchMessageW(&message);
    }
  }

  int32_t create(const AsioClassId& classId, AsioDriver*& driver) override {
    static_assert(sizeof(CLSID) == sizeof(AsioClassId));
    CLSID native;
    std::memcpy(&native, &classId, sizeof native);
    void* object = nullptr;
    const HRESULT result = livesOnAnyThread(native)
                               ? CoCreateInstance(native, nullptr, CLSCTX_INPROC_SERVER, native, &object)
                               : createDirectly(native, object);
    driver = SUCCEEDED(result) ? static_cast<AsioDriver*>(object) : nullptr;
    return driver != nullptr ? 0 : FAILED(result) ? static_cast<int32_t>(result) : kAsioNotPresent;
  }

  // The desktop's, so that a driver that hangs takes no window of ours along.
  void* windowHandle() noexcept override { return GetDesktopWindow(); }

  void run(const std::function<void()>& work, const std::function<void(bool)>& ended) noexcept override {
    TlsSetValue(crashListener(), const_cast<std::function<void(bool)>*>(&ended));
    bool completed = false;
    try {
      work();
      completed = true;
    } catch (...) {
    }
    TlsSetValue(crashListener(), nullptr);
    ended(completed);
  }

 private:
  std::string serverKey(const CLSID& classId) {
    wchar_t text[40] = L"";
    StringFromGUID2(classId, text, 40);
    return "clsid\\" + narrow(text) + "\\InprocServer32";
  }

  // A class that names no threading model is made on the program's first COM thread, the window's, from where
  // an interface that is its own class can't be brought to another.
  bool livesOnAnyThread(const CLSID& classId) {
    const auto model = value(RegistryRoot::classes, serverKey(classId), "ThreadingModel");
    return model && (lstrcmpiA(model->c_str(), "Apartment") == 0 || lstrcmpiA(model->c_str(), "Both") == 0);
  }

  // What CoCreateInstance would do on the right thread. The library stays.
  HRESULT createDirectly(const CLSID& classId, void*& object) {
    const auto path = value(RegistryRoot::classes, serverKey(classId), "");
    const HMODULE library = path ? LoadLibraryW(wide(*path).c_str()) : nullptr;
    if (library == nullptr) return HRESULT_FROM_WIN32(ERROR_MOD_NOT_FOUND);
    using GetClassObject = HRESULT(WINAPI*)(REFCLSID, REFIID, void**);
    const FARPROC found = GetProcAddress(library, "DllGetClassObject");
    if (found == nullptr) return HRESULT_FROM_WIN32(ERROR_PROC_NOT_FOUND);
    void* factory = nullptr;
    const auto getClassObject = reinterpret_cast<GetClassObject>(reinterpret_cast<void (*)()>(found));
    const HRESULT result = getClassObject(classId, IID_IClassFactory, &factory);
    if (FAILED(result)) return result;
    auto* maker = static_cast<IClassFactory*>(factory);
    const HRESULT made = maker->CreateInstance(nullptr, classId, &object);
    maker->Release();
    return made;
  }
};

}  // namespace

AsioSystem& nativeAsio() {
  static ComAsio system;
  return system;
}

}  // namespace plumetta
