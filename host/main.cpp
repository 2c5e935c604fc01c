#include <host/command/command_line.h>

int main(int argumentCount, char** arguments) {
    return kestrel::host::runCommandLine(argumentCount, arguments);
}
