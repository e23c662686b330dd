#include "Program.h"

int main(int argumentCount, char** arguments) {
    return TevAgent::Program::run(argumentCount, arguments);
}
