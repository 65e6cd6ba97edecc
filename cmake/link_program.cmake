# cmake -D FROM=PROGRAM -D TO=PROGRAM -P link_program.cmake
#
# Puts a program into another folder too: as a hard link where the file system has them, else as a copy.
get_filename_component(folder ${TO} DIRECTORY)
file(MAKE_DIRECTORY ${folder})
file(CREATE_LINK ${FROM} ${TO} COPY_ON_ERROR)
