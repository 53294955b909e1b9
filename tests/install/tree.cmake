# Lays the tree down anew for the other scripts.
include(${CMAKE_CURRENT_LIST_DIR}/run.cmake)
file(REMOVE_RECURSE ${PREFIX})
Run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${PREFIX})
