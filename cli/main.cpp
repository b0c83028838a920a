#include "cli/command.h"
#include "cli/program/program.h"

int main(int argc, char** argv) { return standin::RunProgram(argc, argv, standin::RunTarvo); }
