# What is installed, and the packages made of it (`make package`).
install(TARGETS noxlux EXPORT noxlux LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY include/noxlux DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT noxlux NAMESPACE noxlux:: FILE noxluxConfig.cmake DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/noxlux)
configure_file(packaging/noxlux.pc.in ${CMAKE_BINARY_DIR}/noxlux.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/noxlux.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
install(FILES packaging/man/noxlux.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES packaging/noxlux.bash-completion DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
  RENAME noxlux)
install(DIRECTORY docs/ DESTINATION ${CMAKE_INSTALL_DOCDIR} FILES_MATCHING PATTERN "*.md")
install(DIRECTORY reference/exemple DESTINATION ${CMAKE_INSTALL_DATADIR}/noxlux)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_CONTACT "the noxlux maintainers <noxlux@localhost>")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_STRIP_FILES ON)
include(CPack)
