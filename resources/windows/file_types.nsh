; SPDX-License-Identifier: GPL-3.0-or-later

!macro PlumettaRegisterFileTypes
  WriteRegStr SHCTX "Software\Classes\Plumetta.wav" "" "WAV audio"
  WriteRegStr SHCTX "Software\Classes\Plumetta.wav\DefaultIcon" "" "$INSTDIR\plumetta.exe,0"
  WriteRegStr SHCTX "Software\Classes\Plumetta.wav\shell\open\command" "" '"$INSTDIR\plumetta.exe" "%1"'
  WriteRegStr SHCTX "Software\Classes\.wav\OpenWithProgids" "Plumetta.wav" ""
  WriteRegStr SHCTX "Software\Classes\.wave\OpenWithProgids" "Plumetta.wav" ""
  WriteRegStr SHCTX "Software\Classes\Plumetta.rf64" "" "RF64 audio"
  WriteRegStr SHCTX "Software\Classes\Plumetta.rf64\DefaultIcon" "" "$INSTDIR\plumetta.exe,0"
  WriteRegStr SHCTX "Software\Classes\Plumetta.rf64\shell\open\command" "" '"$INSTDIR\plumetta.exe" "%1"'
  WriteRegStr SHCTX "Software\Classes\.rf64\OpenWithProgids" "Plumetta.rf64" ""
  WriteRegStr SHCTX "Software\Classes\Plumetta.aiff" "" "AIFF audio"
  WriteRegStr SHCTX "Software\Classes\Plumetta.aiff\DefaultIcon" "" "$INSTDIR\plumetta.exe,0"
  WriteRegStr SHCTX "Software\Classes\Plumetta.aiff\shell\open\command" "" '"$INSTDIR\plumetta.exe" "%1"'
  WriteRegStr SHCTX "Software\Classes\.aiff\OpenWithProgids" "Plumetta.aiff" ""
  WriteRegStr SHCTX "Software\Classes\.aif\OpenWithProgids" "Plumetta.aiff" ""
  WriteRegStr SHCTX "Software\Classes\.aifc\OpenWithProgids" "Plumetta.aiff" ""
  WriteRegStr SHCTX "Software\Classes\Plumetta.iff" "" "Amiga IFF audio"
  WriteRegStr SHCTX "Software\Classes\Plumetta.iff\DefaultIcon" "" "$INSTDIR\plumetta.exe,0"
  WriteRegStr SHCTX "Software\Classes\Plumetta.iff\shell\open\command" "" '"$INSTDIR\plumetta.exe" "%1"'
  WriteRegStr SHCTX "Software\Classes\.iff\OpenWithProgids" "Plumetta.iff" ""
  WriteRegStr SHCTX "Software\Classes\.8svx\OpenWithProgids" "Plumetta.iff" ""
  WriteRegStr SHCTX "Software\Classes\.16sv\OpenWithProgids" "Plumetta.iff" ""
  WriteRegStr SHCTX "Software\Classes\.svx\OpenWithProgids" "Plumetta.iff" ""
  WriteRegStr SHCTX "Software\Classes\Plumetta.au" "" "Sun/NeXT audio"
  WriteRegStr SHCTX "Software\Classes\Plumetta.au\DefaultIcon" "" "$INSTDIR\plumetta.exe,0"
  WriteRegStr SHCTX "Software\Classes\Plumetta.au\shell\open\command" "" '"$INSTDIR\plumetta.exe" "%1"'
  WriteRegStr SHCTX "Software\Classes\.au\OpenWithProgids" "Plumetta.au" ""
  WriteRegStr SHCTX "Software\Classes\.snd\OpenWithProgids" "Plumetta.au" ""
  WriteRegStr SHCTX "Software\Classes\Plumetta.voc" "" "Creative VOC audio"
  WriteRegStr SHCTX "Software\Classes\Plumetta.voc\DefaultIcon" "" "$INSTDIR\plumetta.exe,0"
  WriteRegStr SHCTX "Software\Classes\Plumetta.voc\shell\open\command" "" '"$INSTDIR\plumetta.exe" "%1"'
  WriteRegStr SHCTX "Software\Classes\.voc\OpenWithProgids" "Plumetta.voc" ""
  WriteRegStr SHCTX "Software\Classes\Plumetta.caf" "" "CAF audio"
  WriteRegStr SHCTX "Software\Classes\Plumetta.caf\DefaultIcon" "" "$INSTDIR\plumetta.exe,0"
  WriteRegStr SHCTX "Software\Classes\Plumetta.caf\shell\open\command" "" '"$INSTDIR\plumetta.exe" "%1"'
  WriteRegStr SHCTX "Software\Classes\.caf\OpenWithProgids" "Plumetta.caf" ""
  WriteRegStr SHCTX "Software\Classes\Plumetta.w64" "" "Wave64 audio"
  WriteRegStr SHCTX "Software\Classes\Plumetta.w64\DefaultIcon" "" "$INSTDIR\plumetta.exe,0"
  WriteRegStr SHCTX "Software\Classes\Plumetta.w64\shell\open\command" "" '"$INSTDIR\plumetta.exe" "%1"'
  WriteRegStr SHCTX "Software\Classes\.w64\OpenWithProgids" "Plumetta.w64" ""
  WriteRegStr SHCTX "Software\Classes\Plumetta.flac" "" "FLAC audio"
  WriteRegStr SHCTX "Software\Classes\Plumetta.flac\DefaultIcon" "" "$INSTDIR\plumetta.exe,0"
  WriteRegStr SHCTX "Software\Classes\Plumetta.flac\shell\open\command" "" '"$INSTDIR\plumetta.exe" "%1"'
  WriteRegStr SHCTX "Software\Classes\.flac\OpenWithProgids" "Plumetta.flac" ""
  WriteRegStr SHCTX "Software\Classes\Plumetta.opus" "" "Opus audio"
  WriteRegStr SHCTX "Software\Classes\Plumetta.opus\DefaultIcon" "" "$INSTDIR\plumetta.exe,0"
  WriteRegStr SHCTX "Software\Classes\Plumetta.opus\shell\open\command" "" '"$INSTDIR\plumetta.exe" "%1"'
  WriteRegStr SHCTX "Software\Classes\.opus\OpenWithProgids" "Plumetta.opus" ""
  WriteRegStr SHCTX "Software\Classes\Plumetta.oga" "" "Ogg FLAC audio"
  WriteRegStr SHCTX "Software\Classes\Plumetta.oga\DefaultIcon" "" "$INSTDIR\plumetta.exe,0"
  WriteRegStr SHCTX "Software\Classes\Plumetta.oga\shell\open\command" "" '"$INSTDIR\plumetta.exe" "%1"'
  WriteRegStr SHCTX "Software\Classes\.oga\OpenWithProgids" "Plumetta.oga" ""
