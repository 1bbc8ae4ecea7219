// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/child_process.h"

#include <windows.h>

#include <algorithm>
#include <array>

#include "platform/windows/wide.h"

namespace plumetta {
namespace {

// How long to sleep between two looks at the pipe, which can't be waited for.
constexpr DWORD kLookMilliseconds = 2;

// An argument as the start code of C programs takes it apart again.
std::wstring quoted(const std::wstring& argument) {
  std::wstring text = L"\"";
  size_t backslashes = 0;
  for (const wchar_t c : argument) {
    if (c == L'"') text.append(backslashes + 1, L'\\');
    backslashes = c == L'\\' ? backslashes + 1 : 0;
    text += c;
  }
  return text.append(backslashes, L'\\') + L"\"";
}

// A job whose processes end when its last handle goes, which is when this process does.
HANDLE makeJob() {
  const HANDLE job = CreateJobObjectW(nullptr, nullptr);
  JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
  limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
  SetInformationJobObject(job, JobObjectExtendedLimitInformation, &limits, sizeof limits);
  return job;
}

void closeHandle(HANDLE& handle) {
  if (handle != nullptr) CloseHandle(handle);
  handle = nullptr;
}

// The handles that a child inherits are these three and no others, whatever else is being started.
class InheritedHandles {
 public:
  explicit InheritedHandles(HANDLE output) {
    SECURITY_ATTRIBUTES inheritable{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
    nothing_ = CreateFileW(L"NUL", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                           &inheritable, OPEN_EXISTING, 0, nullptr);
    handles_ = {output, nothing_};
    SIZE_T bytes = 0;
    InitializeProcThreadAttributeList(nullptr, 1, 0, &bytes);
    memory_.resize(bytes);
    list_ = reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(memory_.data());
    if (InitializeProcThreadAttributeList(list_, 1, 0, &bytes) == 0) list_ = nullptr;
    if (list_ != nullptr) {
      UpdateProcThreadAttribute(list_, 0, PROC_THREAD_ATTRIBUTE_HANDLE_LIST, handles_.data(), sizeof handles_,
                                nullptr, nullptr);
    }
    startup.StartupInfo.cb = sizeof startup;
    startup.StartupInfo.dwFlags = STARTF_USESTDHANDLES;
    startup.StartupInfo.hStdInput = nothing_;
    startup.StartupInfo.hStdOutput = output;
    startup.StartupInfo.hStdError = nothing_;
    startup.lpAttributeList = list_;
  }
  ~InheritedHandles() {
    if (list_ != nullptr) DeleteProcThreadAttributeList(list_);
    if (nothing_ != INVALID_HANDLE_VALUE) CloseHandle(nothing_);
  }
  InheritedHandles(const InheritedHandles&) = delete;
  InheritedHandles& operator=(const InheritedHandles&) = delete;

  STARTUPINFOEXW startup{};

 private:
  HANDLE nothing_;
  std::array<HANDLE, 2> handles_;
  std::vector<unsigned char> memory_;
  LPPROC_THREAD_ATTRIBUTE_LIST list_;
};

}  // namespace

struct ChildProcess::System {
  HANDLE process = nullptr;
  HANDLE job = nullptr;
  HANDLE output = nullptr;
};

std::string ownExecutable() {
  std::wstring path(32768, L'\0');
  path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
  return narrow(path);
}

ChildProcess::ChildProcess() : system_(std::make_unique<System>()) {}
ChildProcess::~ChildProcess() { kill(); }

bool ChildProcess::start(const std::string& executable, const std::vector<std::string>& arguments) {
  kill();
  SECURITY_ATTRIBUTES inheritable{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
  HANDLE writeEnd = nullptr;
  if (CreatePipe(&system_->output, &writeEnd, &inheritable, 0) == 0) return false;
  SetHandleInformation(system_->output, HANDLE_FLAG_INHERIT, 0);
  std::wstring line = quoted(wide(executable));
  for (const std::string& argument : arguments) line += L" " + quoted(wide(argument));
  PROCESS_INFORMATION process{};
  BOOL started = FALSE;
  {
    InheritedHandles inherited(writeEnd);
    started = CreateProcessW(wide(executable).c_str(), line.data(), nullptr, nullptr, TRUE,
                             CREATE_NO_WINDOW | CREATE_SUSPENDED | EXTENDED_STARTUPINFO_PRESENT, nullptr,
                             nullptr, &inherited.startup.StartupInfo, &process);
  }
  closeHandle(writeEnd);
  if (started == 0) {
    kill();
    return false;
  }
  system_->process = process.hProcess;
  system_->job = makeJob();
  AssignProcessToJobObject(system_->job, process.hProcess);
  ResumeThread(process.hThread);
  CloseHandle(process.hThread);
  return true;
}

ChildProcess::Reading ChildProcess::read(std::string& output, std::chrono::milliseconds longest) {
  using Clock = std::chrono::steady_clock;
  const auto end = Clock::now() + longest;
  std::array<char, 4096> part;
  while (system_->output != nullptr) {
    // Before the look at the pipe: what it has written until it ended is there then.
    const bool ended = WaitForSingleObject(system_->process, 0) == WAIT_OBJECT_0;
    DWORD waiting = 0;
    if (PeekNamedPipe(system_->output, nullptr, 0, nullptr, &waiting, nullptr) == 0) return Reading::ended;
    if (waiting > 0) {
      DWORD bytes = 0;
      const auto wanted = std::min<DWORD>(waiting, part.size());
      if (ReadFile(system_->output, part.data(), wanted, &bytes, nullptr) == 0) return Reading::ended;
      output.append(part.data(), bytes);
      return Reading::some;
    }
    if (ended) return Reading::ended;
    if (Clock::now() >= end) return Reading::nothing;
    WaitForSingleObject(system_->process, kLookMilliseconds);
  }
  return Reading::ended;
}

void ChildProcess::kill() {
  if (system_->process != nullptr) {
    if (system_->job != nullptr) TerminateJobObject(system_->job, 1);
    TerminateProcess(system_->process, 1);
    WaitForSingleObject(system_->process, 5000);
  }
  closeHandle(system_->process);
  closeHandle(system_->job);
  closeHandle(system_->output);
}

void settleAsChild() {
  SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
}

}  // namespace plumetta
