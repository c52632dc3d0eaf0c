#include <iostream>

#include "raylume/platform/HostSetup.h"
#include "tools/Tool.h"

int main(int argumentCount, char** arguments)
{
    std::ios::sync_with_stdio(false);
    return tool::run(argumentCount, arguments, std::cout, std::cerr, platform::standardErrorIsTerminal());
}
