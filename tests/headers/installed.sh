#!/bin/sh
# installed.sh BUILD SOURCE: the example in the README is built against what an install puts into a
# folder, by the two ways that the README gives.
set -eu
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cmake --install "$1" --component develop --prefix "$folder/usr" > "$folder/log"
cd "$folder"
PKG_CONFIG_PATH=$(dirname "$(find usr -name xw.pc)")
export PKG_CONFIG_PATH
# Linked and started: without a display it says so.
cc -Wall -Werror "$2/examples/01-hello/main.c" $(pkg-config --cflags --libs xw) -o hello
if DISPLAY= XW_DISPLAY=x11 ./hello 2> said; then exit 1; fi
grep -q "display" said
cat > print.c << 'END'
#include <stdio.h>
#include "os/os.h"
#include "printserver/nc.h"
int main(void) {
  int connection = NC_ConnectN("127.0.0.9:1", 1);
  return OS_GetPathName(OS_FOLDER_HOME)[0] != '/' || connection >= 0;
}
END
cc print.c $(pkg-config --cflags --libs nc) -o print
./print
mkdir project
cat > project/CMakeLists.txt << END
cmake_minimum_required(VERSION 3.25)
project(elsewhere LANGUAGES C CXX)
add_subdirectory("$2" quorvik)
add_executable(hello "$2/examples/01-hello/main.c")
target_link_libraries(hello xw)
END
cmake -S project -B project/build -G Ninja > log
ninja -C project/build -t commands hello > commands
# With the headers, without this project's warnings.
grep -- "-I$2" commands | grep -q "main.c"
if grep "01-hello/main.c" commands | grep -q -- "-Werror"; then exit 1; fi
