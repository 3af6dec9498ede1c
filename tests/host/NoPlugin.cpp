// A shared library that is no plug-in: what a host meets in a folder full of libraries.

extern "C" __attribute__((visibility("default"))) int answer()
{
    return 42;
}
