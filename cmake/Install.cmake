# A relocatable tree: everything finds its neighbours relative to itself.
#
#   bin/plaz, bin/plaz-browser          the program, the catalog browser
#   lib/libplaz.so, lib/libplazhost.so  the libraries
#   lib/libplazi.so, lib/libplazijvm.so the Java binding, the stand-alone host for a Java virtual machine
#   share/java/plaz.jar                 the Java classes
#   lib/cmake/plaz, lib/pkgconfig       for programs that embed the hub
#   include/plaz                        headers of the exported classes ("plaz/...", "support/...")
#   share/plaz/data                     data root: messages, schemas, shipped metadata; the sample hub
#   share/plaz/tps                      third-party programs: links to the system's
#   share/applications, share/icons     the browser's entry in a desktop's menu
#   share/man, share/doc/plaz           manual page, guides with the example that they refer to
#   share/bash-completion, zsh, fish    completion for these shells
#
# On Windows the DLLs lie in bin beside the program, Tcl's scripts in lib, the third-party programs are the user's to add,
# and nothing is there for programs that embed the hub; "cpack" makes a zip of the tree.

install(TARGETS plaz)
install(DIRECTORY platform/data/ DESTINATION ${CMAKE_INSTALL_DATADIR}/plaz/data/plaz)
set(guides
    docs/user-guide.md
    docs/scripting-guide.md
    docs/store-authors-guide.md
    docs/security.md
    docs/windows.md
    docs/json.md
    docs/messages.md
    docs/when-something-goes-wrong.md)
# The browser shows them, that of the build tree as well.
foreach(guide IN LISTS guides)
  cmake_path(GET guide FILENAME name)
  configure_file(${guide} ${PROJECT_BINARY_DIR}/share/doc/plaz/${name} COPYONLY)
endforeach()

if(WIN32)
  install(TARGETS plazhost plaz_lib RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  install(DIRECTORY ${PLAZ_WINDOWS_DEPS}/bin/ DESTINATION ${CMAKE_INSTALL_BINDIR})
  install(DIRECTORY ${PLAZ_WINDOWS_DEPS}/lib/tcl8.6 ${PLAZ_WINDOWS_DEPS}/lib/tcl8 DESTINATION lib)
  install(DIRECTORY ${PLAZ_WINDOWS_DEPS}/licenses DESTINATION ${CMAKE_INSTALL_DOCDIR})
  install(FILES docs/windows/README.txt DESTINATION .)
  set(CPACK_GENERATOR ZIP)
  set(CPACK_PACKAGE_NAME plaz)
  set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
  set(CPACK_PACKAGE_FILE_NAME plaz-${PROJECT_VERSION}-windows-x64)
  set(CPACK_STRIP_FILES ON)
  set(CPACK_VERBATIM_VARIABLES ON)
  include(CPack)
else()
  install(TARGETS plazhost plaz_lib EXPORT plazTargets)
  install(DIRECTORY ${PROJECT_BINARY_DIR}/share/plaz/tps DESTINATION ${CMAKE_INSTALL_DATADIR}/plaz
          USE_SOURCE_PERMISSIONS)
  set(completion apps/shell/completion)
  install(FILES ${completion}/plaz.bash DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME plaz)
  install(FILES ${completion}/_plaz DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions)
  install(FILES ${completion}/plaz.fish DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)
  install(FILES docs/man/plaz.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
  list(APPEND guides docs/embedding-guide.md)
  install(DIRECTORY examples/embed DESTINATION ${CMAKE_INSTALL_DOCDIR}/examples)

  set(headers ${CMAKE_INSTALL_INCLUDEDIR}/plaz)
  # What the rooms keep to themselves stays out.
  install(
    DIRECTORY shared/common/plaz
    DESTINATION ${headers}
    FILES_MATCHING
    PATTERN "*.h"
    PATTERN "reader" EXCLUDE
    PATTERN "java" EXCLUDE
    PATTERN "git" EXCLUDE
    PATTERN "tasks" EXCLUDE
    PATTERN "store" EXCLUDE
    PATTERN "HSCPlazDestruction.h" EXCLUDE
    REGEX "base/HSCPlaz(ChangeLog|Context|DebugLog|FileCopy|HubLock|Limits|TrustRules|Url|Variables)\\.h$" EXCLUDE)
  install(FILES shared/common/plaz/store/HSCPlazLocalDBMgr.h shared/common/plaz/store/HSCPlazRepoInfoMgr.h
          DESTINATION ${headers}/plaz/store)
  install(FILES shared/common/plaz/tasks/HSCPlazTaskOptions.h shared/common/plaz/tasks/HSCPlazTaskResult.h
          DESTINATION ${headers}/plaz/tasks)
  install(FILES shared/common/plaz/model/reader/HSCPlazJsonReadWriteUtils.h
                shared/common/plaz/model/reader/HSCPlazFileCheck.h DESTINATION ${headers}/plaz/model/reader)
  install(
    DIRECTORY platform/support
    DESTINATION ${headers}
    FILES_MATCHING
    PATTERN "*.h"
    PATTERN "posix" EXCLUDE
    PATTERN "win32" EXCLUDE
    PATTERN "Platform*.h" EXCLUDE
    PATTERN "HCRapidJsonReadWriteUtils.h" EXCLUDE)

  install(
    DIRECTORY platform/scripting
    DESTINATION ${headers}
    FILES_MATCHING
    PATTERN "*.h"
    PATTERN "*_impl.h" EXCLUDE)

  include(CMakePackageConfigHelpers)
  set(package ${CMAKE_INSTALL_LIBDIR}/cmake/plaz)
  install(EXPORT plazTargets NAMESPACE plaz:: DESTINATION ${package})
  configure_package_config_file(cmake/plazConfig.cmake.in ${PROJECT_BINARY_DIR}/plazConfig.cmake
                                INSTALL_DESTINATION ${package} NO_SET_AND_CHECK_MACRO)
  write_basic_package_version_file(${PROJECT_BINARY_DIR}/plazConfigVersion.cmake COMPATIBILITY SameMajorVersion)
  install(FILES ${PROJECT_BINARY_DIR}/plazConfig.cmake ${PROJECT_BINARY_DIR}/plazConfigVersion.cmake
          DESTINATION ${package})

  configure_file(cmake/plaz.pc.in ${PROJECT_BINARY_DIR}/plaz.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/plaz.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endif()

install(FILES ${guides} DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY docs/images DESTINATION ${CMAKE_INSTALL_DOCDIR})
