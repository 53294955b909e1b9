# OpenCV, which the tests and the bench of the image library compare with. It is optional, and nothing that is installed
# uses it.
find_path(KORO_OPENCV_INCLUDE_DIR opencv2/imgproc.hpp PATH_SUFFIXES opencv4)
find_library(KORO_OPENCV_CORE opencv_core)
find_library(KORO_OPENCV_IMGPROC opencv_imgproc)
mark_as_advanced(KORO_OPENCV_INCLUDE_DIR KORO_OPENCV_CORE KORO_OPENCV_IMGPROC)

# koro_use_opencv(target): links OpenCV and defines KORO_HAS_OPENCV, where it is installed.
function(koro_use_opencv target)
    if(KORO_OPENCV_INCLUDE_DIR AND KORO_OPENCV_CORE AND KORO_OPENCV_IMGPROC)
        target_include_directories(${target} SYSTEM PRIVATE ${KORO_OPENCV_INCLUDE_DIR})
        target_link_libraries(${target} PRIVATE ${KORO_OPENCV_IMGPROC} ${KORO_OPENCV_CORE})
        target_compile_definitions(${target} PRIVATE KORO_HAS_OPENCV)
    endif()
endfunction()
