# The changelog opens with the version that is built, and the pages name no file that is not there, neither among the sources nor
# where they are installed.
include(${CMAKE_CURRENT_LIST_DIR}/run.cmake)

file(STRINGS ${SOURCE_DIR}/CHANGELOG.md headings REGEX "^## ")
list(GET headings 0 newest)
Expect(${newest} "^## ${VERSION}$")

# CheckLinks(root pages...): of pages that are named relative to the root.
function(CheckLinks root)
    foreach(page IN LISTS ARGN)
        cmake_path(GET page PARENT_PATH folder)
        file(READ ${root}/${page} text)
        string(REPLACE "](" "LINK(" text "${text}") # brackets would glue the elements of a list together
        string(REGEX MATCHALL "LINK\\([^):#]+" links "${text}")
        foreach(link IN LISTS links)
            string(SUBSTRING ${link} 5 -1 link)
            if(NOT EXISTS ${root}/${folder}/${link})
                message(SEND_ERROR "${root}/${page} points to ${link}, which is not there")
            endif()
        endforeach()
    endforeach()
endfunction()

file(GLOB_RECURSE pages RELATIVE ${SOURCE_DIR} ${SOURCE_DIR}/docs/*.md)
CheckLinks(${SOURCE_DIR} ${pages} README.md CONTRIBUTING.md CHANGELOG.md)

set(installed ${PREFIX}/share/doc/zvr_koro)
file(GLOB_RECURSE pages RELATIVE ${installed} ${installed}/*.md)
list(LENGTH pages numPages)
if(numPages LESS 20)
    message(SEND_ERROR "only ${numPages} pages are installed")
endif()
CheckLinks(${installed} ${pages})
