// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/windows/access.h"

#include <aclapi.h>
#include <sddl.h>

#include "platform/windows/wide.h"

namespace plumetta {
namespace {

constexpr SECURITY_INFORMATION kKept = DACL_SECURITY_INFORMATION | UNPROTECTED_DACL_SECURITY_INFORMATION;

bool keepsAccessLists(const std::wstring& path) {
  std::wstring root(path.size() + MAX_PATH, L'\0');
  DWORD flags = 0;
  return GetVolumePathNameW(path.c_str(), root.data(), static_cast<DWORD>(root.size())) &&
         GetVolumeInformationW(root.c_str(), nullptr, 0, nullptr, nullptr, &flags, nullptr, 0) &&
         (flags & FILE_PERSISTENT_ACLS) != 0;
}

std::error_code setAccess(const std::wstring& path, SECURITY_INFORMATION what, PSID owner, PACL list) {
  // The system's function takes a name that it may write to.
  std::wstring name = path;
  const DWORD code = SetNamedSecurityInfoW(name.data(), SE_FILE_OBJECT, what, owner, nullptr, list, nullptr);
  return code == ERROR_SUCCESS ? std::error_code{} : systemError(code);
}

std::error_code takeFolderRules(const std::wstring& path) {
  // An empty list of its own, open to what the folder hands down.
  ACL empty{};
  if (!InitializeAcl(&empty, sizeof empty, ACL_REVISION)) return lastSystemError();
  return setAccess(path, kKept, nullptr, &empty);
}

// The account that this process runs under, as access rules spell it; empty when the system doesn't tell.
std::wstring userName() {
  HANDLE token = nullptr;
  if (!OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token)) return {};
  alignas(TOKEN_USER) char user[sizeof(TOKEN_USER) + SECURITY_MAX_SID_SIZE];
  DWORD bytes = 0;
  wchar_t* text = nullptr;
  const bool known = GetTokenInformation(token, TokenUser, user, sizeof user, &bytes) &&
                     ConvertSidToStringSidW(reinterpret_cast<TOKEN_USER*>(user)->User.Sid, &text);
  CloseHandle(token);
  const std::unique_ptr<void, LocalDeleter> held(text);
  return known ? std::wstring(text) : std::wstring();
}

}  // namespace

std::unique_ptr<void, LocalDeleter> ownerOnlyDescriptor() {
  const std::wstring user = userName();
  PSECURITY_DESCRIPTOR descriptor = nullptr;
  if (!user.empty()) {
    // Protected from the folder's rules (P); everything that can be done with files (FA) for one account.
    const std::wstring rules = L"D:P(A;;FA;;;" + user + L")";
    ConvertStringSecurityDescriptorToSecurityDescriptorW(rules.c_str(), SDDL_REVISION_1, &descriptor,
                                                         nullptr);
  }
  return std::unique_ptr<void, LocalDeleter>(descriptor);
}

std::error_code copyAccess(const std::wstring& path, const std::wstring& model) {
  if (!keepsAccessLists(path)) return {};
  if (GetFileAttributesW(model.c_str()) == INVALID_FILE_ATTRIBUTES) return takeFolderRules(path);
  PSECURITY_DESCRIPTOR descriptor = nullptr;
  PSID owner = nullptr;
  PACL list = nullptr;
  const DWORD code = GetNamedSecurityInfoW(model.c_str(), SE_FILE_OBJECT,
                                           DACL_SECURITY_INFORMATION | OWNER_SECURITY_INFORMATION, &owner,
                                           nullptr, &list, nullptr, &descriptor);
  const std::unique_ptr<void, LocalDeleter> held(descriptor);
  if (code != ERROR_SUCCESS) return systemError(code);
  SECURITY_DESCRIPTOR_CONTROL control = 0;
  DWORD revision = 0;
  if (!GetSecurityDescriptorControl(descriptor, &control, &revision)) return lastSystemError();
  // Giving a file away is the right of few; the list matters, the owner is kept where it can be.
  setAccess(path, OWNER_SECURITY_INFORMATION, owner, nullptr);
  const bool closed = (control & SE_DACL_PROTECTED) != 0;
  return setAccess(path, closed ? DACL_SECURITY_INFORMATION | PROTECTED_DACL_SECURITY_INFORMATION : kKept,
                   nullptr, list);
}

}  // namespace plumetta
