#include "cli/check_worker/check_worker.h"
#include "cli/program/program.h"

int main(int argc, char** argv) { return standin::RunProgram(argc, argv, standin::RunCheckWorker); }
