// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/windows/access.h"

#include <aclapi.h>
#include <sddl.h>

#include <vector>

#include "platform/windows/wide.h"

namespace plumetta {
namespace {

bool keepsAccessLists(const std::wstring& path) {
  std::wstring root(path.size() + MAX_PATH, L'\0');
  DWORD flags = 0;
  return GetVolumePathNameW(path.c_str(), root.data(), static_cast<DWORD>(root.size())) &&
         GetVolumeInformationW(root.c_str(), nullptr, 0, nullptr, nullptr, &flags, nullptr, 0) &&
         (flags & FILE_PERSISTENT_ACLS) != 0;
}

std::error_code takeFolderRules(const std::wstring& path) {
  // An empty list of its own, open to what the folder hands down. The call takes a name that it may write to.
  ACL empty{};
  if (!InitializeAcl(&empty, sizeof empty, ACL_REVISION)) return lastSystemError();
  std::wstring name = path;
  const DWORD code = SetNamedSecurityInfoW(name.data(), SE_FILE_OBJECT,
                                           DACL_SECURITY_INFORMATION | UNPROTECTED_DACL_SECURITY_INFORMATION,
                                           nullptr, nullptr, &empty, nullptr);
  return code == ERROR_SUCCESS ? std::error_code{} : systemError(code);
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
  // The older calls, because they copy a list as it is; the newer ones would work out anew what the folder
  // hands down.
  constexpr SECURITY_INFORMATION kOwnerAndList = OWNER_SECURITY_INFORMATION | DACL_SECURITY_INFORMATION;
  DWORD bytes = 0;
  GetFileSecurityW(model.c_str(), kOwnerAndList, nullptr, 0, &bytes);
  std::vector<char> descriptor(bytes);
  if (!GetFileSecurityW(model.c_str(), kOwnerAndList, descriptor.data(), bytes, &bytes))
    return lastSystemError();
  // Giving a file away is the right of few; the list matters, the owner is kept where it can be.
  SetFileSecurityW(path.c_str(), OWNER_SECURITY_INFORMATION, descriptor.data());
  if (!SetFileSecurityW(path.c_str(), DACL_SECURITY_INFORMATION, descriptor.data())) return lastSystemError();
  return {};
}

}  // namespace plumetta
