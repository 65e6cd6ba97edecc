# cmake -D FROM=PROGRAM -D TO=PROGRAM -P link_program.cmake
#
# The same program under a second name in another folder: a hard link where the file system has them, else a copy.
get_filename_component(folder ${TO} DIRECTORY)
file(MAKE_DIRECTORY ${folder})
file(CREATE_LINK ${FROM} ${TO} COPY_ON_ERROR)
