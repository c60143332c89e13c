// The RTF tests: every file of this folder registers its test class.

#include "testregistry.h"

int main(int argc, char *argv[])
{
    return kvrtb::test::runRegisteredTests(argc, argv);
}
