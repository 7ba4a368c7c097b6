#include "testmain.h"

int main(int argc, char *argv[])
{
    return TestMain::main(argc, argv);
}
