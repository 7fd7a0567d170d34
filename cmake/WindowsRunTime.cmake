# What the programs need beside the system: DLLs where they look for them, Tcl's own scripts where its DLL does.
function(lay_run_time DIR)
  file(GLOB dlls ${PLAZ_WINDOWS_DEPS}/bin/*.dll)
  file(COPY ${dlls} DESTINATION ${DIR}/bin)
  file(COPY ${PLAZ_WINDOWS_DEPS}/lib/tcl8.6 ${PLAZ_WINDOWS_DEPS}/lib/tcl8 DESTINATION ${DIR}/lib)
endfunction()
