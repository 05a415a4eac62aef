#pragma once
// The whole page-host program, for nexaro-page and for hosts that register extra classes
// (tests, integrators): register the classes, then `return nxr::runPageHost(argc, argv);`.

namespace nxr {

int runPageHost(int argc, char** argv);

} // namespace nxr
