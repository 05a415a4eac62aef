#pragma once
// A broken promise of the code under fuzzing: print what broke and abort, so libFuzzer keeps the input.

#include <QString>

#include <cstdio>
#include <cstdlib>

#define FUZZ_CHECK(condition, what)                                                                          \
    do {                                                                                                     \
        if (!(condition)) {                                                                                  \
            std::fprintf(stderr, "fuzz check failed: %s (%s)\n", #condition,                                 \
                         QString(what).toUtf8().constData());                                                \
            std::abort();                                                                                    \
        }                                                                                                    \
    } while (0)
