# A program linked with `faults` has these calls wrapped. Each has its wrapper in fault_calls.cc, or
# the program does not link.
add_library(faults OBJECT ${CMAKE_CURRENT_LIST_DIR}/faults.cc ${CMAKE_CURRENT_LIST_DIR}/fault_calls.cc)
target_link_libraries(faults PUBLIC quorvik_options GTest::gtest)
foreach(call
    accept4 access bind chmod close connect copy_file_range dup2 epoll_create1 epoll_ctl epoll_wait
    eventfd fchmod fcntl fdatasync fdopendir flock fork fstat fstatat fsync ftruncate futimens getaddrinfo
    getrandom getsockname getsockopt kill linkat listen lseek mkdir mkdirat nanosleep open openat
    opendir pipe2 poll posix_spawn pread pthread_create read readdir readlink readlinkat recv renameat
    renameat2 send sendfile sendmsg setsockopt shutdown signalfd socket statfs syscall unlinkat
    utimensat waitid waitpid write)
  target_link_options(faults INTERFACE -Wl,--wrap=${call})
endforeach()
set(FAULTY_PROGRAM ${CMAKE_CURRENT_LIST_DIR}/fault_program.cc)
