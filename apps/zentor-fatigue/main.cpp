#include <cstdio>
#include <new>

#include "shell/command_line.h"
#include "shell/run_shell.h"

int main(int argc, char** argv) {
  try {
    return zentor::wWinMain(zentor::JoinArguments(argc, argv));
  } catch (const std::bad_alloc&) {
    std::fputs("zentor-fatigue: not enough memory to start\n", stderr);
    return 0;
  }
}
