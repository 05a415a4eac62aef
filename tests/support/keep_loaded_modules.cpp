// Linked into the test programs of the sanitizer build only (see tests/CMakeLists.txt).
//
// The leak checker names the library a leaked block was allocated in by the mappings it sees at
// exit. A library unloaded before then (the OpenGL driver is, when the display connection closes)
// leaves its leaks nameless, or named after whatever was mapped there later, so no suppression
// can match them. These programs therefore never unload a library: this dlclose, exported from
// the program, takes the place of the C library's for every library in the process.

extern "C" int dlclose(void*)
{
    return 0;
}
