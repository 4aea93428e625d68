# Whether the Python module is built, in LDP_WITH_PYTHON. Distributions install what it needs for their own interpreter, so that
# one is asked first; -D Python_EXECUTABLE=... names another.

set( LDP_PYTHON AUTO CACHE STRING "The Python module ldp: ON, OFF, or AUTO for where pybind11 is found" )
set_property( CACHE LDP_PYTHON PROPERTY STRINGS AUTO ON OFF )
set( LDP_WITH_PYTHON OFF )

# The interpreter is not built with a sanitizer, and what another project asks for is not this.
if( LDP_PYTHON STREQUAL AUTO AND
    ( NOT PROJECT_IS_TOP_LEVEL OR LDP_SANITIZE OR LDP_THREAD OR LDP_MEMORY OR LDP_FUZZ ) )
   return()
endif()
if( NOT LDP_PYTHON )
   return()
endif()
if( NOT DEFINED Python_EXECUTABLE AND EXISTS /usr/bin/python3 )
   set( Python_EXECUTABLE /usr/bin/python3 )
endif()
set( needed )
if( NOT LDP_PYTHON STREQUAL AUTO )
   set( needed REQUIRED )
endif()
find_package( Python 3.8 COMPONENTS Interpreter Development.Module ${needed} QUIET )
if( Python_FOUND )
   find_package( pybind11 2.10 ${needed} QUIET )
endif()
if( NOT ( Python_FOUND AND pybind11_FOUND ) )
   message( STATUS "no Python module: it needs pybind11 and the headers of Python (pybind11-dev, python3-dev)" )
   return()
endif()
set( LDP_WITH_PYTHON ON )

execute_process( COMMAND ${Python_EXECUTABLE} -c
   "import sysconfig, sys; print( 'lib/python%d.%d/' % sys.version_info[:2] + sysconfig.get_path( 'platlib' ).rpartition( '/' )[2] )"
   OUTPUT_VARIABLE folder OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY )
set( LDP_PYTHON_DIR ${folder} CACHE STRING "Where the Python module is installed, below the prefix" )
