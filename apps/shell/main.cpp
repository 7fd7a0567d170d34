#include "CommandLine.h"
#include "Interrupt.h"
#include "Program.h"

int main(int argc, char** argv) {
    static HDGUIStatus status;
    Interrupt::cancelOnCtrlC(status);
    return Program(CommandLine::parse(argc, argv), status).run();
}
