; The installer: copies the archive's folder, registers the libraries, and takes all of it away again.
; makensis -DVERSION=0.1.0 -DFOLDER=… -DINSTALLER=… scripts/installer.nsi; see scripts/package-windows.
Unicode true
SetCompressor /SOLID lzma
!define NAME TessarLornPickingAndDelivery
!define UNINSTALL "Software\Microsoft\Windows\CurrentVersion\Uninstall\${NAME}"
; /AllUsers or /CurrentUser; otherwise for the machine, where the caller may.
!define MULTIUSER_EXECUTIONLEVEL Highest
!define MULTIUSER_INSTALLMODE_COMMANDLINE
!define MULTIUSER_INSTALLMODE_INSTDIR "${NAME}"
!define MULTIUSER_USE_PROGRAMFILES64
!include LogicLib.nsh
!include MultiUser.nsh
!include x64.nsh

Name "${NAME} ${VERSION}"
OutFile "${INSTALLER}"
Page directory
Page instfiles
UninstPage uninstConfirm
UninstPage instfiles

Function .onInit
  ; What /D= has said, which the macro forgets.
  StrCpy $0 $INSTDIR
  !insertmacro MULTIUSER_INIT
  ${If} $0 != ""
    StrCpy $INSTDIR $0
  ${EndIf}
FunctionEnd

Function un.onInit
  !insertmacro MULTIUSER_UNINIT
  ; For whom it was installed, whatever the caller says.
  ReadRegStr $0 HKCU "${UNINSTALL}" UninstallString
  ${If} $0 == '"$INSTDIR\uninstall.exe" /CurrentUser'
    Call un.MultiUser.InstallMode.CurrentUser
  ${EndIf}
FunctionEnd

; What takes the installed files away.
!tempfile FILES
!system `./installer-files "${FOLDER}" >"${FILES}"` = 0

; An installer has 32 bits: $SYSDIR is the folder of those programs, Sysnative that of the machine's own.
!macro CallLibraries words
  StrCpy $1 0
  StrCpy $2 "${words}"
  ${If} $MultiUser.InstallMode == CurrentUser
    ; An administrator, too, may install for one user.
    StrCpy $2 "${words} /n /i:user"
  ${EndIf}
  ExecWait '"$SYSDIR\regsvr32.exe" /s $2 "$INSTDIR\x86\${NAME}.dll"' $0
  IntOp $1 $1 | $0
  ${If} ${RunningX64}
    ExecWait '"$WINDIR\Sysnative\regsvr32.exe" /s $2 "$INSTDIR\x64\${NAME}.dll"' $0
    IntOp $1 $1 | $0
  ${EndIf}
!macroend

Section
  SetOutPath $INSTDIR
  File /r "${FOLDER}/*"
  WriteUninstaller "$INSTDIR\uninstall.exe"
  WriteRegStr SHCTX "${UNINSTALL}" DisplayName "${NAME}"
  WriteRegStr SHCTX "${UNINSTALL}" DisplayVersion "${VERSION}"
  WriteRegStr SHCTX "${UNINSTALL}" UninstallString '"$INSTDIR\uninstall.exe" /$MultiUser.InstallMode'
  !insertmacro CallLibraries ""
  ${If} $1 <> 0
    SetErrorLevel 3
    Abort "A library could not be registered."
  ${EndIf}
SectionEnd

Section Uninstall
  !insertmacro CallLibraries "/u"
  ; Whatever else stands in the folder stays.
  !include "${FILES}"
  !delfile "${FILES}"
  Delete "$INSTDIR\uninstall.exe"
  SetOutPath $TEMP
  RMDir "$INSTDIR"
  DeleteRegKey SHCTX "${UNINSTALL}"
SectionEnd
