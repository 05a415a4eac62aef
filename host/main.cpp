// nexaro-page: runs a page of NexaroControls (see --help).
#include "host/PageHostMain.h"

int main(int argc, char** argv)
{
    return nxr::runPageHost(argc, argv);
}
