// Read by LeakSanitizer when it is there. The HEVC encoder itself forgets some 4 KiB with every
// picture; our own leaks still show, as their blocks are not allocated inside it.
extern "C" const char* __lsan_default_suppressions();

extern "C" const char* __lsan_default_suppressions() {
    return "leak:libx265.so\n";
}
