// What Open CASCADE keeps to the end of a process is its own affair.
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions()
{
    return "leak:libTK";
}
