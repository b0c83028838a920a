#include <iostream>

#include "standin/command/command.h"

int main(int argc, char** argv) { return standin::RunTarvo(argc, argv, {std::cout, std::cerr}); }
