# Lays the third-party programs under DIR as the hub looks for them: links to the system's git and CA bundle.
# For Windows a git of Windows has to be put there.
function(lay_tps DIR)
  if(WIN32)
    return()
  endif()
  find_program(PLAZ_GIT git REQUIRED)
  set(root ${DIR}/win64/git-2.45.0)
  file(MAKE_DIRECTORY ${root}/cmd ${root}/mingw64/etc/ssl/certs)
  file(CREATE_LINK ${PLAZ_GIT} ${root}/cmd/git.exe SYMBOLIC)
  if(EXISTS /etc/ssl/certs/ca-certificates.crt)
    file(CREATE_LINK /etc/ssl/certs/ca-certificates.crt ${root}/mingw64/etc/ssl/certs/ca-bundle.crt SYMBOLIC)
  endif()
endfunction()