!macroend

!macro PlumettaUnregisterFileTypes
  DeleteRegKey SHCTX "Software\Classes\Plumetta.wav"
  DeleteRegValue SHCTX "Software\Classes\.wav\OpenWithProgids" "Plumetta.wav"
  DeleteRegValue SHCTX "Software\Classes\.wave\OpenWithProgids" "Plumetta.wav"
  DeleteRegKey SHCTX "Software\Classes\Plumetta.rf64"
  DeleteRegValue SHCTX "Software\Classes\.rf64\OpenWithProgids" "Plumetta.rf64"
  DeleteRegKey SHCTX "Software\Classes\Plumetta.aiff"
  DeleteRegValue SHCTX "Software\Classes\.aiff\OpenWithProgids" "Plumetta.aiff"
  DeleteRegValue SHCTX "Software\Classes\.aif\OpenWithProgids" "Plumetta.aiff"
  DeleteRegValue SHCTX "Software\Classes\.aifc\OpenWithProgids" "Plumetta.aiff"
  DeleteRegKey SHCTX "Software\Classes\Plumetta.iff"
  DeleteRegValue SHCTX "Software\Classes\.iff\OpenWithProgids" "Plumetta.iff"
  DeleteRegValue SHCTX "Software\Classes\.8svx\OpenWithProgids" "Plumetta.iff"
  DeleteRegValue SHCTX "Software\Classes\.16sv\OpenWithProgids" "Plumetta.iff"
  DeleteRegValue SHCTX "Software\Classes\.svx\OpenWithProgids" "Plumetta.iff"
  DeleteRegKey SHCTX "Software\Classes\Plumetta.au"
  DeleteRegValue SHCTX "Software\Classes\.au\OpenWithProgids" "Plumetta.au"
  DeleteRegValue SHCTX "Software\Classes\.snd\OpenWithProgids" "Plumetta.au"
  DeleteRegKey SHCTX "Software\Classes\Plumetta.voc"
  DeleteRegValue SHCTX "Software\Classes\.voc\OpenWithProgids" "Plumetta.voc"
  DeleteRegKey SHCTX "Software\Classes\Plumetta.caf"
  DeleteRegValue SHCTX "Software\Classes\.caf\OpenWithProgids" "Plumetta.caf"
  DeleteRegKey SHCTX "Software\Classes\Plumetta.w64"
  DeleteRegValue SHCTX "Software\Classes\.w64\OpenWithProgids" "Plumetta.w64"
  DeleteRegKey SHCTX "Software\Classes\Plumetta.flac"
  DeleteRegValue SHCTX "Software\Classes\.flac\OpenWithProgids" "Plumetta.flac"
  DeleteRegKey SHCTX "Software\Classes\Plumetta.opus"
  DeleteRegValue SHCTX "Software\Classes\.opus\OpenWithProgids" "Plumetta.opus"
  DeleteRegKey SHCTX "Software\Classes\Plumetta.oga"
  DeleteRegValue SHCTX "Software\Classes\.oga\OpenWithProgids" "Plumetta.oga"
!macroend
