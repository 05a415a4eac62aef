// The page host with the test classes of TestClasses.cpp registered.
#include "host/PageHostMain.h"

int main(int argc, char** argv)
{
    return nxr::runPageHost(argc, argv);
}
