#pragma once

#if defined(NXR_BUILDING_LIBRARY)
#define NXR_EXPORT __attribute__((visibility("default")))
#else
#define NXR_EXPORT
#endif
