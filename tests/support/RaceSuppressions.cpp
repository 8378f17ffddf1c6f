// Read by ThreadSanitizer when it is there. These libraries were built without it, so it does not
// see how they order what their own threads do.
extern "C" const char* __tsan_default_suppressions();

extern "C" const char* __tsan_default_suppressions() {
    return "race:libicuuc.so\nrace:libonnxruntime.so\n";
}
