#include "CommandLine.h"
#include "Interrupt.h"
#include "Program.h"

#include "support/HUTSysCall.h"

int main(int argc, char** argv) {
    static HDGUIStatus status;
    Interrupt::cancelOnCtrlC(status);
    return Program(CommandLine::parse(HUTSysCall::startProgram(argc, argv)), status).run();
}
