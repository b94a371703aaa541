#include "shell/command_line.h"
#include "shell/run_shell.h"

int main(int argc, char** argv) { return zentor::wWinMain(zentor::JoinArguments(argc, argv)); }
