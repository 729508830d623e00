# Read by cpack. Without these programs it would fail without saying what to install, or leave out of the package's
# dependencies the libraries that the programs need.

if(CPACK_GENERATOR STREQUAL "DEB")
    foreach(tool file dpkg-shlibdeps)
        find_program(path_of_${tool} ${tool})
        if(NOT path_of_${tool})
            message(FATAL_ERROR "${tool} is not installed, and the package cannot be made without it: "
                "sudo apt install dpkg-dev file")
        endif()
    endforeach()
endif()
