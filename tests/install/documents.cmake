# The changelog opens with the version that is built, and the pages name no file that is not there.
include(${CMAKE_CURRENT_LIST_DIR}/run.cmake)

file(STRINGS ${SOURCE_DIR}/CHANGELOG.md headings REGEX "^## ")
list(GET headings 0 newest)
Expect(${newest} "^## ${VERSION}$")

file(GLOB_RECURSE pages RELATIVE ${SOURCE_DIR} ${SOURCE_DIR}/docs/*.md)
list(APPEND pages README.md CONTRIBUTING.md CHANGELOG.md)
foreach(page IN LISTS pages)
    cmake_path(GET page PARENT_PATH folder)
    file(READ ${SOURCE_DIR}/${page} text)
    string(REPLACE "](" "LINK(" text "${text}") # brackets would glue the elements of a list together
    string(REGEX MATCHALL "LINK\\([^):#]+" links "${text}")
    foreach(link IN LISTS links)
        string(SUBSTRING ${link} 5 -1 link)
        if(NOT EXISTS ${SOURCE_DIR}/${folder}/${link})
            message(SEND_ERROR "${page} points to ${link}, which is not there")
        endif()
    endforeach()
endforeach()
