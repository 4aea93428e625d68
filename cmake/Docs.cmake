# Target docs: the reference documentation of all public headers, into docs/html of the build folder. A warning is an error.

find_package( Doxygen QUIET )
if( DOXYGEN_FOUND )
   configure_file( ${PROJECT_SOURCE_DIR}/docs/Doxyfile.in ${PROJECT_BINARY_DIR}/docs/Doxyfile @ONLY )
   add_custom_target( docs
      COMMAND Doxygen::doxygen ${PROJECT_BINARY_DIR}/docs/Doxyfile
      COMMAND ${CMAKE_COMMAND} -E echo "reference documentation: ${PROJECT_BINARY_DIR}/docs/html/index.html"
      WORKING_DIRECTORY ${PROJECT_SOURCE_DIR} VERBATIM )
endif()
