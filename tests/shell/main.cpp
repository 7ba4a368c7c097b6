#include "shell/fileactions.h"
#include "shell/savedpdf.h"
#include "testmain.h"

int main(int argc, char *argv[])
{
    // A test never opens a viewer or a file manager window.
    SavedPdf::openHook() = [](const QString &) {};
    FileActions::revealHook() = [](const QString &) {};
    return TestMain::main(argc, argv);
}
