# Target docs: the reference documentation of all public headers, into docs/html of the build folder. A warning is an error.

find_package( Doxygen QUIET )
if( DOXYGEN_FOUND )
   foreach( file Doxyfile Doxyfile.strict )
      configure_file( ${PROJECT_SOURCE_DIR}/docs/${file}.in ${PROJECT_BINARY_DIR}/docs/${file} @ONLY )
   endforeach()
   add_custom_target( docs
      COMMAND sh -c "'${DOXYGEN_EXECUTABLE}' '${PROJECT_BINARY_DIR}/docs/Doxyfile.strict' 2>&1 | scripts/check_comments.py"
      COMMAND Doxygen::doxygen ${PROJECT_BINARY_DIR}/docs/Doxyfile
      COMMAND ${CMAKE_COMMAND} -E echo "reference documentation: ${PROJECT_BINARY_DIR}/docs/html/index.html"
      WORKING_DIRECTORY ${PROJECT_SOURCE_DIR} VERBATIM )
endif()
