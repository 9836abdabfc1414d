# What is installed; debian/ makes packages of it (`make package`).
install(TARGETS noxlux EXPORT noxlux LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY include/noxlux DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT noxlux NAMESPACE noxlux:: FILE noxluxConfig.cmake DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/noxlux)
include(CMakePackageConfigHelpers)
write_basic_package_version_file(${CMAKE_BINARY_DIR}/noxluxConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/noxluxConfigVersion.cmake DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/noxlux)
configure_file(packaging/noxlux.pc.in ${CMAKE_BINARY_DIR}/noxlux.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/noxlux.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
option(NOXLUX_MANUELS "Make the manual pages" OFF)
if(NOXLUX_MANUELS)
  add_custom_target(manuels ALL
    COMMAND python3 ${CMAKE_SOURCE_DIR}/packaging/man/generer.py $<TARGET_FILE:noxlux_commande> ${CMAKE_BINARY_DIR}/man
    DEPENDS noxlux_commande VERBATIM)
  install(DIRECTORY ${CMAKE_BINARY_DIR}/man/ DESTINATION ${CMAKE_INSTALL_MANDIR})
endif()
install(FILES packaging/noxlux.bash-completion DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
  RENAME noxlux)
install(FILES packaging/noxlux.zsh-completion DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions
  RENAME _noxlux)
install(FILES packaging/noxlux.fish-completion DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d
  RENAME noxlux.fish)
install(DIRECTORY docs/ DESTINATION ${CMAKE_INSTALL_DOCDIR} FILES_MATCHING PATTERN "*.md")
