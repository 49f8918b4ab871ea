# The Python that the package is built for, with pybind11: the system's, whose packages go with it, unless
# Python3_EXECUTABLE names another.
macro(qarv_find_python)
  if(NOT Python3_EXECUTABLE AND EXISTS /usr/bin/python3 AND NOT CMAKE_CROSSCOMPILING)
    set(Python3_EXECUTABLE /usr/bin/python3 CACHE FILEPATH "The Python of the package qarv_wave")
  endif()
  find_package(Python3 COMPONENTS Interpreter Development.Module ${ARGN})
  set(PYTHON_EXECUTABLE ${Python3_EXECUTABLE})
  find_package(pybind11 2.10 CONFIG ${ARGN})
endmacro()
