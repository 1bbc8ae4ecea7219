; SPDX-License-Identifier: GPL-3.0-or-later
; The installer for Windows, compiled by tools/package. It is told STAGE, the folder that holds what is to be installed;
; VERSION; OUTPUT, where the installer goes; TYPES, the script that registers types of files; and LISTS, a folder with
; scripts made from these two: remove_files.nsh, own_types.nsh and empty_types.nsh.
;
; For everybody where the person may install for everybody, else (or with /CurrentUser) for the person alone. /S asks
; nothing, /D=FOLDER names the folder. What it makes is what the uninstaller removes: files that the program has
; written since, and settings, stay.
Unicode true
Target amd64-unicode
SetCompressor /SOLID lzma
ManifestDPIAware true
Name Plumetta
OutFile "${OUTPUT}"
BrandingText "Plumetta ${VERSION}"
VIProductVersion "${VERSION}"
VIAddVersionKey ProductName Plumetta
VIAddVersionKey ProductVersion "${VERSION}"
VIAddVersionKey FileVersion "${VERSION}"
VIAddVersionKey FileDescription "Installs the Plumetta audio editor"
VIAddVersionKey LegalCopyright "GPL-3.0-or-later"

!define UNINSTALL_KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\Plumetta"
!define CAPABILITIES "Software\Plumetta\Capabilities"
!define MULTIUSER_EXECUTIONLEVEL Highest
!define MULTIUSER_MUI
!define MULTIUSER_INSTALLMODE_COMMANDLINE
!define MULTIUSER_USE_PROGRAMFILES64
!define MULTIUSER_INSTALLMODE_INSTDIR Plumetta
!define MULTIUSER_INSTALLMODE_INSTDIR_REGISTRY_KEY "${UNINSTALL_KEY}"
!define MULTIUSER_INSTALLMODE_INSTDIR_REGISTRY_VALUENAME InstallLocation
!define MULTIUSER_INSTALLMODE_DEFAULT_REGISTRY_KEY "${UNINSTALL_KEY}"
!define MULTIUSER_INSTALLMODE_DEFAULT_REGISTRY_VALUENAME InstallLocation
!include MultiUser.nsh
!include MUI2.nsh
!include FileFunc.nsh
!include "${TYPES}"

!define MUI_ICON "${ICON}"
!define MUI_UNICON "${ICON}"
!define MUI_FINISHPAGE_RUN "$INSTDIR\plumetta.exe"
!insertmacro MUI_PAGE_LICENSE "${STAGE}\LICENSE.txt"
!insertmacro MULTIUSER_PAGE_INSTALLMODE
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE English

; Has the shell read the types of files anew.
!macro TellShell
  System::Call 'shell32::SHChangeNotify(i 0x08000000, i 0, p 0, p 0)'
!macroend

Function .onInit
  !insertmacro MULTIUSER_INIT
FunctionEnd

Function un.onInit
  !insertmacro MULTIUSER_UNINIT
FunctionEnd

; What an earlier version has installed and this one no longer holds goes with that version; settings stay.
Function RemoveEarlierVersion
  IfFileExists "$INSTDIR\uninstall.exe" 0 done
  ExecWait '"$INSTDIR\uninstall.exe" /S /$MultiUser.InstallMode _?=$INSTDIR'
done:
FunctionEnd

Section
  Call RemoveEarlierVersion
  SetOutPath "$INSTDIR"
  File /r "${STAGE}\*"
  WriteUninstaller "$INSTDIR\uninstall.exe"
  CreateShortcut "$SMPROGRAMS\Plumetta.lnk" "$INSTDIR\plumetta.exe"

  !insertmacro PlumettaRegisterFileTypes
  WriteRegStr SHCTX "${CAPABILITIES}" ApplicationName Plumetta
  WriteRegStr SHCTX "${CAPABILITIES}" ApplicationDescription "Audio editor"
  WriteRegStr SHCTX "Software\RegisteredApplications" Plumetta "${CAPABILITIES}"
  !include "${LISTS}\own_types.nsh"
  !insertmacro TellShell

  WriteRegStr SHCTX "${UNINSTALL_KEY}" DisplayName Plumetta
  WriteRegStr SHCTX "${UNINSTALL_KEY}" DisplayVersion "${VERSION}"
  WriteRegStr SHCTX "${UNINSTALL_KEY}" DisplayIcon "$INSTDIR\plumetta.exe"
  WriteRegStr SHCTX "${UNINSTALL_KEY}" Publisher Plumetta
  WriteRegStr SHCTX "${UNINSTALL_KEY}" InstallLocation "$INSTDIR"
  WriteRegStr SHCTX "${UNINSTALL_KEY}" UninstallString '"$INSTDIR\uninstall.exe" /$MultiUser.InstallMode'
  WriteRegStr SHCTX "${UNINSTALL_KEY}" QuietUninstallString '"$INSTDIR\uninstall.exe" /S /$MultiUser.InstallMode'
  WriteRegDWORD SHCTX "${UNINSTALL_KEY}" NoModify 1
  WriteRegDWORD SHCTX "${UNINSTALL_KEY}" NoRepair 1
  ${GetSize} "$INSTDIR" "/S=0K" $0 $1 $2
  WriteRegDWORD SHCTX "${UNINSTALL_KEY}" EstimatedSize $0
SectionEnd

Section Uninstall
  Delete "$SMPROGRAMS\Plumetta.lnk"
  !insertmacro PlumettaUnregisterFileTypes
  !include "${LISTS}\empty_types.nsh"
  DeleteRegValue SHCTX "Software\RegisteredApplications" Plumetta
  DeleteRegKey SHCTX "${CAPABILITIES}"
  DeleteRegKey /ifnosubkeys /ifnovalues SHCTX "Software\Plumetta"
  DeleteRegKey SHCTX "${UNINSTALL_KEY}"
  !insertmacro TellShell
  Delete "$INSTDIR\uninstall.exe"
  !include "${LISTS}\remove_files.nsh"
  RMDir "$INSTDIR"
SectionEnd
