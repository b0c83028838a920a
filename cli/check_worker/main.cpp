#include "cli/check_worker/check_worker.h"
#include "cli/program/program.h"

int main(int argc, char** argv) { return tarvo::RunProgram(argc, argv, tarvo::RunCheckWorker); }
